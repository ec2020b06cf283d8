# Installs the BUILD tree into an empty prefix and runs what is there: each of the PROGRAMS, installed in BINARIES, has
# to do the same with the SAMPLE as the one in BUILT at its place. Its manual page comes along, in MANUALS.

set(prefix "${BUILD}/tests/installed")
file(REMOVE_RECURSE "${prefix}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${prefix}"
    RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "The installation failed:\n${output}")
endif()

foreach(program built IN ZIP_LISTS PROGRAMS BUILT)
    set(installed "${prefix}/${BINARIES}/${program}")
    foreach(file IN ITEMS "${installed}" "${prefix}/${MANUALS}/${program}.1")
        if(NOT EXISTS "${file}")
            message(FATAL_ERROR "Not installed: ${file}\n${output}")
        endif()
    endforeach()

    execute_process(COMMAND "${built}" "${SAMPLE}"
        RESULT_VARIABLE built_status OUTPUT_VARIABLE built_output ERROR_VARIABLE built_errors)
    execute_process(COMMAND "${installed}" "${SAMPLE}"
        RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    # An end by a signal gives words instead of a number.
    if(NOT status MATCHES "^[0-9]+$" OR NOT status STREQUAL built_status OR output STREQUAL "" OR
            NOT output STREQUAL built_output OR NOT errors STREQUAL built_errors)
        message(FATAL_ERROR "built: ${built_status}\n${built_output}${built_errors}\n"
                            "installed: ${status}\n${output}${errors}")
    endif()
endforeach()
