#include "model/msel.hpp"

#include "base/rows.hpp"
#include "base/text.hpp"
#include "reader/record_name.hpp"

namespace kestrel {

namespace {

constexpr std::string_view kKeyword = "Model Selector";
constexpr RecordNameRules kName{kKeyword, CheckedMessage<>(4010), 4011,          4012, 4013,
                                4014,     RepeatedNames::ofAll,   modelNameLimit};

/// Room that the name and the description of an entry share, in characters.
constexpr std::size_t kEntryRoom = 120;

std::string_view entryDescription(Context& context, std::string_view text, std::size_t name_length) {
    if (context.parse.version == IbisVersion::later) return text;
    const std::size_t room = kEntryRoom - name_length;
    if (text.size() > room) errorAtLine(context.diagnostics, 4019, text, static_cast<std::uint32_t>(room));
    return text.substr(0, room);
}

/// Notes the name of an entry that comes behind `entries`; false when one of them has it already.
bool noteEntryName(MSelState& state, const Rows<MSelEntry>& entries, Name name) {
    constexpr std::size_t kFew = 32; // which are compared one by one
    if (entries.size() < kFew) return rowOf(entries, name, &MSelEntry::model_name) == nullptr;
    if (entries.size() == kFew) {
        for (const MSelEntry& entry : entries) {
            state.entry_names.at(entry.model_name.number()) = 1;
        }
    }
    return std::exchange(state.entry_names.at(name.number()), 1U) == 0;
}

/// Reads "model description" and appends it, repeated or not.
void entryLine(Context& context, MSelState& state, MSel& selector, std::string_view text) {
    constexpr int kItems = 2;
    // Only a line that is longer than any gap may be can hold too long a one, in its description also.
    if (text.size() > static_cast<std::size_t>(kMaxSkip)) static_cast<void>(splitItems(context, text, 0));
    const std::string_view name = takeItem(context, text);
    if (name.empty()) {
        errorAtLine(context.diagnostics, 4016);
        return;
    }
    const std::string_view description = trim(text);
    if (description.empty()) errorAtLine(context.diagnostics, 4011, 1, kKeyword, kItems);
    MSelEntry entry;
    storeName(context, entry.model_name, name, modelNameLimit(context.parse.version), 4017);
    if (equalsNoCase(entry.model_name, "NA")) errorAtLine(context.diagnostics, 4018);
    entry.description = context.texts.add(entryDescription(context, description, entry.model_name.size()));
    const bool is_new = noteEntryName(state, selector.entries, entry.model_name);
    context.rows.add(selector.entries, entry);
    if (!is_new) errorAtLine(context.diagnostics, 4025, entry.model_name);
}

void closeSelector(Context& context, MSelState& /*state*/, MSel& selector) {
    if (selector.entries.empty()) {
        error(context.diagnostics, 4005, selector.name);
    } else if (selector.entries.size() == 1) {
        warning(context.diagnostics, 4006, selector.name);
    }
}

using K = KeywordCode;

constexpr auto kSections =
    sectionTable<MSelState>({section<MSelState, openNamed<kName, MSelState>, entryLine>(K::modelSelector)});

} // namespace

const RecordModule<MSelState> kMSel{
    .opens = K::modelSelector,
    .find = [](K code) { return kSections.find(code); },
    .close = closeSelector,
    .orphan = reportOrphan<4001, 4002>,
    .impossible = reportImpossible<LineKind::keyword, 4003, 4004>,
};

} // namespace kestrel
