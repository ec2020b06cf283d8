#pragma once

#include "base/output.hpp"
#include "base/text_hash.hpp"
#include "diagnostics/finding_code.hpp"
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
    adviceAtLine,
    internalError
};

/// The class of a diagnostic, whether or not it names a line. Advice and cautions are never held against a file.
enum class Level : std::uint8_t { bug, error, warning, note, advice, caution };
inline constexpr std::size_t kLevels = 6;

[[nodiscard]] Level levelOf(Severity severity);

/// The name of a class in machine-readable forms, such as "error".
[[nodiscard]] std::string_view levelName(Level level);

/// Where in a table a finding is: up to two values of the first column.
using TablePlaces = std::array<std::optional<double>, 2>;

/// One diagnostic as it was reported. Its texts and its subject live no longer than the call that gets it.
struct Finding {
    Severity severity;
    std::optional<FindingCode> code; ///< none for a text that is in no catalog
    std::string_view file;           ///< the path of the file where its line is; empty while none is read
    std::uint32_t line;              ///< the line that it names, else the one where its subject began; 1 without either
    std::uint32_t shown_line;        ///< what the text form shows where it has a line: 0 ahead of the first
    bool exact;                      ///< it is about the line itself
    const Subject* subject;          ///< the record that it is about, null when it is about none
    std::string_view text;
    TablePlaces at{}; ///< what it is about within a table, where the text lacks that
};

/// Findings by class.
struct FindingCounts {
    std::int64_t bugs = 0;
    std::int64_t errors = 0;
    std::int64_t warnings = 0;
    std::int64_t cautions = 0;
    std::int64_t notes = 0;
    std::int64_t advice = 0;

    /// Counts one finding of the class.
    void add(Level level);
    /// Adds the counts of other findings.
    void add(const FindingCounts& others);
};

/// What a run does where it cannot go on with a file: end the program, or give up the file.
enum class OnAssertion : std::uint8_t { abort, raise };

/// Thrown where a run gives up the file: what happened, and where. Its texts are its own or kept by the run.
struct AssertionFailed {
    std::string text;
    std::string file;
    std::uint32_t line = 0;
    std::optional<Subject> subject; ///< the record that was read or checked
};

/// The reporting state of one run: what was found by class, what is silenced, and who gets it.
struct Diagnostics : FindingCounts {
    /// Prints to `output`; diagnostics at a line show `*line_counter`, the reader's count of lines.
    Diagnostics(Output& output, const std::uint32_t& line_counter) : out(&output), line(&line_counter) {}

    Output* out;
    const std::uint32_t* line;         ///< of the diagnostics at a line; AtLine sets another
    std::uint32_t true_line = 0;       ///< the line of all diagnostics, whichever is shown; 0 for none, InLine sets it
    const Subject* subject = nullptr;  ///< the record being read or checked; About sets it
    const std::string* file = nullptr; ///< the path of the file being read or checked; nameFile sets it
    TextSet files;                     ///< the paths of all of them; records refer to these texts
    /// Gets every diagnostic that is not silenced. Without one they are printed to `out` in the text form.
    std::function<void(const Finding&)> sink;
    OnAssertion on_assertion = OnAssertion::abort;
    bool silence_bugs = false;
    bool silence_errors = false;
    bool silence_warnings = false;
    bool silence_cautions = true; ///< never turned off by the program
    bool coded_form = false;      ///< layout with the message's number in place of its class word
    std::string context;          ///< set by the board-description reader, not printed
    std::string text;             ///< the message being formatted; kept for its room
};

/// How findings are printed.
enum class TextForm : std::uint8_t {
    words,        ///< the class's word
    coloredWords, ///< the same, in the class's color
    codes         ///< the message's number in place of the word
};

/// Prints a finding in the form that people read.
void printFinding(Output& out, const Finding& finding, TextForm form = TextForm::words);

/// What turns the color of a class on in a terminal, and what turns it off again.
[[nodiscard]] std::string_view colorOf(Level level);
inline constexpr std::string_view kColorOff = "\x1b[0m";

/// Fills in a message text; what `text` held before is gone.
void formatText(std::string& text, std::string_view format, std::span<const Arg> args);

/// Formats row `row` of the catalog, counts it and hands it on, unless its class is silenced.
void reportRow(Diagnostics& diagnostics, Severity severity, std::size_t row, std::span<const Arg> args);

/// The same for a text that is not in the catalog; it is never printed in the coded form.
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

/// What was reported so far.
[[nodiscard]] FindingCounts diagnosticCounts(const Diagnostics& diagnostics);

/// Bugs plus errors: not zero means that the file fails.
[[nodiscard]] std::int64_t failureCount(const FindingCounts& counts);

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

/// While it lasts, diagnostics are in this line of the present file, whether the text form shows it, another or none.
class InLine {
public:
    InLine(Diagnostics& diagnostics, std::uint32_t line)
        : diagnostics_(diagnostics), before_(std::exchange(diagnostics.true_line, line)) {}
    InLine(const InLine&) = delete;
    InLine& operator=(const InLine&) = delete;
    ~InLine() { diagnostics_.true_line = before_; }

private:
    Diagnostics& diagnostics_;
    std::uint32_t before_;
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

/// The files that are read while it lasts are others: the one before is named again at its end.
class OtherFile {
public:
    explicit OtherFile(Diagnostics& diagnostics) : diagnostics_(diagnostics), before_(diagnostics.file) {}
    OtherFile(const OtherFile&) = delete;
    OtherFile& operator=(const OtherFile&) = delete;
    ~OtherFile() { diagnostics_.file = before_; }

private:
    Diagnostics& diagnostics_;
    const std::string* before_;
};

/// From here on, what is found and what is read is in this file.
void nameFile(Diagnostics& diagnostics, std::string_view path);

/// Prints the counts by class and "File Passed" or "File Failed".
void printSummary(Output& out, const FindingCounts& counts, bool failed);
void printSummary(Diagnostics& diagnostics);

/// Called where reading cannot go on: prints "file:line:assertion failed.", flushes and aborts the process, or throws
/// AssertionFailed with `text`, as the run wants it.
[[noreturn]] void assertionFailed(const Diagnostics& diagnostics, SourceMark mark, std::string_view text);

/// Hands a failed assertion to the sink, or prints it, as an error of its place.
void reportFailure(Diagnostics& diagnostics, const AssertionFailed& failure);

} // namespace kestrel
