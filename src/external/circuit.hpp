#pragma once

#include "base/name_list.hpp"
#include "base/text_hash.hpp"
#include "base/text_store.hpp"
#include "diagnostics/subject.hpp"
#include "external/circuit_call.hpp"
#include "reader/corner.hpp"
#include "reader/values.hpp"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// "Language" of an external file.
enum class ExtLanguage : std::uint8_t { notGiven = 0, notKnown, spice, vhdlAms, verilogAms, vhdlA, verilogA, ibisIss };

/// The simulator's own ground, a port that needs no mention.
inline constexpr std::string_view kGroundPort = "A_gnd";

/// The ports that converters of a model that drives and of one that receives serve.
inline constexpr std::string_view kDrivePort = "D_drive";
inline constexpr std::string_view kReceivePort = "D_receive";

/// A "Corner" line.
struct ExtFile {
    std::string file;
    std::string circuit;
};

/// A "D_to_A" or "A_to_D" line. Volts and seconds; a value that a parameter gives is not given here.
struct Converter {
    bool to_analog = true; ///< "D_to_A"
    std::string d_port;
    std::string port1;
    std::string port2;
    GivenValue vlow;
    GivenValue vhigh;
    GivenValue trise;
    GivenValue tfall;
    std::optional<Corner> corner; ///< absent: all corners
    std::string_view polarity;    ///< "Inverting" or "Non-Inverting", where the line has one
    /// Names of parameters that give values, in the order of the line; empty for what is a number.
    std::array<StoredText, 4> value_names{};
};

/// A value of a converter that is no number, to be found among the block's parameters, which may follow.
struct NamedValue {
    std::string_view label; ///< "vlow" and the like
    std::string_view line_name;
    std::string text;
    std::uint32_t line;
};

/// A parameter and the text of its value.
struct NamedText {
    StoredText name;
    StoredText value;
};

/// Names of parameters in file order, each once, and the values that lines give.
struct ExtParameters : NameList {
    std::vector<NamedText> values;
};

/// One "[External Circuit]", whose name has at most 40 characters, or the "[External Model]" of a model, which has
/// none.
struct ExtCkt : RecordOf<SubjectKind::externalCircuit> {
    ExtLanguage language = ExtLanguage::notGiven;
    PerCorner<std::optional<ExtFile>> corners;
    ExtParameters parameters;
    ExtParameters converter_parameters;
    NameList ports;
    std::vector<Converter> converters; ///< in file order
    TextSet converter_keys;            ///< kind, d_port, corner and polarity of each, for the test of repeated ones
    std::vector<NamedValue> named_values;
    std::array<bool, 2> converter_reported{}; ///< by to_analog: a reported line may have meant the required port
    bool corner_reported = false;             ///< a reported "Corner" line may have meant the typical one
    bool ports_seen = false;                  ///< a "Ports" line was there, with or without names
    bool used = false;                        ///< a circuit call names it
};

/// What messages call an external block, and what it has to serve.
struct ExtOwner {
    std::string_view kind; ///< "External Model" or "External Circuit"
    std::string_view name;
    bool is_model = false; ///< ports have predefined names
    bool drives = false;   ///< it is that of a model which drives
    bool receives = false; ///< or receives
};

/// Reads a line of "[External Model]" or "[External Circuit]".
void extCktLine(Context& context, ExtCkt& circuit, const ExtOwner& owner, std::string_view text);

/// The spelling of a language; empty for the two that are none.
[[nodiscard]] std::string_view extLanguageText(ExtLanguage language);

/// True of the ports that a model has by itself.
[[nodiscard]] bool isPredefinedPort(std::string_view name);

/// Checks a whole "[External Model]" or "[External Circuit]".
void checkExtCkt(Context& context, const ExtCkt& circuit, const ExtOwner& owner);

/// The external circuit being read.
using CircuitState = RecordState<ExtCkt>;

/// Reads external circuits.
extern const RecordModule<CircuitState> kExternalCircuit;

} // namespace kestrel
