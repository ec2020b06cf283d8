#include "model/submdl.hpp"

#include "ibis/run.hpp"
#include "model/submdl_check.hpp"
#include "reader/enumeration.hpp"

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

/// "[Submodel]": its name and its type.
struct NameSection {
    static void open(Run& run, SubMdl& submodel, std::string_view text) {
        Diagnostics& diagnostics = run.diagnostics;
        const ItemList items = splitItems(run, text, 1);
        if (items.count == 0) {
            errorAtLine(diagnostics, 2410);
            return;
        }
        if (items.count > 1) errorAtLine(diagnostics, 2411, items.count, kKeyword, 1);
        auto& submodels = currentRoot(run)->submodels;
        if (storeName(diagnostics, submodel.name, items[0], kLongNameLimit, 2412)) {
            if (isReservedWord(submodel.name)) errorAtLine(diagnostics, 2413, submodel.name);
            if (submodels.find(submodel.name) != nullptr) errorAtLine(diagnostics, 2414, submodel.name);
        }
        submodels.enterName(submodel, submodel.name);
    }

    static void line(Run& run, SubMdl& submodel, std::string_view text) {
        std::string_view rest = text;
        if (takeItem(run, rest, '=') != kTypeName) {
            errorAtLine(run.diagnostics, 2416);
            return;
        }
        if (submodel.type != SubmodelType::notGiven) {
            errorAtLine(run.diagnostics, 2417, kTypeName, submodel.name);
            return;
        }
        submodel.type = SubmodelType::noType;
        const std::optional<std::string_view> value = readSetting(run, text, kTypeName, kTypeLine);
        if (!value) return;
        submodel.type = readEnumeration(run.diagnostics, typesOf(run.parse.version), kTypeName, *value, kTypeValue)
                            .value_or(SubmodelType::noType);
    }

    static void close(Run& run, const SubMdl& submodel) {
        if (submodel.type == SubmodelType::notGiven) {
            error(run.diagnostics, 2423, submodel.name, kTypeName);
        }
    }
};

struct SpecSection {
    static void open(Run& run, SubMdl& submodel, std::string_view text) {
        if (submodel.pulldown || submodel.pullup || submodel.gnd_clamp || submodel.power_clamp || submodel.gnd_pulse ||
            submodel.power_pulse) {
            errorAtLine(run.diagnostics, 2406);
        }
        openSmSpec(run, submodel.spec, text);
    }
    static void line(Run& run, SubMdl& submodel, std::string_view text) {
        smSpecLine(run, *submodel.spec, text, submodel.name);
    }
    static void close(Run& run, const SubMdl& submodel) { closeSmSpec(run, *submodel.spec, submodel.name); }
};

template <CurveKind Kind, std::optional<Crv> SubMdl::*Slot> struct CurveSection {
    static void open(Run& run, SubMdl& submodel, std::string_view text) { openCrv(run, submodel.*Slot, Kind, text); }
    static void line(Run& run, SubMdl& submodel, std::string_view text) { crvLine(run, *(submodel.*Slot), Kind, text); }
    static void close(Run& run, const SubMdl& submodel) {
        closeCrv(run, *(submodel.*Slot), Kind, kOwner, submodel.name, std::nullopt);
    }
};

struct RampSection {
    static void open(Run& run, SubMdl& submodel, std::string_view text) { openRamp(run, submodel.ramp, text); }
    static void line(Run& run, SubMdl& submodel, std::string_view text) {
        rampLine(run, *submodel.ramp, text, submodel.name);
    }
    static void close(Run& run, const SubMdl& submodel) { closeRamp(run, *submodel.ramp); }
};

template <const WaveformLabel& Label, std::vector<std::unique_ptr<Wvfrm>> SubMdl::*List> struct WaveformSection {
    static void open(Run& run, SubMdl& submodel, std::string_view text) { openWvfrm(run, submodel.*List, Label, text); }
    static void line(Run& run, SubMdl& submodel, std::string_view text) {
        wvfrmLine(run, *(submodel.*List).back(), Label, text);
    }
    static void close(Run& run, const SubMdl& submodel) { closeWvfrm(run, *(submodel.*List).back(), Label); }
};

