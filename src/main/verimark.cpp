#include "main/verimark.hpp"

#include "findings/baseline.hpp"
#include "findings/output_file.hpp"
#include "findings/report.hpp"
#include "header/hdr.hpp"
#include "ibis/parse.hpp"
#include "ibis/run.hpp"
#include "main/completions.hpp"
#include "main/messages.hpp"
#include "main/program_versions.hpp"
#include "main/verimark_options.hpp"
#include "main/version.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace kestrel {

namespace {

void printHelp(Output& out) {
    out.write(
        "Usage: verimark [OPTION]... FILE...\n"
        "\n"
        "Checks each FILE and prints what is wrong with it. The extension tells its kind:\n"
        "\n"
        "  .ibs  IBIS file; also taken for a name without an extension\n"
        "  .pkg  package models\n"
        "  .ebd  electrical board description, with the files that it refers to\n"
        "  .ami  parameters of an algorithmic model\n");
    out.write(optionList());
    out.write(
        "\n"
        "What follows \"--\" is a FILE, also when it begins with a hyphen.\n"
        "\n"
        "Exit status: 0 when every file passed, 1 when one failed, 2 when the command\n"
        "line is wrong, a file could not be read or an output not be written.\n");
}

void printVersion(Output& out) {
    out.write("Verimark ");
    out.write(kCheckerVersion);
    out.write("\n");
}

/// Tells something on the error output, behind what was printed so far.
void tell(Output& out, Output& errors, std::string_view subject, std::string_view text) {
    out.flush();
    errors.write("verimark: ");
    errors.write(subject);
    errors.write(text);
    errors.write("\n");
    errors.flush();
}

/// Where a call writes: findings, and what is said beside them.
struct Outputs {
    Output& out;
    Output& errors;
    Output& announcements; ///< the same as `out` or nowhere
    Report& report;
    bool empty_is_found; ///< a file that cannot be read gives a finding in any case
};

/// A name without an extension that gives a kind is handled as that of an .ibs file, as kestrel does.
FileKind kindOrIbs(std::string_view name) { return kindOfName(name).value_or(FileKind::ibs); }

/// The version as the file's header gives it.
std::optional<std::string> givenVersion(const Run& run) {
    if (run.roots.empty()) return std::nullopt;
    for (const Hdr& header : currentRoot(run).headers.newestFirst())
        if (!header.ibis_version.empty()) return header.ibis_version;
    return std::nullopt;
}

/// Checks one file in a run of its own.
FileOutcome checkInRun(Run& run, std::string_view name, FileKind kind) {
    FileOutcome outcome;
    nameFile(run.diagnostics, name);
    // The reader takes no longer names of these kinds.
    if (name.size() >= kMaxPath && (kind == FileKind::pkg || kind == FileKind::ami)) return outcome;
    if (kind != FileKind::ami) {
        const VersionSearch search = determineVersion(run, name, kind);
        outcome.refused = search == VersionSearch::refused;
        outcome.read = outcome.refused;
        if (search != VersionSearch::found) return outcome;
    }
    outcome.read = checkFile(run, name, kind) || kind != FileKind::ami;
    outcome.checked = true;
    outcome.version = givenVersion(run);
    return outcome;
}

/// Checks a file and reports what is found; says which were not checked.
VerimarkStatus checkOne(const Outputs& outputs, std::string_view name) {
    const FileKind kind = kindOrIbs(name);
    Report& report = outputs.report;
    Run run(outputs.announcements);
    run.parse.takes_later = true;
    run.diagnostics.sink = [&report](const Finding& finding) { report.finding(finding); };
    report.fileBegins({.path = name, .kind = extensionOf(kind).substr(1)});
    const FileOutcome outcome = checkInRun(run, name, kind);
    if (!outcome.read && outputs.empty_is_found && report.foundNothing())
        name.size() < kMaxPath ? errorText(run.diagnostics, "The file is empty.")
                               : errorText(run.diagnostics, "The name of the file is too long.");
    if (report.known != nullptr) {
        for (const std::string& file : run.diagnostics.files)
            report.known->checked(file);
    }
    const Verdict verdict = report.fileEnds(outcome);
    if (!outcome.read || outcome.refused) tell(outputs.out, outputs.errors, name, ": not checked");
    switch (verdict) {
    case Verdict::passed: return kAllPassed;
    case Verdict::failed: return kSomeFailed;
    case Verdict::unread: break;
    }
    return kTrouble;
}

bool wantsColor(ColorWhen when, const Output& out) {
    if (when != ColorWhen::automatic) return when == ColorWhen::always;
    const char* const forbidden = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    if (forbidden != nullptr && *forbidden != '\0') return false;
    return out.isTerminal() && (terminal == nullptr || std::string_view(terminal) != "dumb");
}

/// What goes wrong with the files of the options ends a call.
class Trouble {
public:
    Trouble(Output& out, Output& errors) : out_(out), errors_(errors) {}
    VerimarkStatus operator()(std::string_view subject, std::string_view text) const {
        tell(out_, errors_, subject, text);
        return kTrouble;
    }

private:
    Output& out_;
    Output& errors_;
};

/// True when one of the files to check would be overwritten.
bool isInput(const VerimarkOptions& options, std::string_view path) {
    return std::ranges::any_of(options.files, [path](std::string_view file) {
        std::error_code failure;
        return std::filesystem::equivalent(file, path, failure);
    });
}

/// Opens a file to be written; false when it was said why it cannot.
bool openOutput(const Trouble& trouble, const VerimarkOptions& options, OutputFile& file, std::string_view path) {
    const std::string problem = isInput(options, path) ? "is a file to check" : file.open(std::string(path));
    if (!problem.empty()) trouble(path, ": " + problem);
    return problem.empty();
}

bool commit(const Trouble& trouble, OutputFile& file, std::string_view path) {
    const std::string problem = file.commit();
    if (!problem.empty()) trouble(path, ": " + problem);
    return problem.empty();
}

/// Reads a baseline; false when it was said why it cannot be used.
bool readBaseline(const Trouble& trouble, Baseline& baseline, std::string_view path) {
    const std::string name(path);
    std::error_code failure;
    std::ifstream file(name, std::ios::binary);
    if (!file || std::filesystem::is_directory(name, failure)) {
        const int error = failure || file ? EISDIR : errno;
        trouble(path, ": cannot be read: " + std::error_code(error, std::generic_category()).message());
        return false;
    }
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (const std::optional<BaselineFault> fault = baseline.read(text)) {
        std::string subject = name + ":";
        appendInteger(subject, fault->line);
        trouble(subject, ": damaged baseline: the line " + fault->text);
        return false;
    }
    return true;
}

/// Says how many findings were known, and what is known and no longer there.
void tellOfBaseline(Output& out, Output& errors, const Baseline& baseline, std::string_view path) {
    std::string text(": ");
    appendInteger(text, baseline.taken());
    tell(out, errors, path,
         text.append(baseline.taken() == 1 ? " known finding" : " known findings").append(" left out"));
    baseline.eachGone([&](std::uint32_t number, std::string_view line) {
        std::string subject(path);
        subject.push_back(':');
        appendInteger(subject, number);
        tell(out, errors, subject, ": no longer found: " + std::string(line));
    });
}

/// Checks the files of the options, one after the other; nothing when it did not come to that.
std::optional<VerimarkStatus> checkFiles(Output& out, Output& errors, const VerimarkOptions& options,
                                         FormatSettings settings) {
    const Trouble trouble(out, errors);
    Baseline known;
    BaselineWriter written;
    OutputFile baseline_file;
    if (!options.baseline.empty() && !readBaseline(trouble, known, options.baseline)) return std::nullopt;
    const bool writes = !options.write_baseline.empty();
    if (writes && !openOutput(trouble, options, baseline_file, options.write_baseline)) return std::nullopt;

    settings.color = wantsColor(options.color, out);
    settings.fail_on = options.fail_on;
    settings.quiet = options.quiet;
    const std::unique_ptr<Format> format = makeFormat(options.format, out, settings);
    Report report(*format, options.ignored, options.fail_on);
    report.known = options.baseline.empty() ? nullptr : &known;
    report.written = writes ? &written : nullptr;
    Output nowhere = Output::nowhere();
    const bool is_text = options.format == FormatKind::text;
    const Outputs outputs{out, errors, is_text && !options.quiet ? out : nowhere, report, !is_text};

    VerimarkStatus status = kAllPassed;
    for (const std::string_view file : options.files)
        status = std::max(status, checkOne(outputs, file));
    report.ends();
    if (report.known != nullptr) tellOfBaseline(out, errors, known, options.baseline);
    if (writes) {
        written.write(baseline_file.out());
        if (!commit(trouble, baseline_file, options.write_baseline)) status = kTrouble;
    }
    return status;
}

/// Does what the options ask for, and writes to `out`; nothing when it could not begin.
std::optional<VerimarkStatus> perform(Output& out, Output& errors, const VerimarkOptions& options) {
    const FormatSettings settings{.version = kCheckerVersion};
    switch (options.task) {
    case Task::check: return checkFiles(out, errors, options, settings);
    case Task::help: printHelp(out); break;
    case Task::version: printVersion(out); break;
    case Task::messages: listMessages(out, options.format, settings); break;
    case Task::completions: out.write(completionsFor(options.shell)); break;
    }
    return kAllPassed;
}

/// Does what the arguments ask for.
VerimarkStatus obey(Output& out, Output& errors, std::span<const std::string_view> arguments) {
    const auto call = readVerimarkOptions(arguments);
    const Trouble trouble(out, errors);
    if (const WrongCall* const wrong = std::get_if<WrongCall>(&call)) return trouble(wrong->argument, wrong->text);
    const auto& options = std::get<VerimarkOptions>(call);
    if (options.output.empty() || options.output == "-") return perform(out, errors, options).value_or(kTrouble);
    OutputFile file;
    if (!openOutput(trouble, options, file, options.output)) return kTrouble;
    const std::optional<VerimarkStatus> status = perform(file.out(), errors, options);
    return status && commit(trouble, file, options.output) ? *status : kTrouble;
}

} // namespace

int runVerimark(Output& out, Output& errors, std::span<const std::string_view> arguments) {
    const VerimarkStatus status = obey(out, errors, arguments);
    out.flush();
    if (!out.failed()) return status;
    tell(out, errors, "the output", " cannot be written");
    return kTrouble;
}

} // namespace kestrel
