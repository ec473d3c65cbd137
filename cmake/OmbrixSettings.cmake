# Compiler settings of every target of this project, and the function that makes one of a folder.
if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug, Release, RelWithDebInfo or MinSizeRel" FORCE)
endif()
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
# Archives too: an embedder may link them into a shared library of its own.
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Build folders share what ccache holds, so the same object isn't compiled for two of them; taking the headers from the
# compiler's own list saves it a preprocessing of each source.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER AND NOT OMBRIX_PRECOMPILED_HEADERS)
    set(CMAKE_CXX_COMPILER_LAUNCHER env CCACHE_NOHASHDIR=1 CCACHE_DEPEND=1 ${CCACHE_PROGRAM})
endif()

add_library(ombrix_warnings INTERFACE)
target_compile_options(ombrix_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
                                                 $<$<BOOL:${OMBRIX_WARNINGS_AS_ERRORS}>:-Werror>)

add_compile_definitions($<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
if(OMBRIX_SANITIZE)
    set(sanitize -fsanitize=${OMBRIX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_compile_options(${sanitize})
    add_link_options(${sanitize})
endif()

# One OBJECT library a folder: ombrix_folder(<target> <folders under the calling one>...). The products are
# composed of these; tests link them, so that hidden symbols are testable.
function(ombrix_folder target)
    list(TRANSFORM ARGN APPEND /*.cpp OUTPUT_VARIABLE patterns)
    file(GLOB sources CONFIGURE_DEPENDS ${patterns})
    add_library(${target} OBJECT ${sources})
    target_link_libraries(${target} PUBLIC host_interfaces PRIVATE ombrix_warnings)
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
    ombrix_precompiled_headers(${target} ombrix_headers LINK ombrix_warnings Boost::headers fmt::fmt ombrix_rapidjson
                               HEADERS ${OMBRIX_COMMON_HEADERS})
endfunction()
