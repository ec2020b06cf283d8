#include "model/sinfo.hpp"

#include "base/rows.hpp"
#include "reader/context.hpp"

#include <algorithm>

namespace kestrel {

namespace {

using Field = GivenRange SeriesBlock::*;

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

constexpr RangeLineRules kRangeRules{CheckedMessage<>(178), false};

constexpr std::size_t placeOf(Field field) { return rowPlace(kElements, field, &SeriesElement::field); }

/// An element that is in series with another one.
struct Companion {
    Field given;
    Field needed;
};
constexpr auto kCompanions = std::to_array({
    Companion{&SeriesBlock::rl_series, &SeriesBlock::l_series},
    Companion{&SeriesBlock::rc_series, &SeriesBlock::c_series},
    Companion{&SeriesBlock::lc_series, &SeriesBlock::c_series},
});

} // namespace

SeriesBlock& openSeriesBlock(Context& context, std::unique_ptr<SeriesBlock>& slot, std::string_view label,
                             std::string_view text) {
    if (slot) errorAtLine(context.diagnostics, 2901, label);
    expectNoText(context, text, label, 2902);
    slot = std::make_unique<SeriesBlock>();
    return *slot;
}

void readSeriesRange(Context& context, SeriesBlock& block, const Line& line, std::string_view model) {
    const SeriesElement& row = *rowOf(kElements, line.key, &SeriesElement::code);
    GivenRange& value = block.*row.field;
    if (value) {
        errorAtLine(context.diagnostics, 119, row.name(), model);
    } else if (!readRangeLine(context, line.text, row.name(), kRangeRules, value)) {
        block.refused.add(placeOf(row.field));
    }
}

bool hasElements(const SeriesBlock& block) {
    return block.series_current || !block.mosfets.empty() || block.refused.any() ||
           std::ranges::any_of(kElements,
                               [&block](const SeriesElement& one) { return (block.*one.field).has_value(); });
}

void checkSeriesBlock(Context& context, const SeriesBlock& block, std::string_view label, std::string_view model) {
    for (const Companion& rule : kCompanions) {
        if (!(block.*rule.given) || block.*rule.needed || block.refused.has(placeOf(rule.needed))) continue;
        error(context.diagnostics, 2905, model, label, kElements[placeOf(rule.given)].label,
              kElements[placeOf(rule.needed)].label);
    }
    for (const SeriesElement& element : kElements) {
        const GivenRange& value = block.*element.field;
        if (value && anyBelowZero(*value)) warning(context.diagnostics, 2906, model, label, element.label);
    }
}

} // namespace kestrel
