#include "model/msel.hpp"

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
    const std::size_t room = kEntryRoom - name_length;
    if (text.size() > room) errorAtLine(context.diagnostics, 4019, text, static_cast<std::uint32_t>(room));
    return text.substr(0, room);
}

/// Reads "model description" and appends it, repeated or not.
void entryLine(Context& context, MSelState& state, MSel& selector, std::string_view text) {
    constexpr int kItems = 2;
    const ItemList items = splitItems(context, text, kItems);
    if (items.count == 0) {
        errorAtLine(context.diagnostics, 4016);
        return;
    }
    if (items.count < kItems) errorAtLine(context.diagnostics, 4011, items.count, kKeyword, kItems);
    const auto name_end = static_cast<std::size_t>(items[0].data() + items[0].size() - text.data());
    MSelEntry& entry = selector.entries.emplace_back();
    storeName(context.diagnostics, entry.model_name, items[0], modelNameLimit(context.parse.version), 4017);
    if (equalsNoCase(entry.model_name, "NA")) errorAtLine(context.diagnostics, 4018);
    entry.description = entryDescription(context, trim(text.substr(name_end)), entry.model_name.size());
    if (!state.entry_names.insert(entry.model_name).second) errorAtLine(context.diagnostics, 4025, entry.model_name);
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
