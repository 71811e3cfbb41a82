# Headers, libraries and a CMake package: a user finds dbapi with find_package(dbapi) and links dbapi::dbapi; a host with
# windows finds it with find_package(dbapi COMPONENTS dialogs) and links dbapi::dbui_dialogs too.
include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/dbapi)

install(TARGETS dbif dbui dbapi dbsuggest dbexplain dbimport dbinfo dbplot EXPORT dbapiTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(header IN LISTS dbapi_installed_headers)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()
install(DIRECTORY ${dbapi_published_headers}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# Apart from the others: only those who ask for the component need Qt's windows.
if(TARGET dbui_dialogs)
    install(TARGETS dbui_dialogs EXPORT dbapiDialogsTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/dbui_dialogs DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h")
    install(EXPORT dbapiDialogsTargets NAMESPACE dbapi:: DESTINATION ${package_folder})
endif()
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
    install(FILES ${command_folder}/dbapi.zsh RENAME _dbapi
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
    install(FILES ${command_folder}/dbapi.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()
