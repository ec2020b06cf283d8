#pragma once

#include "external/circuit.hpp"
#include "model/algmod.hpp"
#include "model/ccorner.hpp"
#include "model/crv.hpp"
#include "model/drvsh.hpp"
#include "model/mdlemi.hpp"
#include "model/mspec.hpp"
#include "model/ramp.hpp"
#include "model/rcvth.hpp"
#include "model/sinfo.hpp"
#include "model/types.hpp"
#include "model/wvfrm.hpp"
#include "reader/keyword.hpp"
#include "reader/names.hpp"
#include "reader/rng.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Run;

/// One row of "[Add Submodel]".
struct AddSubmodel {
    std::string name; ///< at most 40 characters
    SubmodelMode mode = SubmodelMode::none;
};

/// A single value. Its line marks it as given (0 until it reads) as soon as it is accepted.
using GivenValue = std::optional<double>;

/// One "[Model]". Volts, ohms, farads, degrees Celsius for the temperature, seconds for transit times.
struct Mdl : CComp {
    std::string name; ///< at most 20 or 40 characters, by version
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
    std::optional<Rng> temperature_range;
    std::optional<Rng> voltage_range;
    std::optional<Rng> pullup_reference;
    std::optional<Rng> pulldown_reference;
    std::optional<Rng> power_clamp_reference;
    std::optional<Rng> gnd_clamp_reference;
    std::optional<Rng> external_reference;
    std::unique_ptr<CCorner> c_comp_corner;
    std::optional<Rng> ttgnd;
    std::optional<Rng> ttpower;
    std::optional<DrvSh> driver_schedule;
    std::unique_ptr<MSpec> model_spec;
    std::unique_ptr<RcvTh> receiver_thresholds;
    std::unique_ptr<SeriesBlock> on_block;
    std::unique_ptr<SeriesBlock> off_block;
    std::vector<AddSubmodel> add_submodels; ///< in file order
    bool add_submodel_seen = false;         ///< the keyword was there, with or without rows
    std::optional<Crv> pulldown;
    std::optional<Crv> pullup;
    std::optional<Crv> gnd_clamp;
    std::optional<Crv> power_clamp;
    std::optional<Rng> rgnd;
    std::optional<Rng> rpower;
    std::optional<Rng> rac;
    std::optional<Rng> cac;
    std::optional<Ramp> ramp;
    std::vector<std::unique_ptr<Wvfrm>> rising_waveforms;  ///< in file order
    std::vector<std::unique_ptr<Wvfrm>> falling_waveforms; ///< in file order
    std::optional<Crv> isso_pu;
    std::optional<Crv> isso_pd;
    std::unique_ptr<AlgMod> algorithmic_model; ///< "[Algorithmic Model]", from its keyword line on
    std::unique_ptr<MdlEmi> emi_model;         ///< "[Begin EMI Model]", likewise
    std::unique_ptr<ExtCkt> external_model;    ///< "[External Model]", likewise
    bool referenced = false;                   ///< some pin, selector, schedule or series pin mapping names this model
};

/// The model being read, null outside one, and what of it is open.
struct MdlState {
    Mdl* current = nullptr;
    SeriesBlock* series_block = nullptr;       ///< section that series keywords go to
    KeywordCode section = KeywordCode::notKey; ///< the model's keyword whose lines are being read
    const Block<Mdl>* block = nullptr;         ///< the construct that waits for its end keyword
    std::unique_ptr<ExtCkt> repeated_external; ///< of a second "[External Model]", which the model does not keep
    ExtCkt* external = nullptr;                ///< the external model being read
    CrvState crv;
    Wvfrm* last_waveform = nullptr; ///< of the model being read; a composite current belongs to it
};

/// Opens a model at "[Model]".
void openMdl(Run& run);

/// Told of every keyword: closes the section being read and, at a keyword that is not a model's own, checks and closes
/// the model.
void mdlKeywordSeen(Run& run, KeywordCode code);

/// Reads a keyword line of a model or a data line under it.
void mdlLine(Run& run, const Line& line);

/// Looks a model up by exact name in the current root and marks it as referenced; null when there is none.
Mdl* referenceMdl(Run& run, std::string_view name);

/// True for the four "_diff" types.
[[nodiscard]] bool isDifferential(const Mdl& model);

/// True for "Series" and "Series_switch".
[[nodiscard]] bool isSeries(const Mdl& model);

/// Compares submodels with the "[Add Submodel]" rows of all models once the file is read: a submodel that no row names
/// (warning 220), then rows that name no submodel (error 218); no line.
void checkAddedSubmodels(Run& run);

/// Warns (219, no line) of the first model of the list that nothing has referenced.
void checkReferences(Run& run);

} // namespace kestrel
