#include "topics/find.hpp"

#include "base/text.hpp"
#include "topics/topic.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

namespace kestrel {

namespace {

constexpr std::size_t kLongest = 4096; ///< more of a text is not looked at
constexpr char kAnything = '\x01';     ///< stands for what a finding fills in

/// A text in small letters, one blank for all white space between words, "..." as kAnything.
std::string folded(std::string_view text) {
    constexpr std::string_view kDots = "...";
    std::string result;
    text = trim(text.substr(0, kLongest));
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool is_anything = text.substr(i).starts_with(kDots);
        const char c = is_anything ? kAnything : isSpace(text[i]) ? ' ' : toLower(text[i]);
        if (is_anything) i += kDots.size() - 1;
        if (c != ' ' || result.back() != ' ') result.push_back(c);
    }
    return result;
}

/// What is ahead of a message where it is printed: "ERROR (line   12) - " or "board.ibs:12: error: ".
void dropHead(std::string& text) {
    constexpr std::array<std::string_view, 6> kClasses{"error", "warning", "note", "caution", "advice", "bug"};
    for (const std::string_view name : kClasses) {
        const std::string behind_place = ": " + std::string(name) + ": ";
        if (const std::size_t at = text.find(behind_place); at != std::string::npos) {
            text.erase(0, at + behind_place.size());
            return;
        }
        const std::size_t dash = text.find(" - ");
        if (!text.starts_with(name) || dash == std::string::npos) continue;
        const std::string_view between = std::string_view(text).substr(name.size(), dash - name.size());
        if (!between.empty() && !between.starts_with(" (line")) continue;
        text.erase(0, dash + 3);
        return;
    }
}

/// What a finding of a code reads like. The texts of advice are not known here, its titles are.
std::string patternOf(const TopicRow& row) {
    if (row.code.family == CodeFamily::advice) return std::string(topics()[row.topic].title);
    return generalText(row.code);
}

/// The code in brackets at the end of a finding as compilers print it.
std::optional<FindingCode> codeAtEnd(std::string_view text) {
    const std::size_t begin = text.rfind('[');
    if (!text.ends_with(']') || begin == std::string_view::npos) return std::nullopt;
    const std::optional<FindingCode> code = readFindingCode(text.substr(begin + 1, text.size() - begin - 2));
    return code && topicOf(*code) != nullptr ? code : std::nullopt;
}

/// True when `text` is `pattern` with something for each kAnything.
bool matches(std::string_view pattern, std::string_view text) {
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t after_last = std::string_view::npos; // behind the last kAnything, and the text's rest that it got
    std::size_t rest = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == kAnything) {
            after_last = ++p;
            rest = t;
        } else if (p < pattern.size() && pattern[p] == text[t]) {
            ++p;
            ++t;
        } else if (after_last != std::string_view::npos) {
            p = after_last;
            t = ++rest;
        } else {
            return false;
        }
    }
    return std::ranges::all_of(pattern.substr(p), [](char c) { return c == kAnything; });
}

/// Pairs of letters that follow each other, sorted.
std::vector<std::uint16_t> pairsOf(std::string_view text) {
    std::vector<std::uint16_t> pairs;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i - 1] == kAnything || text[i] == kAnything) continue;
        const auto first = static_cast<unsigned char>(text[i - 1]);
        const auto second = static_cast<unsigned char>(text[i]);
        pairs.push_back(static_cast<std::uint16_t>(first * 256U + second));
    }
    std::ranges::sort(pairs);
    return pairs;
}

/// How much two lists share: 0 for nothing, 1 when they are the same.
double likeness(const std::vector<std::uint16_t>& a, const std::vector<std::uint16_t>& b) {
    std::size_t shared = 0;
    for (std::size_t i = 0, j = 0; i < a.size() && j < b.size();) {
        if (a[i] == b[j]) ++shared;
        const bool first_goes_on = a[i] <= b[j];
        const bool second_goes_on = b[j] <= a[i];
        if (first_goes_on) ++i;
        if (second_goes_on) ++j;
    }
    const std::size_t all = a.size() + b.size();
    return all == 0 ? 0.0 : 2.0 * static_cast<double>(shared) / static_cast<double>(all);
}

} // namespace

std::optional<FindingCode> readAskedCode(std::string_view text) {
    constexpr std::string_view kLetters = "BEWNAC";
    text = trim(text);
    if (!text.empty() && kLetters.find(toUpper(text.front())) != std::string_view::npos) text.remove_prefix(1);
    return readFindingCode(text);
}

std::vector<FindingCode> codesOfText(std::string_view text) {
    if (const std::optional<FindingCode> code = codeAtEnd(trim(text))) return {*code};
    std::string asked = folded(text);
    dropHead(asked);
    std::vector<FindingCode> codes;
    std::size_t most = 0;
    for (const TopicRow& row : topicRows()) {
        const std::string pattern = folded(patternOf(row));
        const auto same = pattern.size() - static_cast<std::size_t>(std::ranges::count(pattern, kAnything));
        if (same < most || !matches(pattern, asked)) continue;
        if (same > most) codes.clear();
        most = same;
        codes.push_back(row.code);
    }
    return codes;
}

std::optional<FindingCode> nearestCode(std::string_view text) {
    constexpr double kLeast = 0.5;
    std::string asked = folded(text);
    dropHead(asked);
    const std::vector<std::uint16_t> pairs = pairsOf(asked);
    std::optional<FindingCode> nearest;
    double most = kLeast;
    for (const TopicRow& row : topicRows()) {
        const double alike = likeness(pairs, pairsOf(folded(patternOf(row))));
        if (alike <= most) continue;
        most = alike;
        nearest = row.code;
    }
    return nearest;
}

} // namespace kestrel
