#include "reader/line_form.hpp"

#include "ibis/run.hpp"

namespace kestrel {

std::string_view withoutEqualsSign(const Run& run, std::string_view text) {
    std::string_view behind = text;
    return takeItem(run, behind, '=') == "=" ? behind : text;
}

void expectNoText(Run& run, std::string_view text, std::string_view keyword, CountMessage message) {
    const int count = splitItems(run, text, 0).count;
    if (count > 0) errorAtLine(run.diagnostics, message, count + 1, keyword, 1);
}

void reportUnknownLine(Run& run, CheckedMessage<> message) { errorAtLine(run.diagnostics, message); }

ValueLine splitValueLine(const Run& run, std::string_view line) {
    const ItemList items = splitItems(run, line, ValueLine::kItems, '=');
    ValueLine parts;
    parts.count = items.count;
    parts.complete = items.count >= ValueLine::kItems && items[1] == "=";
    if (!parts.complete) return parts;
    parts.text = items[2];
    parts.result = readScaled(parts.text, parts.value);
    return parts;
}

bool readValueLine(Run& run, std::string_view text, const ValueLineMessages& messages, const ValueLineWords& words,
                   std::optional<double>& value) {
    if (messages.given == ValueGiven::whenAccepted) value = 0.0;

    const ValueLine line = splitValueLine(run, text);
    if (line.count > ValueLine::kItems && (line.complete || messages.too_many == TooMany::always)) {
        errorAtLine(run.diagnostics, messages.wrong_count, line.count, words.subject, ValueLine::kItems);
    }
    if (!line.complete) {
        errorAtLine(run.diagnostics, messages.invalid_line, words.subject);
        return false;
    }
    if (line.result == ReadResult::noNumber) {
        errorAtLine(run.diagnostics, messages.invalid_value, words.subject, line.text);
        return false;
    }
    if (line.result == ReadResult::numberAndText && messages.numeric_in_scale) {
        warningAtLine(run.diagnostics, *messages.numeric_in_scale, words.group, words.name, line.text);
    }
    value = line.value;
    return true;
}

std::optional<std::string_view> readWordLine(Run& run, std::string_view rest, std::string_view name,
                                             const WordLineMessages& messages) {
    constexpr int kItems = 2; // name and word
    const ItemList words = splitItems(run, withoutEqualsSign(run, rest), 1);
    const int count = words.count + 1;
    if (count < kItems) {
        if (!messages.missing) return std::string_view();
        errorAtLine(run.diagnostics, *messages.missing, name);
        return std::nullopt;
    }
    if (count > kItems) errorAtLine(run.diagnostics, messages.wrong_count, count, name, kItems);
    return words[0];
}

bool readRangeLine(Run& run, std::string_view rest, std::string_view name, const RangeLineRules& rules,
                   std::optional<Rng>& value) {
    const std::string_view values = rules.admits_equals_sign ? withoutEqualsSign(run, rest) : rest;
    Rng range;
    if (!readRange(run, values, name, range, OrderCheck::off)) return false;
    value = range;
    if (range.typ.state != CellState::na) return true;
    if (const auto* const named = std::get_if<CheckedMessage<ArgKind::text>>(&rules.typ_na)) {
        errorAtLine(run.diagnostics, *named, name);
    } else {
        errorAtLine(run.diagnostics, std::get<CheckedMessage<>>(rules.typ_na));
    }
    return true;
}

} // namespace kestrel
