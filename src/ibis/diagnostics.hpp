#pragma once

#include "ibis/message.hpp"
#include "ibis/output.hpp"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace kestrel {

/// The class of a diagnostic, with or without the number of the line being read.
enum class Severity : std::uint8_t {
    bug,
    bugAtLine,
    error,
    errorAtLine,
    warning,
    warningAtLine,
    caution,
    cautionAtLine,
    note,
    noteAtLine,
    internalError
};

/// The reporting state of one run: what was printed by class, what is silenced, and where it is printed.
struct Diagnostics {
    /// Prints to `output`; diagnostics at a line show `*line_counter`, the reader's count of lines.
    Diagnostics(Output& output, const std::uint32_t& line_counter) : out(&output), line(&line_counter) {}

    Output* out;
    const std::uint32_t* line;
    std::int32_t bugs = 0;
    std::int32_t errors = 0;
    std::int32_t warnings = 0;
    std::int32_t cautions = 0;
    bool silence_bugs = false;
    bool silence_errors = false;
    bool silence_warnings = false;
    bool silence_cautions = true; ///< never turned off by the program
    bool coded_form = false;      ///< layout with the message's number in place of its class word
    std::string context;          ///< set by the board-description reader, not printed
    std::string text;             ///< the message being formatted; kept for its room
};

/// Formats and prints row `row` of the catalog, unless its class is silenced, and counts it.
void reportRow(Diagnostics& diagnostics, Severity severity, std::size_t row, std::span<const Arg> args);

/// Prints and counts a text that is not in the catalog, always in the word form.
void reportText(Diagnostics& diagnostics, Severity severity, std::string_view text, std::span<const Arg> args);

/// Reports a message whose code is only known at run time; a code that is not in the catalog is an internal error,
/// which no silence flag holds back and which is not counted.
void reportCode(Diagnostics& diagnostics, Severity severity, MessageCode code, std::span<const Arg> args);

/// Reporter of one class: `errorAtLine(diagnostics, 905, limit)`. Code and arguments are checked when compiled.
template <Severity Class> struct Reporter {
    template <class... Args>
    void operator()(Diagnostics& diagnostics, CheckedMessage<argKind<Args>()...> message, const Args&... args) const {
        const std::array<Arg, sizeof...(Args)> list{Arg(args)...};
        reportRow(diagnostics, Class, message.row, list);
    }
};

/// Reporter of free texts of one class: `warningText(diagnostics, "... %s", name)`.
template <Severity Class> struct TextReporter {
    template <class... Args>
    void operator()(Diagnostics& diagnostics, CheckedText<argKind<Args>()...> format, const Args&... args) const {
        const std::array<Arg, sizeof...(Args)> list{Arg(args)...};
        reportText(diagnostics, Class, format.text, list);
    }
};

inline constexpr Reporter<Severity::bug> programBug;
inline constexpr Reporter<Severity::bugAtLine> programBugAtLine;
inline constexpr Reporter<Severity::error> error;
inline constexpr Reporter<Severity::errorAtLine> errorAtLine;
inline constexpr Reporter<Severity::warning> warning;
inline constexpr Reporter<Severity::warningAtLine> warningAtLine;
inline constexpr Reporter<Severity::caution> caution;
inline constexpr Reporter<Severity::note> note;
inline constexpr Reporter<Severity::noteAtLine> noteAtLine;

inline constexpr TextReporter<Severity::bug> programBugText;
inline constexpr TextReporter<Severity::bugAtLine> programBugTextAtLine;
inline constexpr TextReporter<Severity::error> errorText;
inline constexpr TextReporter<Severity::errorAtLine> errorTextAtLine;
inline constexpr TextReporter<Severity::warning> warningText;
inline constexpr TextReporter<Severity::warningAtLine> warningTextAtLine;
inline constexpr TextReporter<Severity::caution> cautionText;
inline constexpr TextReporter<Severity::cautionAtLine> cautionTextAtLine;
inline constexpr TextReporter<Severity::note> noteText;
inline constexpr TextReporter<Severity::noteAtLine> noteTextAtLine;

/// Bugs, errors and warnings printed so far.
struct DiagnosticCounts {
    std::int32_t bugs;
    std::int32_t errors;
    std::int32_t warnings;
};
[[nodiscard]] DiagnosticCounts diagnosticCounts(const Diagnostics& diagnostics);

/// Bugs plus errors: not zero means that the file fails.
[[nodiscard]] std::int32_t failureCount(const Diagnostics& diagnostics);

/// Sets the counts of bugs, warnings and errors to 0 and drops the context text; the count of cautions stays.
void resetCounts(Diagnostics& diagnostics);

/// Sets or clears the saved context text.
void setContext(Diagnostics& diagnostics, std::optional<std::string_view> text);

/// Holds errors and warnings back while it lasts.
class Silence {
public:
    explicit Silence(Diagnostics& diagnostics)
        : diagnostics_(diagnostics),
          errors_before_(std::exchange(diagnostics.silence_errors, true)),
          warnings_before_(std::exchange(diagnostics.silence_warnings, true)) {}
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
    ~Silence() {
        diagnostics_.silence_errors = errors_before_;
        diagnostics_.silence_warnings = warnings_before_;
    }

private:
    Diagnostics& diagnostics_;
    bool errors_before_;
    bool warnings_before_;
};

/// Prints the counts by class and "File Passed" or "File Failed".
void printSummary(Diagnostics& diagnostics);

/// A place in this program's source, for the messages that name one: the file's bare name and the line.
struct SourceMark {
    std::string_view file;
    std::int32_t line;
};
[[nodiscard]] SourceMark here(const char* path = __builtin_FILE(), int line = __builtin_LINE());

/// Prints "file:line:assertion failed.", flushes and aborts the process.
[[noreturn]] void assertionFailed(Output& out, SourceMark mark);

} // namespace kestrel
