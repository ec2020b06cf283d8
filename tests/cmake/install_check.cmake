# Installs the BUILD tree into the empty PREFIX, where all FILES and no others have to be then, and runs what is there:
# each of the PROGRAMS, installed in BINARIES, has to do the same with the SAMPLE as the one in BUILT at its place.

file(REMOVE_RECURSE "${PREFIX}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${PREFIX}"
    RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "The installation failed:\n${output}")
endif()
file(GLOB_RECURSE files RELATIVE "${PREFIX}" "${PREFIX}/*")
list(SORT files)
list(SORT FILES)
if(NOT files STREQUAL FILES)
    message(FATAL_ERROR "installed: ${files}\nexpected:  ${FILES}")
endif()

foreach(program built IN ZIP_LISTS PROGRAMS BUILT)
    set(installed "${PREFIX}/${BINARIES}/${program}")
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
