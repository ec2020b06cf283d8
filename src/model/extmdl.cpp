#include "model/extmdl.hpp"

#include "reader/context.hpp"

#include <utility>

namespace kestrel {

namespace {

constexpr std::string_view kKind = "External Model";
constexpr std::string_view kKeyword = "External_Model";

} // namespace

void openExtMdl(Context& context, std::unique_ptr<ExtCkt>& reading, const std::unique_ptr<ExtCkt>& kept,
                std::string_view model, std::string_view text) {
    if (kept != nullptr) errorAtLine(context.diagnostics, 119, "[External_Model]", model);
    reportExtraText(context, kKind, text);
    reading = std::make_unique<ExtCkt>();
    reading->line = context.parse.line;
}

void extMdlLine(Context& context, ExtCkt& reading, std::string_view model, std::string_view text) {
    extCktLine(context, reading, {.kind = kKind, .name = model, .is_model = true}, text);
}

void closeExtMdl(Context& context, std::unique_ptr<ExtCkt>& reading, std::unique_ptr<ExtCkt>& kept,
                 std::string_view model, ModelType type) {
    checkExtCkt(context, *reading,
                {.kind = kKind,
                 .name = model,
                 .is_model = true,
                 .drives = kDiffLoadTypes.has(type),
                 .receives = kReceivingTypes.has(type)});
    std::unique_ptr<ExtCkt> read = std::move(reading);
    if (kept == nullptr) kept = std::move(read);
}

const BlockEnd kExtMdlEnd{
    .name = "End_External_Model",
    .text_behind = [](Context& context,
                      std::string_view text) { reportExtraText(context, "End External Model", text); },
    .not_ended = [](Context& context) { errorAtLine(context.diagnostics, 1827, kKeyword, kKeyword); },
    .no_begin = [](Context& context) { errorAtLine(context.diagnostics, 1828, kKeyword, kKeyword); },
};

} // namespace kestrel
