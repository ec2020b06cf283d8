#pragma once

#include "base/row_store.hpp"
#include "reader/rngp.hpp"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kestrel {

class LineReader;
struct Context;
enum class ModelType : std::uint8_t;

/// One I-V table: voltage (volts), then typical, minimum and maximum current (amperes), in file order.
struct Crv {
    Rows<TableRow> rows;
    std::uint32_t line = 0; ///< at which it began
    bool given = false;     ///< its keyword was there

    explicit operator bool() const { return given; }
};

/// The direction in which a table's current should go as the voltage rises.
enum class CurveTrend : std::uint8_t { rising, falling, notChecked };

/// Which I-V table a keyword gives; decides its label and its checks.
enum class CurveKind : std::uint8_t {
    pulldown,
    pullup,
    gndClamp,
    powerClamp,
    issoPd,
    issoPu,
    seriesCurrent,
    seriesMosfet
};

/// What is followed while a table is being read; forgotten when it closes.
struct CrvState {
    enum class Seen : std::uint8_t { nothing, value, nonMonotonic };
    enum class Direction : std::uint8_t { unknown, rising, falling };
    struct Trace {
        double last = 0.0;
        Seen seen = Seen::nothing;
        Direction direction = Direction::unknown;
    };
    /// The row of the lowest or highest voltage so far, with its typical current.
    struct Extreme {
        bool found = false;
        double voltage = 0.0;
        Cell current;
    };
    std::array<Trace, kColumns> traces{};
    Extreme lowest;
    Extreme highest;
};

/// Whose table it is, as messages have it.
struct CurveOwner {
    std::string_view kind; ///< "Model" or "Submodel"
    std::string_view name;
    std::optional<ModelType> type; ///< a submodel has none, which leaves out the direction
};

/// The label of a table in messages ("GND Clamp").
[[nodiscard]] std::string_view curveLabel(CurveKind kind);

/// Opens a table at its keyword line; `text` is what follows the keyword. An old table is reported and replaced.
void openCrv(Context& context, CrvState& state, Crv& slot, CurveKind kind, std::string_view text);

/// Begins a table that has been made at this line.
void beginCrv(const Context& context, CrvState& state, Crv& curve);

/// Reads one row into the open table.
void crvLine(Context& context, CrvState& state, Crv& curve, CurveKind kind, std::string_view text);

/// Reads the rows that follow as long as their lines are plain.
void crvRows(Context& context, CrvState& state, Crv& curve, CurveKind kind, LineReader& reader);

/// Ends the open table: its ends, the direction of its current and whether that passes through zero, all without line.
void closeCrv(Context& context, const CrvState& state, const Crv& curve, CurveKind kind, const CurveOwner& owner);

/// The rows whose voltage is a number, ordered by voltage.
[[nodiscard]] std::vector<TableRow> sortedRows(const Crv& curve);

} // namespace kestrel
