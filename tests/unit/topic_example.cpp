#include "topic_example.hpp"

#include "base/text.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

namespace kestrel {

namespace {

using Lines = std::vector<std::string>;

Lines linesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::string textOf(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines)
        text.append(line).push_back('\n');
    return text;
}

/// The first word of a line, which a blank or "=" ends.
std::string_view firstWord(std::string_view line) {
    line = trim(line);
    return line.substr(0, line.find_first_of(" \t="));
}

/// A keyword as files may write it, in one form: "[Pin Mapping]" as "[PIN_MAPPING".
std::string foldedKeyword(std::string_view line) {
    std::string keyword;
    for (const char c : line.substr(0, line.find(']')))
        keyword.push_back(c == ' ' ? '_' : toUpper(c));
    return keyword;
}

/// What the parentheses behind "Example" say.
struct FrameSpec {
    std::string frame;
    std::string name;                   ///< of the file; empty for that of the frame
    std::vector<std::string> without{}; ///< keywords as "[RAMP", words of the main section as they are
};

FrameSpec readSpec(std::string_view text, std::vector<std::string>& faults) {
    FrameSpec spec;
    const auto next = [&text] {
        text = trim(text);
        const bool is_keyword = text.starts_with('[') && text.find(']') != std::string_view::npos;
        const std::size_t end = is_keyword ? text.find(']') + 1 : std::min(text.find_first_of(" ,"), text.size());
        const std::string_view word = text.substr(0, end);
        text.remove_prefix(end);
        while (text.starts_with(' ') || text.starts_with(','))
            text.remove_prefix(1);
        return word;
    };
    spec.frame = next();
    bool takes_out = false;
    while (!text.empty()) {
        const std::string_view word = next();
        if (word == "without") {
            takes_out = true;
        } else if (word == "named") {
            spec.name = next();
            takes_out = false;
        } else if (takes_out) {
            spec.without.push_back(word.starts_with('[') ? foldedKeyword(word) : std::string(word));
        } else {
            faults.push_back("\"" + std::string(word) + "\" in the parentheses behind \"Example\" says nothing");
        }
    }
    return spec;
}

/// A piece of a file: a keyword's line and those under it, or the place for more, which has no lines.
struct Section {
    Lines lines{};
    std::string keyword{}; ///< empty for lines ahead of the first one and the place for more
    bool is_main = false;
    bool is_place = false;
    bool stays = false; ///< no section of an example takes its place
    bool added = false; ///< it is the example's
};

using Sections = std::vector<Section>;

Sections frameSections(std::string_view text) {
    Sections sections(1);
    bool next_is_main = false;
    bool stays = false;
    for (const std::string& line : linesOf(text)) {
        if (line == "|@") sections.push_back({.is_place = true});
        if (line == "|@main") next_is_main = true;
        if (line == "|@keep") stays = true;
        if (line == "|@change") stays = false;
        if (line.starts_with("|@")) continue;
        if (line.starts_with('[')) {
            sections.push_back({.keyword = foldedKeyword(line), .is_main = next_is_main, .stays = stays});
            next_is_main = false;
        }
        sections.back().lines.push_back(line);
    }
    return sections;
}

/// Takes away the lines that begin with a word; where the first of them was.
std::optional<std::size_t> takeOutWord(Lines& lines, std::string_view word) {
    std::optional<std::size_t> place;
    for (std::size_t i = 1; i < lines.size();) {
        if (word.empty() || word.starts_with('|') || firstWord(lines[i]) != word) {
            ++i;
            continue;
        }
        if (!place) place = i;
        lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(i));
    }
    return place;
}

/// Puts lines into the main section, each in place of those that begin with its word.
void putIntoMain(Section& section, const Lines& added) {
    std::map<std::string, std::size_t, std::less<>> behind; // the words that came, and where the next line of each goes
    for (const std::string& line : added) {
        const std::string word(firstWord(line));
        const auto known = behind.find(word);
        const std::optional<std::size_t> place =
            known != behind.end() ? std::optional(known->second) : takeOutWord(section.lines, word);
        const std::size_t at = place.value_or(section.lines.size());
        section.lines.insert(section.lines.begin() + static_cast<std::ptrdiff_t>(at), line);
        for (auto& [other, next] : behind)
            if (next >= at) ++next;
        if (!word.empty() && !word.starts_with('|')) behind[word] = at + 1;
    }
}

void putSection(Sections& sections, const Section& added, std::optional<std::size_t>& last) {
    const auto same = std::ranges::find_if(sections, [&](const Section& section) {
        return section.keyword == added.keyword && !section.stays && !section.added;
    });
    const bool taken = std::ranges::any_of(
        sections, [&](const Section& section) { return section.added && section.keyword == added.keyword; });
    if (same != sections.end() && !taken) {
        last = static_cast<std::size_t>(same - sections.begin());
        *same = added;
        return;
    }
    const auto place = std::ranges::find_if(sections, &Section::is_place);
    last = last ? *last + 1 : static_cast<std::size_t>(place - sections.begin());
    sections.insert(sections.begin() + static_cast<std::ptrdiff_t>(*last), added);
}

