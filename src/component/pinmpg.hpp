#pragma once

#include "base/indexed_rows.hpp"
#include "component/pin.hpp"
#include "reader/columns.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// Columns of "[Pin Mapping]" behind the pin name.
enum class BusColumn : std::uint8_t { pulldownRef = 0, pullupRef, gndClampRef, powerClampRef, extRef };
inline constexpr std::size_t kBusColumns = 5;

/// One row of "[Pin Mapping]".
struct PinMap {
    std::string pin;
    std::array<std::string, kBusColumns> labels; ///< by BusColumn; "NC" for no connection, empty without the column
    bool pin_reported = false;
    std::array<bool, kBusColumns> label_reported{};

    [[nodiscard]] const std::string& label(BusColumn column) const { return labels[static_cast<std::size_t>(column)]; }
};

/// "[Pin Mapping]".
struct PinMapping {
    TableColumns columns;
    IndexedRows<PinMap, &PinMap::pin> rows;
    std::vector<PinMap> dropped_rows; ///< those that were reported and dropped
};

/// Reads the header words behind "[Pin Mapping]".
void pinMapHeader(Context& context, PinMapping& mapping, std::string_view text);

/// Reads one row.
void pinMapLine(Context& context, PinMapping& mapping, std::string_view text);

/// Compares the rows with the component's pins and supplies.
void checkPinMaps(Context& context, const PinMapping& mapping, const PinList& pins, std::string_view component);

} // namespace kestrel
