# How our own targets are compiled: warnings, sanitizers, optimization across files.

include(CheckIPOSupported)

set(kestrel_ipo OFF)
if(KESTREL_IPO AND NOT KESTREL_SANITIZE AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        check_ipo_supported(RESULT kestrel_ipo OUTPUT kestrel_ipo_reason LANGUAGES CXX)
    endif()
endif()

add_library(kestrel_options INTERFACE)
target_compile_options(kestrel_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # The tables are checked while compiling, which takes more steps than clang allows by default.
    target_compile_options(kestrel_options INTERFACE -fconstexpr-steps=200000000)
endif()
target_compile_definitions(kestrel_options INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
if(KESTREL_SANITIZE STREQUAL "thread")
    set(kestrel_sanitizers -fsanitize=thread)
    target_compile_options(kestrel_options INTERFACE ${kestrel_sanitizers})
    target_link_options(kestrel_options INTERFACE ${kestrel_sanitizers})
elseif(KESTREL_SANITIZE)
    set(kestrel_sanitizers -fsanitize=address,undefined)
    target_compile_options(kestrel_options INTERFACE
        -fsanitize=address,undefined,float-divide-by-zero,float-cast-overflow -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(kestrel_options INTERFACE ${kestrel_sanitizers})
endif()

if(kestrel_ipo)
    # The linker optimizes whatever carries the means to it; tests are linked as their objects are, in a second each.
    target_link_options(kestrel_options INTERFACE
        $<$<NOT:$<BOOL:$<TARGET_PROPERTY:KESTREL_OPTIMIZED>>>:-fno-lto>)
endif()

if(KESTREL_REPRODUCIBLE)
    target_compile_options(kestrel_options INTERFACE
        "-ffile-prefix-map=${PROJECT_BINARY_DIR}=build" "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")
endif()
if(KESTREL_FUZZ)
    # Coverage that the fuzzer is guided by. What it finds has to be found in a minute as well: optimized a little.
    target_compile_options(kestrel_options INTERFACE -fsanitize=fuzzer-no-link -O1)
endif()

# Our rules for a target made of our own sources.
function(kestrel_own_target target)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:kestrel_options>)
    if(KESTREL_REPRODUCIBLE)
        # Sections for the optimization across files have random names otherwise.
        get_target_property(sources ${target} SOURCES)
        foreach(source IN LISTS sources)
            cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY "${PROJECT_SOURCE_DIR}" OUTPUT_VARIABLE path)
            cmake_path(RELATIVE_PATH path BASE_DIRECTORY "${PROJECT_SOURCE_DIR}")
            set_property(SOURCE "${source}" APPEND PROPERTY COMPILE_OPTIONS "-frandom-seed=${path}")
        endforeach()
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
        # The parts of the library that are used come into the program: it starts sooner and takes a megabyte less.
        set_target_properties(${target} PROPERTIES KESTREL_OPTIMIZED ON)
        target_link_options(${target} PRIVATE -flto=auto -O3 -static-libstdc++ -static-libgcc)
    endif()
endfunction()

# The same for a shared library, which leaves the standard library to the programs.
function(kestrel_optimize_library target)
    if(kestrel_ipo)
        set_target_properties(${target} PROPERTIES KESTREL_OPTIMIZED ON)
        target_link_options(${target} PRIVATE -flto=auto -O3)
    endif()
endfunction()
