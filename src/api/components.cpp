#include "api/records.hpp"
#include "component/cmpnt.hpp"

#include <array>

namespace kestrel::api {

namespace {

std::string_view locationWord(Location location) {
    constexpr std::array<std::string_view, 3> kWords{"", "Pin", "Die"};
    return wordAt(kWords, location);
}

Pin pinOf(const kestrel::Pin& row) {
    return {.name = row.name,
            .signal = row.signal_name,
            .model = row.model_name,
            .r_pin = valueOf(row.r_pin),
            .l_pin = valueOf(row.l_pin),
            .c_pin = valueOf(row.c_pin)};
}

PinMapping mappingOf(const PinMap& row) {
    return {.pin = row.pin,
            .pulldown_ref = row.label(BusColumn::pulldownRef),
            .pullup_ref = row.label(BusColumn::pullupRef),
            .gnd_clamp_ref = row.label(BusColumn::gndClampRef),
            .power_clamp_ref = row.label(BusColumn::powerClampRef),
            .ext_ref = row.label(BusColumn::extRef)};
}

DiffPin diffPinOf(const DifPin& row) {
    return {.pin = row.pin, .inv_pin = row.inv_pin, .vdiff = valueOf(row.vdiff), .tdelay = cornersOf(row.tdelay)};
}

SeriesPin seriesPinOf(const SPin& row) {
    return {.pin_1 = row.pin_1, .pin_2 = row.pin_2, .model = row.model_name, .group = row.group};
}

std::string_view nameOf(const std::string& name) { return name; }

} // namespace

Component componentOf(const Cmpnt& record) {
    Component component;
    component.name = record.name;
    component.line = record.line;
    component.manufacturer = record.manufacturer;
    component.package_model = record.package_model;
    component.si_location = locationWord(record.si_location);
    component.timing_location = locationWord(record.timing_location);
    if (const Pkg* const package = record.package.get()) {
        component.r_pkg = cornersOf(package->r_pkg);
        component.l_pkg = cornersOf(package->l_pkg);
        component.c_pkg = cornersOf(package->c_pkg);
    }
    component.pins = listOf<pinOf>(record.pins.rows());
    if (record.pin_mapping) component.pin_mapping = listOf<mappingOf>(record.pin_mapping->rows.rows());
    if (record.diff_pins) component.diff_pins = listOf<diffPinOf>(record.diff_pins->rows.rows());
    if (record.series_pins) component.series_pins = listOf<seriesPinOf>(record.series_pins->rows);
    if (record.alternates) component.alternate_package_models = listOf<nameOf>(record.alternates->models.names);
    return component;
}

} // namespace kestrel::api