std::string fillSections(std::string_view frame, const FrameSpec& spec, const Lines& lines,
                         std::vector<std::string>& faults) {
    Sections sections = frameSections(frame);
    for (const std::string& out : spec.without) {
        if (out.starts_with('[')) {
            if (std::erase_if(sections, [&](const Section& section) { return section.keyword == out; }) == 0)
                faults.push_back("the frame has no section " + out + "]");
            continue;
        }
        const auto main = std::ranges::find_if(sections, &Section::is_main);
        if (main == sections.end() || !takeOutWord(main->lines, out))
            faults.push_back("the main section has no line \"" + out + "\"");
    }
    Lines own;
    Sections added;
    for (const std::string& line : lines) {
        if (line.starts_with('[')) added.push_back({.keyword = foldedKeyword(line), .added = true});
        (added.empty() ? own : added.back().lines).push_back(line);
    }
    const auto main = std::ranges::find_if(sections, &Section::is_main);
    if (main != sections.end()) putIntoMain(*main, own);
    std::optional<std::size_t> last;
    for (const Section& section : added)
        putSection(sections, section, last);
    std::string text;
    for (const Section& section : sections)
        text.append(textOf(section.lines));
    return text;
}

/// The end of the branch of a parameter file that begins at `begin`: behind its closing parenthesis, or the text's end.
std::size_t branchEnd(std::string_view text, std::size_t begin) {
    int depth = 0;
    bool quoted = false;
    for (std::size_t i = begin; i < text.size(); ++i) {
        if (text[i] == '"') quoted = !quoted;
        if (quoted) continue;
        if (text[i] == '(') ++depth;
        if (text[i] == ')' && --depth == 0) return i + 1;
    }
    return text.size();
}

std::string_view branchName(std::string_view branch) {
    branch = trim(branch.substr(std::min<std::size_t>(1, branch.size())));
    return branch.substr(0, branch.find_first_of(" \t\n()"));
}

/// Where the branch of this name begins among the children of the one that begins at `parent`; the closing parenthesis
/// of the parent when there is none.
std::size_t childPlace(std::string_view text, std::size_t parent, std::string_view name) {
    const std::size_t end = branchEnd(text, parent) - 1;
    for (std::size_t at = text.find('(', parent + 1); at < end; at = text.find('(', branchEnd(text, at)))
        if (branchName(text.substr(at)) == name) return at;
    return end;
}

std::string fillBranches(std::string_view frame, const FrameSpec& spec, std::string_view lines,
                         std::vector<std::string>& faults) {
    std::string text(frame);
    const std::size_t root = text.find('(');
    const auto parent = [&] {
        if (spec.frame == "ami-reserved") return childPlace(text, root, "Reserved_Parameters");
        if (spec.frame == "ami-specific") return childPlace(text, root, "Model_Specific");
        return root;
    };
    for (const std::string& out : spec.without) {
        const std::size_t at = childPlace(text, parent(), out);
        if (text[at] != '(') faults.push_back("the frame has no branch " + out);
        if (text[at] == '(') text.erase(at, branchEnd(text, at) - at);
    }
    while (!lines.empty()) {
        // Whatever stands behind a branch belongs to it.
        const std::size_t begin = lines.find('(');
        const std::size_t end = begin == std::string_view::npos
                                    ? lines.size()
                                    : std::min(lines.find('(', branchEnd(lines, begin)), lines.size());
        const std::string_view name = begin == std::string_view::npos ? "" : branchName(lines.substr(begin));
        const std::size_t at = childPlace(text, parent(), name);
        if (text[at] == '(') text.erase(at, branchEnd(text, at) - at);
        text.insert(at, std::string(stripTrailing(lines.substr(0, end))).append("\n"));
        lines.remove_prefix(end);
    }
    return text;
}

/// The file of a frame; nothing for the frame "file".
std::string fileOfFrame(std::string_view frame) {
    if (frame == "model" || frame == "component") return std::string(frame) + ".ibs";
    if (frame == "package") return "package.pkg";
    if (frame == "board") return "board.ebd";
    if (frame == "ami" || frame == "ami-reserved" || frame == "ami-specific") return "parameters.ami";
    return {};
}

} // namespace

std::string readWhole(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

ExampleFiles expandExample(const std::string& folder, std::string_view frame, std::string_view lines,
                           std::vector<std::string>& faults) {
    constexpr std::string_view kCompanion = "--- ";
    const FrameSpec spec = readSpec(frame, faults);
    const std::string base = fileOfFrame(spec.frame);
    if (base.empty() && spec.frame != "file") faults.push_back("there is no frame \"" + spec.frame + "\"");
    ExampleFiles files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        files.texts[entry.path().filename().string()] = readWhole(entry.path().string());

    Lines own;
    std::string* companion = nullptr;
    for (const std::string& line : linesOf(lines)) {
        if (line.starts_with(kCompanion)) {
            companion = &files.texts[line.substr(kCompanion.size())];
            companion->clear();
        } else if (companion != nullptr) {
            companion->append(line).push_back('\n');
        } else {
            own.push_back(line);
        }
    }
    files.name = !spec.name.empty() ? spec.name : base.empty() ? "example.ibs" : base;
    std::string whole = textOf(own);
    if (base == "parameters.ami") {
        whole = fillBranches(files.texts[base], spec, textOf(own), faults);
    } else if (!base.empty()) {
        whole = fillSections(files.texts[base], spec, own, faults);
    }
    if (files.name != base) files.texts.erase(base);
    files.texts[files.name] = whole;
    return files;
}

} // namespace kestrel
