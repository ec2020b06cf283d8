#pragma once

#include "base/text_hash.hpp"

namespace kestrel {

struct Context;
struct Ibis;

/// The parameter files of a run.
struct AmiFiles {
    TextSet names; ///< of those looked for, as the models give them
    TextSet paths; ///< of those found, without "." and "..": as they were looked for and as they were found
    bool stay_in_folder = false; ///< set by the run driver: what a model names outside of its file's folder is not read
};

/// Once the file is read: checks each parameter file that the models name and that is found beside it, once per run,
/// and warns of those that are not.
void checkAmiFiles(Context& context, AmiFiles& files, const Ibis& root);

} // namespace kestrel
