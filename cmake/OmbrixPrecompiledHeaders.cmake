# The heavy headers of others, compiled once for the sources and once for the tests: half of a source's time.
# Only for builds that look at what runs (sanitizers): a build with them doesn't tell whether a file includes what it
# needs. ccache stays out of those: it would store each precompiled header, 250 MB.
option(OMBRIX_PRECOMPILED_HEADERS "Compile the headers of third-party libraries once" OFF)
set(OMBRIX_COMMON_HEADERS
    <algorithm> <array> <charconv> <chrono> <cmath> <filesystem> <fstream> <functional> <future> <map> <memory> <mutex>
    <optional> <random> <set> <span> <sstream> <string> <string_view> <thread> <tuple> <unordered_map> <utility>
    <variant> <vector>
    <boost/property_tree/ptree.hpp> <boost/signals2/signal.hpp> <fmt/format.h> <rapidjson/document.h>
    <rapidjson/stringbuffer.h> <rapidjson/writer.h>)

# ombrix_precompiled_headers(<target> <owner> OPTIONS <of the compiler>... LINK <what the headers need>...
#                            HEADERS <headers>...)
# The target takes the headers that the target <owner> compiles, which is made by the first call. The compiler leaves
# them unused, with a warning, where the target's flags aren't the owner's: -Wpedantic and -fPIE count.
function(ombrix_precompiled_headers target owner)
    if(NOT OMBRIX_PRECOMPILED_HEADERS)
        return()
    endif()
    if(NOT TARGET ${owner})
        cmake_parse_arguments(PARSE_ARGV 2 owner "" "" "OPTIONS;LINK;HEADERS")
        set(source ${PROJECT_BINARY_DIR}/${owner}.cpp)
        file(CONFIGURE OUTPUT ${source} CONTENT "")
        add_library(${owner} OBJECT ${source})
        target_compile_options(${owner} PRIVATE ${owner_OPTIONS})
        target_link_libraries(${owner} PRIVATE ${owner_LINK})
        target_precompile_headers(${owner} PRIVATE ${owner_HEADERS})
    endif()
    target_precompile_headers(${target} REUSE_FROM ${owner})
endfunction()
