# Writes OUTPUT, a source file that holds every <language>.json of FOLDER as text (cmake -P script).
# Compilers limit the length of a literal: a text is cut into pieces, at line ends.
set(piece_size 8000)

set(entries "")
file(GLOB files ${FOLDER}/*.json)
list(SORT files)
foreach(file IN LISTS files)
    get_filename_component(language ${file} NAME_WE)
    file(READ ${file} rest)
    string(APPEND entries "        {\"${language}\",\n         {")
    string(LENGTH "${rest}" left)
    while(left GREATER 0)
        string(SUBSTRING "${rest}" 0 ${piece_size} piece)
        string(FIND "${piece}" "\n" last_line_end REVERSE)
        if(left GREATER piece_size AND last_line_end GREATER -1)
            math(EXPR cut "${last_line_end} + 1")
            string(SUBSTRING "${rest}" 0 ${cut} piece)
        endif()
        string(LENGTH "${piece}" cut)
        string(SUBSTRING "${rest}" ${cut} -1 rest)
        string(LENGTH "${rest}" left)
        string(APPEND entries "R\"json~~(${piece})json~~\",\n")
    endwhile()
    string(APPEND entries "         }},\n")
endforeach()

file(WRITE ${OUTPUT} "// Generated from the message files.
#include \"embedded_host/services/builtin_messages.h\"

namespace embedded_host {

const std::vector<BuiltinMessages>& builtinMessages() {
    static const std::vector<BuiltinMessages> all{
${entries}    };
    return all;
}

}  // namespace embedded_host
")
