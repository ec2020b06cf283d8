#include "main/verimark_options.hpp"

#include "base/rows.hpp"
#include "base/text.hpp"
#include "main/completions.hpp"
#include "quality/checks.hpp"

#include <algorithm>
#include <charconv>
#include <numeric>

namespace kestrel {

namespace {

constexpr std::string_view kWhen[] = {"auto", "always", "never"};
constexpr std::string_view kLevelNames[] = {"error", "warning", "advice"};
constexpr Level kFailLevels[] = {Level::error, Level::warning, Level::advice};

/// The place of a value among the choices, of which it is one.
template <class Choices> std::size_t placeAmong(const Choices& choices, std::string_view value) {
    return static_cast<std::size_t>(std::ranges::find(choices, value) - std::ranges::begin(choices));
}

/// Keeps the value as it is.
template <std::string_view VerimarkOptions::*Member>
std::string keep(VerimarkOptions& options, std::string_view value) {
    options.*Member = value;
    return {};
}

/// The same for the path of a file that has no "-" for a standard stream.
template <std::string_view VerimarkOptions::*Member>
std::string keepPath(VerimarkOptions& options, std::string_view value) {
    if (value == "-") return "it takes the name of a file; a file of this name is \"./-\"";
    return keep<Member>(options, value);
}

template <Task Wanted> std::string setTask(VerimarkOptions& options, std::string_view /*value*/) {
    options.task = Wanted;
    return {};
}

std::string setFormat(VerimarkOptions& options, std::string_view value) {
    options.format = static_cast<FormatKind>(placeAmong(kFormatNames, value));
    return {};
}

std::string setColor(VerimarkOptions& options, std::string_view value) {
    options.color = static_cast<When>(placeAmong(kWhen, value));
    return {};
}

std::string setProgress(VerimarkOptions& options, std::string_view value) {
    options.progress = static_cast<When>(placeAmong(kWhen, value));
    return {};
}

std::string setJobs(VerimarkOptions& options, std::string_view value) {
    constexpr unsigned kMost = 1024;
    const char* const end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, options.jobs);
    const bool right = read.ec == std::errc{} && read.ptr == end && options.jobs > 0 && options.jobs <= kMost;
    return right ? std::string() : "it takes a number from 1 to " + std::to_string(kMost);
}

/// Takes bytes, or with a letter that many times 1024, 1024 squared or 1024 cubed of them.
std::string setMaxMemory(VerimarkOptions& options, std::string_view value) {
    constexpr std::string_view kUnits = "KMG";
    constexpr std::size_t kMost = std::size_t{1} << 62;
    const char* const end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, options.max_memory);
    const std::string_view unit(read.ptr, end);
    const std::size_t place = unit.empty() ? kUnits.size() : kUnits.find(toUpper(unit.front()));
    const std::size_t scale = unit.empty() ? 1 : std::size_t{1024} << (10 * std::min(place, kUnits.size()));
    const bool right = read.ec == std::errc{} && unit.size() <= 1 && place <= kUnits.size() && options.max_memory > 0 &&
                       options.max_memory <= kMost / scale;
    options.max_memory *= scale;
    options.max_memory_shown = value;
    return right ? std::string() : "it takes a size such as 512K, 500M or 2G";
}

std::string setTolerance(VerimarkOptions& options, std::string_view value) {
    constexpr double kMost = 100;
    double& tolerance = options.compare.tolerance;
    const char* const end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, tolerance, std::chars_format::fixed);
    const bool right = read.ec == std::errc{} && read.ptr == end && tolerance >= 0 && tolerance <= kMost;
    return right ? std::string() : "it takes per cent from 0 to 100";
}

std::string setAll(VerimarkOptions& options, std::string_view /*value*/) {
    options.compare.header_texts = true;
    return {};
}

std::string setFailOn(VerimarkOptions& options, std::string_view value) {
    options.fail_on = kFailLevels[placeAmong(kLevelNames, value)];
    return {};
}

std::string setAdvice(VerimarkOptions& options, std::string_view /*value*/) {
    options.advice = true;
    return {};
}

std::string setQuiet(VerimarkOptions& options, std::string_view /*value*/) {
    options.quiet = true;
    return {};
}

std::string setIgnored(VerimarkOptions& options, std::string_view value) {
    const auto is_advice = [](MessageCode code) { return adviceCheck(code) != nullptr; };
    const std::optional<std::string> unknown = ignore(options.ignored, value, is_advice);
    return unknown ? "there is no message \"" + *unknown + "\"; \"verimark --messages\" lists them" : std::string();
}

std::string setExplained(VerimarkOptions& options, std::string_view value) {
    options.task = Task::explain;
    options.explained = value;
    return {};
}

std::string setShell(VerimarkOptions& options, std::string_view value) {
    options.task = Task::completions;
    options.shell = value;
    return {};
}

