#include "reader/subparameters.hpp"

#include "reader/names.hpp"

namespace kestrel {

bool readSubparameterValue(Context& context, const SubparameterMessages& messages, const SubparameterLine& line,
                           GivenValue& value) {
    const ValueLineWords words = messages.about_owner ? ValueLineWords{line.owner, line.owner, line.name}
                                                      : ValueLineWords{line.name, messages.group, line.name};
    if (!readValueLine(context, line.text, *messages.value, words, value)) return false;
    const bool outside = line.bound == Bound::aboveZero ? *value <= 0.0 : *value < 0.0;
    if (line.bound != Bound::none && outside) errorAtLine(context.diagnostics, *messages.out_of_bounds, line.name);
    return true;
}

bool readSubparameterValue(Context& context, const SubparameterMessages& messages, const SubparameterLine& line,
                           GivenRange& range) {
    if (!readRangeLine(context, line.rest, line.name, *messages.range, range)) return false;
    if (line.bound != Bound::none && anyBelowZero(*range)) {
        warningAtLine(context.diagnostics, *messages.out_of_bounds, line.name);
    }
    return true;
}

bool readSubparameterValue(Context& context, const SubparameterMessages& messages, const SubparameterLine& line,
                           std::string& name) {
    const std::optional<std::string_view> word = readSubparameterWord(context, *messages.word, line);
    if (!word) return false;
    const int limit = longNameLimit(context.parse.version);
    name = cutName(*word, limit);
    const bool cut = name.size() < word->size();
    const bool reserved = isReservedWord(*word);
    if (cut) {
        errorAtLine(context.diagnostics, messages.name->length, line.name, limit);
    } else if (reserved) {
        errorAtLine(context.diagnostics, messages.name->reserved, line.name, *word);
    }
    return !cut && !reserved;
}

std::optional<std::string_view> readSubparameterWord(Context& context, const WordMessages& messages,
                                                     const SubparameterLine& line) {
    if (const auto* const setting = std::get_if<SettingMessages>(&messages.line)) {
        return readSetting(context, line.text, line.name, *setting);
    }
    return readWordLine(context, line.rest, line.name, std::get<WordLineMessages>(messages.line));
}

void reportTooOld(Context& context, const SubparameterMessages& messages, std::string_view name, IbisVersion since) {
    const std::string_view version = since == IbisVersion::v4 ? "4.0" : "5.0";
    errorAtLine(context.diagnostics, *messages.too_old, name, version);
}

void reportRepeated(Context& context, const SubparameterMessages& messages, const SubparameterLine& line) {
    const std::string_view first = messages.about_owner ? line.owner : line.name;
    const std::string_view second = messages.about_owner ? line.name : line.owner;
    errorAtLine(context.diagnostics, messages.repeated, first, second);
}

} // namespace kestrel
