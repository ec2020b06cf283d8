#pragma once

#include "base/text_hash.hpp"
#include "reader/sections.hpp"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

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

/// What messages call an external block or a call, and its keywords.
struct ExternalNames {
    std::string_view kind;
    std::string_view keyword;
    std::string_view end;
    std::string_view end_keyword;
};

/// Reports text behind a keyword of these blocks that takes none.
void reportExtraText(Context& context, std::string_view keyword, std::string_view text);

/// How such a block ends.
template <const ExternalNames& Names>
inline constexpr BlockEnd kExternalEnd{
    .name = Names.end_keyword,
    .text_behind = [](Context& context, std::string_view text) { reportExtraText(context, Names.end, text); },
    .not_ended = [](Context& context) { errorAtLine(context.diagnostics, 1827, Names.keyword, Names.keyword); },
    .no_begin = [](Context& context) { errorAtLine(context.diagnostics, 1828, Names.keyword, Names.keyword); },
};

/// The end of the block.
extern const BlockEnd kCircuitCallEnd;

/// Begins a call at its keyword.
void openCircuitCall(Context& context, std::vector<CircuitCall>& calls, std::string_view text);

/// Reads a line of a call.
void circuitCallLine(Context& context, CircuitCall& call, std::string_view text);

/// Checks a whole call by itself; the component's name is for messages.
void closeCircuitCall(Context& context, const CircuitCall& call, std::string_view component);

/// The pin that a node stands for: the whole of it, or what is before its first ".".
[[nodiscard]] std::string_view pinOfNode(std::string_view node);

} // namespace kestrel
