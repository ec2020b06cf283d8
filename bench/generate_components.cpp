#include "sections.hpp"

namespace kestrel::bench {

namespace {

std::string poolModel(std::size_t number) { return numbered("buf_", number, 2); }

constexpr std::size_t kPool = 10;

void writePool(TextWriter& writer) {
    for (std::size_t i = 0; i < kPool; ++i)
        writeSmallModel(writer, poolModel(i), i % 3 == 0 ? "Input" : "Output");
}

} // namespace

void writeComponent(TextWriter& writer, std::string_view name, std::string_view package_model) {
    ++writer.contents.components;
    writeLine(writer, {"|"});
    writeLine(writer, {"[Component]     ", name});
    writeLine(writer, {"[Manufacturer]  Sample Works"});
    if (!package_model.empty()) writeLine(writer, {"[Package Model] ", package_model});
    writeLine(writer, {"[Package]"});
    writeLine(writer, {"| variable      typ       min       max"});
    writeLine(writer, {"R_pkg           200m      150m      250m"});
    writeLine(writer, {"L_pkg           5.0nH     4.0nH     6.0nH"});
    writeLine(writer, {"C_pkg           2.0pF     1.5pF     2.5pF"});
    writeLine(writer, {"[Pin]  signal_name  model_name  R_pin  L_pin  C_pin"});
}

void writePin(TextWriter& writer, std::string_view pin, std::string_view model) {
    ++writer.contents.pins;
    writeLine(writer, {pin, "  sig_", pin, "  ", model, fixed(0.15 + 0.1 * fraction(writer), 4, 8),
                       fixed(4.0 + 2.0 * fraction(writer), 3, 9, "nH"), fixed(1.5 + fraction(writer), 3, 9, "pF")});
}

void writeComponents(TextWriter& writer, std::size_t count) {
    constexpr std::size_t kPins = 50;
    for (std::size_t i = 0; i < count; ++i) {
        writeComponent(writer, numbered("comp_", i, 5));
        for (std::size_t pin = 0; pin < kPins; ++pin)
            writePin(writer, numbered("A", pin + 1, 1), poolModel(pin % kPool));
    }
    writePool(writer);
}

void writeOneComponent(TextWriter& writer, std::size_t pins) {
    writeComponent(writer, "large");
    for (std::size_t pin = 0; pin < pins; ++pin)
        writePin(writer, numbered("A", pin + 1, 1), poolModel(pin % kPool));
    writePool(writer);
}

} // namespace kestrel::bench
