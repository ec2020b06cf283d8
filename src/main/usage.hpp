#pragma once

#include <string_view>

namespace kestrel {

class Output;

inline constexpr std::string_view kProgramName = "KESTREL";

/// First line of every run.
void printBanner(Output& out);

/// What is printed ahead of reading a file.
void printNotice(Output& out);

/// How to call the program, and on what terms.
void printUsage(Output& out);

} // namespace kestrel
