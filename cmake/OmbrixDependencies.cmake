# Third-party libraries as imported targets; headers are SYSTEM so that their warnings are not ours.
find_package(Boost 1.74 REQUIRED)
find_package(fmt REQUIRED)
find_package(Threads REQUIRED)

find_path(RAPIDJSON_INCLUDE_DIR rapidjson/document.h REQUIRED)
add_library(ombrix_rapidjson INTERFACE)
target_include_directories(ombrix_rapidjson SYSTEM INTERFACE ${RAPIDJSON_INCLUDE_DIR})

find_path(LOG4CPLUS_INCLUDE_DIR log4cplus/logger.h REQUIRED)
find_library(LOG4CPLUS_LIBRARY log4cplus REQUIRED)
add_library(ombrix_log4cplus INTERFACE)
target_include_directories(ombrix_log4cplus SYSTEM INTERFACE ${LOG4CPLUS_INCLUDE_DIR})
target_link_libraries(ombrix_log4cplus INTERFACE ${LOG4CPLUS_LIBRARY})
