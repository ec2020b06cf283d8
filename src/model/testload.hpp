#pragma once

#include "model/testblock.hpp"
#include "reader/keyword.hpp"

#include <optional>
#include <string>

namespace kestrel {

struct Run;

/// One "[Test Load]": the network between a driver and an optional receiver, in farads, ohms, henries, seconds and
/// volts. A series part that is missing is a short, a parallel one is open.
struct TestLoad {
    std::string name; ///< at most 40 characters
    TestType type = TestType::notGiven;
    std::optional<double> c1_near;
    std::optional<double> c2_near;
    std::optional<double> c1_far;
    std::optional<double> c2_far;
    std::optional<double> rs_near;
    std::optional<double> rs_far;
    std::optional<double> rp1_near;
    std::optional<double> rp2_near;
    std::optional<double> rp1_far;
    std::optional<double> rp2_far;
    std::optional<double> ls_near;
    std::optional<double> ls_far;
    std::optional<double> td;
    std::optional<double> zo;
    std::optional<Rng> v_term1;
    std::optional<Rng> v_term2;
    std::string receiver_model;
    std::string receiver_model_inv;
    std::optional<double> r_diff_near;
    std::optional<double> r_diff_far;
    RefusedLines refused;
    bool used = false; ///< some test data name it
};

/// The load being read, null outside one.
struct TestLoadState {
    TestLoad* current = nullptr;
};

/// Opens a load at "[Test Load]".
void openTestLoad(Run& run);

/// Told of every keyword, each of which ends the open load: 2222 to 2226, no line.
void testLoadKeywordSeen(Run& run);

/// Reads the keyword line (2205 to 2209) or a line under it (2210 to 2221, 2227 and what the range reader reports).
/// Outside a load: 2202, 2203.
void testLoadLine(Run& run, const Line& line);

/// Once the file and its test data are checked: looks up the receivers (2228, 2229), then reports a load that no test
/// data use (2230). No line.
void checkTestLoads(Run& run);

} // namespace kestrel
