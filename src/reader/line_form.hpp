#pragma once

#include "diagnostics/diagnostics.hpp"
#include "reader/items.hpp"
#include "reader/rng.hpp"
#include "reader/values.hpp"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <variant>

/// The forms of lines that give values: "name = number", "name word", "name typ min max". A list of words needs no form
/// of its own: takeItem() hands them out one by one.
namespace kestrel {

struct Context;

/// A wrong number of items: their number, what has them, how many there should be.
using CountMessage = CheckedMessage<ArgKind::integer, ArgKind::text, ArgKind::integer>;

/// What a line of values, of which the last ones may be missing, reports of their number.
struct ItemCountMessages {
    CountMessage wrong;                                   ///< none or too many
    CheckedMessage<ArgKind::text, ArgKind::text> missing; ///< the value, what has them
};

/// Which of several missing values are reported.
enum class MissingItems : bool { each, first };

/// Reports values that are missing, and a line with none or with more than `labels` has.
void reportItemCount(Diagnostics& diagnostics, int count, std::span<const std::string_view> labels,
                     std::string_view subject, const ItemCountMessages& messages,
                     MissingItems reported = MissingItems::each);

/// Reports text behind a keyword that has its line to itself; the keyword itself counts as an item.
void expectNoText(Context& context, std::string_view text, std::string_view keyword, CountMessage message);

/// `text` without the one "=" that may be in front of a value; any further one belongs to the value.
[[nodiscard]] std::string_view withoutEqualsSign(const Context& context, std::string_view text);

/// The subparameters of a block of which a line was refused, by their places in its table. They have been reported, so
/// that a later check does not miss them once more.
class RefusedLines {
public:
    constexpr void add(std::size_t place) { bits_ |= bitOf(place); }
    /// The last line for it was refused, or read after all.
    constexpr void set(std::size_t place, bool refused) {
        bits_ &= ~bitOf(place);
        if (refused) add(place);
    }
    [[nodiscard]] constexpr bool has(std::size_t place) const { return (bits_ & bitOf(place)) != 0; }
    [[nodiscard]] constexpr bool any() const { return bits_ != 0; }

private:
    static constexpr std::uint64_t bitOf(std::size_t place) {
        assert(place < 64);
        return std::uint64_t{1} << place;
    }

    std::uint64_t bits_ = 0;
};

/// A line "name = number", taken apart.
struct ValueLine {
    static constexpr int kItems = 3; ///< name, "=", number

    int count = 0;         ///< items on the line
    bool complete = false; ///< "=" in second place, and something behind it
    std::string_view text; ///< what is in place of the number
    ReadResult result = ReadResult::noNumber;
    double value = 0.0;
};
[[nodiscard]] ValueLine splitValueLine(const Context& context, std::string_view line);

/// When a "name = number" line marks its value as given.
enum class ValueGiven : std::uint8_t {
    whenRead,    ///< only when the number reads
    whenAccepted ///< at once; 0 until a number reads
};

/// Which lines of more than three items are reported with their number.
enum class TooMany : std::uint8_t {
    always,      ///< also one without "=" in second place, which then gets both messages
    whenComplete ///< only one that is read
};

using ScaleMessage = CheckedMessage<ArgKind::text, ArgKind::text, ArgKind::text>;

/// What the lines "name = number" of one module report, and where modules differ.
struct ValueLineMessages {
    /// No "=" in second place, or no value: the subject.
    CheckedMessage<ArgKind::text> invalid_line;
    /// More than three items: their number, the subject, 3.
    CountMessage wrong_count;
    /// The value is no number: the subject, the text.
    CheckedMessage<ArgKind::text, ArgKind::text> invalid_value;
    /// Warning of digits in the scale: the group, the name, the text. Without it they pass silently.
    std::optional<ScaleMessage> numeric_in_scale;
    ValueGiven given = ValueGiven::whenRead;
    TooMany too_many = TooMany::always;
};

/// The words in those messages. `group` and `name` serve only the warning of digits in the scale.
struct ValueLineWords {
    std::string_view subject;
    std::string_view group{};
    std::string_view name{};
};

/// Reads the whole line "name = number" into `value`; that the value may be given only once has been tested before.
/// Everything is reported at the line; fewer than three items and a second one other than "=" end it, more than three
/// do not. True when the number read.
bool readValueLine(Context& context, std::string_view text, const ValueLineMessages& messages,
                   const ValueLineWords& words, GivenValue& value);

/// What the lines "name word" of one block report.
struct WordLineMessages {
    /// No word: the name. Without it an empty word is returned, for the caller's look-up to report.
    std::optional<CheckedMessage<ArgKind::text>> missing;
    CountMessage wrong_count; ///< more than one: the items, the name, 2
};

/// The word of a line "name word", of which `rest` is what follows the name. One "=" before the word is passed over and
/// not counted, one inside it is part of it; of several words the first is used. Reports at the line.
[[nodiscard]] std::optional<std::string_view> readWordLine(Context& context, std::string_view rest,
                                                           std::string_view name, const WordLineMessages& messages);

/// What is reported at the line of one that is not "name setting".
struct SettingMessages {
    CheckedMessage<ArgKind::text> missing;     ///< name
    CheckedMessage<ArgKind::text> equals_sign; ///< name; the second item is "="
    CountMessage count;                        ///< items, name, 2
};

/// The second item of a line "name setting"; reports any other number of items and then gives nothing.
[[nodiscard]] std::optional<std::string_view> readSetting(Context& context, std::string_view line,
                                                          std::string_view name, const SettingMessages& messages);

/// How the lines "name typ min max" of one block are read.
struct RangeLineRules {
    /// The typical value is "NA"; some texts show the name.
    std::variant<CheckedMessage<>, CheckedMessage<ArgKind::text>> typ_na;
    bool admits_equals_sign; ///< one "=" behind the name is passed over
};

/// Reads what follows the name of a line "name typ min max"; their order does not matter. A range of which a cell does
/// not read is not stored (false); one whose typical value is "NA" is reported at the line and stored.
bool readRangeLine(Context& context, std::string_view rest, std::string_view name, const RangeLineRules& rules,
                   GivenRange& value);

/// What is reported of the number that a keyword gives; all at the line, `suspicious` as a warning.
struct NumberMessages {
    CheckedMessage<> blank;
    CheckedMessage<> duplicate;
    CheckedMessage<> suspicious;
    CheckedMessage<> bad;
    CheckedMessage<> zero;
};

/// Reads a number that may be given once; 0 counts as not given. True when there was a value to be read, whatever it
/// was.
bool readNumber(Context& context, std::string_view text, std::uint32_t& number, const NumberMessages& messages);

} // namespace kestrel
