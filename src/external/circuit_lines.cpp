#include "external/circuit.hpp"
#include "reader/context.hpp"
#include "reader/enumeration.hpp"
#include "reader/items.hpp"
#include "reader/values.hpp"

#include <algorithm>
#include <span>

namespace kestrel {

namespace {

constexpr std::array<EnumerationRow<ExtLanguage>, 6> kLanguages{{{"SPICE", ExtLanguage::spice},
                                                                 {"VHDL-AMS", ExtLanguage::vhdlAms},
                                                                 {"Verilog-AMS", ExtLanguage::verilogAms},
                                                                 {"VHDL-A(MS)", ExtLanguage::vhdlA},
                                                                 {"Verilog-A(MS)", ExtLanguage::verilogA},
                                                                 {"IBIS-ISS", ExtLanguage::ibisIss}}};
constexpr EnumerationMessages kLanguageMessages{1810, 1809};

constexpr std::array<EnumerationRow<Corner>, kCornerCount> kCornerRows{
    {{kShortCornerWords[0], Corner::typ}, {kShortCornerWords[1], Corner::min}, {kShortCornerWords[2], Corner::max}}};

constexpr std::array<std::string_view, 15> kModelPorts{
    "D_drive",  "D_enable", "D_receive",    "D_switch",     "A_puref", "A_pdref", "A_pcref", "A_gcref",
    "A_extref", "A_signal", "A_signal_pos", "A_signal_neg", "A_pos",   "A_neg",   "A_gnd"};
constexpr std::array<std::string_view, 3> kDrivenPorts{kDrivePort, "D_enable", "D_switch"};
constexpr std::array<std::string_view, 1> kReceivingPorts{kReceivePort};

/// A value of a converter line, behind the three ports.
struct ConverterValue {
    std::string_view label;
    GivenValue Converter::*value;
    bool above_zero;
};

constexpr std::array<ConverterValue, 4> kValues{{{"vlow", &Converter::vlow, false},
                                                 {"vhigh", &Converter::vhigh, false},
                                                 {"trise", &Converter::trise, true},
                                                 {"tfall", &Converter::tfall, true}}};

/// One of the two converter lines.
struct ConverterForm {
    std::string_view name;
    bool to_analog;
    std::string_view required_port; ///< that a model of its direction has to have served
    std::size_t values;             ///< so many of kValues
    std::string_view expected;      ///< numbers of items, name included
};

constexpr ConverterForm kToAnalog{"D_to_A", true, kDrivePort, 4, "8 or 9"};
constexpr ConverterForm kToDigital{"A_to_D", false, kReceivePort, 2, "6 or 7"};

/// A block being read.
struct Reading {
    Context& context;
    ExtCkt& circuit;
    const ExtOwner& owner;
};

std::optional<Corner> readCorner(Context& context, std::string_view text, std::string_view line_name) {
    const auto hit = lookUpEnumeration(kCornerRows, text);
    if (hit.row == nullptr) {
        errorAtLine(context.diagnostics, 1812, text, line_name);
        return std::nullopt;
    }
    if (!hit.exact) {
        errorAtLine(context.diagnostics, 1810, "Corner", text, hit.row->text);
        return std::nullopt;
    }
    return hit.row->code;
}

std::string_view cornerText(Corner corner) { return kShortCornerWords[placeOf(corner)]; }

void languageLine(const Reading& reading, std::string_view text) {
    Diagnostics& diagnostics = reading.context.diagnostics;
    const ItemList items = splitItems(reading.context, text, 1);
    ExtLanguage& language = reading.circuit.language;
    if (!extLanguageText(language).empty()) {
        errorAtLine(diagnostics, 1808, "Language", reading.owner.kind, reading.owner.name);
        return;
    }
    if (items.count != 1) errorAtLine(diagnostics, 1811, items.count + 1, "Language", "2");
    language = ExtLanguage::notKnown;
    if (items.count == 0) return;
    const std::size_t known =
        reading.context.parse.version < IbisVersion::v5 ? kLanguages.size() - 1 : kLanguages.size();
    const std::span languages(kLanguages.data(), known); // the last came with version 5
    language = readEnumeration(diagnostics, languages, "Language", items[0], kLanguageMessages)
                   .value_or(ExtLanguage::notKnown);
}

/// Takes the name of a circuit, to which "(architecture)" belongs, blanks included.
std::string_view takeCircuitName(const Context& context, std::string_view& text) {
    const std::string_view from = skipWhiteSpace(context, text);
    text = from;
    const std::string_view item = takeItem(context, text);
    const std::string_view rest = skipWhiteSpace(context, text);
    const bool in_bracket = item.find('(') != std::string_view::npos && item.find(')') == std::string_view::npos;
    if (!in_bracket && !rest.starts_with('(')) return item;
    const std::size_t end = text.find(')');
    if (end == std::string_view::npos) return item;
    text.remove_prefix(end + 1);
    return from.substr(0, from.size() - text.size());
}

void cornerLine(const Reading& reading, std::string_view text) {
    Diagnostics& diagnostics = reading.context.diagnostics;
    const std::string_view corner_name = takeItem(reading.context, text);
    const std::string_view file = takeItem(reading.context, text);
    const std::string_view circuit = takeCircuitName(reading.context, text);
    const int more = splitItems(reading.context, text, 0).count;
    const int count = 1 + (corner_name.empty() ? 0 : 1) + (file.empty() ? 0 : 1) + (circuit.empty() ? 0 : 1) + more;
    if (count != 4) errorAtLine(diagnostics, 1811, count, "Corner", "4");
    std::optional<Corner> corner;
    if (!corner_name.empty()) corner = readCorner(reading.context, corner_name, "Corner");
    if (!corner) {
        const auto meant = lookUpEnumeration(kCornerRows, corner_name);
        if (meant.row == nullptr || meant.row->code == Corner::typ) reading.circuit.corner_reported = true;
        return;
    }
    auto& stored = reading.circuit.corners[*corner];
    if (stored) {
        errorAtLine(diagnostics, 1813, cornerText(*corner), reading.owner.kind, reading.owner.name);
        return;
    }
    stored = ExtFile{std::string(file), std::string(circuit)};
}

/// Reads names and calls `each` with them; their values go to a list, without one they cannot have any. Reports a line
/// without any name.
template <class Each>
void nameLine(const Reading& reading, std::string_view line_name, std::string_view text, std::vector<NamedText>* values,
              Each each) {
    Context& context = reading.context;
    // Values came with version 5; before it only an "=" by itself is no part of a name, nor what follows it.
    const bool splits = values != nullptr && context.parse.version >= IbisVersion::v5;
    const char split = splits ? '=' : '\0';
    std::string_view last;
    for (std::string_view name = takeItem(context, text, split); !name.empty(); name = takeItem(context, text, split)) {
        if (name == "=" && values != nullptr) {
            if (last.empty()) continue; // one ahead of all names, as in "Parameters = low high", has no value
            const std::string_view value = takeItem(context, text);
            if (!value.empty()) values->push_back({context.texts.add(last), context.texts.add(value)});
            continue;
        }
        each(name);
        last = name;
    }
    if (last.empty()) errorAtLine(reading.context.diagnostics, 1814, line_name);
}

void parametersLine(const Reading& reading, std::string_view text) {
    nameLine(reading, "Parameters", text, &reading.circuit.parameters.values, [&reading](std::string_view name) {
        if (reading.circuit.parameters.add(name)) return;
        warningAtLine(reading.context.diagnostics, 1818, name, reading.owner.kind, reading.owner.name);
    });
}

void converterParametersLine(const Reading& reading, std::string_view text) {
    nameLine(reading, "Converter_Parameters", text, &reading.circuit.converter_parameters.values,
             [&reading](std::string_view name) { reading.circuit.converter_parameters.add(name); });
}

void portsLine(const Reading& reading, std::string_view text) {
    reading.circuit.ports_seen = true;
    nameLine(reading, "Ports", text, nullptr, [&reading](std::string_view name) {
        if (reading.circuit.ports.add(name)) return;
        errorAtLine(reading.context.diagnostics, 1815, name, reading.owner.kind, reading.owner.name);
    });
}

void readValue(const Reading& reading, const ConverterForm& form, Converter& converter, std::size_t place,
               std::string_view text) {
    Context& context = reading.context;
    const ConverterValue& value = kValues[place];
    double number = 0.0;
    if (readScaled(text, number) == ReadResult::noNumber) {
        if (context.parse.version < IbisVersion::v5) {
            errorAtLine(context.diagnostics, 1819, value.label, text, form.name);
        } else {
            reading.circuit.named_values.push_back({value.label, form.name, std::string(text), context.parse.line});
            converter.value_names[place] = context.texts.add(text);
        }
        return;
    }
    converter.*value.value = number;
    if (value.above_zero && number <= 0.0) errorAtLine(context.diagnostics, 1820, value.label, form.name);
}

/// Takes the polarity off the end of a line of version 5; a line may be there once for each.
std::string_view takePolarity(const Reading& reading, const ConverterForm& form, ItemList& items) {
    if (!form.to_analog || reading.context.parse.version < IbisVersion::v5 || items.count != items.kept) return {};
    constexpr std::array<std::string_view, 2> kPolarities{"Inverting", "Non-Inverting"};
    const std::string_view last = items.kept == 0 ? std::string_view() : items[items.kept - 1];
    const auto* const polarity = std::ranges::find(kPolarities, last);
    if (polarity == kPolarities.end()) return {};
    --items.kept;
    --items.count;
    return *polarity;
}

/// Of a line that was reported: unless it plainly served another port, the required one is not missed.
void noteReported(const Reading& reading, const ConverterForm& form, const Converter& converter) {
    if (converter.d_port != form.required_port && isPredefinedPort(converter.d_port)) return;
    reading.circuit.converter_reported[form.to_analog ? 1 : 0] = true;
}

void converterLine(const Reading& reading, const ConverterForm& form, std::string_view text) {
    Diagnostics& diagnostics = reading.context.diagnostics;
    Converter converter;
    converter.to_analog = form.to_analog;
    converter.d_port = takeItem(reading.context, text);
    ItemList items = splitItems(reading.context, text, kMaxItems); // behind the name and the digital port
    converter.polarity = takePolarity(reading, form, items);
    // The numbers that are expected leave a polarity out.
    const int count = items.count + (converter.d_port.empty() ? 1 : 2);
    constexpr int kPorts = 2;
    const int without_corner = kPorts + static_cast<int>(form.values);
    const bool too_few = items.count < without_corner;
    if (too_few || items.count > without_corner + 1) errorAtLine(diagnostics, 1811, count, form.name, form.expected);
    if (too_few) {
        noteReported(reading, form, converter);
        return;
    }

    converter.port1 = items[0];
    converter.port2 = items[1];
    const bool known_port =
        form.to_analog ? contains(kDrivenPorts, converter.d_port) : contains(kReceivingPorts, converter.d_port);
    if (reading.owner.is_model && !known_port) {
        errorAtLine(diagnostics, 1822, converter.d_port, form.name);
        noteReported(reading, form, converter);
    }
    for (std::size_t i = 0; i < form.values; ++i) {
        readValue(reading, form, converter, i, items[kPorts + static_cast<int>(i)]);
    }
    bool corner_reads = true;
    if (items.has(without_corner)) {
        converter.corner = readCorner(reading.context, items[without_corner], form.name);
        corner_reads = converter.corner.has_value();
    } else {
        warningAtLine(diagnostics, 1846, form.name, converter.d_port);
    }
    const std::string_view corner = cornerText(converter.corner.value_or(Corner::typ));
    std::string key(form.name);
    key.append(" ").append(converter.d_port).append(" ").append(corner).append(" ").append(converter.polarity);
    if (corner_reads && !reading.circuit.converter_keys.insert(std::move(key)).second) {
        warningAtLine(diagnostics, 1832, form.name, converter.d_port, corner);
    }
    reading.circuit.converters.push_back(std::move(converter));
}

/// A line of a block by its first item.
struct LineForm {
    std::string_view name;
    void (*read)(const Reading& reading, std::string_view text);
    IbisVersion since = IbisVersion::v4;
};

constexpr std::array<LineForm, 7> kLines{
    {{"Language", languageLine},
     {"Corner", cornerLine},
     {"Parameters", parametersLine},
     {"Converter_Parameters", converterParametersLine, IbisVersion::v5},
     {"Ports", portsLine},
     {"D_to_A", [](const Reading& reading, std::string_view text) { converterLine(reading, kToAnalog, text); }},
     {"A_to_D", [](const Reading& reading, std::string_view text) { converterLine(reading, kToDigital, text); }}}};

} // namespace

void extCktLine(Context& context, ExtCkt& circuit, const ExtOwner& owner, std::string_view text) {
    const std::string_view name = takeItem(context, text);
    const LineForm* const form = rowOf(kLines, name, &LineForm::name);
    if (form == nullptr || context.parse.version < form->since) {
        errorAtLine(context.diagnostics, 1807, owner.kind);
        return;
    }
    form->read(Reading{context, circuit, owner}, text);
}

bool isPredefinedPort(std::string_view name) { return contains(kModelPorts, name); }

std::string_view extLanguageText(ExtLanguage language) {
    const auto* const row = rowOf(kLanguages, language, &EnumerationRow<ExtLanguage>::code);
    return row == nullptr ? std::string_view() : row->text;
}

} // namespace kestrel
