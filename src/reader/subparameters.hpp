#pragma once

#include "base/rows.hpp"
#include "reader/context.hpp"
#include "reader/enumeration.hpp"
#include "reader/items.hpp"
#include "reader/line_form.hpp"
#include "reader/named_member.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

/// The one form in which a record gives its subparameters: a table of their names, each with the field that keeps the
/// value. By the field goes how the line is written: a number, a range, the name of a record, one of several words.
namespace kestrel {

/// What a value may not be.
enum class Bound : std::uint8_t { none, notBelowZero, aboveZero };

/// A field that holds one of several words, by its code; 0 is "not given".
template <class Record, class Code> struct WordField {
    Code Record::*member;
    std::span<const EnumerationRow<Code>> (*spellings)(IbisVersion version);
};

/// The field of a word that every version spells by the same rows.
template <const auto& Rows, class Record, class Code> constexpr WordField<Record, Code> wordOf(Code Record::*member) {
    return {member, [](IbisVersion) -> std::span<const EnumerationRow<Code>> { return Rows; }};
}

/// A line that is being read: what follows the name, and the whole.
struct SubparameterLine {
    std::string_view name;
    Bound bound;
    std::string_view text;
    std::string_view rest;
    std::string_view owner; ///< the name of the record
};

/// A subparameter whose line has a form of its own.
template <class Record> struct OwnForm {
    bool (*given)(const Record& record);
    bool (*read)(Context& context, Record& record, const SubparameterLine& line); ///< false when it was refused
};

/// A row of the table; `Codes` are the enumerations of its words.
template <class RecordType, class... Codes> struct Subparameter {
    using Record = RecordType;
    using Field = std::variant<GivenValue Record::*, GivenRange Record::*, std::string Record::*, OwnForm<Record>,
                               WordField<Record, Codes>...>;

    std::string_view name;
    Field field;
    Bound bound = Bound::none;
    IbisVersion since = IbisVersion::none;
    bool (*admits)(Context& context, const Record& record) = nullptr; ///< reports why a record may not give it

    /// True when the row keeps its value in this member.
    template <class Value, class Base> [[nodiscard]] constexpr bool holds(Value Base::*member) const {
        if constexpr (std::is_enum_v<Value>) {
            const auto* const word = std::get_if<WordField<Record, Value>>(&field);
            return word != nullptr && word->member == member;
        } else {
            const auto* const held = std::get_if<Value Record::*>(&field);
            return held != nullptr && *held == member;
        }
    }
};

/// What words report: the line and the spelling. A setting that is not read is given all the same, as the code 1.
struct WordMessages {
    std::variant<WordLineMessages, SettingMessages> line;
    EnumerationMessages spelling;
};

/// What the name of another record reports.
struct ReferredNameMessages {
    CheckedMessage<ArgKind::text, ArgKind::integer> length; ///< the subparameter, the limit
    CheckedMessage<ArgKind::text, ArgKind::text> reserved;  ///< the subparameter, the name
};

/// What the lines of a table report; of a form that no row has there are no messages.
struct SubparameterMessages {
    /// A line of no row; none where the caller looks the rows up.
    std::optional<CheckedMessage<>> unknown{};
    CheckedMessage<ArgKind::text, ArgKind::text> repeated; ///< the name, the owner; the other way by `about_owner`
    std::optional<ValueLineMessages> value{};
    std::optional<RangeLineRules> range{};
    std::optional<WordMessages> word{};
    std::optional<ReferredNameMessages> name{}; ///< its line is that of a word
    /// The name; an error of a value, a warning of a range.
    std::optional<CheckedMessage<ArgKind::text>> out_of_bounds{};
    std::optional<CheckedMessage<ArgKind::text, ArgKind::text>> too_old{}; ///< the name, the version
    std::string_view group{};                                              ///< in warnings of digits in a scale
    bool about_owner = false; ///< messages of values have the owner in place of name and group
};

/// The subparameters of a record. Made by subparameters().
template <class RowType, std::size_t Count> struct SubparameterTable {
    using Row = RowType;

    std::array<Row, Count> rows;
    SubparameterMessages messages;

    [[nodiscard]] const Row* find(std::string_view name) const { return rowOf(rows, name, &Row::name); }

    /// The place of the row that keeps its value in `member`; there must be one.
    template <class Member> [[nodiscard]] constexpr std::size_t placeOf(Member member) const {
        return rowPlace(rows, true, [member](const Row& row) { return row.holds(member); });
    }

    template <class Member> [[nodiscard]] constexpr std::string_view nameOf(Member member) const {
        return rows[placeOf(member)].name;
    }
};

/// The rows of a table that keep values of one kind.
template <class Value, const auto& Table> consteval auto namedMembers() {
    using Record = typename std::remove_cvref_t<decltype(Table)>::Row::Record;
    using Member = Value Record::*;
    constexpr auto kHolds = [](const auto& row) { return std::holds_alternative<Member>(row.field); };
    std::array<NamedMember<Record, Value>, std::ranges::count_if(Table.rows, kHolds)> members{};
    std::size_t count = 0;
    for (const auto& row : Table.rows)
        if (kHolds(row)) members[count++] = {row.name, std::get<Member>(row.field)};
    return members;
}

namespace subparameter_check {

// Declared only: the check calls it for a row whose form has no messages, and the compiler quotes its name.
void noMessagesForThisFormOfLine();

} // namespace subparameter_check

template <class Row, std::size_t Count>
consteval SubparameterTable<Row, Count> subparameters(const Row (&rows)[Count], const SubparameterMessages& messages) {
    for (const Row& row : rows) {
        using Record = typename Row::Record;
        bool complete = true;
        if (std::holds_alternative<GivenValue Record::*>(row.field)) {
            complete = messages.value.has_value();
        } else if (std::holds_alternative<GivenRange Record::*>(row.field)) {
            complete = messages.range.has_value();
        } else if (std::holds_alternative<std::string Record::*>(row.field)) {
            complete = messages.word && messages.name;
        } else if (!std::holds_alternative<OwnForm<Record>>(row.field)) {
            complete = messages.word.has_value();
        }
        complete = complete && (row.bound == Bound::none || messages.out_of_bounds);
        if (!complete || (row.since != IbisVersion::none && !messages.too_old)) {
            subparameter_check::noMessagesForThisFormOfLine();
        }
    }
    return {std::to_array(rows), messages};
}

template <class Value> [[nodiscard]] bool isGiven(const Value& value) {
    if constexpr (std::is_enum_v<Value>) {
        return value != Value{};
    } else if constexpr (std::is_same_v<Value, std::string>) {
        return !value.empty();
    } else {
        return value.has_value();
    }
}

/// True when the record has the value of this row.
template <class Row> [[nodiscard]] bool isGiven(const typename Row::Record& record, const Row& row) {
    const auto given = [&record](const auto& field) {
        if constexpr (requires { field.given; }) {
            return field.given(record);
        } else if constexpr (requires { field.member; }) {
            return isGiven(record.*field.member);
        } else {
            return isGiven(record.*field);
        }
    };
    return std::visit(given, row.field);
}

template <class Table, class Record> [[nodiscard]] bool anyGiven(const Table& table, const Record& record) {
    return std::ranges::any_of(table.rows, [&record](const auto& row) { return isGiven(record, row); });
}

/// True when a line for the member was there: one that was refused has been reported and is not missed once more.
template <class Table, class Record, class Value>
[[nodiscard]] bool isSeen(const Table& table, const Record& record, Value Record::*member) {
    return isGiven(record.*member) || record.refused.has(table.placeOf(member));
}

/// Readers of lines by the kind of their field; all report at the line and give false when they refuse it.
bool readSubparameterValue(Context& context, const SubparameterMessages& messages, const SubparameterLine& line,
                           GivenValue& value);
bool readSubparameterValue(Context& context, const SubparameterMessages& messages, const SubparameterLine& line,
                           GivenRange& range);
bool readSubparameterValue(Context& context, const SubparameterMessages& messages, const SubparameterLine& line,
                           std::string& name);
[[nodiscard]] std::optional<std::string_view> readSubparameterWord(Context& context, const WordMessages& messages,
                                                                   const SubparameterLine& line);

void reportTooOld(Context& context, const SubparameterMessages& messages, std::string_view name, IbisVersion since);
void reportRepeated(Context& context, const SubparameterMessages& messages, const SubparameterLine& line);

/// Reads the line of a row: `text` is the whole, `rest` what follows the name, `owner` the record's name in messages.
/// True when the value was read.
template <class Row, std::size_t Count>
bool readSubparameter(Context& context, const SubparameterTable<Row, Count>& table, const Row& row,
                      typename Row::Record& record, std::string_view text, std::string_view rest,
                      std::string_view owner) {
    const SubparameterMessages& messages = table.messages;
    const SubparameterLine line{row.name, row.bound, text, rest, owner};
    const auto read_field = [&](const auto& field) {
        if constexpr (requires { field.given; }) {
            return field.read(context, record, line);
        } else if constexpr (requires { field.member; }) {
            auto& value = record.*field.member;
            using Code = std::remove_reference_t<decltype(value)>;
            const bool is_setting = std::holds_alternative<SettingMessages>(messages.word->line);
            value = is_setting ? Code{1} : Code{};
            const auto word = readSubparameterWord(context, *messages.word, line);
            if (!word) return false;
            const auto code = readEnumeration(context.diagnostics, field.spellings(context.parse.version), line.name,
                                              *word, messages.word->spelling);
            value = code.value_or(value);
            return code.has_value();
        } else {
            return readSubparameterValue(context, messages, line, record.*field);
        }
    };
    const bool too_old = context.parse.version < row.since;
    if (too_old) {
        reportTooOld(context, messages, row.name, row.since);
    } else if (row.admits != nullptr && !row.admits(context, record)) {
        return false;
    } else if (isGiven(record, row)) {
        reportRepeated(context, messages, line);
        return false;
    }
    const bool read = !too_old && std::visit(read_field, row.field);
    if constexpr (requires { record.refused; }) {
        record.refused.set(static_cast<std::size_t>(&row - table.rows.data()), !read);
    }
    return read;
}

/// Reads a line by the row that its first item names. The row when the value was read, else null.
template <class Row, std::size_t Count>
const Row* readSubparameter(Context& context, const SubparameterTable<Row, Count>& table, typename Row::Record& record,
                            std::string_view text, std::string_view owner) {
    std::string_view rest = text;
    const Row* const row = table.find(takeItem(context, rest, '='));
    if (row == nullptr) {
        errorAtLine(context.diagnostics, *table.messages.unknown);
        return nullptr;
    }
    return readSubparameter(context, table, *row, record, text, rest, owner) ? row : nullptr;
}

} // namespace kestrel
