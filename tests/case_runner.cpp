#include "case_runner.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <stdexcept>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrel::cases {
namespace {

namespace fs = std::filesystem;

/// What one case file says.
struct Case {
    std::string head; ///< everything up to and including the line "---"
    std::string args;
    int status = 0;
    std::string program = "kestrel";
    std::string expected; ///< as written, names in braces not yet replaced
};

/// What a program did.
struct Outcome {
    std::string out;
    std::string err;
    int status = 0; ///< exit status, or 128 + N after an end by signal N
};

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// Ends a case that cannot be run.
[[noreturn]] void fail(const std::string& problem) { throw std::runtime_error(problem); }

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string readFromStart(std::FILE* file) {
    std::rewind(file);
    std::string text;
    std::array<char, 1 << 14> buffer;
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), file))
        text.append(buffer.data(), count);
    return text;
}

/// Takes one line with its newline off the front.
std::string_view takeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end == std::string_view::npos ? end : end + 1);
    text.remove_prefix(line.size());
    return line;
}

std::string_view trim(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n"), text.size()));
    return text.substr(0, text.find_last_not_of(" \t\n") + 1);
}

/// Blanks at the end and control characters would not be seen in a report.
std::string visible(std::string_view line) {
    std::string text = "|";
    for (const char c : line.substr(0, line.find('\n'))) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte != 0x7f) {
            text += c;
        } else {
            constexpr std::string_view kDigits = "0123456789abcdef";
            text.append("\\x").append({kDigits[byte / 16], kDigits[byte % 16]});
        }
    }
    return text + (line.ends_with('\n') ? "|" : "| (no newline)");
}

void setField(Case& a_case, std::string_view key, std::string_view value) {
    if (key == "args") {
        a_case.args = value;
    } else if (key == "status") {
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), a_case.status);
        if (error != std::errc{} || end != value.data() + value.size()) fail("status: not a number");
    } else if (key == "program") {
        a_case.program = value;
    } else {
        fail("unknown field \"" + std::string(key) + "\"");
    }
}

Case parseCase(std::string_view text) {
    Case a_case;
    std::set<std::string_view> seen;
    bool has_comment = false;
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view line = trim(takeLine(rest));
        if (line == "---") {
            if (!has_comment) fail("no comment that tells what the case guards");
            if (!seen.contains("args")) fail("no field \"args\"");
            a_case.head = text.substr(0, text.size() - rest.size());
            a_case.expected = rest;
            return a_case;
        }
        has_comment |= line.starts_with('#');
        if (line.empty() || line.starts_with('#')) continue;
        const std::string_view key = line.substr(0, line.find(':'));
        if (key.size() == line.size() || !seen.insert(key).second)
            fail("a line that is no new field: " + visible(line));
        setField(a_case, key, trim(line.substr(key.size() + 1)));
    }
    fail("no line \"---\" ahead of the expected output");
}

/// Replaces every line {{NAME}} by the text of that name.
std::string expandTexts(std::string_view expected, const Texts& texts) {
    std::string expanded;
    for (std::string_view rest = expected; !rest.empty();) {
        const std::string_view line = takeLine(rest);
        const std::string_view bare = line.substr(0, line.find('\n'));
        if (!bare.starts_with("{{") || !bare.ends_with("}}")) {
            expanded += line;
            continue;
        }
        const auto text = texts.find(bare.substr(2, bare.size() - 4));
        if (text == texts.end()) fail("there is no text for " + std::string(bare));
        expanded += text->second;
    }
    return expanded;
}

/// The reverse of `expandTexts`.
std::string collapseTexts(std::string_view output, const Texts& texts) {
    std::string collapsed;
    for (std::string_view rest = output; !rest.empty();) {
        const Texts::value_type* longest = nullptr;
        for (const Texts::value_type& text : texts) {
            const bool longer = text.second.size() > (longest != nullptr ? longest->second.size() : 0);
            if (longer && rest.starts_with(text.second)) longest = &text;
        }
        if (longest == nullptr) {
            collapsed += takeLine(rest);
        } else {
            collapsed += "{{" + longest->first + "}}\n";
            rest.remove_prefix(longest->second.size());
        }
    }
    return collapsed;
}

/// The first line in which the outputs differ, with both versions; empty when they are equal.
std::string firstDifference(std::string_view expected, std::string_view actual) {
    const auto shown = [](std::string_view line) { return line.empty() ? "end of output" : visible(line); };
    for (int number = 1; !expected.empty() || !actual.empty(); ++number) {
        const std::string_view expected_line = takeLine(expected);
        const std::string_view actual_line = takeLine(actual);
        if (expected_line == actual_line) continue;
        return "output differs in line " + std::to_string(number) + "\n  expected: " + shown(expected_line) +
               "\n  actual:   " + shown(actual_line) + "\n";
    }
    return {};
}

/// Runs the program without input in the directory and waits for its end.
Outcome runCase(const Case& a_case, const fs::path& directory, const Programs& programs) {
    const auto program = programs.find(a_case.program);
    if (program == programs.end() || program->second.empty()) fail("there is no program \"" + a_case.program + "\"");
    const File out(std::tmpfile(), std::fclose);
    const File err(std::tmpfile(), std::fclose);
    if (!out || !err) fail("no temporary file");

    std::array<std::string, 4> words{"sh", "-c", "exec \"$0\" " + a_case.args, program->second.string()};
    std::array<char*, 5> argv{};
    std::ranges::transform(words, argv.begin(), [](std::string& word) { return word.data(); });
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, fileno(out.get()), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fileno(err.get()), STDERR_FILENO);
    pid_t child = 0;
    const int error = posix_spawn(&child, "/bin/sh", &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) fail("cannot run " + program->second.string());

    int status = 0;
    while (waitpid(child, &status, 0) == -1)
        if (errno != EINTR) fail("cannot wait for the end of " + program->second.string());
    return {readFromStart(out.get()), readFromStart(err.get()),
            WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status)};
}

std::string compare(const Case& a_case, const Outcome& outcome, const Texts& texts) {
    std::string problems = firstDifference(expandTexts(a_case.expected, texts), outcome.out);
    if (outcome.status != a_case.status)
        problems +=
            "exit status is " + std::to_string(outcome.status) + ", expected " + std::to_string(a_case.status) + "\n";
    if (!outcome.err.empty()) problems += "error output is not empty:\n" + outcome.err;
    return problems;
}

} // namespace

std::string checkCase(std::string_view text, const fs::path& directory, const Programs& programs, const Texts& texts) {
    try {
        const Case a_case = parseCase(text);
        return compare(a_case, runCase(a_case, directory, programs), texts);
    } catch (const std::runtime_error& problem) {
        return problem.what() + std::string("\n");
    }
}

std::string checkCaseFile(const fs::path& file, const Programs& programs, const Texts& texts, bool update) {
    std::string text = readFile(file);
    if (update && !checkCase(text, file.parent_path(), programs, texts).empty()) {
        const Case a_case = parseCase(text);
        const Outcome outcome = runCase(a_case, file.parent_path(), programs);
        text = a_case.head + collapseTexts(outcome.out, texts);
        std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
    }
    return checkCase(text, file.parent_path(), programs, texts);
}

Texts readTexts(const fs::path& directory) {
    Texts texts;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory))
        if (entry.path().extension() == ".txt") texts.emplace(entry.path().stem().string(), readFile(entry.path()));
    return texts;
}

} // namespace kestrel::cases
