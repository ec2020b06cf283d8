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
    SubMdlTables& tables = submodel.tables.made();
    if (tables.pulldown || tables.pullup || tables.gnd_clamp || tables.power_clamp || submodel.gnd_pulse ||
        submodel.power_pulse) {
        errorAtLine(context.diagnostics, 2406);
    }
    openSmSpec(context, tables.spec, text);
}

void specLine(Context& context, SubMdl& submodel, std::string_view text) {
    smSpecLine(context, *submodel.tables.made().spec, text, submodel.name);
}

void closeSpec(Context& context, const SubMdl& submodel) {
    closeSmSpec(context, *submodel.tables->spec, submodel.name);
}

template <const WaveformLabel& Label, std::unique_ptr<Wvfrm> SubMdl::*Slot, CheckedMessage<> Repeated>
constexpr Section<SubMdlState> pulse(KeywordCode key) {
    constexpr auto kOpen = [](Context& context, SubMdl& submodel, std::string_view text) {
        std::unique_ptr<Wvfrm>& table = submodel.*Slot;
        if (table != nullptr) errorAtLine(context.diagnostics, Repeated);
        openSingleWvfrm(context, table, Label, text);
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
    .behind_end = nullptr,
    .impossible = [](Context& context, LineKind) { programBugHereAtLine(context.diagnostics, 2407); },
};

} // namespace kestrel
