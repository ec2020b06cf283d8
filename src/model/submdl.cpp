#include "model/submdl.hpp"

#include "model/submdl_check.hpp"
#include "reader/context.hpp"
#include "reader/enumeration.hpp"
#include "reader/items.hpp"
#include "reader/names.hpp"

#include <array>
#include <cstddef>
#include <span>

namespace kestrel {

namespace {

constexpr std::string_view kKeyword = "Sub Model";
constexpr std::string_view kOwner = "Submodel";
constexpr std::string_view kTypeName = "Submodel_type";

constexpr std::array<EnumerationRow<SubmodelType>, 3> kTypes{{
    {"Dynamic_clamp", SubmodelType::dynamicClamp},
    {"Bus_hold", SubmodelType::busHold},
    {"Fall_back", SubmodelType::fallBack},
}};
constexpr SettingMessages kTypeLine{2418, 2419, 2420};
constexpr EnumerationMessages kTypeValue{2421, 2422};

/// The types that files of a version may give; class 4 brought the last one.
std::span<const EnumerationRow<SubmodelType>> typesOf(IbisVersion version) {
    return std::span(kTypes).first(version < IbisVersion::v4 ? kTypes.size() - 1 : kTypes.size());
}

void readName(Context& context, SubMdlState& state, SubMdl& submodel, std::string_view text) {
    Diagnostics& diagnostics = context.diagnostics;
    const ItemList items = splitItems(context, text, 1);
    if (items.count == 0) {
        errorAtLine(diagnostics, 2410);
        return;
    }
    if (items.count > 1) errorAtLine(diagnostics, 2411, items.count, kKeyword, 1);
    if (storeName(diagnostics, submodel.name, items[0], kLongNameLimit, 2412)) {
        if (isReservedWord(submodel.name)) errorAtLine(diagnostics, 2413, submodel.name);
        if (state.list->find(submodel.name) != nullptr) errorAtLine(diagnostics, 2414, submodel.name);
    }
    state.list->enterName(submodel, submodel.name);
}

void readType(Context& context, SubMdl& submodel, std::string_view text) {
    std::string_view rest = text;
    if (takeItem(context, rest, '=') != kTypeName) {
        errorAtLine(context.diagnostics, 2416);
        return;
    }
    if (submodel.type != SubmodelType::notGiven) {
        errorAtLine(context.diagnostics, 2417, kTypeName, submodel.name);
        return;
    }
    submodel.type = SubmodelType::noType;
    const std::optional<std::string_view> value = readSetting(context, text, kTypeName, kTypeLine);
    if (!value) return;
    submodel.type = readEnumeration(context.diagnostics, typesOf(context.parse.version), kTypeName, *value, kTypeValue)
                        .value_or(SubmodelType::noType);
}

void requireType(Context& context, const SubMdl& submodel) {
    if (submodel.type == SubmodelType::notGiven) error(context.diagnostics, 2423, submodel.name, kTypeName);
}

void openSpec(Context& context, SubMdl& submodel, std::string_view text) {
    if (submodel.pulldown || submodel.pullup || submodel.gnd_clamp || submodel.power_clamp || submodel.gnd_pulse ||
        submodel.power_pulse) {
        errorAtLine(context.diagnostics, 2406);
    }
    openSmSpec(context, submodel.spec, text);
}

void specLine(Context& context, SubMdl& submodel, std::string_view text) {
    smSpecLine(context, *submodel.spec, text, submodel.name);
}

void closeSpec(Context& context, const SubMdl& submodel) { closeSmSpec(context, *submodel.spec, submodel.name); }

template <CurveKind Kind, std::optional<Crv> SubMdl::*Slot> constexpr Section<SubMdlState> curve(KeywordCode key) {
    constexpr auto kOpen = [](Context& context, SubMdlState& state, SubMdl& submodel, std::string_view text) {
        openCrv(context, state.crv, submodel.*Slot, Kind, text);
    };
    constexpr auto kLine = [](Context& context, SubMdlState& state, SubMdl& submodel, std::string_view text) {
        crvLine(context, state.crv, *(submodel.*Slot), Kind, text);
    };
    constexpr auto kClose = [](Context& context, const SubMdlState& state, const SubMdl& submodel) {
        closeCrv(context, state.crv, *(submodel.*Slot), Kind, kOwner, submodel.name, std::nullopt);
    };
    return section<SubMdlState, kOpen, kLine, kClose>(key);
}

void openSubmodelRamp(Context& context, SubMdl& submodel, std::string_view text) {
    openRamp(context, submodel.ramp, text);
}

void readRamp(Context& context, SubMdl& submodel, std::string_view text) {
    rampLine(context, *submodel.ramp, text, submodel.name);
}

void closeSubmodelRamp(Context& context, const SubMdl& submodel) { closeRamp(context, *submodel.ramp); }

template <const WaveformLabel& Label, std::vector<std::unique_ptr<Wvfrm>> SubMdl::*List>
constexpr Section<SubMdlState> waveforms(KeywordCode key) {
    constexpr auto kOpen = [](Context& context, SubMdl& submodel, std::string_view text) {
        openWvfrm(context, submodel.*List, Label, text);
    };
    constexpr auto kLine = [](Context& context, SubMdl& submodel, std::string_view text) {
        wvfrmLine(context, *(submodel.*List).back(), Label, text);
    };
    constexpr auto kClose = [](Context& context, const SubMdl& submodel) {
        closeWvfrm(context, *(submodel.*List).back(), Label);
    };
    return section<SubMdlState, kOpen, kLine, kClose>(key);
}

template <const WaveformLabel& Label, std::unique_ptr<Wvfrm> SubMdl::*Slot, CheckedMessage<> Repeated>
constexpr Section<SubMdlState> pulse(KeywordCode key) {
    constexpr auto kOpen = [](Context& context, SubMdl& submodel, std::string_view text) {
        if (submodel.*Slot != nullptr) errorAtLine(context.diagnostics, Repeated);
        openSingleWvfrm(context, submodel.*Slot, Label, text);
    };
    constexpr auto kLine = [](Context& context, SubMdl& submodel, std::string_view text) {
        wvfrmLine(context, *(submodel.*Slot), Label, text);
    };
    constexpr auto kClose = [](Context& context, const SubMdl& submodel) {
        closeWvfrm(context, *(submodel.*Slot), Label);
    };
    return section<SubMdlState, kOpen, kLine, kClose>(key);
}

using K = KeywordCode;

constexpr auto kSections = sectionTable<SubMdlState>({
    section<SubMdlState, readName, readType, requireType>(K::submodel),
    section<SubMdlState, openSpec, specLine, closeSpec>(K::submodelSpec),
    pulse<kGndPulse, &SubMdl::gnd_pulse, 2404>(K::gndPulseTable),
    pulse<kPowerPulse, &SubMdl::power_pulse, 2405>(K::powerPulseTable),
    curve<CurveKind::pulldown, &SubMdl::pulldown>(K::submodelPulldown),
    curve<CurveKind::pullup, &SubMdl::pullup>(K::submodelPullup),
    curve<CurveKind::gndClamp, &SubMdl::gnd_clamp>(K::submodelGndClamp),
    curve<CurveKind::powerClamp, &SubMdl::power_clamp>(K::submodelPowerClamp),
    section<SubMdlState, openSubmodelRamp, readRamp, closeSubmodelRamp>(K::submodelRamp),
    waveforms<kRisingWaveform, &SubMdl::rising>(K::submodelRisingWaveform),
    waveforms<kFallingWaveform, &SubMdl::falling>(K::submodelFallingWaveform),
});

} // namespace

const RecordModule<SubMdlState> kSubMdl{
    .opens = K::submodel,
    .find = [](K code) { return kSections.find(code); },
    .close = [](Context& context, SubMdlState&, SubMdl& submodel) { checkSubMdl(context, submodel); },
    .orphan = reportOrphan<2402, 2403>,
    .behind_end = nullptr,
    .impossible = [](Context& context, LineKind) { programBugHereAtLine(context.diagnostics, 2407); },
};

} // namespace kestrel
