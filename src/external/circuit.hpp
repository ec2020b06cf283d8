#pragma once

#include "base/name_list.hpp"
#include "base/text_hash.hpp"
#include "reader/block.hpp"
#include "reader/corner.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace kestrel {

struct Context;
struct Run;
struct Cmpnt;
struct Mdl;

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

/// A "D_to_A" or "A_to_D" line. Volts and seconds; a value that a parameter gives stays 0.
struct Converter {
    bool to_analog = true; ///< "D_to_A"
    std::string d_port;
    std::string port1;
    std::string port2;
    double vlow = 0.0;
    double vhigh = 0.0;
    double trise = 0.0;
    double tfall = 0.0;
    std::optional<Corner> corner; ///< absent: all corners
};

/// A value of a converter that is no number, to be found among the block's parameters, which may follow.
struct NamedValue {
    std::string_view label; ///< "vlow" and the like
    std::string_view line_name;
    std::string text;
    std::uint32_t line;
};

/// One "[External Circuit]", or the "[External Model]" of a model.
struct ExtCkt {
    std::string name; ///< at most 40 characters, empty for a model
    ExtLanguage language = ExtLanguage::notGiven;
    PerCorner<std::optional<ExtFile>> corners;
    NameList parameters;
    NameList converter_parameters;
    NameList ports;
    std::vector<Converter> converters; ///< in file order
    TextSet converter_keys;            ///< kind, d_port, corner and polarity of each, for the test of repeated ones
    std::vector<NamedValue> named_values;
    std::array<bool, 2> converter_reported{}; ///< by to_analog: a reported line may have meant the required port
    bool corner_reported = false;             ///< a reported "Corner" line may have meant the typical one
    bool ports_seen = false;                  ///< a "Ports" line was there, with or without names
    bool used = false;                        ///< a circuit call names it
};

/// A "Port_map" line.
struct PortMap {
    std::string port;
    std::string node;
};

/// The lines of a "[Circuit Call]" that name the pins it stands for; one of them at most is given.
enum class CallPins : std::uint8_t { none, signal, diff, series };

/// One "[Circuit Call]".
struct CircuitCall {
    std::string circuit; ///< at most 40 characters, empty when it was missing
    CallPins kind = CallPins::none;
    std::array<std::string, 2> pins; ///< as written, the second empty for a signal pin
    std::vector<PortMap> port_map;   ///< in file order
    TextSet mapped_ports;
    TextSet dropped_ports; ///< of lines that were reported and dropped
    TextSet dropped_nodes; ///< pins and nodes of such lines
    bool port_map_seen = false;
};

/// The external circuit being read, null outside one.
struct CircuitState {
    ExtCkt* current = nullptr;
    const Block<CircuitState>* block = nullptr; ///< set while it waits for its end keyword
};

/// What messages call an external block, and the model that it belongs to, if to one.
struct ExtOwner {
    std::string_view kind; ///< "External Model" or "External Circuit"
    std::string_view name;
    const Mdl* model;
};

/// Reads a line of "[External Model]" or "[External Circuit]". Reports 1807 to 1816, 1818 to 1820, 1822 and 1832.
void extCktLine(Context& context, ExtCkt& circuit, const ExtOwner& owner, std::string_view text);

/// The spelling of a language; empty for the two that are none.
[[nodiscard]] std::string_view extLanguageText(ExtLanguage language);

/// Checks a whole "[External Model]" or "[External Circuit]". Reports 1819 at the line, and 1817, 1821, 1823 to 1826,
/// 1830 and 1831 without one.
void checkExtCkt(Run& run, const ExtCkt& circuit, const ExtOwner& owner);

/// "[External Model]" to its end. Reports 119, 1803, 1827, 1828 and what its lines and the whole report.
extern const Block<Mdl> kExternalModel;

/// Told of every keyword: one that is not an external circuit's own closes it. Reports 1827 and what the whole reports.
void circuitKeywordSeen(Run& run, KeywordCode code);

/// Reads "[External Circuit]" to its end. Reports 121, 1802 to 1806, 1828 and what its lines and the whole report.
void circuitLine(Run& run, const Line& line);

/// "[Circuit Call]" to its end. Reports 1803, 1807, 1827, 1828 and 1833 to 1837 at the line, 1842 without one.
extern const Block<Cmpnt> kCircuitCall;

/// What may be names of pins in all circuit calls of a component, as the list has them, also in lines that were
/// reported.
[[nodiscard]] std::unordered_set<std::string_view> circuitCallPins(const Cmpnt& component);

/// Looks up circuits, ports, pins and nodes of the calls and marks the circuits. Reports 1838 to 1841, 1843 and 1845
/// (no line).
void checkCircuitCalls(Run& run, const Cmpnt& component);

/// Reports external circuits that no call uses (1844, no line).
void checkExtCkts(Run& run);

} // namespace kestrel
