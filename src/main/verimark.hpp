#pragma once

#include "main/memory_limit.hpp"

#include <cstdio>
#include <span>
#include <string_view>

namespace kestrel {

class Output;

/// Exit statuses of the program; of several files the highest counts.
enum VerimarkStatus : int {
    kAllPassed = 0,
    kSomeFailed = 1, ///< a file has errors, or a version that is not checked
    kTrouble = 2     ///< wrong command line, or a file that could not be read
};

/// Checks the files of the command line, each in a run of its own, from the arguments (without the program's name) to
/// the exit status. Names of files may come from `in`. What is wrong with the command line, and which files were not
/// checked, is reported on `errors`. Memory can be limited where it is counted.
int runVerimark(Output& out, Output& errors, std::span<const std::string_view> arguments, std::FILE* in = stdin,
                const MemoryCounting* counting = nullptr);

} // namespace kestrel
