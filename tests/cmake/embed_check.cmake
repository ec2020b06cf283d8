# Builds the example program of SOURCE in BUILD against the installation in PREFIX, whose libraries are in LIBRARIES, with
# the COMPILER and its FLAGS, in the WAY "cmake" or "pkg-config", and runs it over files of the folders SAMPLES.

file(REMOVE_RECURSE "${BUILD}")
file(MAKE_DIRECTORY "${BUILD}")
set(libraries "${PREFIX}/${LIBRARIES}")

function(run_or_fail)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${ARGN}:\n${output}")
    endif()
endfunction()

if(WAY STREQUAL "cmake")
    run_or_fail("${CMAKE_COMMAND}" -S "${SOURCE}" -B "${BUILD}" -G "${GENERATOR}" "-DCMAKE_PREFIX_PATH=${PREFIX}"
        "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_FLAGS=${FLAGS}")
    run_or_fail("${CMAKE_COMMAND}" --build "${BUILD}")
else()
    find_program(make make)
    find_program(pkg_config pkg-config)
    if(NOT make OR NOT pkg_config)
        message("It is left out: there is no make or no pkg-config.")
        return()
    endif()
    run_or_fail("${CMAKE_COMMAND}" -E env "PKG_CONFIG_PATH=${libraries}/pkgconfig"
        "${make}" -C "${BUILD}" -f "${SOURCE}/Makefile" "VPATH=${SOURCE}" "CXX=${COMPILER}"
        "CXXFLAGS=${FLAGS} -Wl,-rpath,${libraries}")
endif()

# What it prints of a file, and its exit status.
function(expect samples name status text)
    execute_process(COMMAND "${BUILD}/embed" "${name}" WORKING_DIRECTORY "${samples}"
        RESULT_VARIABLE found_status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    if(NOT found_status STREQUAL status OR NOT output STREQUAL text OR NOT errors STREQUAL "")
        message(SEND_ERROR "${name} (${found_status}, expected ${status}):\n${output}${errors}\nexpected:\n${text}")
    endif()
endfunction()

list(POP_FRONT SAMPLES examples faulty)
# Two thirds of the way from 10.9 mA to 20.9 mA, and from 7.1 mA to 13.7 mA.
expect("${examples}" board.ibs 0
"dq_io (I/O): 17.6 mA at 0.5 V, 4 waveforms
irq_od (Open_drain): 11.5 mA at 0.5 V, 2 waveforms
")
# A quarter of 20 mA at 2 V, behind the one line that is wrong.
expect("${faulty}" faulty.ibs 1
"faulty.ibs:13: error: Invalid Keyword: Colour_Of_Package
irq_od (Open_drain): 5.0 mA at 0.5 V, 0 waveforms
")
expect("${faulty}" nowhere.ibs 1
"nowhere.ibs:1: error: Unable To Open File 'nowhere.ibs'
")
