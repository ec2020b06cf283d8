#pragma once

namespace kestrel {

struct Ibis;
struct Run;

/// Checks over all components once the file is read: equal names, package models, pins and their relations, and
/// external circuits that nothing uses. Package models may be read from files for it.
void checkComponents(Run& run, Ibis& root);

} // namespace kestrel
