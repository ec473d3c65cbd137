# Third-party libraries as imported targets, whose headers are SYSTEM: their warnings are not ours.
find_package(Boost 1.74 REQUIRED CONFIG)
find_package(fmt REQUIRED CONFIG)
find_package(log4cplus REQUIRED CONFIG)
find_package(Threads REQUIRED)

find_path(RAPIDJSON_INCLUDE_DIR rapidjson/document.h REQUIRED)
add_library(ombrix_rapidjson INTERFACE)
target_include_directories(ombrix_rapidjson SYSTEM INTERFACE ${RAPIDJSON_INCLUDE_DIR})
