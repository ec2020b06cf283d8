#pragma once

#include "ibis/diagnostics.hpp"

#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrel {

struct Run;

/// When a "name = number" line marks its value as given.
enum class ValueGiven : std::uint8_t {
    whenRead,    ///< only when the number reads
    whenAccepted ///< at once; 0 until a number reads
};

using ScaleMessage = CheckedMessage<ArgKind::text, ArgKind::text, ArgKind::text>;

/// What the lines "name = number" of one module report, and where modules differ.
struct ValueLineMessages {
    /// No "=" in second place, or no value: the subject.
    CheckedMessage<ArgKind::text> invalid_line;
    /// More than three items: their number, the subject, 3.
    CheckedMessage<ArgKind::integer, ArgKind::text, ArgKind::integer> wrong_count;
    /// The value is no number: the subject, the text.
    CheckedMessage<ArgKind::text, ArgKind::text> invalid_value;
    /// Warning of digits in the scale: the group, the name, the text. Without it they pass silently.
    std::optional<ScaleMessage> numeric_in_scale;
    ValueGiven given = ValueGiven::whenRead;
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
bool readValueLine(Run& run, std::string_view text, const ValueLineMessages& messages, const ValueLineWords& words,
                   std::optional<double>& value);

} // namespace kestrel
