#pragma once

#include "model/crv.hpp"

#include <string_view>
#include <vector>

namespace kestrel {

struct Context;

/// One "[Series MOSFET]": its current over the gate voltage at one drain-to-source voltage.
struct SMos {
    GivenValue vds;           ///< volts
    bool vds_refused = false; ///< a line for it was there and has been reported
    Crv table;
};

/// Appends a table at its keyword line.
void openSMos(Context& context, CrvState& state, std::vector<SMos>& list, std::string_view text);

/// Reads the line of its voltage or a row.
void sMosLine(Context& context, CrvState& state, SMos& mosfet, std::string_view text);

/// Ends the table: a voltage that was not given, then the checks of an I-V table. No line.
void closeSMos(Context& context, const CrvState& state, const SMos& mosfet, const CurveOwner& owner);

/// Warns, without line, of each voltage that several tables of the list have.
void checkSMosVoltages(Context& context, const std::vector<SMos>& list, std::string_view model);

} // namespace kestrel
