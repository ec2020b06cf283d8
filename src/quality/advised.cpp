#include "quality/advised.hpp"

#include <algorithm>

namespace kestrel {

AdvisedFile::AdvisedFile(const Ibis& records, const ParseState& state) : root(records), parse(state) {
    models.reserve(root.models.size());
    for (const Mdl& model : root.models.newestFirst()) {
        models.push_back(&model);
        for (const DrvShEntry& entry : model.driver_schedule.entries)
            scheduled_.at(entry.model_name.number()) = 1;
    }
    std::ranges::reverse(models);
}

AdvisedModel::AdvisedModel(const Mdl& record, const AdvisedFile& in_file)
    : model(record),
      file(in_file),
      is_driver(kAdvisedDrivers.has(record.type())),
      is_alone(!record.external_model && !record.driver_schedule && !in_file.isScheduled(record)) {}

} // namespace kestrel
