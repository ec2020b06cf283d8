#pragma once

#include "base/large_memory.hpp"

#include <vector>

namespace kestrel {

struct Cmpnt;
struct Context;
struct Ibis;
class ModelMarks;

/// What a model name of pins, or of rows between pins, stands for.
struct NamedModel {
    bool is_judged = false;                   ///< as a word, by what follows
    bool is_unmodeled = false;                ///< no name at all, or one of a supply or no connection
    bool is_circuit_call = false;             ///< the word that leaves a pin to the circuit calls
    bool looked_up = false;                   ///< among models and selectors, with what follows
    bool found = false;                       ///< a model or a selector
    bool differential = false;                ///< a model of such a type
    bool series = false;                      ///< the model, or some entry of the selector, lies between pins
    bool not_series = false;                  ///< the model, or some entry of the selector, does not
    const Cmpnt* pin_reported_for = nullptr;  ///< the component for whose pins it was last reported
    const Cmpnt* rows_reported_for = nullptr; ///< the same for the rows between pins
};

/// What the model names of a file stand for, by their numbers, so that each is looked up once.
using ModelNames = std::vector<NamedModel, LargeAllocator<NamedModel>>;

/// Looks up the model names of a component's pins and marks the models found; each name is reported once. Pins that
/// circuit calls should name are looked up in those.
void checkPinModels(Context& context, const Ibis& root, ModelMarks& models, const Cmpnt& component, ModelNames& names);

/// Looks up the pins of the "[Diff Pin]" rows and compares their models.
void checkDiffPinModels(Context& context, const Ibis& root, const Cmpnt& component);

/// Looks up pins, models and groups of the "[Series Pin Mapping]" rows, marks the models found, and compares the groups
/// with those of "[Series Switch Groups]".
void checkSeriesPins(Context& context, const Ibis& root, ModelMarks& models, const Cmpnt& component, ModelNames& names);

} // namespace kestrel
