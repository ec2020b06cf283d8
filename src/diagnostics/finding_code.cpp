#include "diagnostics/finding_code.hpp"

#include "diagnostics/message.hpp"

#include <charconv>

namespace kestrel {

CodeText::CodeText(std::optional<FindingCode> code) {
    if (!code) return;
    char* begin = letters_.data();
    if (code->family == CodeFamily::advice) *begin++ = 'Q';
    const auto end = std::to_chars(begin, letters_.data() + letters_.size(), code->number);
    length_ = static_cast<std::size_t>(end.ptr - letters_.data());
}

std::optional<FindingCode> readFindingCode(std::string_view text) {
    FindingCode code;
    if (text.starts_with('Q') || text.starts_with('q')) {
        code.family = CodeFamily::advice;
        text.remove_prefix(1);
    }
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, code.number);
    if (read.ec != std::errc{} || read.ptr != end || code.number == 0) return std::nullopt;
    return code;
}

std::string generalText(FindingCode code) {
    const std::string_view pattern = kCatalog[catalogIndex(code.number)].text;
    std::string text;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == '%') {
            ++i; // the conversion's letter
            text.append("...");
        } else if (pattern[i] == '\n') {
            if (pattern.substr(i + 1).starts_with(' ')) ++i;
            text.push_back(' ');
        } else {
            text.push_back(pattern[i]);
        }
    }
    return text;
}

} // namespace kestrel
