#include "case_runner.hpp"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrel::cases {
namespace {

namespace fs = std::filesystem;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string readFromStart(std::FILE* file) {
    std::rewind(file);
    std::string text;
    char buffer[1 << 14];
    while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, file)) {
        text.append(buffer, count);
    }
    return text;
}

// Takes one line with its newline off the front.
std::string_view takeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end == std::string_view::npos ? end : end + 1);
    text.remove_prefix(line.size());
    return line;
}

std::string_view trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\n");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t\n") - first + 1);
}

// Blanks at the end and control characters would not be seen in a report.
std::string visible(std::string_view line) {
    std::string text = "|";
    for (const char c : line) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            continue;
        }
        if (byte >= 0x20 && byte != 0x7f) {
            text += c;
            continue;
        }
        char escape[5];
        std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned>(byte));
        text += escape;
    }
    return text + (line.ends_with('\n') ? "|" : "| (no newline)");
}

bool setField(Case& a_case, std::string_view key, std::string_view value, std::string& problem) {
    if (key == "args") {
        std::optional<std::vector<std::string>> words = splitWords(value);
        if (!words) {
            problem = "args: a quote is left open";
            return false;
        }
        a_case.args = std::move(*words);
        return true;
    }
    if (key == "status") {
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), a_case.status);
        if (error != std::errc{} || end != value.data() + value.size()) {
            problem = "status: not a number";
            return false;
        }
        return true;
    }
    if (key == "program") {
        a_case.program = value;
        return true;
    }
    problem = "unknown field \"" + std::string(key) + "\"";
    return false;
}

} // namespace

std::optional<std::vector<std::string>> splitWords(std::string_view text) {
    std::vector<std::string> words;
    bool in_word = false;
    bool quoted = false;
    for (const char c : text) {
        const bool blank = !quoted && (c == ' ' || c == '\t');
        if (blank) {
            in_word = false;
            continue;
        }
        if (!in_word) {
            words.emplace_back();
            in_word = true;
        }
        if (c == '\'') {
            quoted = !quoted;
        } else {
            words.back() += c;
        }
    }
    if (quoted) {
        return std::nullopt;
    }
    return words;
}

std::optional<Case> parseCase(std::string_view text, std::string& problem) {
    Case a_case;
    std::string_view rest = text;
    std::vector<std::string_view> seen;
    bool has_comment = false;
    while (!rest.empty()) {
        const std::string_view line = trim(takeLine(rest));
        if (line == "---") {
            if (!has_comment) {
                problem = "no comment that tells what the case guards";
                return std::nullopt;
            }
            if (std::find(seen.begin(), seen.end(), "args") == seen.end()) {
                problem = "no field \"args\"";
                return std::nullopt;
            }
            a_case.head = text.substr(0, text.size() - rest.size());
            a_case.expected = rest;
            return a_case;
        }
        if (line.empty()) {
            continue;
        }
        if (line.starts_with('#')) {
            has_comment = true;
            continue;
        }
        const std::string_view key = line.substr(0, line.find(':'));
        if (key.size() == line.size() || std::find(seen.begin(), seen.end(), key) != seen.end()) {
            problem = "a line that is no new field: " + visible(line);
            return std::nullopt;
        }
        seen.push_back(key);
        if (!setField(a_case, key, trim(line.substr(key.size() + 1)), problem)) {
            return std::nullopt;
        }
    }
    problem = "no line \"---\" ahead of the expected output";
    return std::nullopt;
}

std::optional<std::string> expandTexts(std::string_view expected, const Texts& texts, std::string& problem) {
    std::string expanded;
    for (std::string_view rest = expected; !rest.empty();) {
        const std::string_view line = takeLine(rest);
        const std::string_view bare = line.substr(0, line.find('\n'));
        if (!bare.starts_with("{{") || !bare.ends_with("}}")) {
            expanded += line;
            continue;
        }
        const auto text = texts.find(bare.substr(2, bare.size() - 4));
        if (text == texts.end()) {
            problem = "there is no text for " + std::string(bare);
            return std::nullopt;
        }
        expanded += text->second;
    }
    return expanded;
}

std::string collapseTexts(std::string_view output, const Texts& texts) {
    std::vector<Texts::const_iterator> longest_first;
    for (auto text = texts.begin(); text != texts.end(); ++text) {
        if (!text->second.empty()) {
            longest_first.push_back(text);
        }
    }
    std::sort(longest_first.begin(), longest_first.end(),
              [](const auto& a, const auto& b) { return a->second.size() > b->second.size(); });

    std::string collapsed;
    for (std::string_view rest = output; !rest.empty();) {
        const auto match = std::find_if(longest_first.begin(), longest_first.end(),
                                        [&](const auto& text) { return rest.starts_with(text->second); });
        if (match == longest_first.end()) {
            collapsed += takeLine(rest);
            continue;
        }
        collapsed += "{{" + (*match)->first + "}}\n";
        rest.remove_prefix((*match)->second.size());
    }
    return collapsed;
}

