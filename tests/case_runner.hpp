#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Runs a program on an input and compares its whole output with a file. Kept apart from the test executable so that
/// the comparison itself can be tested.
namespace kestrel::cases {

/// What one case file says. Its form:
///
///     # what it guards (one line or more)
///     args: board.ibs -c 'a word with blanks' ''
///     status: 1            (optional, default 0; 128 + N for an end by signal N)
///     program: kestrel     (optional, the default)
///     ---
///     the whole expected output; a line {{NAME}} stands for the text of that name
struct Case {
    std::string head; ///< everything up to and including the line "---"
    std::vector<std::string> args;
    int status = 0;
    std::string program = "kestrel";
    std::string expected; ///< as written, names in braces not yet replaced
};

/// What a program did.
struct Outcome {
    std::string out;
    std::string err;
    int status = 0; ///< exit status, or 128 + N after an end by signal N
};

/// Texts by name that expected outputs refer to as {{NAME}}.
using Texts = std::map<std::string, std::string, std::less<>>;
/// Paths of programs by name; an empty path is a program that is not built.
using Programs = std::map<std::string, std::filesystem::path, std::less<>>;

/// Parses the text of a case file. Without a value, `problem` tells why.
std::optional<Case> parseCase(std::string_view text, std::string& problem);

/// Splits at blanks; single quotes keep blanks and allow empty words. No value when a quote is left open.
std::optional<std::vector<std::string>> splitWords(std::string_view text);

/// Replaces every line {{NAME}} by the text of that name. No value when a name is unknown.
std::optional<std::string> expandTexts(std::string_view expected, const Texts& texts, std::string& problem);

/// The reverse of `expandTexts`: puts names where whole lines match a text, the longest text first.
std::string collapseTexts(std::string_view output, const Texts& texts);

/// The first line in which the outputs differ, with both versions; empty when they are equal.
std::string firstDifference(std::string_view expected, std::string_view actual);

/// Runs the program (no shell, no input) in the directory and waits for its end.
std::optional<Outcome> runProgram(const std::filesystem::path& program, const std::vector<std::string>& args,
                                  const std::filesystem::path& directory, std::string& problem);

/// Runs a case in the directory. The result says everything that is wrong, or is empty.
std::string checkCase(const Case& a_case, const std::filesystem::path& directory, const Programs& programs,
                      const Texts& texts);

/// Reads the case file and checks it in its own directory. With `update` its expected output is rewritten first when
/// it differs; exit status and error output have to be right in any case.
std::string checkCaseFile(const std::filesystem::path& file, const Programs& programs, const Texts& texts, bool update);

/// The texts of all files NAME.txt directly in the directory, by NAME.
Texts readTexts(const std::filesystem::path& directory);

} // namespace kestrel::cases
