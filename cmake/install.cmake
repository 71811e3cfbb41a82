# Headers, libraries and a CMake package: a user finds dbapi with find_package(dbapi) and links dbapi::dbapi.
include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/dbapi)

install(TARGETS dbif dbui dbapi dbsuggest dbexplain dbimport dbplot EXPORT dbapiTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(header IN LISTS dbapi_installed_headers)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()
install(DIRECTORY ${dbapi_published_headers}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT dbapiTargets NAMESPACE dbapi:: DESTINATION ${package_folder})

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/dbapiConfig.cmake.in
    ${PROJECT_BINARY_DIR}/dbapiConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/dbapiConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/dbapiConfig.cmake ${PROJECT_BINARY_DIR}/dbapiConfigVersion.cmake
    DESTINATION ${package_folder})

if(DBAPI_BUILD_TOOLS)
    set(command_folder ${PROJECT_BINARY_DIR}/tools/dbapi)
    install(FILES ${command_folder}/dbapi.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES ${command_folder}/dbapi.bash RENAME dbapi
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endif()
