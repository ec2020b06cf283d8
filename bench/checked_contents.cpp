#include "checked_contents.hpp"

#include "component/cmpnt.hpp"
#include "ibis/ibis.hpp"
#include "model/mdl.hpp"
#include "model/msel.hpp"
#include "model/submdl.hpp"
#include "package/pkgmdl.hpp"

namespace kestrel::bench {

namespace {

std::size_t rowsOf(const Crv& curve) { return curve.rows.size(); }

std::size_t rowsOf(const OnDemand<Wvfrm>& waveform) { return waveform->rows.size(); }

std::size_t rowsOf(const Rows<Wvfrm>& waveforms) {
    std::size_t rows = 0;
    for (const Wvfrm& waveform : waveforms)
        rows += waveform.rows.size();
    return rows;
}

std::size_t valuesOf(const std::unique_ptr<Mtx>& mtx) {
    std::size_t values = 0;
    if (!mtx) return values;
    for (const MtxRow& row : mtx->rows)
        values += row.filled();
    return values;
}

} // namespace

Contents contentsOf(const Ibis& root) {
    Contents contents;
    for (const Cmpnt& component : root.components.newestFirst()) {
        ++contents.components;
        contents.pins += component.pins.size();
    }
    for (const Mdl& model : root.models.newestFirst()) {
        ++contents.models;
        contents.table_rows += rowsOf(model.tables->pulldown) + rowsOf(model.tables->pullup) +
                               rowsOf(model.tables->gnd_clamp) + rowsOf(model.tables->power_clamp) +
                               rowsOf(model.tables->rising_waveforms) + rowsOf(model.tables->falling_waveforms);
        contents.schedule_entries += model.driver_schedule.entries.size();
    }
    for (const SubMdl& submodel : root.submodels.newestFirst()) {
        ++contents.submodels;
        contents.table_rows += rowsOf(submodel.tables->gnd_clamp) + rowsOf(submodel.tables->power_clamp) +
                               rowsOf(submodel.gnd_pulse) + rowsOf(submodel.power_pulse);
    }
    for (const MSel& selector : root.model_selectors.newestFirst())
        contents.selector_entries += selector.entries.size();
    for (const PkgMdl& package : root.package_models.newestFirst()) {
        contents.package_pins += package.pin_names.size();
        contents.matrix_values += valuesOf(package.inductance) + valuesOf(package.capacitance);
    }
    return contents;
}

} // namespace kestrel::bench
