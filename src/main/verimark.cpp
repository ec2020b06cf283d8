#include "main/verimark.hpp"

#include "findings/baseline.hpp"
#include "findings/output_file.hpp"
#include "findings/report.hpp"
#include "main/advice_page.hpp"
#include "main/checking.hpp"
#include "main/comparing.hpp"
#include "main/completions.hpp"
#include "main/explain.hpp"
#include "main/file_list.hpp"
#include "main/messages.hpp"
#include "main/messages_page.hpp"
#include "main/pager.hpp"
#include "main/program_versions.hpp"
#include "main/progress.hpp"
#include "main/report_file.hpp"
#include "main/verimark_options.hpp"
#include "main/watch.hpp"
#include "quality/checks.hpp"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace kestrel {

namespace {

void printHelp(Output& out) {
    out.write(
        "Usage: verimark [OPTION]... FILE|FOLDER...\n"
        "       verimark --compare [OPTION]... OLD NEW\n"
        "\n"
        "Checks each FILE, and the files of each FOLDER and of the folders in it, and prints\n"
        "what is wrong with them. The extension tells the kind:\n"
        "\n"
        "  .ibs  IBIS file; also taken for a name without an extension\n"
        "  .pkg  package models\n"
        "  .ebd  electrical board description, with the files that it refers to\n"
        "  .ami  parameters of an algorithmic model\n");
    out.write(optionList());
    out.write(
        "\n"
        "\"-\" stands for the names on the standard input, one a line. What follows \"--\" is\n"
        "no option, also when it begins with a hyphen.\n"
        "\n"
        "--compare reads OLD and NEW and prints what has changed in what they mean; of two\n"
        "folders it compares the .ibs and .pkg files of equal names. With --report the\n"
        "page shows the curves of both on each other.\n"
        "\n"
        "Exit status: 0 when every file passed, 1 when one failed, 2 when the command\n"
        "line is wrong, a file could not be read or an output not be written. Of a\n"
        "comparison: 0 when nothing differs, 1 when something does, 2 as above.\n");
}

void printVersion(Output& out) {
    out.write("Verimark ");
    out.write(kCheckerVersion);
    out.write("\n");
}

bool wantsColor(When when, const Output& out) {
    if (when != When::automatic) return when == When::always;
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

/// What a call works with, beside its options.
struct Call {
    Output& out;
    Output& errors;
    std::FILE* in;
    const VerimarkOptions& options;
    Temporaries& temporaries;
    const MemoryLimit* memory; ///< null for none
    FileList files{};
    FilePairs pairs{};
    bool all_listed = true;
    Progress* progress = nullptr; ///< null when it is not wanted
};

/// True when one of the files to check would be overwritten.
bool isInput(const FileList& files, const std::string& path) {
    struct stat target {};
    if (stat(path.c_str(), &target) != 0) return false;
    for (std::size_t i = 0; i < files.size(); ++i) {
        struct stat file {};
        const bool is_there = stat(std::string(files[i]).c_str(), &file) == 0;
        if (is_there && file.st_dev == target.st_dev && file.st_ino == target.st_ino) return true;
    }
    return false;
}

/// True when both paths mean one file.
bool isSame(std::string_view one, std::string_view other) {
    std::error_code failure;
    const std::filesystem::path a(one);
    const std::filesystem::path b(other);
    if (one.empty() || other.empty()) return false;
    return a.lexically_normal() == b.lexically_normal() || std::filesystem::equivalent(a, b, failure);
}

/// Opens a file to be written; false when it was said why it cannot.
bool openOutput(const Trouble& trouble, const Call& call, OutputFile& file, std::string_view path) {
    const std::string name(path);
    const std::string problem = isInput(call.files, name) ? "is a file to check" : file.open(name);
    if (!problem.empty()) trouble(path, ": " + problem);
    return problem.empty();
}

template <class File> bool commit(const Trouble& trouble, File& file, std::string_view path) {
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
    // What is no baseline may have no end, as a device.
    std::string text(Baseline::kHead.size(), '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text == Baseline::kHead) {
        const std::uintmax_t size = std::filesystem::file_size(name, failure);
        if (!failure) text.reserve(size);
        text.append(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    if (const std::optional<BaselineFault> fault = baseline.read(text)) {
        std::string subject = name + ":";
        appendInteger(subject, fault->line);
        trouble(subject, ": damaged baseline: the line " + fault->text);
        return false;
    }
    return true;
}

/// Reads a baseline within a limit, and takes what it needs from that.
bool readBaselineWithin(MemoryLimit& limit, const Trouble& trouble, Baseline& baseline, std::string_view path) {
    MemoryBudget budget{.limit = limit.bytes};
    const std::atomic<std::size_t> turn = 0;
    MemoryAccount account(budget, turn, 0);
    try {
        const Charged charged(limit.charge_to, &account);
        if (!readBaseline(trouble, baseline, path)) return false;
    } catch (const std::bad_alloc&) {
        if (account.end() == MemoryEnd::none) throw;
    }
    if (account.end() != MemoryEnd::none) {
        trouble(path, std::string(": more memory than --max-memory=").append(limit.shown).append(" is needed"));
        return false;
    }
    limit.bytes -= static_cast<std::size_t>(budget.taken.load());
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

/// What shows how far a check is; nothing when it is not wanted.
std::unique_ptr<Progress> makeProgress(const Call& call) {
    using namespace std::chrono_literals;
    const When when = call.options.progress;
    if (when == When::never || (when == When::automatic && !call.errors.isTerminal())) return nullptr;
    return std::make_unique<Progress>(STDERR_FILENO, call.files, when == When::always ? 0ms : 1000ms);
}

/// While it lasts, an output on a terminal and the progress do not disturb each other.
class Listening {
public:
    Listening(Output& output, Progress* progress) : output_(output) {
        if (output.isTerminal()) output_.setListener(progress);
    }
    Listening(const Listening&) = delete;
    Listening& operator=(const Listening&) = delete;
    ~Listening() { output_.setListener(nullptr); }

private:
    Output& output_;
};

/// Checks the files and shows how far it is.
VerimarkStatus checkShown(const Call& call, CheckOutputs outputs) {
    if (call.progress == nullptr) return checkAll(outputs, call.files, call.options.jobs);
    outputs.progress = call.progress;
    const Listening out(outputs.out, call.progress);
    const Listening errors(outputs.errors, call.progress);
    call.progress->begin();
    const VerimarkStatus status = checkAll(outputs, call.files, call.options.jobs);
    call.progress->end();
    return status;
}

/// What a report of the files is called.
std::string titleOf(const FileList& files) {
    return files.size() == 1 ? std::string(files[0]) : std::to_string(files.size()).append(" files");
}

/// Checks the files of the call; nothing when it did not come to that.
std::optional<VerimarkStatus> checkFiles(const Call& call, Output& out, FormatSettings settings) {
    const VerimarkOptions& options = call.options;
    const Trouble trouble(out, call.errors);
    Baseline known;
    BaselineWriter written;
    OutputFile baseline_file(call.temporaries);
    std::optional<MemoryLimit> memory;
    if (call.memory != nullptr) memory = *call.memory;
    if (!options.baseline.empty()) {
        const bool is_read = memory ? readBaselineWithin(*memory, trouble, known, options.baseline)
                                    : readBaseline(trouble, known, options.baseline);
        if (!is_read) return std::nullopt;
    }
    if (!wantsAdvice(options)) known.leaveAdviceOut();
    const bool writes = !options.write_baseline.empty();
    if (writes && !openOutput(trouble, call, baseline_file, options.write_baseline)) return std::nullopt;

    ReportFile pages(call.temporaries);
    const bool reports = !options.report.empty();
    if (reports) {
        if (!openOutput(trouble, call, pages.file(), options.report)) return std::nullopt;
        pages.begin(options.report, titleOf(call.files), std::string("Verimark ").append(settings.version));
    }

    settings.color = wantsColor(options.color, out);
    settings.fail_on = options.fail_on;
    settings.quiet = options.quiet;
    const std::unique_ptr<Format> format = makeFormat(options.format, out, settings);
    Report report(*format, options.ignored, options.fail_on);
    report.known = options.baseline.empty() ? nullptr : &known;
    report.written = writes ? &written : nullptr;
    const bool is_text = options.format == FormatKind::text;
    const CheckOutputs outputs{.out = out,
                               .errors = call.errors,
                               .report = report,
                               .progress = nullptr,
                               .pages = reports ? &pages : nullptr,
                               .memory = memory ? &*memory : nullptr,
                               .announces = is_text && !options.quiet,
                               .advises = wantsAdvice(options),
                               .empty_is_found = !is_text};
    VerimarkStatus status = checkShown(call, outputs);
    if (out.failed()) return std::nullopt; // not all files were checked
    if (!call.all_listed) status = kTrouble;
    report.ends();
    if (report.known != nullptr) tellOfBaseline(out, call.errors, known, options.baseline);
    if (reports && !commit(trouble, pages, options.report)) status = kTrouble;
    if (writes) {
        written.write(baseline_file.out());
        if (!commit(trouble, baseline_file, options.write_baseline)) status = kTrouble;
    }
    return status;
}

/// Explains a message, on a terminal page by page; nothing when there is no such message.
std::optional<VerimarkStatus> explain(const Call& call, Output& out, const FormatSettings& settings) {
    const std::string_view asked = call.options.explained;
    const Explained explained = findExplained(asked);
    if (explained.topics.empty()) {
        tell(out, call.errors, "--explain=" + std::string(asked), ": " + explained.problem);
        return std::nullopt;
    }
    if (call.options.format == FormatKind::json) {
        explainAsJson(out, explained, settings);
        return kAllPassed;
    }
    ExplainForm form{.color = wantsColor(call.options.color, out)};
    if (out.isTerminal()) form.width = terminalWidth().value_or(form.width);
    const std::string text = explanation(explained, form);
    if (!out.isTerminal() || !showInPager(text)) out.writeControl(text);
    return kAllPassed;
}

/// Compares the files of the call; nothing when the output failed.
std::optional<VerimarkStatus> compare(const Call& call, Output& out) {
    const VerimarkOptions& options = call.options;
    const bool together = worksTogether(call.memory, options.jobs);
    const CompareFormatSettings settings{
        .version = kCheckerVersion, .settings = options.compare, .quiet = options.quiet, .together = together};
    const auto format =
        options.format == FormatKind::json ? makeCompareJson(out, settings) : makeCompareText(out, settings);
    const Trouble trouble(out, call.errors);
    OutputFile pages(call.temporaries);
    std::optional<ComparedPage> page;
    if (!options.report.empty()) {
        if (!openOutput(trouble, call, pages, options.report)) return std::nullopt;
        const std::string title = std::string(options.files[1]).append(" compared with ").append(options.files[0]);
        page.emplace(pages.out(), title, std::string("Verimark ").append(kCheckerVersion));
    }
    const ComparedOutputs outputs{
        .out = out, .errors = call.errors, .format = *format, .memory = call.memory, .page = page ? &*page : nullptr};
    const VerimarkStatus status = compareAll(outputs, call.pairs, options.compare, together);
    if (out.failed()) return std::nullopt;
    if (page) {
        page->end();
        page.reset(); // it writes to the file until then
        if (!commit(trouble, pages, options.report)) return kTrouble;
    }
    return call.all_listed ? status : kTrouble;
}

/// Does what the options ask for, and writes to `out`; nothing when it could not begin or came to no end.
std::optional<VerimarkStatus> perform(const Call& call, Output& out) {
    const FormatSettings settings{
        .version = kCheckerVersion,
        .advice_title = [](MessageCode code) { return adviceCheck(code)->title; },
    };
    switch (call.options.task) {
    case Task::check: return checkFiles(call, out, settings);
    case Task::compare: return compare(call, out);
    case Task::help: printHelp(out); break;
    case Task::version: printVersion(out); break;
    case Task::messages: listMessages(out, call.options.format, settings); break;
    case Task::explain: return explain(call, out, settings);
    case Task::messagesPage: out.write(messagesPage()); break;
    case Task::advicePage: out.write(advicePage()); break;
    case Task::completions: out.write(completionsFor(call.options.shell)); break;
    }
    return kAllPassed;
}

/// Does what the options ask for, and writes to where they want it.
VerimarkStatus performTo(const Call& call, std::string_view output) {
    if (output.empty()) return perform(call, call.out).value_or(kTrouble);
    const Trouble trouble(call.out, call.errors);
    OutputFile file(call.temporaries);
    if (!openOutput(trouble, call, file, output)) return kTrouble;
    const std::optional<VerimarkStatus> status = perform(call, file.out());
    if (!status && !file.out().failed()) return kTrouble;
    return commit(trouble, file, output) ? status.value_or(kTrouble) : kTrouble;
}

/// Does what the arguments ask for.
VerimarkStatus obey(Output& out, Output& errors, std::span<const std::string_view> arguments, std::FILE* in,
                    const MemoryCounting* counting) {
    const auto read = readVerimarkOptions(arguments);
    const Trouble trouble(out, errors);
    if (const WrongCall* const wrong = std::get_if<WrongCall>(&read)) return trouble(wrong->argument, wrong->text);
    const auto& options = std::get<VerimarkOptions>(read);
    Temporaries temporaries;
    std::optional<MemoryLimit> memory;
    if (options.max_memory != 0 && counting != nullptr) {
        counting->begin();
        memory = {.bytes = options.max_memory, .shown = options.max_memory_shown, .charge_to = counting->charge_to};
    }
    Call call{.out = out,
              .errors = errors,
              .in = in,
              .options = options,
              .temporaries = temporaries,
              .memory = memory ? &*memory : nullptr};
    std::unique_ptr<Progress> progress;
    if (options.task == Task::check) {
        call.all_listed = listFiles(call.files, options.files, in, trouble);
        progress = makeProgress(call);
        call.progress = progress.get();
    }
    if (options.task == Task::compare)
        call.all_listed = listPairs(call.pairs, call.files, options.files[0], options.files[1], trouble);
    const std::string_view output = options.output == "-" ? std::string_view() : options.output;
    if (isSame(output, options.report)) return trouble(output, ": is the file of the report, too");
    for (const std::string_view written : {output, options.report}) {
        if (isSame(written, options.baseline) || isSame(written, options.write_baseline))
            return trouble(written, ": is the file of the baseline, too");
    }
    // From the first temporary file to the last. Where there is none, signals end the program by themselves.
    std::optional<Watch> watch;
    if (!output.empty() || !options.write_baseline.empty() || !options.report.empty() || progress != nullptr) {
        const auto clean_up = [&] {
            temporaries.removeAll();
            if (progress != nullptr) progress->giveUp();
        };
        watch.emplace(clean_up, progress != nullptr ? [&] { progress->show(); } : std::function<void()>());
    }
    return performTo(call, output);
}

} // namespace

int runVerimark(Output& out, Output& errors, std::span<const std::string_view> arguments, std::FILE* in,
                const MemoryCounting* counting) {
    VerimarkStatus status = kTrouble;
    try {
        status = obey(out, errors, arguments, in, counting);
    } catch (const std::bad_alloc&) { // outside of the check of any file
        out.flush();
        errors.write("verimark: out of memory\n");
        errors.flush();
    }
    out.flush();
    if (!out.failed()) return status;
    // Whoever closes a pipe knows.
    if (out.error() != EPIPE) errors.write("verimark: the output cannot be written\n");
    errors.flush();
    return kTrouble;
}

} // namespace kestrel
