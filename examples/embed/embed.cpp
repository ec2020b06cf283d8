// Checks an IBIS file and lists how strongly its drivers pull: embed FILE

#include <cmath>
#include <cstdio>
#include <exception>

#include <kestrel/kestrel.hpp>

namespace {

namespace ibis = kestrel::api;

int print(std::string_view text) { return std::printf("%.*s", static_cast<int>(text.size()), text.data()); }

/// The typical current at a voltage, linear between the rows of the table; NaN outside of it.
double currentAt(const ibis::Table& table, double voltage) {
    for (std::size_t i = 1; i < table.size(); ++i) {
        const auto below = table[i - 1];
        const auto above = table[i];
        if (voltage < below[0] || voltage > above[0]) continue;
        return below[1] + (above[1] - below[1]) * (voltage - below[0]) / (above[0] - below[0]);
    }
    return std::nan("");
}

void listFindings(const ibis::File& file) {
    for (const ibis::Finding& finding : file.findings()) {
        print(finding.file);
        std::printf(":%u: ", static_cast<unsigned>(finding.line));
        print(ibis::levelName(finding.level));
        std::printf(": ");
        print(finding.text);
        std::printf("\n");
    }
}

void listDrivers(const ibis::File& file) {
    for (const ibis::Model& model : file.models()) {
        if (model.pulldown.empty()) continue;
        print(model.name);
        std::printf(" (");
        print(model.type);
        std::printf("): %.1f mA at 0.5 V, %zu waveforms\n", 1e3 * currentAt(model.pulldown, 0.5),
                    model.rising_waveforms.size() + model.falling_waveforms.size());
    }
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::fprintf(stderr, "usage: embed FILE\n");
        return 2;
    }
    try {
        const ibis::File file = ibis::read(arguments[1]);
        listFindings(file);
        listDrivers(file);
        return file.hasPassed() ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "embed: %s\n", failure.what());
        return 2;
    }
}
