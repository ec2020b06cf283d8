#include "compare/models.hpp"

#include "compare/match.hpp"
#include "compare/tables.hpp"
#include "model/mdl.hpp"
#include "model/msel.hpp"
#include "model/submdl.hpp"
#include "model/testdata.hpp"
#include "model/testload.hpp"
#include "quality/number_text.hpp"

#include <algorithm>
#include <string>

namespace kestrel {

namespace {

/// The words for the settings of an enumeration that the file spells; none for the others.
template <class Rows, class Code> std::string_view wordOf(const Rows& rows, Code code) {
    const auto* const row = rowOf(rows, code, &std::ranges::range_value_t<Rows>::code);
    return row == nullptr ? std::string_view() : row->text;
}

std::string_view typeWord(ModelType type) {
    return type == ModelType::notGiven || type == ModelType::noType ? std::string_view() : modelTypeText(type);
}

constexpr FieldRow<MdlValues, GivenValue> kValues[] = {
    {"Vinl", Unit::volts, &MdlValues::vinl},
    {"Vinh", Unit::volts, &MdlValues::vinh},
    {"Vmeas", Unit::volts, &MdlValues::vmeas},
    {"Cref", Unit::farads, &MdlValues::cref},
    {"Rref", Unit::ohms, &MdlValues::rref},
    {"Vref", Unit::volts, &MdlValues::vref},
    {"Cref_diff", Unit::farads, &MdlValues::cref_diff},
    {"Rref_diff", Unit::ohms, &MdlValues::rref_diff},
};

constexpr FieldRow<CComp, GivenRange> kCapacitances[] = {
    {"C_comp", Unit::farads, &CComp::c_comp},
    {"C_comp_pullup", Unit::farads, &CComp::c_comp_pullup},
    {"C_comp_pulldown", Unit::farads, &CComp::c_comp_pulldown},
    {"C_comp_power_clamp", Unit::farads, &CComp::c_comp_power_clamp},
    {"C_comp_gnd_clamp", Unit::farads, &CComp::c_comp_gnd_clamp},
};

struct KeywordRange {
    MdlRange which;
    std::string_view keyword;
    Unit unit;
};
constexpr auto kKeywordRanges = std::to_array<KeywordRange>({
    {MdlRange::temperatureRange, "[Temperature Range]", Unit::celsius},
    {MdlRange::voltageRange, "[Voltage Range]", Unit::volts},
    {MdlRange::pullupReference, "[Pullup Reference]", Unit::volts},
    {MdlRange::pulldownReference, "[Pulldown Reference]", Unit::volts},
    {MdlRange::powerClampReference, "[POWER Clamp Reference]", Unit::volts},
    {MdlRange::gndClampReference, "[GND Clamp Reference]", Unit::volts},
    {MdlRange::externalReference, "[External Reference]", Unit::volts},
    {MdlRange::ttgnd, "[TTgnd]", Unit::seconds},
    {MdlRange::ttpower, "[TTpower]", Unit::seconds},
    {MdlRange::rgnd, "[Rgnd]", Unit::ohms},
    {MdlRange::rpower, "[Rpower]", Unit::ohms},
    {MdlRange::rac, "[Rac]", Unit::ohms},
    {MdlRange::cac, "[Cac]", Unit::farads},
});

constexpr FieldRow<MSpec, GivenRange> kSpec[] = {
    {"Vinh", Unit::volts, &MSpec::vinh},
    {"Vinl", Unit::volts, &MSpec::vinl},
    {"Vinh+", Unit::volts, &MSpec::vinh_plus},
    {"Vinh-", Unit::volts, &MSpec::vinh_minus},
    {"Vinl+", Unit::volts, &MSpec::vinl_plus},
    {"Vinl-", Unit::volts, &MSpec::vinl_minus},
    {"S_overshoot_high", Unit::volts, &MSpec::s_overshoot_high},
    {"S_overshoot_low", Unit::volts, &MSpec::s_overshoot_low},
    {"D_overshoot_high", Unit::volts, &MSpec::d_overshoot_high},
    {"D_overshoot_low", Unit::volts, &MSpec::d_overshoot_low},
    {"Pulse_high", Unit::volts, &MSpec::pulse_high},
    {"Pulse_low", Unit::volts, &MSpec::pulse_low},
    {"D_overshoot_time", Unit::seconds, &MSpec::d_overshoot_time},
    {"Pulse_time", Unit::seconds, &MSpec::pulse_time},
    {"Vmeas", Unit::volts, &MSpec::vmeas},
    {"Vref", Unit::volts, &MSpec::vref},
    {"Cref", Unit::farads, &MSpec::cref},
    {"Rref", Unit::ohms, &MSpec::rref},
    {"Cref_rising", Unit::farads, &MSpec::cref_rising},
    {"Cref_falling", Unit::farads, &MSpec::cref_falling},
    {"Rref_rising", Unit::ohms, &MSpec::rref_rising},
    {"Rref_falling", Unit::ohms, &MSpec::rref_falling},
    {"Vref_rising", Unit::volts, &MSpec::vref_rising},
    {"Vref_falling", Unit::volts, &MSpec::vref_falling},
    {"Vmeas_rising", Unit::volts, &MSpec::vmeas_rising},
    {"Vmeas_falling", Unit::volts, &MSpec::vmeas_falling},
    {"Rref_diff", Unit::ohms, &MSpec::rref_diff},
    {"Cref_diff", Unit::farads, &MSpec::cref_diff},
    {"D_overshoot_area_h", Unit::voltSeconds, &MSpec::d_overshoot_area_h},
    {"D_overshoot_area_l", Unit::voltSeconds, &MSpec::d_overshoot_area_l},
    {"D_overshoot_ampl_h", Unit::volts, &MSpec::d_overshoot_ampl_h},
    {"D_overshoot_ampl_l", Unit::volts, &MSpec::d_overshoot_ampl_l},
    {"Weak_R", Unit::ohms, &MSpec::weak_r},
    {"Weak_I", Unit::amperes, &MSpec::weak_i},
    {"Weak_V", Unit::volts, &MSpec::weak_v},
};

constexpr FieldRow<RcvTh, GivenValue> kThresholds[] = {
    {"Vth", Unit::volts, &RcvTh::vth},
    {"Vth_min", Unit::volts, &RcvTh::vth_min},
    {"Vth_max", Unit::volts, &RcvTh::vth_max},
    {"Vinh_ac", Unit::volts, &RcvTh::vinh_ac},
    {"Vinh_dc", Unit::volts, &RcvTh::vinh_dc},
    {"Vinl_ac", Unit::volts, &RcvTh::vinl_ac},
    {"Vinl_dc", Unit::volts, &RcvTh::vinl_dc},
    {"Threshold_sensitivity", Unit::none, &RcvTh::threshold_sensitivity},
    {"Vcross_low", Unit::volts, &RcvTh::vcross_low},
    {"Vcross_high", Unit::volts, &RcvTh::vcross_high},
    {"Vdiff_ac", Unit::volts, &RcvTh::vdiff_ac},
    {"Vdiff_dc", Unit::volts, &RcvTh::vdiff_dc},
    {"Tslew_ac", Unit::seconds, &RcvTh::tslew_ac},
    {"Tdiffslew_ac", Unit::seconds, &RcvTh::tdiffslew_ac},
};

constexpr FieldRow<SeriesBlock, GivenRange> kElements[] = {
    {"[R Series]", Unit::ohms, &SeriesBlock::r_series},   {"[L Series]", Unit::henries, &SeriesBlock::l_series},
    {"[Rl Series]", Unit::ohms, &SeriesBlock::rl_series}, {"[C Series]", Unit::farads, &SeriesBlock::c_series},
    {"[Rc Series]", Unit::ohms, &SeriesBlock::rc_series}, {"[Lc Series]", Unit::henries, &SeriesBlock::lc_series},
};

constexpr FieldRow<SmSpec, GivenRange> kSubmodelSpec[] = {
    {"V_trigger_r", Unit::volts, &SmSpec::v_trigger_r},
    {"V_trigger_f", Unit::volts, &SmSpec::v_trigger_f},
    {"Off_delay", Unit::seconds, &SmSpec::off_delay},
};

constexpr FieldRow<Dly, Cell> kDelays[] = {
    {"Rise_on_dly", Unit::seconds, &Dly::rise_on},
    {"Rise_off_dly", Unit::seconds, &Dly::rise_off},
    {"Fall_on_dly", Unit::seconds, &Dly::fall_on},
    {"Fall_off_dly", Unit::seconds, &Dly::fall_off},
};

constexpr FieldRow<TestLoad, GivenValue> kLoad[] = {
    {"C1_near", Unit::farads, &TestLoad::c1_near},
    {"C2_near", Unit::farads, &TestLoad::c2_near},
    {"C1_far", Unit::farads, &TestLoad::c1_far},
    {"C2_far", Unit::farads, &TestLoad::c2_far},
    {"Rs_near", Unit::ohms, &TestLoad::rs_near},
    {"Rs_far", Unit::ohms, &TestLoad::rs_far},
    {"Rp1_near", Unit::ohms, &TestLoad::rp1_near},
    {"Rp2_near", Unit::ohms, &TestLoad::rp2_near},
    {"Rp1_far", Unit::ohms, &TestLoad::rp1_far},
    {"Rp2_far", Unit::ohms, &TestLoad::rp2_far},
    {"Ls_near", Unit::henries, &TestLoad::ls_near},
    {"Ls_far", Unit::henries, &TestLoad::ls_far},
    {"Td", Unit::seconds, &TestLoad::td},
    {"Zo", Unit::ohms, &TestLoad::zo},
    {"R_diff_near", Unit::ohms, &TestLoad::r_diff_near},
    {"R_diff_far", Unit::ohms, &TestLoad::r_diff_far},
};
constexpr FieldRow<TestLoad, GivenRange> kLoadRanges[] = {
    {"V_term1", Unit::volts, &TestLoad::v_term1},
    {"V_term2", Unit::volts, &TestLoad::v_term2},
};

constexpr std::array<std::string_view, 8> kTestTables{"[Rising Waveform Near]",       "[Rising Waveform Far]",
                                                      "[Falling Waveform Near]",      "[Falling Waveform Far]",
                                                      "[Diff Rising Waveform Near]",  "[Diff Rising Waveform Far]",
                                                      "[Diff Falling Waveform Near]", "[Diff Falling Waveform Far]"};

constexpr FieldRow<Converter, GivenValue> kConverterValues[] = {
    {"vlow", Unit::volts, &Converter::vlow},
    {"vhigh", Unit::volts, &Converter::vhigh},
    {"trise", Unit::seconds, &Converter::trise},
    {"tfall", Unit::seconds, &Converter::tfall},
};

std::string_view supplyWord(ReferenceSupply supply) {
    constexpr std::array<std::string_view, 6> kWords{"",           "Power_clamp_ref", "Gnd_clamp_ref",
                                                     "Pullup_ref", "Pulldown_ref",    "Ext_ref"};
    return kWords[static_cast<std::size_t>(supply)];
}

std::string_view emiTypeWord(EmiType type) {
    constexpr std::array<std::string_view, 3> kWords{"", "Ferrite", "Not_a_ferrite"};
    return kWords[static_cast<std::size_t>(type)];
}

std::string_view submodelTypeWord(SubmodelType type) {
    constexpr std::array<std::string_view, 5> kWords{"", "", "Dynamic_clamp", "Bus_hold", "Fall_back"};
    return kWords[static_cast<std::size_t>(type)];
}

void compareSchedules(Comparison& comparison, const DrvSh& was, const DrvSh& is) {
    constexpr std::string_view kGroup = "[Driver Schedule]";
    if (!was.given && !is.given) return;
    if (!comparePresence(comparison, kGroup, was.given, is.given)) return;
    matchRows(
        was.entries, is.entries, [&](const DrvShEntry& entry) { return nameInNew(comparison, entry.model_name); },
        [](const DrvShEntry& entry) { return entry.model_name.view(); },
        [&](const DrvShEntry& before, const DrvShEntry& now) {
            for (const auto& row : kDelays)
                compareCell(comparison, {kGroup, now.model_name, row.name}, row.unit, before.delays.*row.field,
                            now.delays.*row.field);
        },
        [&](const DrvShEntry& entry, bool is_new) {
            comparePresence(comparison, {kGroup, entry.model_name}, !is_new, is_new);
        });
}

void compareBlocks(Comparison& comparison, std::string_view label, const SeriesBlock* was, const SeriesBlock* is) {
    if (was == nullptr && is == nullptr) return;
    if (!comparePresence(comparison, label, was != nullptr, is != nullptr)) return;
    compareFields(comparison, label, kElements, *was, *is);
    compareCurve(comparison, {label, "[Series Current]"}, was->series_current, is->series_current);
    eachMosfetPair(*was, *is, [&](const std::string& field, const SMos* before, const SMos* now) {
        if (comparePresence(comparison, {label, field}, before != nullptr, now != nullptr))
            compareCurve(comparison, {label, field}, before->table, now->table);
    });
}

void compareAddedSubmodels(Comparison& comparison, const Rows<AddSubmodel>& was, const Rows<AddSubmodel>& is) {
    constexpr std::string_view kGroup = "[Add Submodel]";
    const auto name_of = [](const AddSubmodel& row) { return row.name.view(); };
    matchRows(
        was, is, name_of, name_of,
        [&](const AddSubmodel& before, const AddSubmodel& now) {
            compareText(comparison, {kGroup, now.name}, wordOf(kSubmodelModes, before.mode),
                        wordOf(kSubmodelModes, now.mode));
        },
        [&](const AddSubmodel& row, bool is_new) {
            comparePresence(comparison, {kGroup, row.name}, !is_new, is_new);
        });
}

void compareAlgorithms(Comparison& comparison, const AlgMod* was, const AlgMod* is) {
    constexpr std::string_view kGroup = "[Algorithmic Model]";
    if (was == nullptr && is == nullptr) return;
    if (!comparePresence(comparison, kGroup, was != nullptr, is != nullptr)) return;
    const auto name_of = [](const AlgExecutable& row) { return std::string_view(row.platform); };
    matchRows(
        was->executables, is->executables, name_of, name_of,
        [&](const AlgExecutable& before, const AlgExecutable& now) {
            compareText(comparison, {kGroup, now.platform, "file"}, before.file, now.file);
            compareText(comparison, {kGroup, now.platform, "parameter file"}, before.parameter_file,
                        now.parameter_file);
        },
        [&](const AlgExecutable& row, bool is_new) {
            comparePresence(comparison, {kGroup, row.platform}, !is_new, is_new);
        });
}

/// Compares the fields of parts that both have.
template <class Part, class Given, class Rows>
void compareParts(Comparison& comparison, std::string_view group, const Rows& rows, const Given* was, const Given* is) {
    if (was == nullptr && is == nullptr) return;
    if (comparePresence(comparison, group, was != nullptr, is != nullptr))
        compareFields<Part>(comparison, group, rows, *was, *is);
}

void compareThresholds(Comparison& comparison, const RcvTh* was, const RcvTh* is) {
    constexpr std::string_view kGroup = "[Receiver Thresholds]";
    compareParts<RcvTh>(comparison, kGroup, kThresholds, was, is);
    if (was != nullptr && is != nullptr)
        compareText(comparison, {kGroup, "Reference_supply"}, supplyWord(was->reference_supply),
                    supplyWord(is->reference_supply));
}

void compareEmi(Comparison& comparison, const MdlEmi* was, const MdlEmi* is) {
    if (was == nullptr && is == nullptr) return;
    if (!comparePresence(comparison, "[Begin EMI Model]", was != nullptr, is != nullptr)) return;
    compareWord(comparison, "Model_emi_type", emiTypeWord(was->type), emiTypeWord(is->type), "Not_a_ferrite");
    compareWord(comparison, "Model_Domain", wordOf(kEmiDomains, was->domain), wordOf(kEmiDomains, is->domain),
                "Digital");
}

/// A converter by all but its values and its polarity.
std::string nameOf(const Converter& converter) {
    std::string name(converter.to_analog ? "D_to_A" : "A_to_D");
    for (const std::string* const port : {&converter.d_port, &converter.port1, &converter.port2})
        name.append(" ").append(*port);
    if (converter.corner) name.append(" ").append(kShortCornerWords[placeOf(*converter.corner)]);
    return name;
}

/// A value of a converter: a number, or the name of a parameter.
struct NumberOrName {
    GivenValue number;
    std::string_view name;
};

void compareNumberOrName(Comparison& comparison, const FieldName& field, Unit unit, const NumberOrName& was,
                         const NumberOrName& is) {
    if (was.name.empty() && is.name.empty()) return compareValue(comparison, field, unit, was.number, is.number);
    if (was.name == is.name) return;
    const auto thing = [](const NumberOrName& value) {
        return value.name.empty() ? thingOf(value.number) : GivenThing(value.name);
    };
    const ChangeDetail detail{.was = thing(was), .is = thing(is)};
    comparison.add({.kind = ChangeKind::value, .field = field, .unit = unit, .details = {&detail, 1}});
}

/// Compares the names of parameters, and of those that both have the values: as numbers where they are.
void compareParameters(Comparison& comparison, const FieldName& field, const ExtParameters& was,
                       const ExtParameters& is) {
    compareNames(comparison, field, was.names, is.names);
    const auto name_of = [](const NamedText& parameter) { return parameter.name.view(); };
    const std::string group = field.text();
    const auto compare = [&](std::string_view name, std::string_view before, std::string_view now) {
        if (!was.has(name) || !is.has(name)) return;
        double old_number = 0.0;
        double new_number = 0.0;
        if (readScaled(before, old_number) != ReadResult::noNumber &&
            readScaled(now, new_number) != ReadResult::noNumber)
            return compareValue(comparison, {group, name}, Unit::none, old_number, new_number);
        compareText(comparison, {group, name}, before, now);
    };
    matchRows(
        was.values, is.values, name_of, name_of,
        [&](const NamedText& before, const NamedText& now) { compare(now.name, before.value, now.value); },
        [&](const NamedText& parameter, bool is_new) {
            is_new ? compare(parameter.name, {}, parameter.value) : compare(parameter.name, parameter.value, {});
        });
}

/// What a reference is where its keyword is not given; nothing of other keywords.
std::optional<Rng> standardOf(const Mdl& model, MdlRange which) {
    if (which == MdlRange::pulldownReference || which == MdlRange::gndClampReference)
        return Rng{{Cell(0.0), Cell(0.0), Cell(0.0)}};
    if (which != MdlRange::pullupReference && which != MdlRange::powerClampReference) return std::nullopt;
    const Rng* const supply = findRange(model, MdlRange::voltageRange);
    return supply != nullptr ? std::optional(*supply) : std::nullopt;
}

/// True where the references of the model are given, so that "[Voltage Range]" adds nothing.
bool hasItsReferences(const Mdl& model) {
    return findRange(model, MdlRange::pullupReference) != nullptr ||
           findRange(model, MdlRange::powerClampReference) != nullptr;
}

/// Compares a range that only one of the models gives, with what stands for it in the other: a reference has corners
/// that its keyword leaves out.
void compareLonelyRange(Comparison& comparison, const KeywordRange& row, const Rng& given, const Mdl& other,
                        bool is_new) {
    if (row.which == MdlRange::voltageRange && hasItsReferences(other)) return;
    const std::optional<Rng> standard = standardOf(other, row.which);
    Rng whole = given;
    for (const Corner corner : kCorners)
        if (standard && !given[corner].isNumber()) whole[corner] = (*standard)[corner];
    is_new ? compareRange(comparison, row.keyword, row.unit, standard.value_or(Rng()), whole)
           : compareRange(comparison, row.keyword, row.unit, whole, standard.value_or(Rng()));
}

void compareKeywordRanges(Comparison& comparison, const Mdl& was, const Mdl& is) {
    if (was.ranges.empty() && is.ranges.empty()) return;
    for (const KeywordRange& row : kKeywordRanges) {
        const Rng* const before = findRange(was, row.which);
        const Rng* const now = findRange(is, row.which);
        if (before != nullptr && now != nullptr) {
            compareRange(comparison, row.keyword, row.unit, *before, *now);
        } else if (before != nullptr) {
            compareLonelyRange(comparison, row, *before, is, false);
        } else if (now != nullptr) {
            compareLonelyRange(comparison, row, *now, was, true);
        }
    }
}

} // namespace

void eachMosfetPair(const SeriesBlock& was, const SeriesBlock& is,
                    const std::function<void(const std::string& field, const SMos* was, const SMos* is)>& use) {
    const auto name_of = [](const SMos& mosfet) {
        return mosfet.vds ? std::string("[Series MOSFET] with Vds of ").append(volts(*mosfet.vds))
                          : std::string("[Series MOSFET]");
    };
    matchRows(
        was.mosfets, is.mosfets, name_of, name_of,
        [&](const SMos& before, const SMos& now) { use(name_of(now), &before, &now); },
        [&](const SMos& mosfet, bool is_new) {
            use(name_of(mosfet), is_new ? nullptr : &mosfet, is_new ? &mosfet : nullptr);
        });
}

void compareExternals(Comparison& comparison, std::string_view group, const ExtCkt& was, const ExtCkt& is) {
    compareText(comparison, {group, "Language"}, extLanguageText(was.language), extLanguageText(is.language));
    for (const Corner corner : kCorners) {
        const std::string name = std::string("Corner ").append(kShortCornerWords[placeOf(corner)]);
        const auto& before = was.corners[corner];
        const auto& now = is.corners[corner];
        if (!before && !now) continue;
        if (!comparePresence(comparison, {group, name}, before.has_value(), now.has_value())) continue;
        compareText(comparison, {group, name, "file"}, before->file, now->file);
        compareText(comparison, {group, name, "circuit"}, before->circuit, now->circuit);
    }
    compareParameters(comparison, {group, "Parameters"}, was.parameters, is.parameters);
    compareParameters(comparison, {group, "Converter_Parameters"}, was.converter_parameters, is.converter_parameters);
    compareNames(comparison, {group, "Ports"}, was.ports.names, is.ports.names, Order::means);
    matchRows(
        was.converters, is.converters, nameOf, nameOf,
        [&](const Converter& before, const Converter& now) {
            const std::string name = FieldName(group, nameOf(now)).text();
            for (std::size_t i = 0; i < std::size(kConverterValues); ++i) {
                const auto& row = kConverterValues[i];
                compareNumberOrName(comparison, {name, row.name}, row.unit, {before.*row.field, before.value_names[i]},
                                    {now.*row.field, now.value_names[i]});
            }
            compareText(comparison, {name, "polarity"}, before.polarity, now.polarity);
        },
        [&](const Converter& converter, bool is_new) {
            comparePresence(comparison, {group, nameOf(converter)}, !is_new, is_new);
        });
}

void compareModelTables(Comparison& comparison, const Mdl& was, const Mdl& is) {
    compareTables(comparison, *was.tables, *is.tables);
    compareCurve(comparison, "[ISSO_PU]", was.tables->isso_pu, is.tables->isso_pu);
    compareCurve(comparison, "[ISSO_PD]", was.tables->isso_pd, is.tables->isso_pd);
}

void compareModelFields(Comparison& comparison, const Mdl& was, const Mdl& is) {
    const MdlValues& before = *was.values;
    const MdlValues& now = *is.values;
    compareText(comparison, "Model_type", typeWord(before.model_type), typeWord(now.model_type));
    compareWord(comparison, "Polarity", wordOf(kPolarities, before.polarity), wordOf(kPolarities, now.polarity),
                "Non-Inverting");
    compareWord(comparison, "Enable", wordOf(kEnableModes, before.enable), wordOf(kEnableModes, now.enable),
                "Active-High");
    compareFields(comparison, {}, kValues, before, now);
    compareFields<CComp>(comparison, {}, kCapacitances, before, now);
    compareParts<CComp>(comparison, "[C Comp Corner]", kCapacitances, was.c_comp_corner.get(), is.c_comp_corner.get());
    compareKeywordRanges(comparison, was, is);
    compareParts<MSpec>(comparison, "[Model Spec]", kSpec, was.model_spec.get(), is.model_spec.get());
    compareThresholds(comparison, was.receiver_thresholds.get(), is.receiver_thresholds.get());
    compareSchedules(comparison, was.driver_schedule, is.driver_schedule);
    compareBlocks(comparison, kOnLabel, was.on_block.get(), is.on_block.get());
    compareBlocks(comparison, kOffLabel, was.off_block.get(), is.off_block.get());
    compareAddedSubmodels(comparison, was.add_submodels, is.add_submodels);
    compareAlgorithms(comparison, was.algorithmic_model.get(), is.algorithmic_model.get());
    compareEmi(comparison, was.emi_model.get(), is.emi_model.get());
    constexpr std::string_view kExternal = "[External Model]";
    if ((was.external_model || is.external_model) &&
        comparePresence(comparison, kExternal, was.external_model != nullptr, is.external_model != nullptr))
        compareExternals(comparison, kExternal, *was.external_model, *is.external_model);
}

void compareSubmodels(Comparison& comparison, const SubMdl& was, const SubMdl& is) {
    compareText(comparison, "Submodel_type", submodelTypeWord(was.type), submodelTypeWord(is.type));
    const auto spec_of = [](const SubMdl& submodel) {
        return submodel.tables->spec ? &*submodel.tables->spec : nullptr;
    };
    compareParts<SmSpec>(comparison, "[Submodel Spec]", kSubmodelSpec, spec_of(was), spec_of(is));
    compareTables(comparison, *was.tables, *is.tables);
    compareOnlyWaveform(comparison, "[GND Pulse Table]", was.gnd_pulse, is.gnd_pulse);
    compareOnlyWaveform(comparison, "[POWER Pulse Table]", was.power_pulse, is.power_pulse);
}

void compareSelectors(Comparison& comparison, const MSel& was, const MSel& is) {
    std::vector<const MSelEntry*> kept; // of OLD, in the order of NEW
    matchRows(
        was.entries, is.entries, [&](const MSelEntry& entry) { return nameInNew(comparison, entry.model_name); },
        [](const MSelEntry& entry) { return entry.model_name.view(); },
        [&](const MSelEntry& before, const MSelEntry& now) {
            kept.push_back(&before);
            compareText(comparison, {"description of", now.model_name}, before.description, now.description);
        },
        [&](const MSelEntry& entry, bool is_new) {
            comparePresence(comparison, {"entry", entry.model_name}, !is_new, is_new);
        });
    if (std::ranges::is_sorted(kept)) {
        // Simulators take the first entry unless they are told otherwise.
        if (was.entries.empty() || is.entries.empty()) return;
        return compareText(comparison, "first entry", nameInNew(comparison, was.entries.front().model_name),
                           is.entries.front().model_name);
    }
    ChangeDetails details;
    const std::string_view before = nameInNew(comparison, was.entries.front().model_name);
    const std::string_view now = is.entries.front().model_name;
    if (before != now) details.push_back({.was = before, .is = now});
    comparison.add({.kind = ChangeKind::order, .field = "entries", .details = details});
}

void compareTestLoads(Comparison& comparison, const TestLoad& was, const TestLoad& is) {
    compareText(comparison, "Test_load_type", wordOf(kTestTypes, was.type), wordOf(kTestTypes, is.type));
    compareFields(comparison, {}, kLoad, was, is);
    compareFields(comparison, {}, kLoadRanges, was, is);
    compareModelName(comparison, "Receiver_model", was.receiver_model, is.receiver_model);
    compareModelName(comparison, "Receiver_model_inv", was.receiver_model_inv, is.receiver_model_inv);
}

void compareTestData(Comparison& comparison, const TestData& was, const TestData& is) {
    compareText(comparison, "Test_data_type", wordOf(kTestTypes, was.type), wordOf(kTestTypes, is.type));
    compareModelName(comparison, "Driver_model", was.driver_model, is.driver_model);
    compareModelName(comparison, "Driver_model_inv", was.driver_model_inv, is.driver_model_inv);
    compareText(comparison, "Test_load", was.test_load, is.test_load);
    for (std::size_t i = 0; i < kTestTables.size(); ++i)
        compareOnlyWaveform(comparison, kTestTables[i], was.tables[i], is.tables[i]);
}

} // namespace kestrel
