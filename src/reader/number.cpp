#include "reader/number.hpp"

#include "reader/context.hpp"
#include "reader/values.hpp"

namespace kestrel {

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
