#include "external/circuit.hpp"

#include "ibis/run.hpp"
#include "model/mdl_parts.hpp"

#include <algorithm>
#include <memory>
#include <utility>

namespace kestrel {

namespace {

constexpr std::string_view kModelKind = "External Model";
constexpr std::string_view kCircuitKind = "External Circuit";
constexpr std::string_view kModelKeyword = "External_Model";
constexpr std::string_view kCircuitKeyword = "External_Circuit";

/// Counts the items of a text where none should stand.
void extraText(Run& run, std::string_view keyword, std::string_view text) {
    const int count = splitItems(run, text, 0).count;
    if (count > 0) errorAtLine(run.diagnostics, 1803, count, keyword, 0);
}

/// Values that are no numbers have to be parameters; now all of those are known.
void checkNamedValues(Run& run, const ExtCkt& circuit) {
    const std::uint32_t line = run.parse.line;
    for (const NamedValue& value : circuit.named_values) {
        if (circuit.parameters.has(value.text) || circuit.converter_parameters.has(value.text)) continue;
        run.parse.line = value.line;
        errorAtLine(run.diagnostics, 1819, value.label, value.text, value.line_name);
    }
    run.parse.line = line;
}

bool isMixedSignal(ExtLanguage language) {
    return language == ExtLanguage::vhdlAms || language == ExtLanguage::verilogAms;
}

void checkConverterPorts(Run& run, const ExtCkt& circuit, const ExtOwner& owner) {
    if (circuit.ports.names.empty()) return;
    std::unordered_set<std::string_view> reported;
    for (const Converter& converter : circuit.converters) {
        for (const std::string_view port : {std::string_view(converter.port1), std::string_view(converter.port2)}) {
            if (port == kGroundPort || circuit.ports.has(port) || !reported.insert(port).second) continue;
            const std::string_view line_name = converter.to_analog ? "D_to_A" : "A_to_D";
            error(run.diagnostics, 1821, owner.kind, owner.name, port, line_name);
        }
    }
}

/// A model in an analog language reaches its digital side through converters only.
void checkDigitalSide(Run& run, const ExtCkt& circuit, const Mdl& model) {
    if (circuit.language != ExtLanguage::spice && circuit.language != ExtLanguage::ibisIss) return;
    const auto serves = [&circuit](bool to_analog, std::string_view port) {
        if (circuit.converter_reported[to_analog ? 1 : 0]) return true;
        return std::ranges::any_of(circuit.converters, [to_analog, port](const Converter& converter) {
            return converter.to_analog == to_analog && converter.d_port == port;
        });
    };
    const bool receives = kReceivingTypes.has(model.model_type);
    if (kDiffLoadTypes.has(model.model_type) && !serves(true, kDrivePort)) warning(run.diagnostics, 1830, model.name);
    if (receives && !serves(false, kReceivePort)) warning(run.diagnostics, 1831, model.name);
}

ExtOwner ownerOf(const Mdl& model) { return {kModelKind, model.name, &model}; }

void openModel(Run& run, Mdl& model, std::string_view text) {
    const bool repeated = model.external_model != nullptr;
    if (repeated) reportAlreadyDefined(run, model, "[External_Model]");
    extraText(run, kModelKind, text);
    auto& place = repeated ? run.mdl.repeated_external : model.external_model;
    place = std::make_unique<ExtCkt>();
    run.mdl.external = place.get();
}

void modelLine(Run& run, Mdl& model, std::string_view text) {
    extCktLine(run, *run.mdl.external, ownerOf(model), text);
}

void closeModel(Run& run, Mdl& model) {
    checkExtCkt(run, *std::exchange(run.mdl.external, nullptr), ownerOf(model));
    run.mdl.repeated_external.reset();
}

ExtOwner ownerOf(const ExtCkt& circuit) { return {kCircuitKind, circuit.name, nullptr}; }

/// Reads the name behind "[External Circuit]". A cut or reserved name is not reported again as one given before.
void readCircuitName(Run& run, ExtCkt& circuit, std::string_view text) {
    Diagnostics& diagnostics = run.diagnostics;
    const ItemList items = splitItems(run, text, 1);
    if (items.count == 0) {
        errorAtLine(diagnostics, 1802, kCircuitKind);
        return;
    }
    if (items.count > 1) errorAtLine(diagnostics, 1803, items.count, kCircuitKind, 1);
    const bool fits = storeName(diagnostics, circuit.name, items[0], kLongNameLimit, 1804);
    const bool reserved = isReservedWord(circuit.name);
    if (reserved) errorAtLine(diagnostics, 1805, circuit.name);
    auto& circuits = currentRoot(run)->external_circuits;
    if (fits && !reserved && circuits.find(circuit.name) != nullptr) errorAtLine(diagnostics, 1806, circuit.name);
    circuits.enterName(circuit, circuit.name);
}

void openCircuit(Run& run, CircuitState& state, std::string_view text) {
    state.current = &currentRoot(run)->external_circuits.add(std::make_unique<ExtCkt>());
    readCircuitName(run, *state.current, text);
}

void circuitDataLine(Run& run, CircuitState& state, std::string_view text) {
    extCktLine(run, *state.current, ownerOf(*state.current), text);
}

void closeCircuit(Run& run, CircuitState& state) {
    const ExtCkt& circuit = *std::exchange(state.current, nullptr);
    checkExtCkt(run, circuit, ownerOf(circuit));
}

constexpr Block<CircuitState> kExternalCircuit{
    .begin = KeywordCode::externalCircuit,
    .end = KeywordCode::endExternalCircuit,
    .end_name = "End_External_Circuit",
    .open = openCircuit,
    .line = circuitDataLine,
    .close = closeCircuit,
    .text_behind_end = [](Run& run, std::string_view text) { extraText(run, "End External Circuit", text); },
    .not_ended = [](Run& run) { errorAtLine(run.diagnostics, 1827, kCircuitKeyword, kCircuitKeyword); },
    .no_begin = [](Run& run) { errorAtLine(run.diagnostics, 1828, kCircuitKeyword, kCircuitKeyword); },
};

} // namespace

const Block<Mdl> kExternalModel{
    .begin = KeywordCode::externalModel,
    .end = KeywordCode::endExternalModel,
    .end_name = "End_External_Model",
    .open = openModel,
    .line = modelLine,
    .close = closeModel,
    .text_behind_end = [](Run& run, std::string_view text) { extraText(run, "End External Model", text); },
    .not_ended = [](Run& run) { errorAtLine(run.diagnostics, 1827, kModelKeyword, kModelKeyword); },
    .no_begin = [](Run& run) { errorAtLine(run.diagnostics, 1828, kModelKeyword, kModelKeyword); },
};

void checkExtCkt(Run& run, const ExtCkt& circuit, const ExtOwner& owner) {
    Diagnostics& diagnostics = run.diagnostics;
    checkNamedValues(run, circuit);
    if (circuit.language == ExtLanguage::notGiven) error(diagnostics, 1823, owner.kind, owner.name);
    if (!circuit.corners[Corner::typ] && !circuit.corner_reported) {
        error(diagnostics, 1824, owner.kind, owner.name);
    }
    if (!circuit.ports_seen) error(diagnostics, 1825, owner.kind, owner.name);
    const std::string_view language = extLanguageText(circuit.language);
    if (isMixedSignal(circuit.language) && !circuit.converters.empty()) {
        error(diagnostics, 1826, owner.kind, owner.name, language);
    }
    if (circuit.language == ExtLanguage::spice && !circuit.parameters.names.empty()) {
        warning(diagnostics, 1817, owner.kind, owner.name, language);
    }
    checkConverterPorts(run, circuit, owner);
    if (owner.model != nullptr) checkDigitalSide(run, circuit, *owner.model);
}

void circuitKeywordSeen(Run& run, KeywordCode code) { blockKeywordSeen(run, run.circuit, run.circuit.block, code); }

void circuitLine(Run& run, const Line& line) {
    CircuitState& state = run.circuit;
    if (line.kind == LineKind::keyword) {
        blockKeywordLine(run, state, kExternalCircuit, state.block, line);
    } else if (line.key == kExternalCircuit.begin && state.current != nullptr) {
        kExternalCircuit.line(run, state, line.text);
    } else {
        errorAtLine(run.diagnostics, 121);
    }
}

void checkExtCkts(Run& run) {
    const auto& circuits = currentRoot(run)->external_circuits;
    for (const ExtCkt& circuit : circuits.newestFirst()) {
        // A repeated name is taken by the last-defined circuit.
        if (circuit.name.empty() || circuit.used || circuits.find(circuit.name) != &circuit) continue;
        warning(run.diagnostics, 1844, circuit.name);
    }
}

} // namespace kestrel
