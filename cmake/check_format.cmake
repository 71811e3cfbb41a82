# Fails when a file is not laid out as .clang-format says: cmake -D ROOT=<tree> -P check_format.cmake
# Other versions of clang-format lay out differently, so only the one that the settings are for counts.
set(version 14)
find_program(clang_format NAMES clang-format-${version} clang-format)
if(clang_format)
    execute_process(COMMAND ${clang_format} --version OUTPUT_VARIABLE found)
endif()
if(NOT found MATCHES "version ${version}\\.")
    message("format check skipped: clang-format ${version} is not installed (Debian package clang-format-${version})")
    return()
endif()

set(patterns)
foreach(folder dbif dbui dbapi dbsuggest dbexplain dbimport dbplot python tools tests examples benchmarks)
    list(APPEND patterns ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.cpp)
endforeach()
file(GLOB_RECURSE files ${patterns})
execute_process(
    COMMAND ${clang_format} --dry-run --Werror --style=file ${files}
    RESULT_VARIABLE result ERROR_VARIABLE report)
if(NOT result EQUAL 0)
    string(REGEX MATCHALL "[^\n]+: error: code should be clang-formatted" places "${report}")
    list(TRANSFORM places REPLACE ":[0-9]+:[0-9]+: error:.*" "")
    list(REMOVE_DUPLICATES places)
    list(JOIN places "\n  " places)
    message(FATAL_ERROR "run clang-format -i on:\n  ${places}")
endif()
