#pragma once

#include "reader/line_form.hpp"
#include "reader/names.hpp"
#include "reader/sections.hpp"

#include <cstdint>
#include <string_view>
#include <variant>

namespace kestrel {

/// Which names are held against those of the records before.
enum class RepeatedNames : std::uint8_t {
    ofSound, ///< names that are neither overlong nor reserved
    ofWhole, ///< names that are not overlong
    ofAll    ///< a cut name, too
};

/// How the name of a record is read at its keyword.
struct RecordNameRules {
    std::string_view keyword; ///< as messages name it
    /// No name: nothing more, or the keyword. Without it the number of items is reported, and the record is entered
    /// under an empty name.
    std::variant<std::monostate, CheckedMessage<>, CheckedMessage<ArgKind::text>> missing;
    CountMessage wrong_count; ///< the items, the keyword, 1
    NameTooLong length;
    CheckedMessage<ArgKind::text> reserved; ///< the name
    CheckedMessage<ArgKind::text> repeated; ///< the name
    RepeatedNames repeats = RepeatedNames::ofSound;
    int (*limit)(IbisVersion version) = longNameLimit;
};

/// Reads the name, cut to its limit, and reports all at the line but that it is repeated. True when that is due.
bool readNewName(Context& context, std::string_view text, const RecordNameRules& rules, Name& name);

/// Reads the name of a record behind its keyword and enters the record under it.
template <class State>
void readRecordName(Context& context, State& state, typename State::Record& record, std::string_view text,
                    const RecordNameRules& rules) {
    if (readNewName(context, text, rules, record.name) && state.list->find(record.name) != nullptr) {
        errorAtLine(context.diagnostics, rules.repeated, record.name);
    }
    if (!record.name.empty() || rules.missing.index() == 0) state.list->enterNewest(context.names);
}

/// The same in the form in which a section opens.
template <const RecordNameRules& Rules, class State>
void openNamed(Context& context, State& state, typename State::Record& record, std::string_view text) {
    readRecordName(context, state, record, text, Rules);
}

} // namespace kestrel
