#pragma once

#include "model/testblock.hpp"
#include "model/wvfrm.hpp"
#include "reader/keyword.hpp"

#include <array>
#include <memory>
#include <string>

namespace kestrel {

struct Run;

/// One "[Test Data]": the waveforms that a driver makes at a test load, to compare simulations with.
struct TestData {
    std::string name; ///< at most 40 characters
    TestType type = TestType::notGiven;
    std::string driver_model;
    std::string driver_model_inv;
    std::string test_load;
    std::array<std::unique_ptr<Wvfrm>, 8> tables; ///< in the order of their keywords
    RefusedLines refused;
};

/// The test data being read, null outside some, and the table of it that is open.
struct TestDataState {
    TestData* current = nullptr;
    KeywordCode table = KeywordCode::notKey;
};

/// Opens test data at "[Test Data]".
void openTestData(Run& run);

/// Told of every keyword: ends the open table (2329, 2330) and, at a keyword that is none of its tables, the test data
/// (2321 to 2324). No line.
void testDataKeywordSeen(Run& run, KeywordCode code);

/// Reads "[Test Data]" (2305 to 2309), the keyword of a table (2320 and what opening a waveform reports), a
/// subparameter (2310 to 2318) or a row. Outside test data: 2302, 2303.
void testDataLine(Run& run, const Line& line);

/// Once the file is read: looks up the driver models (2325, 2326) and the load (2327, 2328), which is marked as used.
/// No line.
void checkTestData(Run& run);

} // namespace kestrel
