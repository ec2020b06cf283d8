#pragma once

#include "model/crv.hpp"
#include "model/ramp.hpp"
#include "model/smspec.hpp"
#include "model/wvfrm.hpp"
#include "reader/sections.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// "Submodel_type".
enum class SubmodelType : std::uint8_t { notGiven = 0, noType = 1, dynamicClamp = 2, busHold = 3, fallBack = 4 };

/// One "[Submodel]", whose name has at most 40 characters.
struct SubMdl : RecordOf<SubjectKind::submodel> {
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

/// The submodel being read.
struct SubMdlState : RecordState<SubMdl> {
    CrvState crv; ///< of its open I-V table
};

/// Reads submodels. At the end of one it is checked as a whole.
extern const RecordModule<SubMdlState> kSubMdl;

} // namespace kestrel
