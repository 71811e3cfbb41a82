# What every target of the project is built with: warnings, sanitizers and two Qt definitions.
add_library(dbapi_options INTERFACE)
target_compile_definitions(dbapi_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII)
if(DBAPI_WARNINGS)
    target_compile_options(dbapi_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
    # GCC 12 warns of copies within std::string that nothing makes, from -O3 on; GCC 13 does not.
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        target_compile_options(dbapi_options INTERFACE -Wno-restrict)
    endif()
endif()
if(DBAPI_WARNINGS_AS_ERRORS)
    target_compile_options(dbapi_options INTERFACE -Werror)
endif()
if(DBAPI_SANITIZE)
    target_compile_options(dbapi_options INTERFACE
        -fsanitize=${DBAPI_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(dbapi_options INTERFACE -fsanitize=${DBAPI_SANITIZE})
endif()
