#pragma once

#include "compare/settings.hpp"
#include "findings/format.hpp"
#include "findings/ignored.hpp"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrel {

/// When something is done that is for people; automatic: on a terminal, and where it is of use.
enum class When : std::uint8_t { automatic, always, never };

/// What verimark is called for.
enum class Task : std::uint8_t {
    check,
    compare,
    help,
    version,
    messages,
    explain,
    completions,
    messagesPage,
    advicePage
};

/// What verimark's command line asks for. Texts belong to the arguments.
struct VerimarkOptions {
    Task task = Task::check;
    std::vector<std::string_view> files; ///< and folders; "-" for names on the standard input
    CompareSettings compare;
    FormatKind format = FormatKind::text;
    std::string_view output; ///< a file's path; empty for the standard output
    When color = When::automatic;
    Ignored ignored;
    Level fail_on = Level::error;
    std::string_view baseline;
    std::string_view write_baseline;
    std::string_view report; ///< a file's path; empty for none
    bool advice = false;
    bool quiet = false;
    unsigned jobs = 0; ///< files to check at the same time; 0 for as many as there are processors
    When progress = When::automatic;
    std::size_t max_memory = 0;        ///< bytes that the checks may take; 0 for any
    std::string_view max_memory_shown; ///< as it was given
    std::string_view explained;        ///< a code or a text about which somebody asks
    std::string_view shell;            ///< for which completions are wanted
};

/// True when advice is wanted, which it is where it may fail a file.
[[nodiscard]] inline bool wantsAdvice(const VerimarkOptions& options) {
    return options.advice || options.fail_on == Level::advice;
}

/// What is wrong with a command line: the argument and the words about it.
struct WrongCall {
    std::string argument;
    std::string text;
};

/// The headings under which the options are listed; those for our own use are not.
enum class OptionGroup : std::uint8_t { output, findings, files, compare, other, hidden };
inline constexpr std::string_view kGroupNames[] = {"Output", "Findings", "Many files", "What changed", "Other"};

/// One option. Reading the command line, the help, the completions and the test of the manual page go by these rows.
struct OptionRow {
    char letter;            ///< 0 for none
    std::string_view name;  ///< behind "--"
    std::string_view value; ///< what the help calls its value; empty when it takes none
    OptionGroup group;
    std::string_view help;                     ///< on one line
    std::span<const std::string_view> choices; ///< the values that it takes; empty for any
    /// Takes the value, which is not empty and one of the choices; what is wrong with it is returned.
    std::string (*apply)(VerimarkOptions& options, std::string_view value);
};
[[nodiscard]] std::span<const OptionRow> optionRows();

/// Reads the arguments, the program's own name not among them. What ends a run at once, such as "--help", ends reading.
[[nodiscard]] std::variant<VerimarkOptions, WrongCall> readVerimarkOptions(std::span<const std::string_view> arguments);

/// The list of options as the help shows it.
[[nodiscard]] std::string optionList();

} // namespace kestrel
