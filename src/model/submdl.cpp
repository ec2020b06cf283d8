#include "model/submdl.hpp"

#include "reader/record_name.hpp"
#include "reader/subparameters.hpp"

namespace kestrel {

namespace {

constexpr RecordNameRules kName{"Sub Model", CheckedMessage<>(2410), 2411, 2412, 2413, 2414, RepeatedNames::ofWhole};

constexpr std::array<EnumerationRow<SubmodelType>, 3> kTypes{{
    {"Dynamic_clamp", SubmodelType::dynamicClamp},
    {"Bus_hold", SubmodelType::busHold},
    {"Fall_back", SubmodelType::fallBack},
}};

/// The types that files of a version may give; class 4 brought the last one.
std::span<const EnumerationRow<SubmodelType>> typesOf(IbisVersion version) {
    return std::span(kTypes).first(version < IbisVersion::v4 ? kTypes.size() - 1 : kTypes.size());
}

constexpr auto kType = subparameters<Subparameter<SubMdl, SubmodelType>>(
    {
        {"Submodel_type", WordField<SubMdl, SubmodelType>{&SubMdl::type, typesOf}},
    },
    {
        .unknown = CheckedMessage<>(2416),
        .repeated = 2417,
        .word = WordMessages{SettingMessages{2418, 2419, 2420}, {2421, 2422}},
    });

void typeLine(Context& context, SubMdl& submodel, std::string_view text) {
    readSubparameter(context, kType, submodel, text, submodel.name);
}

void requireType(Context& context, const SubMdl& submodel) {
    if (submodel.type == SubmodelType::notGiven) error(context.diagnostics, 2423, submodel.name, kType.rows[0].name);
}

void openSpec(Context& context, SubMdl& submodel, std::string_view text) {
    SubMdlTables& tables = submodel.tables.made(context.rows);
    if (tables.pulldown || tables.pullup || tables.gnd_clamp || tables.power_clamp || submodel.gnd_pulse ||
        submodel.power_pulse) {
        errorAtLine(context.diagnostics, 2406);
    }
    openSmSpec(context, tables.spec, text);
}

void specLine(Context& context, SubMdl& submodel, std::string_view text) {
    smSpecLine(context, submodel.tables.made(context.rows).spec.made(context.rows), text, submodel.name);
}

void closeSpec(Context& context, const SubMdl& submodel) {
    closeSmSpec(context, *submodel.tables->spec, submodel.name);
}

template <const WaveformLabel& Label, OnDemand<Wvfrm> SubMdl::*Slot, CheckedMessage<> Repeated>
constexpr Section<SubMdlState> pulse(KeywordCode key) {
    constexpr auto kOpen = [](Context& context, SubMdl& submodel, std::string_view text) {
        OnDemand<Wvfrm>& table = submodel.*Slot;
        if (table) errorAtLine(context.diagnostics, Repeated);
        openSingleWvfrm(context, table, Label, text);
    };
    constexpr auto kLine = [](Context& context, SubMdl& submodel, std::string_view text) {
        wvfrmLine(context, (submodel.*Slot).made(context.rows), Label, text);
    };
    constexpr auto kClose = [](Context& context, const SubMdl& submodel) {
        closeWvfrm(context, *(submodel.*Slot), Label);
    };
    constexpr auto kRows = [](Context& context, SubMdl& submodel, LineReader& reader) {
        wvfrmRows(context, (submodel.*Slot).made(context.rows), Label, reader);
    };
    return tableSection<SubMdlState, kOpen, kLine, kClose, kRows>(key);
}

using K = KeywordCode;

constexpr auto kSections = sectionTable<SubMdlState>({
    section<SubMdlState, openNamed<kName, SubMdlState>, typeLine, requireType>(K::submodel),
    section<SubMdlState, openSpec, specLine, closeSpec>(K::submodelSpec),
    pulse<kGndPulse, &SubMdl::gnd_pulse, 2404>(K::gndPulseTable),
    pulse<kPowerPulse, &SubMdl::power_pulse, 2405>(K::powerPulseTable),
    curveSection<SubMdlState, &Tables::pulldown, CurveKind::pulldown>(K::submodelPulldown),
    curveSection<SubMdlState, &Tables::pullup, CurveKind::pullup>(K::submodelPullup),
    curveSection<SubMdlState, &Tables::gnd_clamp, CurveKind::gndClamp>(K::submodelGndClamp),
    curveSection<SubMdlState, &Tables::power_clamp, CurveKind::powerClamp>(K::submodelPowerClamp),
    rampSection<SubMdlState>(K::submodelRamp),
    waveformSection<SubMdlState, &Tables::rising_waveforms, kRisingWaveform>(K::submodelRisingWaveform),
    waveformSection<SubMdlState, &Tables::falling_waveforms, kFallingWaveform>(K::submodelFallingWaveform),
});

} // namespace

CurveOwner curveOwner(const SubMdl& submodel) { return {"Submodel", submodel.name, std::nullopt}; }

const RecordModule<SubMdlState> kSubMdl{
    .opens = K::submodel,
    .find = [](K code) { return kSections.find(code); },
    .close = [](Context& context, SubMdlState&, SubMdl& submodel) { checkSubMdl(context, submodel); },
    .orphan = reportOrphan<2402, 2403>,
    .impossible = [](Context& context, LineKind) { programBugHereAtLine(context.diagnostics, 2407); },
};

} // namespace kestrel
