# What an embedder links: ombrix::host_interfaces, ombrix::host_services, ombrix::embedded_host, ombrix::roofline.
#
# Archives leave the host's functions open until the final link, so a host of its own can define them instead of
# ombrix::host_services; an archive stands before what it needs: ombrix::roofline before ombrix::embedded_host.
# Shared libraries know each other: ombrix::roofline links the host's, and the two host targets are one library.

# ombrix_product(<name> OBJECTS <object libraries>... LINK <arguments of target_link_libraries>...)
function(ombrix_product name)
    cmake_parse_arguments(PARSE_ARGV 1 product "" "" "OBJECTS;LINK")
    set(target ombrix_${name})
    list(TRANSFORM product_OBJECTS REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)
    add_library(${target} ${objects})
    add_library(ombrix::${name} ALIAS ${target})
    target_link_libraries(${target} PUBLIC host_interfaces ${product_LINK})
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${name} LINKER_LANGUAGE CXX VERSION ${PROJECT_VERSION}
                                               SOVERSION ${PROJECT_VERSION_MAJOR})
endfunction()

add_library(ombrix::host_interfaces ALIAS host_interfaces)
set(services_need PRIVATE fmt::fmt log4cplus::log4cplus Threads::Threads)
set(model_objects roofline_model_objects results_comparer_objects)
if(BUILD_SHARED_LIBS)
    ombrix_product(host OBJECTS host_services_objects embedded_host_objects LINK ${services_need})
    foreach(face host_services embedded_host)
        add_library(ombrix_${face} INTERFACE)
        add_library(ombrix::${face} ALIAS ombrix_${face})
        target_link_libraries(ombrix_${face} INTERFACE ombrix_host)
        set_target_properties(ombrix_${face} PROPERTIES EXPORT_NAME ${face})
    endforeach()
    ombrix_product(roofline OBJECTS ${model_objects} LINK ombrix_host PRIVATE fmt::fmt log4cplus::log4cplus)
    set(OMBRIX_PRODUCTS ombrix_host ombrix_host_services ombrix_embedded_host ombrix_roofline)
else()
    ombrix_product(host_services OBJECTS host_services_objects LINK ${services_need})
    ombrix_product(embedded_host OBJECTS embedded_host_objects LINK ombrix_host_services PRIVATE fmt::fmt)
    ombrix_product(roofline OBJECTS ${model_objects} LINK PRIVATE fmt::fmt log4cplus::log4cplus)
    set(OMBRIX_PRODUCTS ombrix_host_services ombrix_embedded_host ombrix_roofline)
endif()
