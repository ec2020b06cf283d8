#pragma once

#include "model/crv.hpp"
#include "model/smos.hpp"
#include "reader/keyword.hpp"
#include "reader/line_form.hpp"

#include <optional>
#include <string_view>
#include <vector>

namespace kestrel {

struct Run;
struct Mdl;

/// One "[On]" or "[Off]" section of a series model: its elements in ohms, henries and farads.
struct SeriesBlock {
    std::optional<Rng> r_series;
    std::optional<Rng> l_series;
    std::optional<Rng> rl_series;
    std::optional<Rng> c_series;
    std::optional<Rng> rc_series;
    std::optional<Rng> lc_series;
    std::optional<Crv> series_current;
    std::vector<SMos> mosfets; ///< in file order
    RefusedLines refused;
};

/// Opens a section at "[On]" or "[Off]". Reports 205, 2901 (the old one is replaced) and 2902.
void openSeriesSection(Run& run, Mdl& model, const Line& line);

/// The section that series keywords and their lines go to; opened when none is (207 in a "Series_switch" model). Null,
/// with error 206, when the model is no series model.
SeriesBlock* currentSeriesBlock(Run& run, Mdl& model);

/// Reads a keyword such as "[R Series]" into its section. Reports 119, 178 and what the range reader reports.
void readSeriesRange(Run& run, const Mdl& model, SeriesBlock& block, const Line& line);

/// Checks the sections of a series model once it is read: those that it lacks (193, 194), then of each what its
/// elements lack (2904 to 2906). No line.
void checkSeriesBlocks(Run& run, const Mdl& model);

} // namespace kestrel
