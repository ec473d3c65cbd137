# Compiler settings of every target of this project.
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release)
endif()
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(ombrix_warnings INTERFACE)
target_compile_options(ombrix_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
                                                 $<$<BOOL:${OMBRIX_WARNINGS_AS_ERRORS}>:-Werror>)

# One OBJECT library a folder: ombrix_folder(<target> <folders under the calling one>...).
function(ombrix_folder target)
    set(patterns "")
    foreach(folder IN LISTS ARGN)
        list(APPEND patterns ${folder}/*.cpp)
    endforeach()
    file(GLOB sources CONFIGURE_DEPENDS ${patterns})
    add_library(${target} OBJECT ${sources})
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:ombrix_warnings>)
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
endfunction()
