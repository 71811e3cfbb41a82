# Installs the build into a folder of its own, builds the program of this folder against it and runs it:
# cmake -D BUILD=<build> -D SOURCE=<this folder> -D WORK=<folder> -D GENERATOR=<generator> -P check_consumer.cmake
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/connections)

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        list(JOIN ARGN " " command)
        message("${output}")
        message(FATAL_ERROR "failed: ${command}")
    endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/installed)
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/build -G ${GENERATOR} -D CMAKE_PREFIX_PATH=${WORK}/installed)
run(${CMAKE_COMMAND} --build ${WORK}/build)
set(ENV{VANTO_DB_CONNECTIONS_DIRECTORY} ${WORK}/connections)
run(${WORK}/build/consumer ${WORK}/consumer.db)
run(${WORK}/build/consumer_of_libraries ${WORK}/libraries.db)
run(${WORK}/build/consumer_with_dialogs)

# Neither the library nor the command needs windows.
file(GLOB command ${WORK}/installed/bin/dbapi)
foreach(program ${WORK}/build/consumer ${command})
    execute_process(COMMAND ldd ${program} OUTPUT_VARIABLE libraries COMMAND_ERROR_IS_FATAL ANY)
    if(libraries MATCHES "libQt6(Gui|Widgets|OpenGL)|libGL|libEGL")
        message(FATAL_ERROR "${program} links windows:\n${libraries}")
    endif()
endforeach()
