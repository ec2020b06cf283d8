#include "sections.hpp"

#include <array>
#include <cmath>

namespace kestrel::bench {

namespace {

constexpr std::size_t kCurveRows = 60;
constexpr std::size_t kWaveformRows = 100;

/// How the minimum and the maximum stand to the typical value.
constexpr double kMinFactor = 0.8;
constexpr double kMaxFactor = 1.25;

std::string modelName(std::size_t number) { return numbered("drv_", number, 5); }

void writeCurveHeading(TextWriter& writer, std::string_view keyword) {
    writeLine(writer, {"[", keyword, "]"});
    writeLine(writer, {"| Voltage    I(typ)      I(min)      I(max)"});
}

/// A voltage column that rises evenly over the range that drivers are measured in.
std::string voltageAt(std::size_t row, std::size_t rows) {
    constexpr double kLow = -3.3;
    constexpr double kHigh = 6.6;
    return fixed(kLow + (kHigh - kLow) * static_cast<double>(row) / static_cast<double>(rows - 1), 2, 7);
}

/// A driver's table: the current passes through zero without a flat part. `sign` 1 rises, -1 falls.
void writeDriverCurve(TextWriter& writer, std::string_view keyword, std::size_t rows, double sign) {
    writeCurveHeading(writer, keyword);
    double current = -0.04 - 0.04 * fraction(writer);
    for (std::size_t row = 0; row < rows; ++row) {
        writeLine(writer,
                  {voltageAt(row, rows), scientific(sign * current, 4, 12),
                   scientific(sign * current * kMinFactor, 4, 12), scientific(sign * current * kMaxFactor, 4, 12)});
        current += 0.001 + 0.003 * fraction(writer);
    }
    writer.contents.table_rows += rows;
}

/// A clamp's table: a current in milliamperes below 0 V, leakage in nanoamperes above. `sign` 1 rises, -1 falls.
void writeClampCurve(TextWriter& writer, std::string_view keyword, std::size_t rows, double sign) {
    writeCurveHeading(writer, keyword);
    const double strength = 15.0 + 10.0 * fraction(writer);
    for (std::size_t row = 0; row < rows; ++row) {
        const std::string voltage = voltageAt(row, rows);
        const double volts = std::stod(voltage);
        const bool conducts = volts < 0.0;
        const double current = sign * (conducts ? -strength * volts * volts : 3.0 * volts);
        const std::string_view unit = conducts ? "mA" : "nA";
        writeLine(writer, {voltage, fixed(current, 4, 12, unit), fixed(current * kMinFactor, 4, 12, unit),
                           fixed(current * kMaxFactor, 4, 12, unit)});
    }
    writer.contents.table_rows += rows;
}

/// A waveform from one level to the other. Times in nanoseconds.
void writeWaveform(TextWriter& writer, std::string_view keyword, std::string_view fixture, double from, double to) {
    writeLine(writer, {"[", keyword, "]"});
    writeLine(writer, {"R_fixture = 50"});
    writeLine(writer, {"V_fixture = ", fixture});
    writeLine(writer, {"V_fixture_min = ", fixture});
    writeLine(writer, {"V_fixture_max = ", fixture});
    writeLine(writer, {"| Time     V(typ)   V(min)   V(max)"});
    const double middle = 1.5 + fraction(writer);
    const auto level = [from, to](double time, double centre, double width) {
        return from + (to - from) / (1.0 + std::exp((centre - time) / width));
    };
    for (std::size_t row = 0; row < kWaveformRows; ++row) {
        const double time = 0.05 * static_cast<double>(row);
        writeLine(writer, {fixed(time, 3, 8, "ns"), fixed(level(time, middle, 0.25), 5, 9),
                           fixed(kMinFactor * level(time, middle + 0.4, 0.35), 5, 9),
                           fixed(kMaxFactor * level(time, middle - 0.3, 0.20), 5, 9)});
    }
    writer.contents.table_rows += kWaveformRows;
}

void writeRamp(TextWriter& writer) {
    writeLine(writer, {"[Ramp]"});
    writeLine(writer, {"R_load = 50"});
    for (const std::string_view rate : {"dV/dt_r", "dV/dt_f"}) {
        const double step = 1.0 + fraction(writer);
        writeLine(writer, {rate, "   ", fixed(step, 3), "/0.50n   ", fixed(step * kMinFactor, 3), "/0.75n   ",
                           fixed(step * kMaxFactor, 3), "/0.35n"});
    }
}

/// The lines from "[Model]" to "[Voltage Range]".
void beginModel(TextWriter& writer, std::string_view name, std::string_view type) {
    const bool takes_input = type == "Input" || type == "I/O";
    ++writer.contents.models;
    writeLine(writer, {"|"});
    writeLine(writer, {"[Model]         ", name});
    writeLine(writer, {"Model_type      ", type});
    if (type == "I/O") {
        writeLine(writer, {"Polarity        Non-Inverting"});
        writeLine(writer, {"Enable          Active-Low"});
    }
    if (takes_input) {
        writeLine(writer, {"Vinl = 0.8"});
        writeLine(writer, {"Vinh = 2.0"});
    }
    if (type != "Input") {
        writeLine(writer, {"Vmeas = 1.5"});
        writeLine(writer, {"Cref = 50pF"});
        writeLine(writer, {"Rref = 500"});
        writeLine(writer, {"Vref = 0"});
    }
    const double capacitance = 3.0 + 2.0 * fraction(writer);
    writeLine(writer, {"C_comp          ", fixed(capacitance, 3, 0, "pF"), "  ",
                       fixed(capacitance * kMinFactor, 3, 0, "pF"), "  ", fixed(capacitance * kMaxFactor, 3, 0, "pF")});
    writeLine(writer, {"[Temperature Range]  25  85  0"});
    writeLine(writer, {"[Voltage Range]      3.3V  3.0V  3.6V"});
}

/// A component with one pin for each of `count` models or selectors.
void writePinPerName(TextWriter& writer, std::size_t count, std::string (*name)(std::size_t)) {
    writeComponent(writer, "sample");
    for (std::size_t i = 0; i < count; ++i)
        writePin(writer, numbered("A", i + 1, 1), name(i));
}

std::string poolName(std::size_t number) { return numbered("buf_", number, 5); }

/// A tenth as many models as there are things that name them, and enough to name `least` different ones.
std::size_t poolSize(std::size_t count, std::size_t least) { return count / 10 + least; }

void writePool(TextWriter& writer, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i)
        writeSmallModel(writer, poolName(i), "Output");
}

std::string selectorName(std::size_t number) { return numbered("sel_", number, 5); }

std::string submodelName(std::size_t number) { return numbered("clamp_", number, 5); }

/// A pulse table: it ends where it begins.
void writePulse(TextWriter& writer, std::string_view keyword, double sign) {
    constexpr std::array kOffsets{0.0, 0.2, 0.6, 0.5, 0.3, 0.0};
    writeLine(writer, {"[", keyword, "]"});
    for (std::size_t row = 0; row < kOffsets.size(); ++row) {
        const double offset = sign * kOffsets[row];
        writeLine(writer, {fixed(static_cast<double>(row), 3, 8, "ns"), fixed(offset, 4, 9),
                           fixed(offset * kMinFactor, 4, 9), fixed(offset * kMaxFactor, 4, 9)});
    }
    writer.contents.table_rows += kOffsets.size();
}

void writeSubmodel(TextWriter& writer, std::string_view name) {
    constexpr std::size_t kRows = 10;
    ++writer.contents.submodels;
    writeLine(writer, {"|"});
    writeLine(writer, {"[Submodel]      ", name});
    writeLine(writer, {"Submodel_type   Dynamic_clamp"});
    writeLine(writer, {"[Submodel Spec]"});
    writeLine(writer, {"V_trigger_r     1.60  1.40  1.80"});
    writeLine(writer, {"V_trigger_f     1.40  1.20  1.60"});
    writePulse(writer, "GND Pulse Table", 1.0);
    writeClampCurve(writer, "GND Clamp", kRows, 1.0);
    writePulse(writer, "POWER Pulse Table", -1.0);
    writeClampCurve(writer, "POWER Clamp", kRows, -1.0);
}

} // namespace

