#pragma once

#include "base/enum_set.hpp"
#include "reader/enumeration.hpp"
#include "reader/parse_state.hpp"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace kestrel {

/// "Model_type".
enum class ModelType : std::uint8_t {
    notGiven = 0,
    noType = 1, ///< the line was there but named no type
    input = 2,
    output = 3,
    io = 4,
    threeState = 5,
    openDrain = 6,
    ioOpenDrain = 7,
    openSink = 8,
    ioOpenSink = 9,
    openSource = 10,
    ioOpenSource = 11,
    inputEcl = 12,
    outputEcl = 13,
    ioEcl = 14,
    terminator = 15,
    series = 16,
    seriesSwitch = 17,
    threeStateEcl = 18,
    ioDiff = 19,
    outputDiff = 20,
    threeStateDiff = 21,
    inputDiff = 22
};

/// "Polarity".
enum class Polarity : std::uint8_t { notGiven = 0, none = 1, nonInverting = 2, inverting = 3 };

/// "Enable".
enum class EnableMode : std::uint8_t { notGiven = 0, none = 1, activeHigh = 2, activeLow = 3 };

/// When an added submodel acts.
enum class SubmodelMode : std::uint8_t { driving = 0, nonDriving = 1, all = 2, none = 3 };

/// The types that a file of this version may name.
[[nodiscard]] std::span<const EnumerationRow<ModelType>> modelTypes(IbisVersion version);

/// The spelling of a type in the file ("I/O_open_drain"); "No Type" for the two that are none.
[[nodiscard]] std::string_view modelTypeText(ModelType type);

inline constexpr std::array<EnumerationRow<Polarity>, 2> kPolarities{{
    {"Non-Inverting", Polarity::nonInverting},
    {"Inverting", Polarity::inverting},
}};

inline constexpr std::array<EnumerationRow<EnableMode>, 2> kEnableModes{{
    {"Active-High", EnableMode::activeHigh},
    {"Active-Low", EnableMode::activeLow},
}};

inline constexpr std::array<EnumerationRow<SubmodelMode>, 3> kSubmodelModes{{
    {"Driving", SubmodelMode::driving},
    {"Non-Driving", SubmodelMode::nonDriving},
    {"All", SubmodelMode::all},
}};

/// A set of model types; the two that are none belong to the others of a set that does not name them.
using ModelTypeSet = EnumSet<ModelType>;

/// Types with an input threshold. The differential types have theirs elsewhere.
inline constexpr ModelTypeSet kInputTypes{ModelType::input,      ModelType::io,           ModelType::ioOpenDrain,
                                          ModelType::ioOpenSink, ModelType::ioOpenSource, ModelType::inputEcl,
                                          ModelType::ioEcl};

/// Types that receive: those with thresholds, and the differential ones that have theirs elsewhere.
inline constexpr ModelTypeSet kReceivingTypes = kInputTypes.with({ModelType::inputDiff, ModelType::ioDiff});

/// Types that drive nothing and so have no timing test load.
inline constexpr ModelTypeSet kNoTestLoadTypes{ModelType::input,      ModelType::inputDiff, ModelType::inputEcl,
                                               ModelType::terminator, ModelType::series,    ModelType::seriesSwitch};

/// Types that may have a differential test load: all that drive, but not a type that is none.
inline constexpr ModelTypeSet kDiffLoadTypes{ModelType::output,     ModelType::io,          ModelType::threeState,
                                             ModelType::openDrain,  ModelType::ioOpenDrain, ModelType::openSink,
                                             ModelType::ioOpenSink, ModelType::openSource,  ModelType::ioOpenSource,
                                             ModelType::outputEcl,  ModelType::ioEcl,       ModelType::threeStateEcl,
                                             ModelType::ioDiff,     ModelType::outputDiff,  ModelType::threeStateDiff};

/// Types whose own output is measured against their own thresholds.
inline constexpr ModelTypeSet kMeasuredBothWays{ModelType::io, ModelType::ioOpenDrain, ModelType::ioOpenSink,
                                                ModelType::ioOpenSource, ModelType::ioEcl};

inline constexpr ModelTypeSet kSeriesTypes{ModelType::series, ModelType::seriesSwitch};

inline constexpr ModelTypeSet kDifferentialTypes{ModelType::ioDiff, ModelType::outputDiff, ModelType::threeStateDiff,
                                                 ModelType::inputDiff};

/// True when the one only drives and the other only receives.
[[nodiscard]] bool areOpposed(ModelType a, ModelType b);

} // namespace kestrel
