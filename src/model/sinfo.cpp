#include "model/sinfo.hpp"

#include "base/rows.hpp"
#include "ibis/run.hpp"
#include "model/mdl_parts.hpp"

#include <algorithm>
#include <array>
#include <memory>

namespace kestrel {

namespace {

constexpr std::string_view kOnLabel = "[On]";
constexpr std::string_view kOffLabel = "[Off]";

using Field = std::optional<Rng> SeriesBlock::*;

/// An element of a series section by its keyword.
struct SeriesElement {
    KeywordCode code;
    std::string_view label; ///< with its brackets
    Field field;

    [[nodiscard]] constexpr std::string_view name() const { return label.substr(1, label.size() - 2); }
};

constexpr std::array<SeriesElement, 6> kElements{{
    {KeywordCode::rSeries, "[R Series]", &SeriesBlock::r_series},
    {KeywordCode::lSeries, "[L Series]", &SeriesBlock::l_series},
    {KeywordCode::rlSeries, "[Rl Series]", &SeriesBlock::rl_series},
    {KeywordCode::cSeries, "[C Series]", &SeriesBlock::c_series},
    {KeywordCode::rcSeries, "[Rc Series]", &SeriesBlock::rc_series},
    {KeywordCode::lcSeries, "[Lc Series]", &SeriesBlock::lc_series},
}};

constexpr std::size_t placeOf(Field field) { return rowPlace(kElements, field, &SeriesElement::field); }

/// An element that stands in series with another one.
struct Companion {
    Field given;
    Field needed;
};
constexpr auto kCompanions = std::to_array({
    Companion{&SeriesBlock::rl_series, &SeriesBlock::l_series},
    Companion{&SeriesBlock::rc_series, &SeriesBlock::c_series},
    Companion{&SeriesBlock::lc_series, &SeriesBlock::c_series},
});

bool hasElements(const SeriesBlock& block) {
    return block.series_current || !block.mosfets.empty() || block.refused.any() ||
           std::ranges::any_of(kElements,
                               [&block](const SeriesElement& one) { return (block.*one.field).has_value(); });
}

void checkBlock(Run& run, const Mdl& model, const SeriesBlock& block, std::string_view label) {
    // An empty "[Off]" is an open switch.
    if (label != kOffLabel && !hasElements(block)) warning(run.diagnostics, 2904, model.name, label);
    for (const Companion& rule : kCompanions) {
        if (!(block.*rule.given) || block.*rule.needed || block.refused.has(placeOf(rule.needed))) continue;
        error(run.diagnostics, 2905, model.name, label, kElements[placeOf(rule.given)].label,
              kElements[placeOf(rule.needed)].label);
    }
    for (const SeriesElement& element : kElements) {
        const std::optional<Rng>& value = block.*element.field;
        if (value && anyBelowZero(*value)) warning(run.diagnostics, 2906, model.name, label, element.label);
    }
}

} // namespace

void openSeriesSection(Run& run, Mdl& model, const Line& line) {
    if (model.model_type != ModelType::seriesSwitch) {
        errorAtLine(run.diagnostics, 205);
        return;
    }
    const bool on = line.key == KeywordCode::on;
    const std::string_view label = on ? kOnLabel : kOffLabel;
    std::unique_ptr<SeriesBlock>& block = on ? model.on_block : model.off_block;
    if (block) errorAtLine(run.diagnostics, 2901, label);
    expectNoText(run, line.text, label, 2902);
    block = std::make_unique<SeriesBlock>();
    run.mdl.series_block = block.get();
}

SeriesBlock* currentSeriesBlock(Run& run, Mdl& model) {
    if (!isSeries(model)) {
        errorAtLine(run.diagnostics, 206);
        return nullptr;
    }
    if (run.mdl.series_block == nullptr) {
        if (model.model_type == ModelType::seriesSwitch) errorAtLine(run.diagnostics, 207);
        model.on_block = std::make_unique<SeriesBlock>();
        run.mdl.series_block = model.on_block.get();
    }
    return run.mdl.series_block;
}

void readSeriesRange(Run& run, const Mdl& model, SeriesBlock& block, const Line& line) {
    const SeriesElement& row = *std::ranges::find(kElements, line.key, &SeriesElement::code);
    std::optional<Rng>& value = block.*row.field;
    if (value) {
        reportAlreadyDefined(run, model, row.name());
    } else if (!readRangeLine(run, line.text, row.name(), kModelRangeRules, value)) {
        block.refused.add(placeOf(row.field));
    }
}

void checkSeriesBlocks(Run& run, const Mdl& model) {
    if (model.model_type == ModelType::series && model.on_block) checkBlock(run, model, *model.on_block, "Series");
    if (model.model_type != ModelType::seriesSwitch) return;
    if (model.on_block) {
        checkBlock(run, model, *model.on_block, kOnLabel);
    } else {
        error(run.diagnostics, 193, model.name);
    }
    if (model.off_block) {
        checkBlock(run, model, *model.off_block, kOffLabel);
    } else {
        error(run.diagnostics, 194, model.name);
    }
}

} // namespace kestrel
