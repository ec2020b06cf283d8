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
    std::string text(kCatalog[catalogIndex(code.number)].text);
    for (std::size_t at = text.find('%'); at != std::string::npos; at = text.find('%', at))
        text.replace(at, 2, "...");
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at))
        text.replace(at, text.substr(at).starts_with("\n ") ? 2 : 1, " ");
    return text;
}

} // namespace kestrel
