#include "external/circuit.hpp"

#include "base/text_hash.hpp"
#include "reader/record_name.hpp"

namespace kestrel {

namespace {

constexpr ExternalNames kNames{"External Circuit", "External_Circuit", "End External Circuit", "End_External_Circuit"};
constexpr RecordNameRules kName{kNames.kind, CheckedMessage<ArgKind::text>(1802), 1803, 1804, 1805, 1806};

/// Values that are no numbers have to be parameters; now all of those are known.
void checkNamedValues(Context& context, const ExtCkt& circuit) {
    for (const NamedValue& value : circuit.named_values) {
        if (circuit.parameters.has(value.text) || circuit.converter_parameters.has(value.text)) continue;
        errorAtLine(AtLine(context.diagnostics, value.line), 1819, value.label, value.text, value.line_name);
    }
}

bool isMixedSignal(ExtLanguage language) {
    return language == ExtLanguage::vhdlAms || language == ExtLanguage::verilogAms;
}

void checkConverterPorts(Context& context, const ExtCkt& circuit, const ExtOwner& owner) {
    if (circuit.ports.names.empty()) return;
    ViewSet reported;
    for (const Converter& converter : circuit.converters) {
        for (const std::string_view port : {std::string_view(converter.port1), std::string_view(converter.port2)}) {
            if (port == kGroundPort || circuit.ports.has(port) || !reported.insert(port).second) continue;
            const std::string_view line_name = converter.to_analog ? "D_to_A" : "A_to_D";
            error(context.diagnostics, 1821, owner.kind, owner.name, port, line_name);
        }
    }
}

/// Analog languages have converters, for whose analog ports any name serves that does not look like a predefined one.
void checkPortNames(Context& context, const ExtCkt& circuit) {
    const bool converts = !isMixedSignal(circuit.language);
    for (const std::string& port : circuit.ports.names) {
        const bool is_free = converts && !port.starts_with("A_") && !port.starts_with("D_");
        if (!is_free && !isPredefinedPort(port)) warning(context.diagnostics, 1816, port);
    }
}

/// A model in an analog language reaches its digital side through converters only.
void checkDigitalSide(Context& context, const ExtCkt& circuit, const ExtOwner& owner) {
    if (circuit.language != ExtLanguage::spice && circuit.language != ExtLanguage::ibisIss) return;
    const auto serves = [&circuit](bool to_analog, std::string_view port) {
        if (circuit.converter_reported[to_analog ? 1 : 0]) return true;
        return std::ranges::any_of(circuit.converters, [to_analog, port](const Converter& converter) {
            return converter.to_analog == to_analog && converter.d_port == port;
        });
    };
    if (owner.drives && !serves(true, kDrivePort)) warning(context.diagnostics, 1830, owner.name);
    if (owner.receives && !serves(false, kReceivePort)) warning(context.diagnostics, 1831, owner.name);
}

ExtOwner ownerOf(const ExtCkt& circuit) { return {.kind = kNames.kind, .name = circuit.name}; }

void readLine(Context& context, ExtCkt& circuit, std::string_view text) {
    extCktLine(context, circuit, ownerOf(circuit), text);
}

void closeCircuit(Context& context, const ExtCkt& circuit) { checkExtCkt(context, circuit, ownerOf(circuit)); }

constexpr const BlockEnd& kEnd = kExternalEnd<kNames>;

constexpr auto kSections = sectionTable<CircuitState>({
    blockSection<CircuitState, openNamed<kName, CircuitState>, readLine, closeCircuit>(
        KeywordCode::externalCircuit, KeywordCode::endExternalCircuit, kEnd),
});

void reportStray(Context& context) { errorAtLine(context.diagnostics, 121); }

/// Outside a circuit there may be the keyword of its end.
void reportOrphanLine(Context& context, const Line& line) {
    if (line.kind != LineKind::keyword) {
        reportStray(context);
        return;
    }
    if (!line.text.empty()) kEnd.text_behind(context, line.text);
    kEnd.no_begin(context);
}

} // namespace

const RecordModule<CircuitState> kExternalCircuit{
    .opens = KeywordCode::externalCircuit,
    .find = [](KeywordCode code) { return kSections.find(code); },
    .close = [](Context&, CircuitState&, ExtCkt&) {}, // its block was checked at its end
    .orphan = reportOrphanLine,
    .behind_end = [](Context& context, const BlockEnd&) { reportStray(context); },
    .impossible = [](Context& context, LineKind) { reportStray(context); },
};

void checkExtCkt(Context& context, const ExtCkt& circuit, const ExtOwner& owner) {
    Diagnostics& diagnostics = context.diagnostics;
    checkNamedValues(context, circuit);
    if (circuit.language == ExtLanguage::notGiven) error(diagnostics, 1823, owner.kind, owner.name);
    if (!circuit.corners[Corner::typ] && !circuit.corner_reported) error(diagnostics, 1824, owner.kind, owner.name);
    if (!circuit.ports_seen) error(diagnostics, 1825, owner.kind, owner.name);
    const std::string_view language = extLanguageText(circuit.language);
    if (isMixedSignal(circuit.language) && !circuit.converters.empty()) {
        error(diagnostics, 1826, owner.kind, owner.name, language);
    }
    if (circuit.language == ExtLanguage::spice && !circuit.parameters.names.empty()) {
        warning(diagnostics, 1817, owner.kind, owner.name, language);
    }
    checkConverterPorts(context, circuit, owner);
    if (owner.is_model) checkPortNames(context, circuit);
    checkDigitalSide(context, circuit, owner);
}

} // namespace kestrel
