#include "findings/ignored.hpp"

#include "base/text.hpp"

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

std::optional<FindingCode> knownCode(std::string_view text, bool (*is_advice)(MessageCode code)) {
    const std::optional<FindingCode> code = readFindingCode(text);
    if (!code) return std::nullopt;
    if (code->family == CodeFamily::advice) return is_advice(code->number) ? code : std::nullopt;
    const std::size_t row = catalogIndex(code->number);
    if (row == kCatalog.size() || kCatalog[row].text == kReservedText) return std::nullopt;
    return code;
}

} // namespace

bool Ignored::has(const Finding& finding) const {
    if (!any || !finding.code) return false;
    return codes.contains(*finding.code) ||
           of_level[static_cast<std::size_t>(levelOf(finding.severity))].contains(*finding.code);
}

std::optional<std::string> ignore(Ignored& ignored, std::string_view list, bool (*is_advice)(MessageCode code)) {
    for (;;) {
        const std::string_view word = list.substr(0, list.find(','));
        const std::optional<Level> level = word.empty() ? std::nullopt : levelOfLetter(word.front());
        const std::optional<FindingCode> code = knownCode(level ? word.substr(1) : word, is_advice);
        if (!code) return std::string(word);
        (level ? ignored.of_level[static_cast<std::size_t>(*level)] : ignored.codes).insert(*code);
        ignored.any = true;
        if (word.size() == list.size()) return std::nullopt;
        list.remove_prefix(word.size() + 1);
    }
}

} // namespace kestrel