std::string firstDifference(std::string_view expected, std::string_view actual) {
    for (int number = 1; !expected.empty() || !actual.empty(); ++number) {
        const bool expected_ended = expected.empty();
        const bool actual_ended = actual.empty();
        const std::string_view expected_line = takeLine(expected);
        const std::string_view actual_line = takeLine(actual);
        if (expected_line == actual_line) {
            continue;
        }
        return "output differs in line " + std::to_string(number) +
               "\n  expected: " + (expected_ended ? "end of output" : visible(expected_line)) +
               "\n  actual:   " + (actual_ended ? "end of output" : visible(actual_line)) + "\n";
    }
    return {};
}

std::optional<Outcome> runProgram(const fs::path& program, const std::vector<std::string>& args,
                                  const fs::path& directory, std::string& problem) {
    const File out(std::tmpfile());
    const File err(std::tmpfile());
    if (!out || !err) {
        problem = std::string("no temporary file: ") + std::strerror(errno);
        return std::nullopt;
    }

    std::string name = program.string();
    std::vector<std::string> words = args;
    std::vector<char*> argv{name.data()};
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, fileno(out.get()), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fileno(err.get()), STDERR_FILENO);
    pid_t child = 0;
    const int error = posix_spawn(&child, name.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        problem = "cannot run " + name + ": " + std::strerror(error);
        return std::nullopt;
    }

    int wait_status = 0;
    while (waitpid(child, &wait_status, 0) == -1) {
        if (errno != EINTR) {
            problem = std::string("cannot wait: ") + std::strerror(errno);
            return std::nullopt;
        }
    }
    Outcome outcome;
    outcome.out = readFromStart(out.get());
    outcome.err = readFromStart(err.get());
    outcome.status = WIFEXITED(wait_status) ? WEXITSTATUS(wait_status) : 128 + WTERMSIG(wait_status);
    return outcome;
}

namespace {

std::optional<Outcome> runCase(const Case& a_case, const fs::path& directory, const Programs& programs,
                               std::string& problem) {
    const auto program = programs.find(a_case.program);
    if (program == programs.end() || program->second.empty()) {
        problem = "there is no program \"" + a_case.program + "\"";
        return std::nullopt;
    }
    return runProgram(program->second, a_case.args, directory, problem);
}

std::string compare(const Case& a_case, const Outcome& outcome, const Texts& texts) {
    std::string problem;
    const std::optional<std::string> expected = expandTexts(a_case.expected, texts, problem);
    if (!expected) {
        return problem + "\n";
    }
    std::string problems = firstDifference(*expected, outcome.out);
    if (outcome.status != a_case.status) {
        problems +=
            "exit status is " + std::to_string(outcome.status) + ", expected " + std::to_string(a_case.status) + "\n";
    }
    if (!outcome.err.empty()) {
        problems += "error output is not empty:\n" + outcome.err;
    }
    return problems;
}

} // namespace

std::string checkCase(const Case& a_case, const fs::path& directory, const Programs& programs, const Texts& texts) {
    std::string problem;
    const std::optional<Outcome> outcome = runCase(a_case, directory, programs, problem);
    return outcome ? compare(a_case, *outcome, texts) : problem + "\n";
}

std::string checkCaseFile(const fs::path& file, const Programs& programs, const Texts& texts, bool update) {
    std::string problem;
    std::optional<Case> a_case = parseCase(readFile(file), problem);
    if (!a_case) {
        return problem + "\n";
    }
    const std::optional<Outcome> outcome = runCase(*a_case, file.parent_path(), programs, problem);
    if (!outcome) {
        return problem + "\n";
    }
    if (update && expandTexts(a_case->expected, texts, problem) != outcome->out) {
        a_case->expected = collapseTexts(outcome->out, texts);
        std::ofstream(file, std::ios::binary | std::ios::trunc) << a_case->head << a_case->expected;
    }
    return compare(*a_case, *outcome, texts);
}

Texts readTexts(const fs::path& directory) {
    Texts texts;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
        if (entry.path().extension() == ".txt") {
            texts.emplace(entry.path().stem().string(), readFile(entry.path()));
        }
    }
    return texts;
}

} // namespace kestrel::cases
