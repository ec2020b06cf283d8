#pragma once

#include "model/crv.hpp"
#include "model/ramp.hpp"
#include "model/smspec.hpp"
#include "model/wvfrm.hpp"
#include "reader/keyword.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

struct Run;

/// "Submodel_type".
enum class SubmodelType : std::uint8_t { notGiven = 0, noType = 1, dynamicClamp = 2, busHold = 3, fallBack = 4 };

/// One "[Submodel]".
struct SubMdl {
    std::string name; ///< at most 40 characters
    SubmodelType type = SubmodelType::notGiven;
    std::optional<Crv> pulldown;
    std::optional<Crv> pullup;
    std::optional<Crv> gnd_clamp;
    std::optional<Crv> power_clamp;
    std::optional<Ramp> ramp;
    std::vector<std::unique_ptr<Wvfrm>> rising;  ///< in file order
    std::vector<std::unique_ptr<Wvfrm>> falling; ///< in file order
    std::unique_ptr<Wvfrm> gnd_pulse;
    std::unique_ptr<Wvfrm> power_pulse;
    std::optional<SmSpec> spec;
};

/// The submodel being read, null outside one, and its keyword whose lines are being read.
struct SubMdlState {
    SubMdl* current = nullptr;
    KeywordCode section = KeywordCode::notKey;
};

/// Opens a submodel at "[Submodel]".
void openSubMdl(Run& run);

/// Told of every keyword: closes the section being read and, at a keyword that is not a submodel's own, checks and
/// closes the submodel.
void submdlKeywordSeen(Run& run, KeywordCode code);

/// Reads a keyword line of a submodel or a data line under it.
void submdlLine(Run& run, const Line& line);

} // namespace kestrel
