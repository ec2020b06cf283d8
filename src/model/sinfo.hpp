#pragma once

#include "model/crv.hpp"
#include "model/smos.hpp"
#include "reader/keyword.hpp"
#include "reader/line_form.hpp"

#include <memory>
#include <string_view>
#include <vector>

namespace kestrel {

struct Context;

/// One "[On]" or "[Off]" section of a series model: its elements in ohms, henries and farads.
struct SeriesBlock {
    GivenRange r_series;
    GivenRange l_series;
    GivenRange rl_series;
    GivenRange c_series;
    GivenRange rc_series;
    GivenRange lc_series;
    Crv series_current;
    std::vector<SMos> mosfets; ///< in file order
    RefusedLines refused;
};

/// The labels of the sections in messages.
inline constexpr std::string_view kOnLabel = "[On]";
inline constexpr std::string_view kOffLabel = "[Off]";

/// Opens a section at its keyword line. An old one is reported and replaced.
SeriesBlock& openSeriesBlock(Context& context, std::unique_ptr<SeriesBlock>& slot, std::string_view label,
                             std::string_view text);

/// Reads a keyword such as "[R Series]" into its section.
void readSeriesRange(Context& context, SeriesBlock& block, const Line& line, std::string_view model);

/// True when the section gives an element, or a line for one was refused.
[[nodiscard]] bool hasElements(const SeriesBlock& block);

/// Checks what the elements of a section that has been read lack; no line.
void checkSeriesBlock(Context& context, const SeriesBlock& block, std::string_view label, std::string_view model);

} // namespace kestrel
