#pragma once

#include "base/number_index.hpp"
#include "ibis/ibis.hpp"
#include "model/mdl.hpp"
#include "quality/physics.hpp"
#include "quality/waveforms.hpp"
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
    /// A pin of "[Diff Pin]" has the model, or may select it.
    [[nodiscard]] bool isInPair(const Mdl& model) const { return paired_.find(model.name.number()) != 0; }

private:
    NumberIndex scheduled_; // by the numbers of the names
    NumberIndex paired_;
};

/// Room that is used again for each model.
struct AdviceRoom {
    std::vector<Point> tables;
    std::vector<Point> waveform;
};

/// A model of the file, and what its tables and waveforms mean.
struct AdvisedModel {
    /// It refers to `room` as long as it is used.
    AdvisedModel(const Mdl& record, const AdvisedFile& in_file, AdviceRoom& room);

    const Mdl& model;
    const AdvisedFile& file;
    ModelPhysics physics;
    std::vector<Waveform> waveforms; ///< in the order of the file
    bool is_alone; ///< its tables are all that there is of it: no external model, no schedule on either side

    /// What it drives comes from its tables.
    [[nodiscard]] bool drives() const { return is_alone && physics.isDriver(); }
    /// It receives, and its tables say how.
    [[nodiscard]] bool onlyReceives() const { return is_alone && kReceivers.has(model.type()); }
    [[nodiscard]] bool isTerminator() const { return is_alone && model.type() == ModelType::terminator; }

private:
    static constexpr ModelTypeSet kReceivers{ModelType::input, ModelType::inputDiff};
};

} // namespace kestrel
