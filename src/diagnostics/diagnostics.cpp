#include "diagnostics/diagnostics.hpp"

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace kestrel {

namespace {

static_assert(codesAscendStrictly(), "catalog codes must ascend without duplicates");
static_assert(message_check::allConversionsKnown());

/// How a class prints. A text whose length lies from `wrap_from` to kWrapTo goes on a line of its own.
struct SeverityForm {
    std::string_view word;
    char letter;
    bool with_line;
    std::uint8_t wrap_from; // 0: never
    Level level;
};

constexpr std::size_t kWrapTo = 75;

constexpr std::array<SeverityForm, 12> kForms{{
    {"PROGRAM BUG", 'B', false, 0, Level::bug},
    {"PROGRAM BUG", 'B', true, 0, Level::bug},
    {"ERROR", 'E', false, 72, Level::error},
    {"ERROR", 'E', true, 60, Level::error},
    {"WARNING", 'W', false, 70, Level::warning},
    {"WARNING", 'W', true, 58, Level::warning},
    {"CAUTION", 'C', false, 70, Level::caution},
    {"CAUTION", 'C', true, 58, Level::caution},
    {"NOTE", 'N', false, 73, Level::note},
    {"NOTE", 'N', true, 61, Level::note},
    {"ADVICE", 'A', true, 59, Level::advice},
    {"INTERNAL ERROR", 'I', false, 0, Level::bug},
}};

const SeverityForm& formOf(Severity severity) { return kForms[static_cast<std::size_t>(severity)]; }

bool silenced(const Diagnostics& diagnostics, Severity severity) {
    if (severity == Severity::internalError) return false;
    switch (levelOf(severity)) {
    case Level::bug: return diagnostics.silence_bugs;
    case Level::error: return diagnostics.silence_errors;
    case Level::warning: return diagnostics.silence_warnings;
    case Level::caution: return diagnostics.silence_cautions;
    case Level::note:
    case Level::advice: break;
    }
    return false;
}

void appendHexadecimal(std::string& text, std::int64_t value) {
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, 16);
    text.append(digits.data(), end.ptr);
}

void appendArg(std::string& text, char letter, const Arg& arg) {
    switch (letter) {
    case 's': text.append(arg.text); break;
    case 'c': text.push_back(arg.character); break;
    case 'x': appendHexadecimal(text, arg.integer); break;
    case 'g': appendGeneral(text, arg.real); break;
    case 'e': appendScientific(text, arg.real); break;
    default: appendInteger(text, arg.integer); break;
    }
}

/// What is ahead of a message, of bounded length and so without a text of its own.
class Head {
public:
    void add(std::string_view text) {
        std::ranges::copy(text, text_.begin() + length_);
        length_ += static_cast<std::ptrdiff_t>(text.size());
    }
    /// A number, right-aligned in `width` columns that are filled with `filler`.
    void addNumber(std::uint32_t number, std::ptrdiff_t width, char filler) {
        std::array<char, 12> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number);
        for (std::ptrdiff_t left = width - (end.ptr - digits.data()); left > 0; --left)
            text_[static_cast<std::size_t>(length_++)] = filler;
        add({digits.data(), end.ptr});
    }
    /// Writes what was added and begins afresh.
    void write(Output& out) {
        out.write({text_.data(), static_cast<std::size_t>(length_)});
        length_ = 0;
    }

private:
    std::array<char, 64> text_;
    std::ptrdiff_t length_ = 0;
};

/// Adds the class of a finding, or its number in the coded form, and the line.
void addHead(Output& out, Head& head, const SeverityForm& form, const Finding& finding, TextForm text_form) {
    constexpr std::ptrdiff_t kWidth = 4;
    if (text_form == TextForm::codes && finding.code) {
        head.add({&form.letter, 1});
        head.addNumber(finding.code->number, kWidth, '0');
    } else if (text_form == TextForm::coloredWords) {
        out.writeControl(colorOf(form.level));
        out.write(form.word);
        out.writeControl(kColorOff);
    } else {
        head.add(form.word);
    }
    if (!form.with_line) return;
    head.add(" (line ");
    head.addNumber(finding.shown_line, kWidth, ' ');
    head.add(")");
}

