#include "api/records.hpp"
#include "base/rows.hpp"
#include "model/mdl.hpp"
#include "model/msel.hpp"
#include "model/submdl.hpp"

#include <array>

namespace kestrel::api {

namespace {

/// The word of a code; none for a code without a row: the file gives nothing.
template <class Rows, class Code> std::string_view wordOf(const Rows& rows, Code code) {
    const auto* const row = rowOf(rows, code, &std::ranges::range_value_t<Rows>::code);
    return row == nullptr ? std::string_view() : row->text;
}

Ramp rampOf(const kestrel::Ramp& record) {
    Ramp ramp;
    ramp.r_load = valueOf(record.r_load);
    const auto read = [](const std::optional<RampRate>& rate, Corners& dv, Corners& dt) {
        if (!rate) return;
        const auto times = [&rate](Corner corner) {
            const RampCorner& one = (*rate)[corner];
            return one.dv.isNumber() ? one.dt : kNotGiven;
        };
        dv = {.typ = valueOf(rate->typ().dv), .min = valueOf(rate->min().dv), .max = valueOf(rate->max().dv)};
        dt = {.typ = times(Corner::typ), .min = times(Corner::min), .max = times(Corner::max)};
    };
    read(record.dv_dt_r, ramp.dv_r, ramp.dt_r);
    read(record.dv_dt_f, ramp.dv_f, ramp.dt_f);
    return ramp;
}

Waveform waveformOf(const Wvfrm& record) {
    return {.r_fixture = valueOf(record.r_fixture),
            .v_fixture = valueOf(record.v_fixture),
            .v_fixture_min = valueOf(record.v_fixture_min),
            .v_fixture_max = valueOf(record.v_fixture_max),
            .c_fixture = valueOf(record.c_fixture),
            .l_fixture = valueOf(record.l_fixture),
            .r_dut = valueOf(record.r_dut),
            .l_dut = valueOf(record.l_dut),
            .c_dut = valueOf(record.c_dut),
            .table = tableOf(record.rows),
            .composite_current = tableOf(record.composite_current->rows)};
}

/// What models and submodels have alike.
template <class Record> void fillTables(Record& record, const Tables& tables) {
    record.pulldown = tableOf(tables.pulldown.rows);
    record.pullup = tableOf(tables.pullup.rows);
    record.gnd_clamp = tableOf(tables.gnd_clamp.rows);
    record.power_clamp = tableOf(tables.power_clamp.rows);
    record.ramp = rampOf(*tables.ramp);
    record.rising_waveforms = listOf<waveformOf>(tables.rising_waveforms);
    record.falling_waveforms = listOf<waveformOf>(tables.falling_waveforms);
}

void fillValues(Model& model, const MdlValues& values) {
    if (values.model_type != ModelType::notGiven && values.model_type != ModelType::noType)
        model.type = modelTypeText(values.model_type);
    model.polarity = wordOf(kPolarities, values.polarity);
    model.enable = wordOf(kEnableModes, values.enable);
    model.vinl = valueOf(values.vinl);
    model.vinh = valueOf(values.vinh);
    model.vmeas = valueOf(values.vmeas);
    model.cref = valueOf(values.cref);
    model.rref = valueOf(values.rref);
    model.vref = valueOf(values.vref);
    model.cref_diff = valueOf(values.cref_diff);
    model.rref_diff = valueOf(values.rref_diff);
    model.c_comp = cornersOf(values.c_comp);
    model.c_comp_pullup = cornersOf(values.c_comp_pullup);
    model.c_comp_pulldown = cornersOf(values.c_comp_pulldown);
    model.c_comp_power_clamp = cornersOf(values.c_comp_power_clamp);
    model.c_comp_gnd_clamp = cornersOf(values.c_comp_gnd_clamp);
}

/// Where the range of a keyword goes.
struct RangeRow {
    MdlRange which;
    Corners Model::*corners;
};
constexpr std::array<RangeRow, 13> kRanges{{
    {MdlRange::temperatureRange, &Model::temperature_range},
    {MdlRange::voltageRange, &Model::voltage_range},
    {MdlRange::pullupReference, &Model::pullup_reference},
    {MdlRange::pulldownReference, &Model::pulldown_reference},
    {MdlRange::powerClampReference, &Model::power_clamp_reference},
    {MdlRange::gndClampReference, &Model::gnd_clamp_reference},
    {MdlRange::externalReference, &Model::external_reference},
    {MdlRange::ttgnd, &Model::ttgnd},
    {MdlRange::ttpower, &Model::ttpower},
    {MdlRange::rgnd, &Model::rgnd},
    {MdlRange::rpower, &Model::rpower},
    {MdlRange::rac, &Model::rac},
    {MdlRange::cac, &Model::cac},
}};

/// A list of the fields that a record gives; the place of a field counts those ahead of it.
template <class Named, auto Members, class Record> List<Named> listGiven(const Record* record) {
    if (record == nullptr) return {};
    const auto is_given = [](const Record& one, const auto& field) { return (one.*field.member).has_value(); };
    std::size_t size = 0;
    for (const auto& field : Members())
        if (is_given(*record, field)) ++size;
    return List<Named>({.records = record}, size, [](const ListSource& source, std::size_t place) -> Named {
        const Record& one = *static_cast<const Record*>(source.records);
        for (const auto& field : Members()) {
            if (!(one.*field.member).has_value()) continue;
            if (place-- != 0) continue;
            if constexpr (std::is_same_v<Named, NamedValue>) {
                return {field.name, valueOf(one.*field.member)};
            } else {
                return {field.name, cornersOf(one.*field.member)};
            }
        }
        return {};
    });
}

AddedSubmodel addedOf(const AddSubmodel& row) { return {row.name, wordOf(kSubmodelModes, row.mode)}; }

ScheduledDriver scheduledOf(const DrvShEntry& entry) {
    return {.model = entry.model_name,
            .rise_on = valueOf(entry.delays.rise_on),
            .rise_off = valueOf(entry.delays.rise_off),
            .fall_on = valueOf(entry.delays.fall_on),
            .fall_off = valueOf(entry.delays.fall_off)};
}

Executable executableOf(const AlgExecutable& line) { return {line.platform, line.file, line.parameter_file}; }

SelectorEntry entryOf(const MSelEntry& entry) { return {entry.model_name, entry.description}; }

} // namespace

Model modelOf(const Mdl& record) {
    Model model;
    model.name = record.name;
    model.line = record.line;
    fillValues(model, *record.values);
    for (const RangeRow& row : kRanges)
        if (const Rng* const range = findRange(record, row.which)) model.*row.corners = cornersOf(*range);
    fillTables(model, *record.tables);
    model.isso_pu = tableOf(record.tables->isso_pu.rows);
    model.isso_pd = tableOf(record.tables->isso_pd.rows);
    model.model_spec = listGiven<NamedCorners, mSpecMembers>(record.model_spec.get());
    if (const RcvTh* const thresholds = record.receiver_thresholds.get()) {
        model.receiver_thresholds = listGiven<NamedValue, rcvThMembers>(thresholds);
        model.reference_supply = referenceSupplyWord(thresholds->reference_supply);
    }
    model.submodels = listOf<addedOf>(record.add_submodels);
    model.driver_schedule = listOf<scheduledOf>(record.driver_schedule.entries);
    if (record.algorithmic_model) model.executables = listOf<executableOf>(record.algorithmic_model->executables);
    model.has_external_model = record.external_model != nullptr;
    return model;
}

Submodel submodelOf(const SubMdl& record) {
    constexpr std::array<std::string_view, 5> kTypes{"", "", "Dynamic_clamp", "Bus_hold", "Fall_back"};
    Submodel submodel;
    submodel.name = record.name;
    submodel.line = record.line;
    submodel.type = wordAt(kTypes, record.type);
    fillTables(submodel, *record.tables);
    submodel.gnd_pulse = tableOf(record.gnd_pulse->rows);
    submodel.power_pulse = tableOf(record.power_pulse->rows);
    return submodel;
}

Selector selectorOf(const MSel& record) {
    return {.name = record.name, .line = record.line, .entries = listOf<entryOf>(record.entries)};
}

} // namespace kestrel::api
