#pragma once

#include "base/object_list.hpp"
#include "diagnostics/diagnostics.hpp"
#include "reader/context.hpp"
#include "reader/line_form.hpp"
#include "reader/names.hpp"

#include <cstdint>
#include <string>
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
};

/// Reads the name, cut to `limit`, and reports all at the line but that it is repeated. True when that is due.
bool readNewName(Context& context, std::string_view text, const RecordNameRules& rules, int limit, std::string& name);

/// Reads the name of a record behind its keyword and enters the record under it.
template <class Record>
void readRecordName(Context& context, ObjectList<Record>& list, Record& record, std::string_view text,
                    const RecordNameRules& rules, int limit = kLongNameLimit) {
    if (readNewName(context, text, rules, limit, record.name) && list.find(record.name) != nullptr) {
        errorAtLine(context.diagnostics, rules.repeated, record.name);
    }
    if (!record.name.empty() || rules.missing.index() == 0) list.enterName(record, record.name);
}

} // namespace kestrel
