#pragma once

#include "model/smspec.hpp"
#include "model/tables.hpp"

#include <cstdint>

namespace kestrel {

/// "Submodel_type".
enum class SubmodelType : std::uint8_t { notGiven = 0, noType = 1, dynamicClamp = 2, busHold = 3, fallBack = 4 };

/// The tables that a submodel has as models have them, and the "[Submodel Spec]" that says when they apply.
struct SubMdlTables : Tables {
    OnDemand<SmSpec> spec;
};

/// One "[Submodel]", whose name has at most 40 characters.
struct SubMdl : RecordOf<SubjectKind::submodel> {
    SubmodelType type = SubmodelType::notGiven;
    OnDemand<SubMdlTables> tables;
    OnDemand<Wvfrm> gnd_pulse;
    OnDemand<Wvfrm> power_pulse;
};

/// The submodel being read.
using SubMdlState = TablesState<SubMdl>;

/// Whose tables they are.
[[nodiscard]] CurveOwner curveOwner(const SubMdl& submodel);

/// Reads submodels. At the end of one it is checked as a whole.
extern const RecordModule<SubMdlState> kSubMdl;

/// Checks a submodel that has ended, without line: what its type requires and forbids, then its trigger voltages
/// against the ends of its waveforms.
void checkSubMdl(Context& context, const SubMdl& submodel);

} // namespace kestrel