void writeSmallModel(TextWriter& writer, std::string_view name, std::string_view type) {
    constexpr std::size_t kRows = 5;
    beginModel(writer, name, type);
    if (type == "Input") return;
    writeDriverCurve(writer, "Pulldown", kRows, 1.0);
    writeDriverCurve(writer, "Pullup", kRows, -1.0);
    writeRamp(writer);
}

void writeModels(TextWriter& writer, std::size_t count) {
    writePinPerName(writer, count, modelName);
    for (std::size_t i = 0; i < count; ++i) {
        beginModel(writer, modelName(i), "I/O");
        writeDriverCurve(writer, "Pulldown", kCurveRows, 1.0);
        writeDriverCurve(writer, "Pullup", kCurveRows, -1.0);
        writeClampCurve(writer, "GND Clamp", kCurveRows, 1.0);
        writeClampCurve(writer, "POWER Clamp", kCurveRows, -1.0);
        writeRamp(writer);
        writeWaveform(writer, "Rising Waveform", "0.0", 0.0, 2.2);
        writeWaveform(writer, "Rising Waveform", "3.3", 1.1, 3.3);
        writeWaveform(writer, "Falling Waveform", "0.0", 2.2, 0.0);
        writeWaveform(writer, "Falling Waveform", "3.3", 3.3, 1.1);
    }
}

