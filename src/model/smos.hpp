#pragma once

#include "model/crv.hpp"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kestrel {

struct Run;
struct Mdl;

/// One "[Series MOSFET]": its current over the gate voltage at one drain-to-source voltage.
struct SMos {
    std::optional<double> vds; ///< volts
    bool vds_refused = false;  ///< a line for it was there and has been reported
    Crv table;
    std::uint32_t begin_line = 0;
};

/// Appends a table at its keyword line. Reports 2801 and 2811 (more than 100).
void openSMos(Run& run, std::vector<SMos>& list, std::string_view text);

/// Reads the line of its voltage or a row. Reports 2801 to 2806, 2808, 2810 and what rows of an I-V table report.
void sMosLine(Run& run, SMos& mosfet, std::string_view text);

/// Ends the table: a voltage that was not given (2807), then the checks of an I-V table. No line.
void closeSMos(Run& run, const SMos& mosfet, const Mdl& model);

/// Warns (2809, no line) of each voltage that several tables of the list have.
void checkSMosVoltages(Run& run, const std::vector<SMos>& list, std::string_view model);

} // namespace kestrel