using G = OptionGroup;
using V = VerimarkOptions;
constexpr OptionRow kOptions[] = {
    {'f', "format", "FORMAT", G::output, "text, gcc, json, jsonl, sarif, github or junit", kFormatNames, setFormat},
    {'o', "output", "FILE", G::output, "writes there, when all is done", {}, keep<&V::output>},
    {0, "report", "FILE", G::output, "writes a page with all curves there", {}, keep<&V::report>},
    {0, "color", "WHEN", G::output, "auto, always or never: text and gcc in color", kWhen, setColor},
    {0, "quiet", "", G::output, "findings only, and summaries of files that failed", {}, setQuiet},
    {0, "advice", "", G::findings, "also says what is right and yet likely wrong", {}, setAdvice},
    {0, "ignore", "CODE,...", G::findings, "leaves messages out, such as 905, W921, Q304", {}, setIgnored},
    {0, "fail-on", "LEVEL", G::findings, "error, warning or advice: what fails a file", kLevelNames, setFailOn},
    {0, "baseline", "FILE", G::findings, "leaves out the findings that it lists", {}, keepPath<&V::baseline>},
    {0, "write-baseline", "FILE", G::findings, "lists the findings there", {}, keepPath<&V::write_baseline>},
    {'j', "jobs", "N", G::files, "checks N files at a time; as many as processors", {}, setJobs},
    {0, "max-memory", "SIZE", G::files, "a file that needs more fails; such as 500M or 2G", {}, setMaxMemory},
    {0, "progress", "WHEN", G::files, "auto, always or never: shows how far it is", kWhen, setProgress},
    {0, "compare", "", G::compare, "compares two files or folders: --compare OLD NEW", {}, setTask<Task::compare>},
    {0, "tolerance", "PERCENT", G::compare, "changes up to so much are none; 1", {}, setTolerance},
    {0, "all", "", G::compare, "compares the texts of headers, too", {}, setAll},
    {0, "explain", "CODE", G::other, "explains a message: 905, W921 or its text", {}, setExplained},
    {0, "messages", "", G::other, "lists all messages and ends", {}, setTask<Task::messages>},
    {0, "help", "", G::other, "shows this and ends", {}, setTask<Task::help>},
    {0, "version", "", G::other, "shows the version and ends", {}, setTask<Task::version>},
    {0, "messages-page", "", G::hidden, "all explanations as one page", {}, setTask<Task::messagesPage>},
    {0, "advice-page", "", G::hidden, "all checks of advice as one page", {}, setTask<Task::advicePage>},
    {0, "completions", "SHELL", G::hidden, "the completions for a shell", kShells, setShell},
};

const OptionRow* rowNamed(std::string_view name) {
    const auto row = std::ranges::find(kOptions, name, &OptionRow::name);
    return row == std::end(kOptions) ? nullptr : &*row;
}

const OptionRow* rowOfLetter(char letter) {
    const auto row = std::ranges::find(kOptions, letter, &OptionRow::letter);
    return row == std::end(kOptions) || letter == 0 ? nullptr : &*row;
}

/// How many letters have to be changed, put in or left out to make one word of the other.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (toLower(a[i]) == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

/// The word that was most likely meant; empty when none is near.
template <class Words, class Name = std::identity>
std::string_view nearest(const Words& words, std::string_view wanted, Name name = {}) {
    constexpr std::size_t kLongest = 40; // what is longer is no slip
    std::string_view best;
    std::size_t least = wanted.size() / 3 + 2;
    if (wanted.empty() || wanted.size() > kLongest) return best;
    for (const auto& word : words) {
        const std::string_view candidate = std::invoke(name, word);
        const bool is_part = wanted.size() > 1 && (candidate.starts_with(wanted) || candidate.ends_with(wanted));
        const std::size_t steps = is_part ? 0 : distance(wanted, candidate);
        if (steps >= least || steps >= candidate.size()) continue;
        least = steps;
        best = candidate;
    }
    return best;
}

std::string suggestion(std::string_view near) { return "; did you mean \"" + std::string(near) + "\"?"; }

WrongCall noSuchOption(std::string_view argument, std::string_view near) {
    std::string text = ": no such option";
    text.append(near.empty() ? "; try \"verimark --help\"" : suggestion("--" + std::string(near)));
    return {std::string(argument), text};
}

WrongCall unknownName(std::string_view argument, std::string_view name) {
    std::vector<std::string_view> names;
    for (const OptionRow& row : kOptions)
        if (row.group != OptionGroup::hidden) names.push_back(row.name);
    return noSuchOption(argument, nearest(names, name));
}

/// For a letter that is none: an option whose name begins with it.
WrongCall unknownLetter(std::string_view argument, char letter) {
    const auto row = std::ranges::find_if(kOptions, [letter](const OptionRow& option) {
        return option.group != OptionGroup::hidden && option.name.front() == toLower(letter);
    });
    return noSuchOption(argument, row == std::end(kOptions) ? std::string_view() : row->name);
}

/// The arguments and how far the walk has come.
struct Walk {
    std::span<const std::string_view> arguments;
    std::size_t next = 0;
    VerimarkOptions options{};
};

using Problem = std::optional<WrongCall>;

