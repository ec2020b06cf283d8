#pragma once

#include <span>
#include <string_view>

/// What the fuzzers try: each entry takes any input and must come back. A fault ends the process.
namespace kestrel::fuzz {

/// One thing to try: its name, which is that of its folder of kept inputs, and the function.
struct Entry {
    std::string_view name;
    void (*run)(std::string_view input);
};

/// All entries.
[[nodiscard]] std::span<const Entry> entries();

void tryIbs(std::string_view input);     ///< an .ibs file and its companions, with all reports
void tryPkg(std::string_view input);     ///< package models
void tryEbd(std::string_view input);     ///< a board description with the files that it refers to
void tryAmi(std::string_view input);     ///< a parameter file
void tryCompare(std::string_view input); ///< two files that are compared
void tryCalls(std::string_view input);   ///< a command line in a folder with files
void tryTexts(std::string_view input);   ///< a baseline, a list of codes, a question, an explanation

/// Ends the process with a message where a result is wrong.
[[noreturn]] void fault(std::string_view what, std::string_view text);

} // namespace kestrel::fuzz
