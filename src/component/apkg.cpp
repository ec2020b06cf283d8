#include "component/apkg.hpp"

#include "base/text.hpp"
#include "reader/names.hpp"

namespace kestrel {

namespace {

constexpr std::string_view kBegin = "Alternate_Package_Models";
constexpr std::string_view kEnd = "End_Alternate_Package_Models";

} // namespace

const BlockEnd kAlternatesEnd{
    .name = kEnd,
    .text_behind = [](Context& context, std::string_view) { errorAtLine(context.diagnostics, 533, kEnd); },
    .not_ended = [](Context& context) { errorAtLine(context.diagnostics, 538, kBegin, kEnd); },
    .no_begin = [](Context& context) { errorAtLine(context.diagnostics, 540, kEnd, kBegin); },
};

void openAlternates(Context& context, std::unique_ptr<Alternates>& alternates, std::string_view text) {
    if (alternates != nullptr) {
        errorAtLine(context.diagnostics, 534, kBegin);
    } else {
        alternates = std::make_unique<Alternates>();
    }
    if (!text.empty()) errorAtLine(context.diagnostics, 533, kBegin);
}

// A name may hold blanks. One that is reported as cut or reserved is not looked for later, unless another line has it
// whole.
void alternateLine(Context& context, Alternates& alternates, std::string_view component, std::string_view text) {
    alternates.listed = true;
    std::string name;
    const bool fits = storeName(context.diagnostics, name, trim(text), longNameLimit(context.parse.version), 535);
    if (!checkNotReserved(context.diagnostics, name)) return;
    const bool is_new = alternates.models.add(name);
    if (!fits) {
        if (is_new) alternates.cut.insert(std::move(name));
        return;
    }
    alternates.cut.erase(name);
    if (!is_new) warningAtLine(context.diagnostics, 536, name, component);
}

void closeAlternates(Context& context, Alternates& alternates, std::string_view component) {
    if (!std::exchange(alternates.listed, true)) warning(context.diagnostics, 539, component);
}

} // namespace kestrel
