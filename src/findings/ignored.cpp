#include "findings/ignored.hpp"

#include "base/text.hpp"

#include <charconv>

namespace kestrel {

namespace {

std::optional<Level> levelOfLetter(char letter) {
    switch (toUpper(letter)) {
    case 'B': return Level::bug;
    case 'E': return Level::error;
    case 'W': return Level::warning;
    case 'N': return Level::note;
    case 'A': return Level::advice;
    case 'C': return Level::caution;
    default: return std::nullopt;
    }
}

std::optional<MessageCode> messageCode(std::string_view text) {
    MessageCode code = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), code);
    if (failure != std::errc{} || end != text.data() + text.size() || code == 0) return std::nullopt;
    const std::size_t row = catalogIndex(code);
    if (row == kCatalog.size() || kCatalog[row].text == kReservedText) return std::nullopt;
    return code;
}

} // namespace

bool Ignored::has(const Finding& finding) const {
    if (!any || !finding.code) return false;
    return codes.contains(*finding.code) ||
           of_level[static_cast<std::size_t>(levelOf(finding.severity))].contains(*finding.code);
}

std::optional<std::string> ignore(Ignored& ignored, std::string_view list) {
    for (;;) {
        const std::string_view word = list.substr(0, list.find(','));
        const std::optional<Level> level = word.empty() ? std::nullopt : levelOfLetter(word.front());
        const std::optional<MessageCode> code = messageCode(level ? word.substr(1) : word);
        if (!code) return std::string(word);
        (level ? ignored.of_level[static_cast<std::size_t>(*level)] : ignored.codes).insert(*code);
        ignored.any = true;
        if (word.size() == list.size()) return std::nullopt;
        list.remove_prefix(word.size() + 1);
    }
}

} // namespace kestrel
