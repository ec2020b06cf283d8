#pragma once

#include "base/text_hash.hpp"

#include <string_view>

namespace kestrel {

struct Cmpnt;
struct Context;
struct Ibis;

/// What a model name of pins, or of rows between pins, stands for.
struct NamedModel {
    bool found = false;                       ///< a model or a selector
    bool differential = false;                ///< a model of such a type
    bool series = false;                      ///< the model, or some entry of the selector, lies between pins
    bool not_series = false;                  ///< the model, or some entry of the selector, does not
    const Cmpnt* pin_reported_for = nullptr;  ///< the component for whose pins it was last reported
    const Cmpnt* rows_reported_for = nullptr; ///< the same for the rows between pins
};

/// The model names of a file, so that each is looked up once. The names are views of the rows' own.
using ModelNames = ViewMap<NamedModel>;

/// Looks up the model names of a component's pins and marks the models found; each name is reported once. Pins that
/// circuit calls should name are looked up in those.
void checkPinModels(Context& context, Ibis& root, const Cmpnt& component, ModelNames& names);

/// Looks up the pins of the "[Diff Pin]" rows and compares their models.
void checkDiffPinModels(Context& context, const Ibis& root, const Cmpnt& component);

/// Looks up pins, models and groups of the "[Series Pin Mapping]" rows, marks the models found, and compares the groups
/// with those of "[Series Switch Groups]".
void checkSeriesPins(Context& context, Ibis& root, const Cmpnt& component, ModelNames& names);

} // namespace kestrel