template <const WaveformLabel& Label, std::unique_ptr<Wvfrm> SubMdl::*Slot, MessageCode Repeated> struct PulseSection {
    static constexpr CheckedMessage<> kRepeated{Repeated};
    static void open(Run& run, SubMdl& submodel, std::string_view text) {
        if (submodel.*Slot != nullptr) errorAtLine(run.diagnostics, kRepeated);
        openSingleWvfrm(run, submodel.*Slot, Label, text);
    }
    static void line(Run& run, SubMdl& submodel, std::string_view text) {
        wvfrmLine(run, *(submodel.*Slot), Label, text);
    }
    static void close(Run& run, const SubMdl& submodel) { closeWvfrm(run, *(submodel.*Slot), Label); }
};

/// What a keyword of a submodel does at its own line, at the data lines under it, and when the next keyword comes.
struct Section {
    KeywordCode key;
    void (*open)(Run&, SubMdl&, std::string_view);
    void (*line)(Run&, SubMdl&, std::string_view);
    void (*close)(Run&, const SubMdl&);
};

template <class Handler> constexpr Section section(KeywordCode key) {
    return {key, Handler::open, Handler::line, Handler::close};
}

constexpr KeywordCode kFirstKey = KeywordCode::submodel;
constexpr KeywordCode kLastKey = KeywordCode::submodelFallingWaveform;

/// One row per keyword, in the order of their codes.
constexpr auto kSections = std::to_array({
    section<NameSection>(KeywordCode::submodel),
    section<SpecSection>(KeywordCode::submodelSpec),
    section<PulseSection<kGndPulse, &SubMdl::gnd_pulse, 2404>>(KeywordCode::gndPulseTable),
    section<PulseSection<kPowerPulse, &SubMdl::power_pulse, 2405>>(KeywordCode::powerPulseTable),
    section<CurveSection<CurveKind::pulldown, &SubMdl::pulldown>>(KeywordCode::submodelPulldown),
    section<CurveSection<CurveKind::pullup, &SubMdl::pullup>>(KeywordCode::submodelPullup),
    section<CurveSection<CurveKind::gndClamp, &SubMdl::gnd_clamp>>(KeywordCode::submodelGndClamp),
    section<CurveSection<CurveKind::powerClamp, &SubMdl::power_clamp>>(KeywordCode::submodelPowerClamp),
    section<RampSection>(KeywordCode::submodelRamp),
    section<WaveformSection<kRisingWaveform, &SubMdl::rising>>(KeywordCode::submodelRisingWaveform),
    section<WaveformSection<kFallingWaveform, &SubMdl::falling>>(KeywordCode::submodelFallingWaveform),
});

constexpr std::size_t placeOf(KeywordCode key) {
    return static_cast<std::size_t>(key) - static_cast<std::size_t>(kFirstKey);
}

consteval bool rowsStandAtTheirPlaces() {
    for (std::size_t i = 0; i < kSections.size(); ++i) {
        if (placeOf(kSections[i].key) != i) return false;
    }
    return kSections.size() == placeOf(kLastKey) + 1;
}
static_assert(rowsStandAtTheirPlaces());

/// The row of a keyword, or null for one that is not a submodel's.
const Section* findSection(KeywordCode key) {
    return isBetween(key, kFirstKey, kLastKey) ? &kSections[placeOf(key)] : nullptr;
}

} // namespace

void openSubMdl(Run& run) {
    Ibis* root = currentRoot(run);
    if (root == nullptr) {
        programBug(run.diagnostics, 2401);
        return;
    }
    run.submdl = {&root->submodels.add(std::make_unique<SubMdl>()), KeywordCode::notKey};
}

void submdlKeywordSeen(Run& run, KeywordCode code) {
    const SubMdl* submodel = run.submdl.current;
    if (submodel == nullptr) return;
    if (const Section* open = findSection(run.submdl.section)) open->close(run, *submodel);
    run.submdl.section = KeywordCode::notKey;
    if (isBetween(code, KeywordCode::submodelSpec, kLastKey)) return;
    checkSubMdl(run, *submodel);
    run.submdl.current = nullptr;
}

void submdlLine(Run& run, const Line& line) {
    SubMdl* submodel = run.submdl.current;
    const bool is_keyword = line.kind == LineKind::keyword;
    if (submodel == nullptr) {
        if (is_keyword) {
            errorAtLine(run.diagnostics, 2402);
        } else {
            errorAtLine(run.diagnostics, 2403);
        }
        return;
    }
    const Section* section = findSection(line.key);
    if (section == nullptr) {
        const SourceMark mark = here();
        programBugAtLine(run.diagnostics, 2407, mark.file, mark.line);
    } else if (is_keyword) {
        run.submdl.section = line.key;
        section->open(run, *submodel, line.text);
    } else {
        section->line(run, *submodel, line.text);
    }
}

} // namespace kestrel
