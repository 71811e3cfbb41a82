# Warnings, sanitizers and the two Qt definitions that every target of the project is built with.
add_library(dbapi_options INTERFACE)
target_compile_options(dbapi_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
target_compile_definitions(dbapi_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII)
if(DBAPI_SANITIZE)
    target_compile_options(dbapi_options INTERFACE
        -fsanitize=${DBAPI_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(dbapi_options INTERFACE -fsanitize=${DBAPI_SANITIZE})
endif()

# Adds the static library NAME of the folder that calls it, from all its sources, with the alias dbapi::NAME.
function(dbapi_add_library NAME)
    file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
    add_library(${NAME} STATIC ${sources})
    add_library(dbapi::${NAME} ALIAS ${NAME})
    target_include_directories(${NAME} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_compile_features(${NAME} PUBLIC cxx_std_20)
    target_link_libraries(${NAME} PRIVATE $<BUILD_INTERFACE:dbapi_options>)
endfunction()
