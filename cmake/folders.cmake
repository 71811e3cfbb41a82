# Targets of folders: each folder of sources is an object library, and libraries and programs are put together from
# them. Which folders a folder may include is said once, in docs/layers.txt; its links are taken from there.

# Reads the map of the folders into dbapi_folders and, for each, dbapi_folder_<FOLDER>_knows (folders, patterns
# resolved) and dbapi_folder_<FOLDER>_wall.
function(dbapi_read_layers)
    set(map ${PROJECT_SOURCE_DIR}/docs/layers.txt)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${map})
    file(STRINGS ${map} lines REGEX "^[^#]")
    set(folders)
    foreach(line IN LISTS lines)
        if(NOT line MATCHES "^(wall +)?([^ :]+):(.*)$")
            message(FATAL_ERROR "docs/layers.txt: this line names no folder: ${line}")
        endif()
        set(folder ${CMAKE_MATCH_2})
        set(names "${CMAKE_MATCH_3}")
        set(wall_${folder} "${CMAKE_MATCH_1}")
        set(knows)
        string(REGEX MATCHALL "[^ ]+" names "${names}")
        foreach(name IN LISTS names)
            if(name MATCHES "^(.*)/\\*$")
                set(above ${CMAKE_MATCH_1})
                foreach(candidate IN LISTS folders)
                    if((candidate STREQUAL above OR candidate MATCHES "^${above}/") AND NOT wall_${candidate})
                        list(APPEND knows ${candidate})
                    endif()
                endforeach()
            else()
                list(APPEND knows ${name})
            endif()
        endforeach()
        list(APPEND folders ${folder})
        set(dbapi_folder_${folder}_knows ${knows} PARENT_SCOPE)
    endforeach()
endfunction()

# Starts the static library NAME, with the alias dbapi::NAME; dbapi_add_folder puts folders into it.
function(dbapi_add_library NAME)
    add_library(${NAME} STATIC)
    add_library(dbapi::${NAME} ALIAS ${NAME})
    set_target_properties(${NAME} PROPERTIES LINKER_LANGUAGE CXX)
    target_include_directories(${NAME} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
        $<BUILD_INTERFACE:${dbapi_published_headers}>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_compile_features(${NAME} PUBLIC cxx_std_20)
endfunction()

# dbapi_add_folder(FOLDER INTO TARGET [LINKS LIBRARY...] SOURCES FILE...)
# Adds the folder, written from the root of the tree, as an object library that is named after it (dbif_engine_folder) and
# puts its objects into the library or program TARGET. LINKS, with PUBLIC and PRIVATE among them as in
# target_link_libraries, are libraries of others that its sources use; TARGET links them too.
function(dbapi_add_folder FOLDER)
    cmake_parse_arguments(PARSE_ARGV 1 of "" INTO "LINKS;SOURCES")
    list(TRANSFORM of_SOURCES PREPEND ${PROJECT_SOURCE_DIR}/${FOLDER}/)
    dbapi_folder_target(${FOLDER} name)
    add_library(${name} OBJECT ${of_SOURCES})
    target_compile_features(${name} PUBLIC cxx_std_20)
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE dbapi_options)
    target_sources(${of_INTO} PRIVATE $<TARGET_OBJECTS:${name}>)
    if(of_LINKS)
        target_link_libraries(${name} ${of_LINKS})
        target_link_libraries(${of_INTO} ${of_LINKS})
    endif()
    foreach(known IN LISTS dbapi_folder_${FOLDER}_knows)
        dbapi_folder_target(${known} known_name)
        if(TARGET ${known_name})
            target_link_libraries(${name} PUBLIC ${known_name})
        endif()
    endforeach()
endfunction()

# The name of a folder's target.
function(dbapi_folder_target FOLDER RESULT)
    string(REPLACE "/" "_" name ${FOLDER})
    set(${RESULT} ${name}_folder PARENT_SCOPE)
endfunction()
