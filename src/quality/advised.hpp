#pragma once

#include "base/number_index.hpp"
#include "ibis/ibis.hpp"
#include "model/mdl.hpp"
#include "reader/parse_state.hpp"

#include <vector>

/// What the checks of advice look at.
namespace kestrel {

/// A file that was read, with what the checks of models need to know of other records.
struct AdvisedFile {
    AdvisedFile(const Ibis& records, const ParseState& state);

    const Ibis& root;
    const ParseState& parse;        ///< the reader's, at the end of the file
    std::vector<const Mdl*> models; ///< in the order of the file

    /// A driver schedule names the model.
    [[nodiscard]] bool isScheduled(const Mdl& model) const { return scheduled_.find(model.name.number()) != 0; }

private:
    NumberIndex scheduled_; // by the numbers of the names
};

/// Types that drive a level from their tables: all but the ECL ones.
inline constexpr ModelTypeSet kAdvisedDrivers{ModelType::output,     ModelType::io,          ModelType::threeState,
                                              ModelType::openDrain,  ModelType::ioOpenDrain, ModelType::openSink,
                                              ModelType::ioOpenSink, ModelType::openSource,  ModelType::ioOpenSource,
                                              ModelType::outputDiff, ModelType::ioDiff,      ModelType::threeStateDiff};

/// Types whose tables are of one pin over one supply: drivers and receivers.
inline constexpr ModelTypeSet kTableTypes = kAdvisedDrivers.with({ModelType::input, ModelType::inputDiff});

/// A model of the file.
struct AdvisedModel {
    AdvisedModel(const Mdl& record, const AdvisedFile& in_file);

    const Mdl& model;
    const AdvisedFile& file;
    bool is_driver; ///< of a type that drives
    bool is_alone;  ///< its tables are all that there is of it: no external model, no schedule on either side
};

} // namespace kestrel