/// The file of a finding: that of its subject, which may have been read from another than the present one.
std::string_view fileOf(const Diagnostics& diagnostics) {
    const Subject* const subject = diagnostics.subject;
    if (subject != nullptr && subject->file != nullptr) return *subject->file;
    return diagnostics.file != nullptr ? std::string_view(*diagnostics.file) : std::string_view();
}

/// Makes the finding of `diagnostics.text`; a text that is not in the catalog has no code.
void report(Diagnostics& diagnostics, Severity severity, std::optional<FindingCode> code) {
    if (severity != Severity::internalError) diagnostics.add(levelOf(severity));
    const bool exact = formOf(severity).with_line;
    const Subject* const subject = diagnostics.subject;
    const std::uint32_t shown = *diagnostics.line;
    const std::uint32_t line = exact ? shown : subject != nullptr ? subject->line : 0;
    const Finding finding{.severity = severity,
                          .code = code,
                          .file = fileOf(diagnostics),
                          .line = std::max(line, std::uint32_t{1}),
                          .shown_line = shown,
                          .exact = exact,
                          .subject = subject,
                          .text = diagnostics.text};
    if (diagnostics.sink) {
        diagnostics.sink(finding);
    } else {
        printFinding(*diagnostics.out, finding, diagnostics.coded_form ? TextForm::codes : TextForm::words);
    }
}

} // namespace

Level levelOf(Severity severity) { return formOf(severity).level; }

std::string_view levelName(Level level) {
    constexpr std::array<std::string_view, kLevels> kNames{"bug", "error", "warning", "note", "advice", "caution"};
    return kNames[static_cast<std::size_t>(level)];
}

std::string_view subjectKindName(SubjectKind kind) {
    constexpr std::array<std::string_view, 10> kNames{
        "header",         "component", "model",     "external circuit", "submodel",
        "model selector", "test data", "test load", "package model",    "board"};
    return kNames[static_cast<std::size_t>(kind)];
}

std::string_view colorOf(Level level) {
    constexpr std::array<std::string_view, kLevels> kColors{"\x1b[1;35m", "\x1b[1;31m", "\x1b[1;33m",
                                                            "\x1b[1;36m", "\x1b[1;34m", "\x1b[1;34m"};
    return kColors[static_cast<std::size_t>(level)];
}

void FindingCounts::add(Level level) {
    switch (level) {
    case Level::bug: ++bugs; break;
    case Level::error: ++errors; break;
    case Level::warning: ++warnings; break;
    case Level::note: ++notes; break;
    case Level::advice: ++advice; break;
    case Level::caution: ++cautions; break;
    }
}

void FindingCounts::add(const FindingCounts& others) {
    bugs += others.bugs;
    errors += others.errors;
    warnings += others.warnings;
    cautions += others.cautions;
    notes += others.notes;
    advice += others.advice;
}

void printFinding(Output& out, const Finding& finding, TextForm text_form) {
    const SeverityForm& form = formOf(finding.severity);
    Head head;
    addHead(out, head, form, finding, text_form);
    // An advice is asked for by its code, which is a part of its text.
    const CodeText code(form.level == Level::advice ? finding.code : std::nullopt);
    constexpr std::size_t kBrackets = 3;
    const std::size_t length = finding.text.size() + (code.text().empty() ? 0 : code.text().size() + kBrackets);
    const bool own_line = form.wrap_from != 0 && length >= form.wrap_from && length <= kWrapTo;
    head.add(own_line ? " -\n    " : " - ");
    head.write(out);
    out.write(finding.text);
    if (!code.text().empty()) {
        out.write(" [");
        out.write(code.text());
        out.write("]");
    }
    out.write("\n");
}

void formatText(std::string& text, std::string_view format, std::span<const Arg> args) {
    text.clear();
    std::size_t used = 0;
    std::size_t from = 0;
    for (std::size_t at = format.find('%'); at != std::string_view::npos && used < args.size();
         at = format.find('%', from)) {
        text.append(format, from, at - from);
        appendArg(text, format[at + 1], args[used++]);
        from = at + 2;
    }
    text.append(format, from);
    // A text ends at its first NUL, which one message uses to leave out a plural's letter.
    if (const std::size_t nul = text.find('\0'); nul != std::string::npos) text.resize(nul);
}

