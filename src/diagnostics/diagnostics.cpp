#include "diagnostics/diagnostics.hpp"

#include <charconv>
#include <cstdlib>

namespace kestrel {

namespace {

static_assert(codesAscendStrictly(), "catalog codes must ascend without duplicates");
static_assert(message_check::allConversionsKnown());

enum class Counter : std::uint8_t { bugs, errors, warnings, cautions, none };

/// How a class prints. A text whose length lies from `wrap_from` to kWrapTo goes on a line of its own.
struct SeverityForm {
    std::string_view word;
    char letter;
    bool with_line;
    std::uint8_t wrap_from; // 0: never
    Counter counter;
};

constexpr std::size_t kWrapTo = 75;

constexpr std::array<SeverityForm, 11> kForms{{
    {"PROGRAM BUG", 'B', false, 0, Counter::bugs},
    {"PROGRAM BUG", 'B', true, 0, Counter::bugs},
    {"ERROR", 'E', false, 72, Counter::errors},
    {"ERROR", 'E', true, 60, Counter::errors},
    {"WARNING", 'W', false, 70, Counter::warnings},
    {"WARNING", 'W', true, 58, Counter::warnings},
    {"CAUTION", 'C', false, 70, Counter::cautions},
    {"CAUTION", 'C', true, 58, Counter::cautions},
    {"NOTE", 'N', false, 73, Counter::none},
    {"NOTE", 'N', true, 61, Counter::none},
    {"INTERNAL ERROR", 'I', false, 0, Counter::none},
}};

const SeverityForm& formOf(Severity severity) { return kForms[static_cast<std::size_t>(severity)]; }

bool silenced(const Diagnostics& diagnostics, Counter counter) {
    switch (counter) {
    case Counter::bugs: return diagnostics.silence_bugs;
    case Counter::errors: return diagnostics.silence_errors;
    case Counter::warnings: return diagnostics.silence_warnings;
    case Counter::cautions: return diagnostics.silence_cautions;
    case Counter::none: return false;
    }
    return false;
}

void count(Diagnostics& diagnostics, Counter counter) {
    switch (counter) {
    case Counter::bugs: ++diagnostics.bugs; break;
    case Counter::errors: ++diagnostics.errors; break;
    case Counter::warnings: ++diagnostics.warnings; break;
    case Counter::cautions: ++diagnostics.cautions; break;
    case Counter::none: break;
    }
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

void format(std::string& text, std::string_view format, std::span<const Arg> args) {
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

/// Writes what is ahead of a message: its class, or its number in the coded form, and the line.
void printHead(const Diagnostics& diagnostics, const SeverityForm& form, std::optional<MessageCode> code) {
    Output& out = *diagnostics.out;
    std::string number;
    if (code) {
        appendInteger(number, *code);
        number.insert(0, number.size() < 4 ? 4 - number.size() : 0, '0');
        number.insert(0, 1, form.letter);
        out.write(number);
    } else {
        out.write(form.word);
    }
    if (!form.with_line) return;
    number.clear();
    appendInteger(number, *diagnostics.line, 4);
    out.write(" (line ");
    out.write(number);
    out.write(")");
}

void tell(const Diagnostics& diagnostics, Severity severity, std::optional<MessageCode> code) {
    const bool exact = formOf(severity).with_line;
    const Subject* const subject = diagnostics.subject;
    const std::uint32_t line = exact ? *diagnostics.line : subject != nullptr ? subject->line : 0;
    diagnostics.on_finding({severity, code, line, exact, subject, diagnostics.text});
}

/// Prints `diagnostics.text` in the form of its class; a text that is not in the catalog has no code.
void print(Diagnostics& diagnostics, Severity severity, std::optional<MessageCode> code) {
    const SeverityForm& form = formOf(severity);
    count(diagnostics, form.counter);
    if (diagnostics.on_finding) tell(diagnostics, severity, code);
    printHead(diagnostics, form, diagnostics.coded_form ? code : std::nullopt);
    const std::size_t length = diagnostics.text.size();
    const bool own_line = form.wrap_from != 0 && length >= form.wrap_from && length <= kWrapTo;
    diagnostics.out->write(own_line ? " -\n    " : " - ");
    diagnostics.out->write(diagnostics.text);
    diagnostics.out->write("\n");
}

} // namespace

void reportRow(Diagnostics& diagnostics, Severity severity, std::size_t row, std::span<const Arg> args) {
    if (silenced(diagnostics, formOf(severity).counter)) return;
    format(diagnostics.text, kCatalog[row].text, args);
    print(diagnostics, severity, kCatalog[row].code);
}

void reportText(Diagnostics& diagnostics, Severity severity, std::string_view text, std::span<const Arg> args) {
    if (silenced(diagnostics, formOf(severity).counter)) return;
    format(diagnostics.text, text, args);
    print(diagnostics, severity, std::nullopt);
}

void reportCode(Diagnostics& diagnostics, Severity severity, MessageCode code, std::span<const Arg> args) {
    const std::size_t row = catalogIndex(code);
    if (row == kCatalog.size()) {
        reportRow(diagnostics, Severity::internalError, 0, {});
    } else {
        reportRow(diagnostics, severity, row, args);
    }
}

DiagnosticCounts diagnosticCounts(const Diagnostics& diagnostics) {
    return {diagnostics.bugs, diagnostics.errors, diagnostics.warnings};
}

std::int64_t failureCount(const Diagnostics& diagnostics) { return diagnostics.bugs + diagnostics.errors; }

void resetCounts(Diagnostics& diagnostics) {
    diagnostics.bugs = 0;
    diagnostics.warnings = 0;
    diagnostics.errors = 0;
    diagnostics.context.clear();
}

void setContext(Diagnostics& diagnostics, std::optional<std::string_view> text) {
    diagnostics.context = text.value_or(std::string_view{});
}

void printSummary(Diagnostics& diagnostics) {
    std::string text;
    const auto line = [&text](std::string_view label, std::int64_t number) {
        text.append(label);
        appendInteger(text, number);
        text.push_back('\n');
    };
    if (diagnostics.bugs != 0 || diagnostics.errors != 0 || diagnostics.warnings != 0) text.push_back('\n');
    if (diagnostics.bugs != 0) line("Bugs    : ", diagnostics.bugs);
    line("Errors  : ", diagnostics.errors);
    if (diagnostics.warnings != 0) line("Warnings: ", diagnostics.warnings);
    if (diagnostics.cautions != 0) line("Cautions: ", diagnostics.cautions);
    text.append(failureCount(diagnostics) != 0 ? "\nFile Failed\n" : "\nFile Passed\n");
    diagnostics.out->write(text);
}

SourceMark here(const char* path, int line) {
    const std::string_view whole = path;
    return {whole.substr(whole.find_last_of("/\\") + 1), line};
}

void assertionFailed(Output& out, SourceMark mark) {
    std::string text(mark.file);
    text.push_back(':');
    appendInteger(text, mark.line);
    text.append(":assertion failed.\n");
    out.write(text);
    out.flush();
    std::abort();
}

} // namespace kestrel
