#include "quality/structure.hpp"

#include "base/rows.hpp"
#include "base/text.hpp"
#include "component/cmpnt.hpp"
#include "external/circuit.hpp"
#include "header/hdr.hpp"
#include "quality/advised.hpp"
#include "quality/date_text.hpp"
#include "quality/named_few.hpp"
#include "quality/number_text.hpp"

#include <algorithm>
#include <array>
#include <string>

namespace kestrel {

namespace {

/// The model that a pin names, if it names one and not a selector.
const Mdl* modelOfPin(const AdvisedFile& file, const Cmpnt& component, std::string_view name) {
    const Pin* const pin = name.empty() ? nullptr : component.pins.find(name);
    return pin == nullptr || isUnmodeledPinName(pin->model_name) ? nullptr : file.root.models.find(pin->model_name);
}

bool hasType(const Mdl& model) { return model.type() != ModelType::notGiven && model.type() != ModelType::noType; }

/// Calls `use` with every header: a file has one or none.
template <class Use> void eachHeader(const AdvisedFile& file, Use use) {
    for (const Hdr& header : file.root.headers.newestFirst())
        use(header);
}

/// True for a file whose version has waveforms.
bool hasWaveforms(const AdvisedFile& file) {
    if (file.parse.version != IbisVersion::v2) return file.parse.version > IbisVersion::v2;
    bool is_first = false; // the first version of its class
    eachHeader(file, [&is_first](const Hdr& header) { is_first = header.ibis_version == "2.0"; });
    return !is_first;
}

bool isZeroOrMissing(const Cell& cell) { return cell.value() == 0.0; }
bool isZeroOrMissing(const GivenRange& range) { return !range || isZeroOrMissing(range->typ()); }

bool isSignal(const Pin& pin) { return !pin.model_name.empty() && !isUnmodeledPinName(pin.model_name); }

/// True when nothing between the pins and the die is described.
bool isBare(const Cmpnt& component) {
    if (!component.package_model.empty()) return false;
    if (const Pkg* const package = component.package.get()) {
        for (const GivenRange* const range : {&package->r_pkg, &package->l_pkg, &package->c_pkg})
            if (!isZeroOrMissing(*range)) return false;
    }
    bool any_signal = false;
    for (const Pin& pin : component.pins) {
        if (!isSignal(pin)) continue;
        any_signal = true;
        for (const Cell* const cell : {&pin.r_pin, &pin.l_pin, &pin.c_pin})
            if (!isZeroOrMissing(*cell)) return false;
    }
    return any_signal;
}

void adviseOnLevels(const ExtCkt& circuit, AdvicePlace place, AdviceList& list) {
    for (const Converter& line : circuit.converters) {
        if (!line.vlow || !line.vhigh) continue;
        const double low = *line.vlow;
        const double high = *line.vhigh;
        if (line.to_analog ? high > low : low <= high) continue;
        if (line.to_analog) {
            list.add(place, 410, line.d_port, volts(low), volts(high));
        } else {
            list.add(place, {410, 1}, line.d_port, volts(low), volts(high));
        }
        return;
    }
}

/// Types that can be switched off: their enable decides whether they drive.
constexpr ModelTypeSet kSwitchedOff{ModelType::io,     ModelType::threeState,
                                    ModelType::ioEcl,  ModelType::threeStateEcl,
                                    ModelType::ioDiff, ModelType::threeStateDiff};
constexpr std::string_view kEnablePort = "D_enable";

void adviseOnEnable(const Mdl& model, AdviceList& list) {
    const ExtCkt& circuit = *model.external_model;
    if (!kSwitchedOff.has(model.type()) || circuit.converter_reported[1]) return;
    const auto enables = [](const Converter& line) { return line.to_analog && line.d_port == kEnablePort; };
    if (std::ranges::any_of(circuit.converters, enables)) return;
    const std::string_view type = modelTypeText(model.type());
    const std::string_view article = type.starts_with('I') ? "an" : "a";
    list.add(adviceAt(model), 411, kEnablePort, article, type);
}

void adviseOnPorts(const Mdl& model, AdviceList& list) {
    const ExtCkt& circuit = *model.external_model;
    if (!circuit.ports_seen) return; // which was reported
    NamedFew missing;
    const auto need = [&](bool needed, std::string_view port) {
        if (needed && !circuit.ports.has(port)) missing.add(port);
    };
    const bool drives = kTableDrivers.has(model.type());
    const bool is_pair = isDifferential(model);
    need(drives && !is_pair, "A_signal");
    need(drives && is_pair, "A_signal_pos");
    need(drives && is_pair, "A_signal_neg");
    need(drives, kDrivePort);
    need(kSwitchedOff.has(model.type()), kEnablePort);
    need(kReceivingTypes.has(model.type()), kReceivePort);
    if (missing.count() == 0) return;
    list.add(adviceAt(model), {411, 1}, missing.text(), modelTypeText(model.type()));
}

} // namespace

void checkPairTypes(const AdvisedFile& file, AdviceList& list) {
    for (const Cmpnt& component : file.root.components.newestFirst()) {
        if (component.diff_pins == nullptr) continue;
        for (const DifPin& row : component.diff_pins->rows) {
            const Mdl* const model = modelOfPin(file, component, row.pin);
            const Mdl* const inv_model = modelOfPin(file, component, row.inv_pin);
            if (model == nullptr || inv_model == nullptr || model->type() == inv_model->type()) continue;
            if (!hasType(*model) || !hasType(*inv_model) || areOpposed(model->type(), inv_model->type())) continue;
            list.add(adviceAt(component, row.line), 401, row.pin, row.inv_pin, model->name,
                     modelTypeText(model->type()), inv_model->name, modelTypeText(inv_model->type()));
        }
    }
}

void checkOrigin(const AdvisedFile& file, AdviceList& list) {
    eachHeader(file, [&list](const Hdr& header) {
        const bool has_source = header.source && !trim(*header.source).empty();
        const bool has_date = !header.date.empty();
        if (has_source && has_date) return;
        const std::string_view missing = has_date ? "[Source]" : has_source ? "[Date]" : "[Source] and [Date]";
        list.add(adviceOnFile(header), 403, missing);
    });
}

void checkDate(const AdvisedFile& file, AdviceList& list) {
    constexpr int kFirst = 1993;
    constexpr int kLast = 2100;
    eachHeader(file, [&](const Hdr& header) {
        if (header.date.empty()) return;
        const AdvicePlace place{header.date_line, &header, true};
        const std::optional<int> year = yearOfDate(header.date, kFirst, kLast);
        if (!year) {
            list.add(place, 404, header.date);
        } else if (*year < kFirst || *year > kLast) {
            list.add(place, {404, 1}, header.date, *year, kFirst, kLast);
        }
    });
}

void checkCommentChar(const AdvisedFile& file, AdviceList& list) {
    if (file.parse.new_comment_line == 0) return;
    list.add({file.parse.new_comment_line, nullptr, true}, 405, file.parse.new_comment);
}

void checkWaveformsGiven(const AdvisedFile& file, AdviceList& list) {
    if (!hasWaveforms(file)) return;
    const Mdl* first = nullptr;
    NamedFew lacking;
    std::size_t drivers = 0;
    for (const Mdl* const model : file.models) {
        if (!kTableDrivers.has(model->type()) || model->algorithmic_model || !file.isAlone(*model)) continue;
        ++drivers;
        if (!model->tables->rising_waveforms.empty() || !model->tables->falling_waveforms.empty()) continue;
        if (first == nullptr) first = model;
        lacking.add(model->name);
    }
    if (first == nullptr) return;
    const AdvicePlace place = adviceOnFile(*first);
    if (drivers == 1) {
        list.add(place, {407, 2}, first->name);
    } else if (lacking.count() == 1) {
        list.add(place, {407, 1}, drivers, lacking.text());
    } else {
        list.add(place, 407, lacking.count(), drivers, lacking.text());
    }
}

void checkPackageGiven(const AdvisedFile& file, AdviceList& list) {
    for (const LaterKeyword keyword : {LaterKeyword::interconnectModelGroup, LaterKeyword::beginInterconnectModelSet,
                                       LaterKeyword::interconnectModelSet}) {
        if (wasPassedOver(file.parse, keyword)) return; // which may describe the package
    }
    for (const Cmpnt& component : file.root.components.newestFirst())
        if (isBare(component)) list.add(adviceAt(component), 408);
}

void checkModelsUsed(const AdvisedFile& file, AdviceList& list) {
    const Mdl* first = nullptr;
    NamedFew unused;
    for (const Mdl* const model : file.models) {
        const Mdl* const found = file.root.models.find(model->name);
        if (model->referenced || model->name.empty() || (found != nullptr && found->referenced)) continue;
        if (first == nullptr) first = model;
        unused.add(model->name);
    }
    if (first != nullptr) list.add(adviceOnFile(*first), 409, unused.text());
}

void checkConverterLevels(const AdvisedFile& file, AdviceList& list) {
    for (const Mdl* const model : file.models)
        if (model->external_model) adviseOnLevels(*model->external_model, adviceAt(*model), list);
    for (const ExtCkt& circuit : file.root.external_circuits.newestFirst())
        adviseOnLevels(circuit, adviceAt(circuit), list);
}

void checkExternalPorts(const AdvisedFile& file, AdviceList& list) {
    for (const Mdl* const model : file.models) {
        if (!model->external_model) continue;
        switch (model->external_model->language) {
        case ExtLanguage::spice:
        case ExtLanguage::ibisIss: adviseOnEnable(*model, list); break;
        case ExtLanguage::vhdlAms:
        case ExtLanguage::verilogAms: adviseOnPorts(*model, list); break;
        default: break;
        }
    }
}

} // namespace kestrel