void reportRow(Diagnostics& diagnostics, Severity severity, std::size_t row, std::span<const Arg> args) {
    if (silenced(diagnostics, severity)) return;
    formatText(diagnostics.text, kCatalog[row].text, args);
    report(diagnostics, severity, FindingCode{CodeFamily::message, kCatalog[row].code});
}

void reportText(Diagnostics& diagnostics, Severity severity, std::string_view text, std::span<const Arg> args) {
    if (silenced(diagnostics, severity)) return;
    formatText(diagnostics.text, text, args);
    report(diagnostics, severity, std::nullopt);
}

void reportCode(Diagnostics& diagnostics, Severity severity, MessageCode code, std::span<const Arg> args) {
    const std::size_t row = catalogIndex(code);
    if (row == kCatalog.size()) {
        reportRow(diagnostics, Severity::internalError, 0, {});
    } else {
        reportRow(diagnostics, severity, row, args);
    }
}

FindingCounts diagnosticCounts(const Diagnostics& diagnostics) { return diagnostics; }

std::int64_t failureCount(const FindingCounts& counts) { return counts.bugs + counts.errors; }

void resetCounts(Diagnostics& diagnostics) {
    diagnostics.bugs = 0;
    diagnostics.warnings = 0;
    diagnostics.errors = 0;
    diagnostics.context.clear();
}

void setContext(Diagnostics& diagnostics, std::optional<std::string_view> text) {
    diagnostics.context = text.value_or(std::string_view{});
}

void nameFile(Diagnostics& diagnostics, std::string_view path) {
    diagnostics.file = &*diagnostics.files.emplace(path).first;
}

void printSummary(Output& out, const FindingCounts& counts, bool failed) {
    std::string text;
    const auto line = [&text](std::string_view label, std::int64_t number) {
        text.append(label);
        appendInteger(text, number);
        text.push_back('\n');
    };
    if (counts.bugs != 0 || counts.errors != 0 || counts.warnings != 0 || counts.advice != 0) text.push_back('\n');
    if (counts.bugs != 0) line("Bugs    : ", counts.bugs);
    line("Errors  : ", counts.errors);
    if (counts.warnings != 0) line("Warnings: ", counts.warnings);
    if (counts.advice != 0) line("Advice  : ", counts.advice);
    if (counts.cautions != 0) line("Cautions: ", counts.cautions);
    text.append(failed ? "\nFile Failed\n" : "\nFile Passed\n");
    out.write(text);
}

void printSummary(Diagnostics& diagnostics) {
    printSummary(*diagnostics.out, diagnostics, failureCount(diagnostics) != 0);
}

SourceMark here(const char* path, int line) {
    const std::string_view whole = path;
    return {whole.substr(whole.find_last_of("/\\") + 1), line};
}

void assertionFailed(const Diagnostics& diagnostics, SourceMark mark, std::string_view text) {
    if (diagnostics.on_assertion == OnAssertion::raise) {
        AssertionFailed failure{std::string(text), std::string(fileOf(diagnostics)), *diagnostics.line, {}};
        if (diagnostics.subject != nullptr) failure.subject = *diagnostics.subject;
        throw failure;
    }
    std::string line(mark.file);
    line.push_back(':');
    appendInteger(line, mark.line);
    line.append(":assertion failed.\n");
    diagnostics.out->write(line);
    diagnostics.out->flush();
    std::abort();
}

void reportFailure(Diagnostics& diagnostics, const AssertionFailed& failure) {
    const OtherFile other(diagnostics);
    const bool silenced_before = std::exchange(diagnostics.silence_errors, false);
    std::optional<Subject> subject = failure.subject;
    if (subject) subject->file = nullptr; // the place that the failure gives counts
    if (!failure.file.empty()) nameFile(diagnostics, failure.file);
    const Subject* const before = std::exchange(diagnostics.subject, subject ? &*subject : nullptr);
    errorTextAtLine(AtLine(diagnostics, failure.line), "%s", failure.text);
    diagnostics.subject = before;
    diagnostics.silence_errors = silenced_before;
}

} // namespace kestrel
