#pragma once

#include "model/testload.hpp"
#include "model/wvfrm.hpp"

#include <array>
#include <string>

namespace kestrel {

/// The tables of test data, in the order of their keywords.
inline constexpr WaveformLabel goldenWaveform(std::string_view label) { return {label, label, WaveformForm::golden}; }
inline constexpr std::array<WaveformLabel, 8> kGoldenWaveforms{
    goldenWaveform("Rising Waveform Near"),       goldenWaveform("Rising Waveform Far"),
    goldenWaveform("Falling Waveform Near"),      goldenWaveform("Falling Waveform Far"),
    goldenWaveform("Diff Rising Waveform Near"),  goldenWaveform("Diff Rising Waveform Far"),
    goldenWaveform("Diff Falling Waveform Near"), goldenWaveform("Diff Falling Waveform Far"),
};

/// One "[Test Data]": the waveforms that a driver makes at a test load, to compare simulations with.
/// The name has at most 40 characters.
struct TestData : RecordOf<SubjectKind::testData> {
    TestType type = TestType::notGiven;
    std::string driver_model;
    std::string driver_model_inv;
    std::string test_load;
    std::array<OnDemand<Wvfrm>, kGoldenWaveforms.size()> tables;
    RefusedLines refused;
};

/// Reads test data and their tables.
extern const RecordModule<RecordState<TestData>> kTestData;

/// True when the line of a name was refused, so that the name, which has been reported, is not missed once more.
[[nodiscard]] bool isRefused(const TestData& data, std::string TestData::*name);

} // namespace kestrel
