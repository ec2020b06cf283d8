# A shared LIBRARY exports what belongs to its interface, and nothing else.

execute_process(COMMAND "${NM}" -D -C --defined-only "${LIBRARY}" OUTPUT_VARIABLE listing RESULT_VARIABLE status)
if(NOT status EQUAL 0 OR NOT listing MATCHES "kestrel::api::readText\\(")
    message(FATAL_ERROR "No interface in ${LIBRARY}:\n${listing}")
endif()
string(REPLACE ";" "," listing "${listing}")
string(REGEX REPLACE "\n" ";" lines "${listing}")
foreach(line IN LISTS lines)
    if(NOT line MATCHES "^[0-9a-f]* +T kestrel::api::" AND NOT line STREQUAL "")
        message(SEND_ERROR "exported: ${line}")
    endif()
endforeach()
