#include "reader/line_form.hpp"

#include "reader/context.hpp"

namespace kestrel {

std::string_view withoutEqualsSign(const Context& context, std::string_view text) {
    std::string_view behind = text;
    return takeItem(context, behind, '=') == "=" ? behind : text;
}

void reportItemCount(Diagnostics& diagnostics, int count, std::span<const std::string_view> labels,
                     std::string_view subject, const ItemCountMessages& messages, MissingItems reported) {
    const auto items = static_cast<std::size_t>(count);
    if (count == 0 || items > labels.size()) {
        errorAtLine(diagnostics, messages.wrong, count, subject, static_cast<int>(labels.size()));
        return;
    }
    const std::size_t missing = labels.size() - items;
    for (const std::string_view label :
         labels.subspan(items, reported == MissingItems::first ? missing > 0 : missing)) {
        errorAtLine(diagnostics, messages.missing, label, subject);
    }
}

void expectNoText(Context& context, std::string_view text, std::string_view keyword, CountMessage message) {
    const int count = splitItems(context, text, 0).count;
    if (count > 0) errorAtLine(context.diagnostics, message, count + 1, keyword, 1);
}

ValueLine splitValueLine(const Context& context, std::string_view line) {
    const ItemList items = splitItems(context, line, ValueLine::kItems, '=');
    ValueLine parts;
    parts.count = items.count;
    parts.complete = items.count >= ValueLine::kItems && items[1] == "=";
    if (!parts.complete) return parts;
    parts.text = items[2];
    parts.result = readScaled(parts.text, parts.value);
    return parts;
}

bool readValueLine(Context& context, std::string_view text, const ValueLineMessages& messages,
                   const ValueLineWords& words, GivenValue& value) {
    if (messages.given == ValueGiven::whenAccepted) value = 0.0;

    const ValueLine line = splitValueLine(context, text);
    if (line.count > ValueLine::kItems && (line.complete || messages.too_many == TooMany::always)) {
        errorAtLine(context.diagnostics, messages.wrong_count, line.count, words.subject, ValueLine::kItems);
    }
    if (!line.complete) {
        errorAtLine(context.diagnostics, messages.invalid_line, words.subject);
        return false;
    }
    if (line.result == ReadResult::noNumber) {
        errorAtLine(context.diagnostics, messages.invalid_value, words.subject, line.text);
        return false;
    }
    if (line.result == ReadResult::numberAndText && messages.numeric_in_scale) {
        warningAtLine(context.diagnostics, *messages.numeric_in_scale, words.group, words.name, line.text);
    }
    value = line.value;
    return true;
}

std::optional<std::string_view> readWordLine(Context& context, std::string_view rest, std::string_view name,
                                             const WordLineMessages& messages) {
    constexpr int kItems = 2; // name and word
    const ItemList words = splitItems(context, withoutEqualsSign(context, rest), 1);
    const int count = words.count + 1;
    if (count < kItems) {
        if (!messages.missing) return std::string_view();
        errorAtLine(context.diagnostics, *messages.missing, name);
        return std::nullopt;
    }
    if (count > kItems) errorAtLine(context.diagnostics, messages.wrong_count, count, name, kItems);
    return words[0];
}

bool readRangeLine(Context& context, std::string_view rest, std::string_view name, const RangeLineRules& rules,
                   GivenRange& value) {
    const std::string_view values = rules.admits_equals_sign ? withoutEqualsSign(context, rest) : rest;
    Rng range;
    if (!readRange(context, values, name, range, OrderCheck::off)) return false;
    value = range;
    if (!range.typ().isNa()) return true;
    if (const auto* const named = std::get_if<CheckedMessage<ArgKind::text>>(&rules.typ_na)) {
        errorAtLine(context.diagnostics, *named, name);
    } else {
        errorAtLine(context.diagnostics, std::get<CheckedMessage<>>(rules.typ_na));
    }
    return true;
}

std::optional<std::string_view> readSetting(Context& context, std::string_view line, std::string_view name,
                                            const SettingMessages& messages) {
    constexpr int kItems = 2;
    const ItemList items = splitItems(context, line, kItems, '=');
    if (items.count == kItems) return items[1];
    if (items.count < kItems) {
        errorAtLine(context.diagnostics, messages.missing, name);
    } else if (items[1] == "=") {
        errorAtLine(context.diagnostics, messages.equals_sign, name);
    } else {
        errorAtLine(context.diagnostics, messages.count, items.count, name, kItems);
    }
    return std::nullopt;
}

bool readNumber(Context& context, std::string_view text, std::uint32_t& number, const NumberMessages& messages) {
    if (text.empty()) {
        errorAtLine(context.diagnostics, messages.blank);
        return false;
    }
    if (number != 0) {
        errorAtLine(context.diagnostics, messages.duplicate);
        return false;
    }
    const ReadResult result = readUnsigned(text, number);
    if (result == ReadResult::noNumber) {
        errorAtLine(context.diagnostics, messages.bad);
        return true;
    }
    if (result == ReadResult::numberAndText) warningAtLine(context.diagnostics, messages.suspicious);
    if (number == 0) errorAtLine(context.diagnostics, messages.zero);
    return true;
}

} // namespace kestrel
