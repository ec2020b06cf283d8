#include "topics/topic_forms.hpp"

#include "base/text.hpp"

#include <algorithm>

namespace kestrel {

namespace {

constexpr std::string_view kExample = "Example";
constexpr std::string_view kBad = "Bad:";
constexpr std::string_view kMended = "Mended:";

/// Calls `use` with each line.
template <class Use> void eachLine(std::string_view text, Use use) {
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        use(line);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
}

void appendIndented(std::string& to, std::string_view text) {
    eachLine(text, [&to](std::string_view line) {
        if (!line.empty()) to.append("    ").append(line);
        to.push_back('\n');
    });
}

void appendBlock(std::string& to, std::string_view label, std::string_view text) {
    to.append(label).append("\n\n```\n").append(text).append("\n```\n");
}

} // namespace

std::string plainText(const Topic& topic, const PlainForm& form) {
    const std::size_t width = form.width == 0 ? std::string_view::npos : form.width;
    std::string text;
    const auto add_heading = [&](std::string_view heading) {
        text.append(text.empty() ? "" : "\n").append(form.heading_begin).append(heading).append(form.heading_end);
        text.append("\n\n");
    };
    for (const TopicPart& part : partsOf(topic)) {
        if (part.text.empty()) continue;
        add_heading(part.heading);
        appendWrapped(text, part.text, width);
    }
    add_heading(kExample);
    if (!topic.reason.empty()) {
        appendWrapped(text, "None: " + std::string(topic.reason), width);
    } else {
        text.append(kBad).append("\n");
        appendIndented(text, topic.bad);
        text.append(kMended).append("\n");
        appendIndented(text, topic.mended);
    }
    return text;
}

std::string markdownText(const Topic& topic) {
    std::string text;
    for (const TopicPart& part : partsOf(topic)) {
        if (part.text.empty()) continue;
        text.append(text.empty() ? "**" : "\n**").append(part.heading).append("**\n\n");
        bool in_block = false;
        eachLine(part.text, [&](std::string_view line) {
            // Lines that are not to be wrapped are a block, which four blanks make, between empty lines.
            const bool is_block = line.starts_with(' ');
            if (is_block != in_block && !text.ends_with("\n\n")) text.push_back('\n');
            in_block = is_block;
            text.append(is_block ? "    " + std::string(trim(line)) : escapedMarkdown(line)).append("\n");
        });
    }
    text.append("\n**").append(kExample).append("**\n\n");
    if (!topic.reason.empty()) return text.append("None: ").append(escapedMarkdown(topic.reason)).append("\n");
    appendBlock(text, kBad, topic.bad);
    text.push_back('\n');
    appendBlock(text, kMended, topic.mended);
    return text;
}

std::string escapedMarkdown(std::string_view text) {
    constexpr std::string_view kSpecial = "\\`*<|~";
    std::string escaped;
    const auto is_word = [](char c) { return isAlpha(c) || isDigit(c); };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        // An underscore inside of a word means nothing.
        const bool inside = i > 0 && i + 1 < text.size() && is_word(text[i - 1]) && is_word(text[i + 1]);
        if (kSpecial.find(c) != std::string_view::npos || (c == '_' && !inside)) escaped.push_back('\\');
        escaped.push_back(c);
    }
    return escaped;
}

} // namespace kestrel
