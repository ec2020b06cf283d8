# Compiles SOURCE without writing anything. good_*.cpp has to compile. bad_*.cpp has to fail, and the compiler has to
# print the text that the first line gives as "// expect: <text>": an unrelated error is no proof.

cmake_path(GET SOURCE STEM name)

execute_process(
    COMMAND "${CMAKE_COMMAND}" -E env LC_ALL=C "${COMPILER}" -std=c++20 -fsyntax-only "-I${INCLUDE}" "${SOURCE}"
    RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)

if(name MATCHES "^good_")
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${name}.cpp has to compile:\n${output}")
    endif()
elseif(name MATCHES "^bad_")
    file(STRINGS "${SOURCE}" first_line LIMIT_COUNT 1)
    if(NOT first_line MATCHES "^// expect: (.+)$")
        message(FATAL_ERROR "${name}.cpp has to begin with a line \"// expect: <text>\".")
    endif()
    set(expected "${CMAKE_MATCH_1}")
    if(status EQUAL 0)
        message(FATAL_ERROR "${name}.cpp compiles but has to fail with: ${expected}")
    endif()
    string(FIND "${output}" "${expected}" position)
    if(position EQUAL -1)
        message(FATAL_ERROR "${name}.cpp fails, but not with: ${expected}\n${output}")
    endif()
else()
    message(FATAL_ERROR "${name}.cpp: the name has to begin with good_ or bad_.")
endif()
