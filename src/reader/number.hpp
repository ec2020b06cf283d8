#pragma once

#include "diagnostics/message.hpp"

#include <cstdint>
#include <string_view>

namespace kestrel {

struct Context;

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
