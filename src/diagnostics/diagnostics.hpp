#pragma once

#include "base/output.hpp"
#include "diagnostics/message.hpp"
#include "diagnostics/subject.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
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

/// One diagnostic as it was reported. Its texts and its subject live no longer than the call that gets it.
struct Finding {
    Severity severity;
    std::optional<MessageCode> code; ///< none for a text that is not in the catalog
    std::uint32_t line;     ///< the line that it names; else the one at which its subject began, or 0 without a subject
    bool exact;             ///< it names the line itself
    const Subject* subject; ///< the record that it is about, null when it is about none
    std::string_view text;
};

/// The reporting state of one run: what was printed by class, what is silenced, and where it is printed.
struct Diagnostics {
    /// Prints to `output`; diagnostics at a line show `*line_counter`, the reader's count of lines.
    Diagnostics(Output& output, const std::uint32_t& line_counter) : out(&output), line(&line_counter) {}

    Output* out;
    const std::uint32_t* line;                      ///< of the diagnostics at a line; AtLine sets another
    const Subject* subject = nullptr;               ///< the record being read or checked; About sets it
    std::function<void(const Finding&)> on_finding; ///< called with every diagnostic that is printed
    std::int64_t bugs = 0;
    std::int64_t errors = 0;
    std::int64_t warnings = 0;
    std::int64_t cautions = 0;
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

/// A place in this program's source, for the messages that name one: the file's bare name and the line.
struct SourceMark {
    std::string_view file;
    std::int32_t line;
};
[[nodiscard]] SourceMark here(const char* path = __builtin_FILE(), int line = __builtin_LINE());

/// Reporter of the messages whose arguments are the place in the source that reports them.
template <Severity Class> struct MarkedReporter {
    void operator()(Diagnostics& diagnostics, CheckedMessage<ArgKind::text, ArgKind::integer> message,
                    const char* path = __builtin_FILE(), int line = __builtin_LINE()) const {
        const SourceMark mark = here(path, line);
        const std::array list{Arg(mark.file), Arg(mark.line)};
        reportRow(diagnostics, Class, message.row, list);
    }
};

inline constexpr MarkedReporter<Severity::bug> programBugHere;
inline constexpr MarkedReporter<Severity::bugAtLine> programBugHereAtLine;
inline constexpr MarkedReporter<Severity::error> errorHere;

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
    std::int64_t bugs;
    std::int64_t errors;
    std::int64_t warnings;
};
[[nodiscard]] DiagnosticCounts diagnosticCounts(const Diagnostics& diagnostics);

/// Bugs plus errors: not zero means that the file fails.
[[nodiscard]] std::int64_t failureCount(const Diagnostics& diagnostics);

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

/// While it lasts, diagnostics at a line show this line in place of the one being read.
/// `errorAtLine(AtLine(diagnostics, 12), ...)` reports at line 12.
class AtLine {
public:
    AtLine(Diagnostics& diagnostics, std::uint32_t line)
        : diagnostics_(diagnostics), line_(line), before_(std::exchange(diagnostics.line, &line_)) {}
    AtLine(const AtLine&) = delete;
    AtLine& operator=(const AtLine&) = delete;
    ~AtLine() { diagnostics_.line = before_; }

    operator Diagnostics&() const { return diagnostics_; }

private:
    Diagnostics& diagnostics_;
    std::uint32_t line_;
    const std::uint32_t* before_;
};

/// While it lasts, diagnostics are about this record, or about none.
class About {
public:
    About(Diagnostics& diagnostics, const Subject& subject)
        : diagnostics_(diagnostics), before_(std::exchange(diagnostics.subject, &subject)) {}
    About(Diagnostics& diagnostics, std::nullptr_t)
        : diagnostics_(diagnostics), before_(std::exchange(diagnostics.subject, nullptr)) {}
    About(const About&) = delete;
    About& operator=(const About&) = delete;
    ~About() { diagnostics_.subject = before_; }

private:
    Diagnostics& diagnostics_;
    const Subject* before_;
};

/// Prints the counts by class and "File Passed" or "File Failed".
void printSummary(Diagnostics& diagnostics);

/// Prints "file:line:assertion failed.", flushes and aborts the process.
[[noreturn]] void assertionFailed(Output& out, SourceMark mark);

} // namespace kestrel
