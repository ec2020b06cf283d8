#pragma once

#include "ibis/diagnostics.hpp"
#include "reader/parse_state.hpp"

#include <string>
#include <string_view>

namespace kestrel {

/// Most characters of a pin name.
[[nodiscard]] constexpr int pinNameLimit(IbisVersion version) { return version >= IbisVersion::v5 ? 8 : 5; }

/// Most characters of the names of models, selectors, signals and function table groups.
[[nodiscard]] constexpr int modelNameLimit(IbisVersion version) { return version < IbisVersion::v4 ? 20 : 40; }

/// Most characters of a bus label.
inline constexpr int kBusLabelLimit = 15;

/// Most characters of the names that did not grow with the versions: components, package models, external circuits.
inline constexpr int kLongNameLimit = 40;

/// Stores a name cut to its limit; false when it was over it, which is reported at the line with the text and the
/// limit.
bool storeName(Diagnostics& diagnostics, std::string& name, std::string_view text, int limit,
               CheckedMessage<ArgKind::text, ArgKind::integer> too_long);

} // namespace kestrel
