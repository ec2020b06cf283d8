# How our own targets are compiled: warnings, sanitizers, static analysis, optimization across files.

include(CheckIPOSupported)

set(kestrel_ipo OFF)
if(KESTREL_IPO AND NOT KESTREL_SANITIZE AND NOT KESTREL_TIDY AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        check_ipo_supported(RESULT kestrel_ipo OUTPUT kestrel_ipo_reason LANGUAGES CXX)
    endif()
endif()

if(KESTREL_TIDY)
    find_program(KESTREL_CLANG_TIDY clang-tidy REQUIRED)
endif()

add_library(kestrel_options INTERFACE)
target_compile_options(kestrel_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
target_compile_definitions(kestrel_options INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
if(KESTREL_SANITIZE)
    target_compile_options(kestrel_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(kestrel_options INTERFACE -fsanitize=address,undefined)
endif()

# Our rules for a target made of our own sources.
function(kestrel_own_target target)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:kestrel_options>)
    if(KESTREL_TIDY)
        # The tables are checked while compiling, which takes more steps than clang allows by default.
        set_target_properties(${target} PROPERTIES CXX_CLANG_TIDY
            "${KESTREL_CLANG_TIDY};--quiet;--extra-arg=-fconstexpr-steps=200000000")
    endif()
    if(kestrel_ipo)
        # Objects that carry machine code as well: tests link them quickly, and their symbols can be listed. That is why
        # the flags are spelled here instead of INTERPROCEDURAL_OPTIMIZATION, which would leave the machine code out.
        target_compile_options(${target} PRIVATE -flto=auto -ffat-lto-objects)
    endif()
endfunction()

# For a program whose speed matters: optimize it together with the libraries that it links.
function(kestrel_optimize_program target)
    if(kestrel_ipo)
        target_link_options(${target} PRIVATE -flto=auto -O3)
    endif()
endfunction()
