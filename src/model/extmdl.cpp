#include "model/extmdl.hpp"

namespace kestrel {

namespace {

constexpr ExternalNames kNames{"External Model", "External_Model", "End External Model", "End_External_Model"};

} // namespace

void openExtMdl(Context& context, std::unique_ptr<ExtCkt>& reading, const std::unique_ptr<ExtCkt>& kept,
                std::string_view model, std::string_view text) {
    if (kept != nullptr) errorAtLine(context.diagnostics, 119, "[External_Model]", model);
    reportExtraText(context, kNames.kind, text);
    reading = std::make_unique<ExtCkt>();
    reading->line = context.parse.line;
}

void extMdlLine(Context& context, ExtCkt& reading, std::string_view model, std::string_view text) {
    extCktLine(context, reading, {.kind = kNames.kind, .name = model, .is_model = true}, text);
}

void closeExtMdl(Context& context, std::unique_ptr<ExtCkt>& reading, std::unique_ptr<ExtCkt>& kept,
                 std::string_view model, ModelType type) {
    checkExtCkt(context, *reading,
                {.kind = kNames.kind,
                 .name = model,
                 .is_model = true,
                 .drives = kDiffLoadTypes.has(type),
                 .receives = kReceivingTypes.has(type)});
    std::unique_ptr<ExtCkt> read = std::move(reading);
    if (kept == nullptr) kept = std::move(read);
}

const BlockEnd kExtMdlEnd = kExternalEnd<kNames>;

} // namespace kestrel
