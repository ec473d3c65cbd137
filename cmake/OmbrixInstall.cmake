# What `cmake --install` puts where; find_package(OmbrixRoofline) finds it again.
include(CMakePackageConfigHelpers)

set(include_folder ${CMAKE_INSTALL_INCLUDEDIR}/ombrix_roofline)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/OmbrixRoofline)
set(share_folder ${CMAKE_INSTALL_DATADIR}/ombrix_roofline)

install(TARGETS host_interfaces ${OMBRIX_PRODUCTS} EXPORT OmbrixRooflineTargets)
install(EXPORT OmbrixRooflineTargets NAMESPACE ombrix:: DESTINATION ${package_folder})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/OmbrixRooflineConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/OmbrixRooflineConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OmbrixRooflineConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/OmbrixRooflineConfig.cmake ${PROJECT_BINARY_DIR}/OmbrixRooflineConfigVersion.cmake
        DESTINATION ${package_folder})

install(DIRECTORY ${PROJECT_SOURCE_DIR}/host_interfaces DESTINATION ${include_folder}
        FILES_MATCHING PATTERN "*.h" PATTERN "*.inc")
install(FILES ${PROJECT_SOURCE_DIR}/embedded_host/embedded_host.h DESTINATION ${include_folder}/embedded_host)
install(FILES ${PROJECT_SOURCE_DIR}/roofline_model/factories.h ${PROJECT_SOURCE_DIR}/roofline_model/report_helpers.h
        DESTINATION ${include_folder}/roofline_model)
install(FILES ${PROJECT_SOURCE_DIR}/results_comparer/factories.h DESTINATION ${include_folder}/results_comparer)

file(GLOB schemas CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.schema.json)
install(FILES ${schemas} DESTINATION ${share_folder}/schemas)
# A host of its own starts its message catalogue from these texts.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/embedded_host/messages DESTINATION ${share_folder} FILES_MATCHING
        PATTERN "*.json")
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

if(OMBRIX_CLI)
    install(TARGETS roofline)
    file(RELATIVE_PATH libraries /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(roofline PROPERTIES INSTALL_RPATH $ORIGIN/${libraries})
endif()
if(BUILD_SHARED_LIBS)
    set_target_properties(ombrix_roofline PROPERTIES INSTALL_RPATH $ORIGIN)
endif()
