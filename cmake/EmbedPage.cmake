# Writes OUTPUT, a source file that holds the page of FOLDER with its style and script (cmake -P script).
# Compilers limit the length of a literal: the text is cut into pieces.
set(piece_size 8000)

file(READ ${FOLDER}/page.html html)
file(READ ${FOLDER}/page.css style)
file(READ ${FOLDER}/page.js script)
file(READ ${FOLDER}/page.csp.json hashes)
string(JSON script_hash GET "${hashes}" script)
string(JSON style_hash GET "${hashes}" style)

# A script that holds the name of a place would be filled too.
foreach(place CSP TITLE LANGUAGE NEEDS OLD FAULT MODEL STYLE SCRIPT)
    string(FIND "${script}${style}" "{{${place}}}" found)
    if(found GREATER -1)
        message(FATAL_ERROR "page.js or page.css holds {{${place}}}")
    endif()
    string(FIND "${html}" "{{${place}}}" found)
    if(found EQUAL -1)
        message(FATAL_ERROR "page.html has no place {{${place}}}")
    endif()
endforeach()
string(REPLACE "{{STYLE}}" "${style}" html "${html}")
string(REPLACE "{{SCRIPT}}" "${script}" html "${html}")

set(pieces "")
string(LENGTH "${html}" left)
while(left GREATER 0)
    string(SUBSTRING "${html}" 0 ${piece_size} piece)
    string(APPEND pieces "R\"page~~(${piece})page~~\",\n")
    string(LENGTH "${piece}" cut)
    string(SUBSTRING "${html}" ${cut} -1 html)
    string(LENGTH "${html}" left)
endwhile()

file(WRITE ${OUTPUT} "// Generated from chart_page/.
#include \"cli/page/page_file.h\"

namespace cli::page {

const Resources* resources() {
    static const Resources all{{
${pieces}},
                               {\"script-src '${script_hash}'; style-src '${style_hash}'\"}};
    return &all;
}

}  // namespace cli::page
")
