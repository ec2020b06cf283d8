#include "report/explanation.hpp"

#include "report/quantity.hpp"

#include <algorithm>
#include <cctype>
#include <string>

namespace kestrel {

namespace {

/// A paragraph with true minus signs ahead of its numbers and of the names of values; what it quotes stays as it reads.
std::string withMinus(std::string_view paragraph) {
    std::string text;
    bool is_quoted = false;
    for (std::size_t i = 0; i < paragraph.size(); ++i) {
        const char c = paragraph[i];
        if (c == '"') is_quoted = !is_quoted;
        const bool is_ahead = i != 0 && (paragraph[i - 1] == ' ' || paragraph[i - 1] == '(');
        const bool has_value =
            i + 1 < paragraph.size() && std::isalnum(static_cast<unsigned char>(paragraph[i + 1])) != 0;
        if (c == '-' && !is_quoted && is_ahead && has_value) {
            text.append(kMinus);
        } else {
            text.push_back(c);
        }
    }
    return text;
}

/// Paragraphs are lines; those that begin with a blank keep their form.
void writeProse(Html& html, std::string_view text) {
    bool in_pre = false;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const bool is_pre = line.starts_with(' ');
        if (is_pre != in_pre) html << (is_pre ? Markup("<pre>") : Markup("</pre>"));
        in_pre = is_pre;
        if (is_pre) {
            html << Text(line) << "\n";
        } else if (!line.empty()) {
            html << "<p>" << Text(withMinus(line)) << "</p>";
        }
    }
    if (in_pre) html << "</pre>";
}

void writeLines(Html& html, Markup heading, std::string_view lines) {
    if (!lines.empty()) html << "<h5>" << heading << "</h5><pre>" << Text(lines) << "</pre>";
}

} // namespace

void writeExplanation(Html& html, const Topic& topic) {
    html << "<details class=\"fold explanation\"><summary>" << Text(topic.title) << "</summary>";
    for (const TopicPart& part : partsOf(topic)) {
        if (part.text.empty()) continue;
        html << "<h5>" << Text(part.heading) << "</h5>";
        writeProse(html, part.text);
    }
    writeLines(html, "Example", topic.bad);
    writeLines(html, "Mended", topic.mended);
    html << "</details>";
}

} // namespace kestrel
