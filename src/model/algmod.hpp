#pragma once

#include "base/text_hash.hpp"
#include "model/types.hpp"
#include "reader/sections.hpp"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// An "Executable" line.
struct AlgExecutable {
    std::string platform; ///< platform, compiler and bits
    std::string file;
    std::string parameter_file;
};

/// "[Algorithmic Model]" of a model.
struct AlgMod {
    std::vector<AlgExecutable> executables; ///< in file order
    TextSet platforms;                      ///< each behind the word of its line
    bool reported = false;                  ///< an "Executable" line was dropped, or it was reported that there is none
};

/// Begins an "[Algorithmic Model]"; a second one of a model goes on with the first.
void openAlgMod(Context& context, std::unique_ptr<AlgMod>& algorithmic, std::string_view text);

/// Reads a line of it.
void algModLine(Context& context, AlgMod& algorithmic, std::string_view text);

/// Checks the whole block of the model of this name.
void closeAlgMod(Context& context, AlgMod& algorithmic, std::string_view model);

/// "[End Algorithmic Model]".
extern const BlockEnd kAlgModEnd;

/// Once a model with an algorithmic model is read: warns where its type has no use for one.
void checkAlgModType(Context& context, std::string_view model, ModelType type);

} // namespace kestrel
