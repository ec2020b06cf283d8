#pragma once

#include "base/row_index.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel {

struct Run;
struct Cmpnt;

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

/// Finds the rows by their pins.
using PinMapIndex = RowIndex<PinMap, &PinMap::pin>;

/// Reads the header words behind "[Pin Mapping]". Reports 528 to 530, 702 and 703.
void pinMapHeader(Run& run, Cmpnt& component, std::string_view text);

/// Reads one row. Reports 704 to 709.
void pinMapLine(Run& run, Cmpnt& component, std::string_view text);

/// Compares the rows with the component's pins and supplies. Reports 710 to 714 (no line).
void checkPinMaps(Run& run, const Cmpnt& component);

} // namespace kestrel
