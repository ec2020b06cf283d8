#include "model/types.hpp"

namespace kestrel {

namespace {

// Each version added to the end, so an older one knows the first rows.
constexpr std::size_t kTypesFromStart = 14;
constexpr std::size_t kTypesFrom3 = 17;
constexpr std::size_t kTypesFrom4 = 21;

constexpr std::array<EnumerationRow<ModelType>, kTypesFrom4> kModelTypes{{
    {"Input", ModelType::input},
    {"Output", ModelType::output},
    {"I/O", ModelType::io},
    {"3-state", ModelType::threeState},
    {"Open_drain", ModelType::openDrain},
    {"I/O_open_drain", ModelType::ioOpenDrain},
    {"Open_sink", ModelType::openSink},
    {"I/O_open_sink", ModelType::ioOpenSink},
    {"Open_source", ModelType::openSource},
    {"I/O_open_source", ModelType::ioOpenSource},
    {"Input_ECL", ModelType::inputEcl},
    {"Output_ECL", ModelType::outputEcl},
    {"I/O_ECL", ModelType::ioEcl},
    {"Terminator", ModelType::terminator},
    {"Series", ModelType::series},
    {"Series_switch", ModelType::seriesSwitch},
    {"3-state_ECL", ModelType::threeStateEcl},
    {"I/O_diff", ModelType::ioDiff},
    {"Output_diff", ModelType::outputDiff},
    {"3-state_diff", ModelType::threeStateDiff},
    {"Input_diff", ModelType::inputDiff},
}};

} // namespace

std::span<const EnumerationRow<ModelType>> modelTypes(IbisVersion version) {
    const std::span<const EnumerationRow<ModelType>> rows(kModelTypes);
    if (version < IbisVersion::v3) return rows.first(kTypesFromStart);
    return version == IbisVersion::v3 ? rows.first(kTypesFrom3) : rows;
}

std::string_view modelTypeText(ModelType type) {
    const auto* const row = rowOf(kModelTypes, type, &EnumerationRow<ModelType>::code);
    return row == nullptr ? "No Type" : row->text;
}

bool areOpposed(ModelType a, ModelType b) {
    constexpr ModelTypeSet kOnlyDrive{ModelType::output,       ModelType::threeState, ModelType::openDrain,
                                      ModelType::openSink,     ModelType::openSource, ModelType::outputEcl,
                                      ModelType::threeStateEcl};
    constexpr ModelTypeSet kOnlyReceive{ModelType::input, ModelType::inputEcl};
    return (kOnlyDrive.has(a) && kOnlyReceive.has(b)) || (kOnlyDrive.has(b) && kOnlyReceive.has(a));
}

} // namespace kestrel
