#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>

/// Runs a program on an input and compares its whole output with a file. Kept apart from the test executable so that
/// the comparison itself can be tested.
///
/// A case file says it in this form:
///
///     # what it guards (one line or more)
///     args: board.ibs -c 'a word with blanks' ''
///     status: 1            (optional, default 0; 128 + N for an end by signal N)
///     program: kestrel     (optional, the default)
///     ---
///     the whole expected output; a line {{NAME}} stands for the text of that name
///
/// The arguments are split as the shell splits words.
namespace kestrel::cases {

/// Texts by name that expected outputs refer to as {{NAME}}.
using Texts = std::map<std::string, std::string, std::less<>>;
/// Paths of programs by name; an empty path is a program that is not built.
using Programs = std::map<std::string, std::filesystem::path, std::less<>>;

/// Runs the case of this text in the directory. The result says everything that is wrong, or is empty.
std::string checkCase(std::string_view text, const std::filesystem::path& directory, const Programs& programs,
                      const Texts& texts);

/// Reads the case file and checks it in its own directory. With `update` its expected output is rewritten first when
/// it differs, with a name where whole lines match a text, the longest text first; exit status and error output have
/// to be right in any case.
std::string checkCaseFile(const std::filesystem::path& file, const Programs& programs, const Texts& texts, bool update);

/// The texts of all files NAME.txt directly in the directory, by NAME.
Texts readTexts(const std::filesystem::path& directory);

} // namespace kestrel::cases
