#include "ibis/model_marks.hpp"

#include "ibis/ibis.hpp"
#include "model/mdl.hpp"

#include <algorithm>
#include <limits>

namespace kestrel {

namespace {

/// Types that cannot drive and so cannot be scheduled.
constexpr ModelTypeSet kNoDrivers{ModelType::input, ModelType::inputEcl, ModelType::terminator, ModelType::series,
                                  ModelType::seriesSwitch};

ModelMark markOf(const Mdl& model) {
    const ModelType type = model.type();
    ModelMark mark;
    mark.exists = true;
    mark.differential = isDifferential(model);
    mark.series = isSeries(model);
    mark.not_series = !mark.series && type != ModelType::notGiven && type != ModelType::noType;
    mark.scheduled = static_cast<bool>(model.driver_schedule);
    mark.no_driver = kNoDrivers.has(type);
    return mark;
}

} // namespace

ModelMarks::ModelMarks(const Ibis& root) {
    std::size_t least = std::numeric_limits<std::size_t>::max();
    std::size_t most = 0;
    for (const Mdl& model : root.models.newestFirst()) {
        least = std::min<std::size_t>(least, model.name.number());
        most = std::max<std::size_t>(most, model.name.number());
    }
    if (least > most) return;
    first_ = least;
    marks_.resize(most - least + 1);
    for (const Mdl& model : root.models.newestFirst()) {
        ModelMark& mark = marks_[model.name.number() - first_];
        if (!mark.exists) mark = markOf(model);
    }
}

void ModelMarks::hand(Ibis& root) {
    // Of equal names the newest is meant, which comes first.
    for (Mdl& model : root.models.newestFirst()) {
        ModelMark& mark = marks_[model.name.number() - first_];
        model.referenced = mark.referenced;
        mark.referenced = false;
    }
}

} // namespace kestrel
