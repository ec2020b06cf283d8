#pragma once

#include <string_view>

/// What is checked of models, selectors and submodels once the file is read, since it needs several records. All report
/// without line.
namespace kestrel {

struct Context;
struct Ibis;
struct Mdl;

/// Looks a model up by exact name and marks it as referenced; null when there is none.
Mdl* referenceMdl(Ibis& root, std::string_view name);

/// Checks the receiver thresholds of all models.
void checkRcvThs(Context& context, const Ibis& root);

/// Checks the composite currents of all models.
void checkCompositeCurrents(Context& context, const Ibis& root);

/// Cautions of components without "[Pin Mapping]" whose models have composite currents.
void checkComponentCurrents(Context& context, const Ibis& root);

/// Looks up every scheduled model and marks it as referenced.
void checkDrvShs(Context& context, Ibis& root);

/// Checks every selector: clash with a model, use, entries, which it marks as referenced.
void checkMSels(Context& context, Ibis& root);

/// Compares submodels with the "[Add Submodel]" rows of all models.
void checkAddedSubmodels(Context& context, const Ibis& root);

/// Warns of the first model of the list that nothing has referenced.
void checkReferences(Context& context, const Ibis& root);

} // namespace kestrel
