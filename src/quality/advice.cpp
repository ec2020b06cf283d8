#include "quality/advice.hpp"

#include <algorithm>
#include <utility>

namespace kestrel {

namespace {

/// What a text begins with.
std::string beginningOf(const AdvicePlace& place) {
    if (place.of_file || place.subject == nullptr || place.subject->kind == SubjectKind::header) return "File: ";
    std::string text(subjectKindName(place.subject->kind));
    if (text[0] >= 'a' && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 'a' + 'A');
    text.append(" '").append(place.subject->name.view()).append("': ");
    return text;
}

} // namespace

void AdviceList::addRow(AdvicePlace place, std::size_t row, std::span<const Arg> args) {
    const AdviceRow& found = kAdviceCatalog[row];
    formatText(text_, found.text, args);
    keep(place, found.code, beginningOf(place).append(text_));
}

void AdviceList::addMessageRow(AdvicePlace place, MessageCode code, std::size_t row, std::span<const Arg> args) {
    formatText(text_, kCatalog[row].text, args);
    keep(place, code, text_);
}

void AdviceList::keep(AdvicePlace place, MessageCode code, std::string text) {
    list_.push_back({.code = {CodeFamily::advice, code},
                     .line = std::max(place.line, std::uint32_t{1}),
                     .exact = place.subject == nullptr || place.line != place.subject->line,
                     .subject = place.of_file ? nullptr : place.subject,
                     .text = std::move(text)});
}

void AdviceList::addMore(CheckedMore words, std::size_t count) {
    if (count == 0) return;
    const MoreWords& row = kMoreWords[words.place];
    std::string& text = list_.back().text;
    text.append("; ").append(std::to_string(count)).append(" more ").append(count == 1 ? row.one : row.several);
}

std::vector<Advice> AdviceList::takeSorted() {
    std::ranges::stable_sort(
        list_, [](const Advice& a, const Advice& b) { return a.line != b.line ? a.line < b.line : a.code < b.code; });
    return std::exchange(list_, {});
}

} // namespace kestrel
