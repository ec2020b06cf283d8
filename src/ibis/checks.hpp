#pragma once

/// What is checked once a file is read, since it needs several records or other files. What these checks report has no
/// line, but for the lines of files that they read.
namespace kestrel {

struct Context;
struct Ibis;
struct Run;
class ModelMarks;

/// Checks the receiver thresholds of all models.
void checkRcvThs(Context& context, const Ibis& root);

/// Checks the composite currents of all models.
void checkCompositeCurrents(Context& context, const Ibis& root);

/// Cautions of components without "[Pin Mapping]" whose models have composite currents.
void checkComponentCurrents(Context& context, const Ibis& root);

/// Looks up every scheduled model and marks it as referenced.
void checkDrvShs(Context& context, const Ibis& root, ModelMarks& models);

/// Checks every selector: clash with a model, use, entries, which it marks as referenced.
void checkMSels(Context& context, Ibis& root, ModelMarks& models);

/// Compares submodels with the "[Add Submodel]" rows of all models.
void checkAddedSubmodels(Context& context, const Ibis& root);

/// Warns of the first model of the list that nothing has referenced.
void checkReferences(Context& context, const Ibis& root);

/// Checks over all components: equal names, package models, pins and their relations, and external circuits that
/// nothing uses. Package models may be read from files for it.
void checkComponents(Run& run, Ibis& root, ModelMarks& models);

/// Looks up the driver models and the loads of test data and marks the loads as used.
void checkTestData(Context& context, Ibis& root);

/// Once the test data are checked: looks up the receivers of test loads, then reports a load that no test data use.
void checkTestLoads(Context& context, Ibis& root);

/// Checks over the boards of a root, whose file is that of the reader's state: repeated names and, unless the file is
/// `nested`, what the boards' designators refer to. The files that those lead to are each read once, when the first
/// board leads there, on a root of their own, with their own final checks.
void checkBoards(Run& run, const Ibis& root, bool nested);

} // namespace kestrel
