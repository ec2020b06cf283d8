#include "package/number.hpp"

#include "ibis/run.hpp"
#include "reader/cmn.hpp"

namespace kestrel {

bool readNumber(Run& run, std::string_view text, std::uint32_t& number, const NumberMessages& messages) {
    if (text.empty()) {
        errorAtLine(run.diagnostics, messages.blank);
        return false;
    }
    if (number != 0) {
        errorAtLine(run.diagnostics, messages.duplicate);
        return false;
    }
    const ReadResult result = readUnsigned(text, number);
    if (result == ReadResult::noNumber) {
        errorAtLine(run.diagnostics, messages.bad);
        return true;
    }
    if (result == ReadResult::numberAndText) {
        warningAtLine(run.diagnostics, messages.suspicious);
    }
    if (number == 0) {
        errorAtLine(run.diagnostics, messages.zero);
    }
    return true;
}

} // namespace kestrel
