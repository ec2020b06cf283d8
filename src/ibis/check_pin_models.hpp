#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>

namespace kestrel {

struct Cmpnt;
struct Context;
struct Ibis;

/// What the model name of a pin stands for.
enum class PinModelKind : std::uint8_t { undefined, single, differential, series };

/// What a model name of "[Series Pin Mapping]" stands for.
enum class SeriesModelKind : std::uint8_t { undefined, series, other };

/// What a name stands for, and the component that it was last reported for.
template <class Kind> struct NamedModel {
    Kind kind = Kind::undefined;
    const Cmpnt* reported_for = nullptr;
};

/// The model names of all pins, or of all rows between pins, of a file, so that each is looked up once. The names are
/// views of the rows' own.
using PinModels = std::unordered_map<std::string_view, NamedModel<PinModelKind>>;
using SeriesModels = std::unordered_map<std::string_view, NamedModel<SeriesModelKind>>;

/// Looks up the model names of a component's pins and marks the models found; each name is reported once. Pins that
/// circuit calls should name are looked up in those.
void checkPinModels(Context& context, const Ibis& root, const Cmpnt& component, PinModels& models);

/// Looks up the pins of the "[Diff Pin]" rows and compares their models.
void checkDiffPinModels(Context& context, const Ibis& root, const Cmpnt& component);

/// Looks up pins, models and groups of the "[Series Pin Mapping]" rows, marks the models found, and compares the groups
/// with those of "[Series Switch Groups]".
void checkSeriesPins(Context& context, const Ibis& root, const Cmpnt& component, SeriesModels& models);

} // namespace kestrel
