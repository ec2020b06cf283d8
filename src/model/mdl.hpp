#pragma once

#include "external/circuit.hpp"
#include "model/algmod.hpp"
#include "model/ccorner.hpp"
#include "model/drvsh.hpp"
#include "model/mdlemi.hpp"
#include "model/mspec.hpp"
#include "model/rcvth.hpp"
#include "model/sinfo.hpp"
#include "model/tables.hpp"
#include "model/types.hpp"
#include "reader/rng.hpp"
#include "reader/sections.hpp"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// One row of "[Add Submodel]".
struct AddSubmodel {
    Name name; ///< at most 40 characters
    SubmodelMode mode = SubmodelMode::none;
};

/// What the subparameters under the keyword itself give. Volts, ohms, farads. The line of a single value marks it as
/// given (0 until it reads) as soon as it is accepted.
struct MdlValues : CComp {
    ModelType model_type = ModelType::notGiven;
    Polarity polarity = Polarity::notGiven;
    EnableMode enable = EnableMode::notGiven;
    GivenValue vinl;
    GivenValue vinh;
    GivenValue vmeas;
    GivenValue cref;
    GivenValue rref;
    GivenValue vref;
    GivenValue cref_diff;
    GivenValue rref_diff;
};

/// What keywords with a range on their own line give.
enum class MdlRange : std::uint8_t {
    temperatureRange,
    voltageRange,
    pullupReference,
    pulldownReference,
    powerClampReference,
    gndClampReference,
    externalReference,
    ttgnd,
    ttpower,
    rgnd,
    rpower,
    rac,
    cac
};

/// One of those ranges. Volts, ohms, farads, degrees Celsius for the temperature, seconds for transit times.
struct MdlRangeRow {
    MdlRange which;
    Rng range;
};

/// The tables of a model.
struct MdlTables : Tables {
    Crv isso_pu;
    Crv isso_pd;
};

/// One "[Model]", whose name has at most 20 or 40 characters, by version. Its parts take up room only once a line gives
/// them, so that a file of hardly more than keyword lines stays cheap.
struct Mdl : RecordOf<SubjectKind::model> {
    OnDemand<MdlValues> values;
    Rows<MdlRangeRow> ranges; ///< those that are given; findRange() finds one
    OnDemand<MdlTables> tables;
    std::unique_ptr<CCorner> c_comp_corner;
    DrvSh driver_schedule;
    std::unique_ptr<MSpec> model_spec;
    std::unique_ptr<RcvTh> receiver_thresholds;
    std::unique_ptr<SeriesBlock> on_block;
    std::unique_ptr<SeriesBlock> off_block;
    Rows<AddSubmodel> add_submodels;           ///< in file order
    std::unique_ptr<AlgMod> algorithmic_model; ///< "[Algorithmic Model]", from its keyword line on
    std::unique_ptr<MdlEmi> emi_model;         ///< "[Begin EMI Model]", likewise
    std::unique_ptr<ExtCkt> external_model;    ///< "[External Model]", likewise
    bool add_submodel_seen = false;            ///< the keyword was there, with or without rows
    bool referenced = false;                   ///< some pin, selector, schedule or series pin mapping names this model

    /// "Model_type".
    [[nodiscard]] ModelType type() const { return values->model_type; }
};

/// The model being read, and what of it is open.
struct MdlState : TablesState<Mdl> {
    SeriesBlock* series_block = nullptr; ///< section that series keywords go to
    std::unique_ptr<ExtCkt> external;    ///< the external model being read
};

/// Reads models. At the end of one it is checked as a whole.
extern const RecordModule<MdlState> kMdl;

/// Whose tables they are.
[[nodiscard]] CurveOwner curveOwner(const Mdl& model);

/// The range that the keyword has given, or null.
[[nodiscard]] const Rng* findRange(const Mdl& model, MdlRange which);

/// True for the four "_diff" types.
[[nodiscard]] bool isDifferential(const Mdl& model);

/// True for "Series" and "Series_switch".
[[nodiscard]] bool isSeries(const Mdl& model);

} // namespace kestrel
