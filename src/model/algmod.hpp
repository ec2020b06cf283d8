#pragma once

#include "base/text_hash.hpp"
#include "reader/block.hpp"

#include <string>
#include <vector>

namespace kestrel {

struct Run;
struct Mdl;

/// An "Executable" line.
struct AlgExecutable {
    std::string platform; ///< platform, compiler and bits
    std::string file;
    std::string parameter_file;
};

/// "[Algorithmic Model]" of a model.
struct AlgMod {
    std::vector<AlgExecutable> executables; ///< in file order
    TextSet platforms;
    bool reported = false; ///< an "Executable" line was dropped, or that there is none was told
};

/// The algorithmic models of a run.
struct AlgModState {
    TextSet names; ///< of the parameter files looked for, as the lines give them
    TextSet paths; ///< of those found
};

/// "[Algorithmic Model]" to its end. Reports 4601 to 4607 at the line, 4608 without one.
extern const Block<Mdl> kAlgorithmicModel;

/// Once a model is read, warns of an algorithmic model where its type has no use for one (4609, no line).
void checkAlgModType(Run& run, const Mdl& model);

/// Once the file is read, checks each parameter file that the models name and that stands beside it, once per run, and
/// warns of those that do not (4610, no line).
void checkAlgMods(Run& run);

} // namespace kestrel
