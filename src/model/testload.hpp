#pragma once

#include "reader/enumeration.hpp"
#include "reader/line_form.hpp"
#include "reader/sections.hpp"

#include <array>
#include <cstdint>
#include <string>

namespace kestrel {

/// Whether a test is of one signal or of a pair.
enum class TestType : std::uint8_t { notGiven, singleEnded, differential };

inline constexpr std::array<EnumerationRow<TestType>, 2> kTestTypes{{
    {"Single_ended", TestType::singleEnded},
    {"Differential", TestType::differential},
}};

/// One "[Test Load]": the network between a driver and an optional receiver, in farads, ohms, henries, seconds and
/// volts. A series part that is missing is a short, a parallel one is open. The name has at most 40 characters.
struct TestLoad : RecordOf<SubjectKind::testLoad> {
    TestType type = TestType::notGiven;
    GivenValue c1_near;
    GivenValue c2_near;
    GivenValue c1_far;
    GivenValue c2_far;
    GivenValue rs_near;
    GivenValue rs_far;
    GivenValue rp1_near;
    GivenValue rp2_near;
    GivenValue rp1_far;
    GivenValue rp2_far;
    GivenValue ls_near;
    GivenValue ls_far;
    GivenValue td;
    GivenValue zo;
    GivenRange v_term1;
    GivenRange v_term2;
    std::string receiver_model;
    std::string receiver_model_inv;
    GivenValue r_diff_near;
    GivenValue r_diff_far;
    RefusedLines refused;
    bool used = false; ///< some test data name it
};

/// Reads test loads.
extern const RecordModule<RecordState<TestLoad>> kTestLoad;

/// True when the line of a receiver was refused, so that its name, which has been reported, is not missed once more.
[[nodiscard]] bool isRefused(const TestLoad& load, std::string TestLoad::*name);

} // namespace kestrel
