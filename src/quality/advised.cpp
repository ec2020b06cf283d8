#include "quality/advised.hpp"

#include "component/cmpnt.hpp"
#include "model/msel.hpp"

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

    const auto add_pin = [this](const PinList& pins, std::string_view name) {
        const Pin* const pin = pins.find(name);
        if (pin == nullptr || paired_.find(pin->model_name.number()) != 0) return;
        paired_.at(pin->model_name.number()) = 1;
        const MSel* const selector = root.model_selectors.find(pin->model_name);
        if (selector == nullptr) return;
        for (const MSelEntry& entry : selector->entries)
            paired_.at(entry.model_name.number()) = 1;
    };
    for (const Cmpnt& component : root.components.newestFirst()) {
        if (!component.diff_pins) continue;
        for (const DifPin& row : component.diff_pins->rows) {
            add_pin(component.pins, row.pin);
            add_pin(component.pins, row.inv_pin);
        }
    }
}

AdvisedModel::AdvisedModel(const Mdl& record, const AdvisedFile& in_file, AdviceRoom& room)
    : model(record),
      file(in_file),
      physics(record, room.tables),
      waveforms(waveformsOf(record, physics, room.waveform)),
      is_alone(!record.external_model && !record.driver_schedule && !in_file.isScheduled(record)) {}

} // namespace kestrel