Problem applyValue(Walk& walk, const OptionRow& row, std::string_view value) {
    const std::string shown = "--" + std::string(row.name) + "=" + std::string(value);
    if (!row.choices.empty() && std::ranges::find(row.choices, value) == row.choices.end()) {
        std::string text = ": no such " + std::string(row.value);
        if (const std::string_view near = nearest(row.choices, value); !near.empty()) {
            text += suggestion(near);
        } else {
            text += "; choose from";
            for (const std::string_view& choice : row.choices)
                text.append(&choice == row.choices.data() ? " " : ", ").append(choice);
        }
        return WrongCall{shown, text};
    }
    const std::string wrong = row.apply(walk.options, value);
    return wrong.empty() ? Problem() : WrongCall{shown, ": " + wrong};
}

/// Applies an option whose value, if it is joined to it, is given; takes the next argument for one that is missing.
Problem applyOption(Walk& walk, const OptionRow& row, std::string_view argument,
                    std::optional<std::string_view> value) {
    if (row.value.empty()) {
        if (value) return WrongCall{std::string(argument), ": takes no value"};
        row.apply(walk.options, {});
        return {};
    }
    if (!value && walk.next < walk.arguments.size()) value = walk.arguments[walk.next++];
    if (!value || value->empty()) {
        return WrongCall{std::string(argument),
                         ": needs a value, as in --" + std::string(row.name) + "=" + std::string(row.value)};
    }
    return applyValue(walk, row, *value);
}

Problem readLong(Walk& walk, std::string_view argument) {
    const std::string_view body = argument.substr(2);
    const std::size_t sign = body.find('=');
    const OptionRow* const row = rowNamed(body.substr(0, sign));
    if (row == nullptr) return unknownName(argument.substr(0, argument.find('=')), body.substr(0, sign));
    if (sign == std::string_view::npos) return applyOption(walk, *row, argument, std::nullopt);
    return applyOption(walk, *row, argument, body.substr(sign + 1));
}

/// Letters behind one hyphen; what follows a letter that takes a value is the value.
Problem readShort(Walk& walk, std::string_view argument) {
    const std::string_view letters = argument.substr(1);
    const std::string_view word = letters.substr(0, letters.find('='));
    if (word.size() > 1 && rowNamed(word) != nullptr) return noSuchOption(argument, word);
    for (std::size_t i = 0; i < letters.size(); ++i) {
        const OptionRow* const row = rowOfLetter(letters[i]);
        if (row == nullptr) return unknownLetter(argument, letters[i]);
        const std::string_view rest = letters.substr(i + 1);
        if (!row->value.empty())
            return applyOption(walk, *row, argument, rest.empty() ? std::nullopt : std::optional(rest));
        row->apply(walk.options, {});
    }
    return {};
}

/// What is wrong with the files of a call.
Problem wrongFiles(const VerimarkOptions& options) {
    if (options.task == Task::check && options.files.empty())
        return WrongCall{"no file given", "; try \"verimark --help\""};
    if (options.task != Task::compare) return {};
    constexpr std::size_t kOperands = 2;
    if (options.files.size() != kOperands || contains(options.files, "-"))
        return WrongCall{"--compare", ": needs two files or two folders, as in --compare OLD NEW"};
    if (options.format != FormatKind::text && options.format != FormatKind::json)
        return WrongCall{"--format=" + std::string(kFormatNames[static_cast<std::size_t>(options.format)]),
                         ": what changed is written as text or json"};
    return {};
}

bool endsRun(Task task) { return task == Task::help || task == Task::version; }

} // namespace

std::span<const OptionRow> optionRows() { return kOptions; }

std::variant<VerimarkOptions, WrongCall> readVerimarkOptions(std::span<const std::string_view> arguments) {
    Walk walk{arguments};
    bool options_ended = false;
    while (walk.next < arguments.size() && !endsRun(walk.options.task)) {
        const std::string_view argument = arguments[walk.next++];
        Problem problem;
        if (options_ended || argument == "-" || !argument.starts_with('-')) {
            walk.options.files.push_back(argument);
        } else if (argument == "--") {
            options_ended = true;
        } else if (argument.starts_with("--")) {
            problem = readLong(walk, argument);
        } else {
            problem = readShort(walk, argument);
        }
        if (problem) return *problem;
    }
    if (std::optional<WrongCall> wrong = wrongFiles(walk.options)) return *wrong;
    return walk.options;
}

std::string optionList() {
    constexpr std::size_t kColumn = 30;
    std::string text;
    OptionGroup group = OptionGroup::hidden;
    for (const OptionRow& row : kOptions) {
        if (row.group == OptionGroup::hidden) continue;
        if (row.group != group)
            text.append("\n").append(kGroupNames[static_cast<std::size_t>(row.group)]).append(":\n");
        group = row.group;
        std::string line = row.letter != 0 ? std::string("  -") + row.letter + ", " : std::string("      ");
        line.append("--").append(row.name);
        if (!row.value.empty()) line.append("=").append(row.value);
        line.resize(std::max(line.size() + 2, kColumn), ' ');
        text.append(line).append(row.help).append("\n");
    }
    return text;
}

} // namespace kestrel