void writeSmallModels(TextWriter& writer, std::size_t count) {
    writePinPerName(writer, count, modelName);
    for (std::size_t i = 0; i < count; ++i)
        writeSmallModel(writer, modelName(i), i % 3 == 0 ? "Input" : "Output");
}

void writeSelectors(TextWriter& writer, std::size_t count) {
    constexpr std::size_t kEntries = 20;
    const std::size_t pool = poolSize(count, kEntries);
    writePinPerName(writer, count, selectorName);
    for (std::size_t i = 0; i < count; ++i) {
        writeLine(writer, {"|"});
        writeLine(writer, {"[Model Selector] ", selectorName(i)});
        for (std::size_t entry = 0; entry < kEntries; ++entry)
            writeLine(writer, {poolName((i + entry) % pool), "   driver at step ", std::to_string(entry + 1)});
        writer.contents.selector_entries += kEntries;
    }
    writePool(writer, pool);
}

void writeSubmodels(TextWriter& writer, std::size_t count) {
    writePinPerName(writer, count, modelName);
    for (std::size_t i = 0; i < count; ++i) {
        beginModel(writer, modelName(i), "I/O");
        writeLine(writer, {"[Add Submodel]"});
        writeLine(writer, {submodelName(i), "   Non-Driving"});
        writeRamp(writer);
    }
    for (std::size_t i = 0; i < count; ++i)
        writeSubmodel(writer, submodelName(i));
}

void writeSchedules(TextWriter& writer, std::size_t count) {
    constexpr std::size_t kEntries = 10;
    const std::size_t pool = poolSize(count, kEntries);
    writePinPerName(writer, count, modelName);
    for (std::size_t i = 0; i < count; ++i) {
        beginModel(writer, modelName(i), "Output");
        writeLine(writer, {"[Driver Schedule]"});
        writeLine(writer, {"| Model       Rise_on   Rise_off  Fall_on   Fall_off"});
        for (std::size_t entry = 0; entry < kEntries; ++entry) {
            const double delay = 0.1 * static_cast<double>(entry) + 0.05 * fraction(writer);
            writeLine(writer, {poolName((i + entry) % pool), "   ", fixed(delay, 4, 8, "ns"), "  ",
                               fixed(delay + 2.0, 4, 8, "ns"), "        NA        NA"});
        }
        writer.contents.schedule_entries += kEntries;
        writeRamp(writer);
    }
    writePool(writer, pool);
}

} // namespace kestrel::bench
