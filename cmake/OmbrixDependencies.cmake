# Third-party libraries as imported targets, whose headers are SYSTEM: their warnings are not ours.
find_package(Boost 1.74 REQUIRED CONFIG)
find_package(fmt REQUIRED CONFIG)
find_package(log4cplus REQUIRED CONFIG)
find_package(Threads REQUIRED)

if(OMBRIX_CLI)
    # The HTTP server of `roofline serve`: a small library that is looked after, in the distribution. Debian has it
    # compiled, and its classes hold other members with and without TLS and compression: the flags must be those that
    # it was compiled with, which its .pc file tells. What they need is linked by the library itself.
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(HTTPLIB REQUIRED IMPORTED_TARGET cpp-httplib)
endif()

find_path(RAPIDJSON_INCLUDE_DIR rapidjson/document.h REQUIRED)
add_library(ombrix_rapidjson INTERFACE)
target_include_directories(ombrix_rapidjson SYSTEM INTERFACE ${RAPIDJSON_INCLUDE_DIR})
