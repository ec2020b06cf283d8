#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace kestrel {

struct Run;
struct Cmpnt;

/// One row of "[Series Pin Mapping]". A row that was dropped keeps nothing but its model name and its group, so that
/// the model counts as used and the group as mapped.
struct SPin {
    std::string pin_1;
    std::string pin_2;
    std::string model_name;
    std::string group; ///< function table group, empty when the column is absent
    bool pin_1_reported = false;
    bool pin_2_reported = false;
    bool model_reported = false;
    bool group_reported = false;
};

/// What a model name of "[Series Pin Mapping]" stands for.
enum class SeriesModelKind : std::uint8_t { undefined, series, other };

/// A model name that rows use, and the component that it was last reported for.
struct SeriesModel {
    SeriesModelKind kind = SeriesModelKind::undefined;
    const Cmpnt* reported_for = nullptr;
};

/// The model names of all rows of a file, so that each is looked up once. The names are views of the rows' own.
using SeriesModels = std::unordered_map<std::string_view, SeriesModel>;

/// Reads the header words behind "[Series Pin Mapping]". Reports 2602 and 528 to 532.
void seriesPinHeader(Run& run, Cmpnt& component, std::string_view text);

/// Reads one row. Reports 2603 to 2609.
void seriesPinLine(Run& run, Cmpnt& component, std::string_view text);

/// Looks up pins, models and groups of the rows, marks the models found and reports 2610 to 2614 (no line).
void checkSeriesPins(Run& run, const Cmpnt& component, SeriesModels& models);

} // namespace kestrel
