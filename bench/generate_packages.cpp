#include "sections.hpp"

#include <algorithm>

namespace kestrel::bench {

namespace {

constexpr std::string_view kPackageName = "sample_package";
constexpr std::string_view kModelName = "buf";

/// What one matrix holds; its values fall with the distance from the diagonal.
struct MatrixForm {
    std::string_view keyword;
    double diagonal; ///< henries or farads
};
constexpr MatrixForm kInductance{"Inductance Matrix", 5e-9};
constexpr MatrixForm kCapacitance{"Capacitance Matrix", 2e-12};

double coupling(TextWriter& writer, const MatrixForm& form, std::size_t distance) {
    return form.diagonal * (0.8 + 0.4 * fraction(writer)) / static_cast<double>(1 + distance);
}

void writeFullMatrix(TextWriter& writer, const MatrixForm& form, std::size_t pins) {
    constexpr std::size_t kPerLine = 6;
    writeLine(writer, {"[", form.keyword, "]  Full_matrix"});
    for (std::size_t row = 0; row < pins; ++row) {
        writeLine(writer, {"[Row]  ", shortName(row)});
        for (std::size_t column = row; column < pins; ++column) {
            writer.text.append(scientific(coupling(writer, form, column - row), 4, 12));
            if ((column - row) % kPerLine == kPerLine - 1 || column == pins - 1) writer.text.push_back('\n');
        }
        writer.contents.matrix_values += pins - row;
    }
}

void writeSparseMatrix(TextWriter& writer, const MatrixForm& form, std::size_t pins) {
    constexpr std::size_t kEntries = 10;
    writeLine(writer, {"[", form.keyword, "]  Sparse_matrix"});
    for (std::size_t row = 0; row < pins; ++row) {
        const std::size_t entries = std::min(kEntries, pins - row);
        writeLine(writer, {"[Row]  ", shortName(row)});
        for (std::size_t entry = 0; entry < entries; ++entry)
            writeLine(writer, {shortName(row + entry), scientific(coupling(writer, form, entry), 4, 14)});
        writer.contents.matrix_values += entries;
    }
}

/// A component in a package of its own, with everything of the package model but its matrices.
void writePackage(TextWriter& writer, std::size_t pins,
                  void (*matrix)(TextWriter& writer, const MatrixForm& form, std::size_t pins)) {
    writeComponent(writer, "sample", kPackageName);
    for (std::size_t pin = 0; pin < pins; ++pin)
        writePin(writer, shortName(pin), kModelName);
    writeSmallModel(writer, kModelName, "Output");
    writeLine(writer, {"|"});
    writeLine(writer, {"[Define Package Model]  ", kPackageName});
    writeLine(writer, {"[Manufacturer]          Sample Works"});
    writeLine(writer, {"[OEM]                   Sample Packages"});
    writeLine(writer, {"[Description]           A package that nobody makes"});
    writeLine(writer, {"[Number Of Pins]        ", std::to_string(pins)});
    writeLine(writer, {"[Pin Numbers]"});
    for (std::size_t pin = 0; pin < pins; ++pin)
        writeLine(writer, {shortName(pin)});
    writer.contents.package_pins += pins;
    writeLine(writer, {"[Model Data]"});
    matrix(writer, kInductance, pins);
    matrix(writer, kCapacitance, pins);
    writeLine(writer, {"[End Model Data]"});
    writeLine(writer, {"[End Package Model]"});
}

} // namespace

void writeFullMatrices(TextWriter& writer, std::size_t pins) { writePackage(writer, pins, writeFullMatrix); }

void writeSparseMatrices(TextWriter& writer, std::size_t pins) { writePackage(writer, pins, writeSparseMatrix); }

} // namespace kestrel::bench
