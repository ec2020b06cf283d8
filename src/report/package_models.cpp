#include "ibis/run.hpp"
#include "report/quantity.hpp"
#include "report/sections.hpp"
#include "report/tables.hpp"

#include <cmath>

namespace kestrel {

namespace {

/// What an entry of a matrix couples.
struct Coupling {
    std::uint32_t row;    ///< 0-based
    std::uint32_t column; ///< 0-based, not below the row but in a wrapped matrix
    double value;
};

/// Calls `use` with every entry of a matrix. Rows are those of the pins of their places.
template <class Use> void eachEntry(const Mtx& matrix, Use use) {
    for (std::uint32_t row = 0; row < matrix.rows.size(); ++row) {
        const MtxRow& given = matrix.rows[row];
        if (const auto* const values = std::get_if<MtxValues>(&given.given)) {
            for (std::uint32_t slot = 0; slot < values->size(); ++slot) {
                std::uint32_t column = row + slot;
                if (matrix.order != 0 && column >= matrix.order) column %= matrix.order;
                use(Coupling{row, column, (*values)[slot]});
            }
        } else {
            for (const MtxEntry& entry : std::get<MtxEntries>(given.given))
                if (entry.column() != 0) use(Coupling{row, entry.column() - 1, entry.value()});
        }
    }
}

std::string_view kindText(MtxKind kind) {
    switch (kind) {
    case MtxKind::banded: return "banded";
    case MtxKind::bandedWrap: return "banded, wrapped";
    case MtxKind::sparse: return "sparse";
    case MtxKind::full: return "full";
    case MtxKind::unknown: break;
    }
    return "of no known type";
}

/// What there is to say of a matrix in numbers.
struct MatrixSummary {
    std::size_t entries = 0;
    std::size_t couplings = 0; ///< entries off the diagonal that are not 0
    double least_self = INFINITY;
    double most_self = -INFINITY;
    Coupling strongest{0, 0, 0.0}; ///< off the diagonal
    double largest = 0.0;          ///< of all, without sign
};

MatrixSummary summaryOf(const Mtx& matrix) {
    MatrixSummary summary;
    eachEntry(matrix, [&](const Coupling& entry) {
        ++summary.entries;
        if (std::isfinite(entry.value)) summary.largest = std::max(summary.largest, std::abs(entry.value));
        if (entry.row == entry.column) {
            summary.least_self = std::min(summary.least_self, entry.value);
            summary.most_self = std::max(summary.most_self, entry.value);
        } else if (entry.value != 0.0) {
            ++summary.couplings;
            if (std::abs(entry.value) > std::abs(summary.strongest.value)) summary.strongest = entry;
        }
    });
    return summary;
}

std::string_view pinName(const PkgMdl& package, std::uint32_t place) {
    return place < package.pin_names.size() ? package.pin_names[place].view() : std::string_view("?");
}

void writeSummary(Html& html, const PkgMdl& package, const Mtx& matrix, const MatrixSummary& summary,
                  std::string_view unit) {
    html << "<p class=\"sub\">" << Text(kindText(matrix.kind)) << ", " << summary.entries << " entries";
    if (summary.least_self <= summary.most_self)
        html << "; on the diagonal " << Text(quantityText(summary.least_self, unit, 4)) << " to "
             << Text(quantityText(summary.most_self, unit, 4));
    if (summary.couplings > 0)
        html << "; " << summary.couplings << " couplings, the strongest "
             << Text(quantityText(summary.strongest.value, unit, 4)) << " of "
             << Text(pinName(package, summary.strongest.row)) << " and "
             << Text(pinName(package, summary.strongest.column));
    html << "</p>\n";
}

/// How dark an entry is drawn: by its size in decades below the largest one, half a decade a step.
std::size_t shadeOf(double value, double largest) {
    constexpr std::size_t kDarkest = 8;
    const double size = std::abs(value);
    if (size == 0.0 || largest == 0.0) return 0;
    if (size >= largest) return kDarkest;
    const auto steps = static_cast<std::size_t>(std::min(-2.0 * std::log10(size / largest), 100.0));
    return steps >= kDarkest ? 1 : kDarkest - steps;
}

constexpr std::array<MarkupName, 9> kShades{"q0", "q1", "q2", "q3", "q4", "q5", "q6", "q7", "q8"};

/// The grid: a square for each entry and its mirror image, and the values for whoever points at them.
void writeGrid(Html& html, const PkgMdl& package, const Mtx& matrix, const MatrixSummary& summary,
               std::string_view title, std::string_view unit) {
    constexpr std::uint32_t kCell = 10;
    const std::uint32_t size = matrix.order * kCell;
    std::array<Coordinates, kShades.size()> squares;
    std::string values;
    const auto addSquare = [&](Coordinates& path, std::uint32_t row, std::uint32_t column) {
        path.add("M").step(static_cast<std::int32_t>(column * kCell)).step(static_cast<std::int32_t>(row * kCell));
        path.add("h10v10h-10z");
    };
    eachEntry(matrix, [&](const Coupling& entry) {
        if (entry.row >= matrix.order || entry.column >= matrix.order || entry.value == 0.0) return;
        Coordinates& path = squares[shadeOf(entry.value, summary.largest)];
        addSquare(path, entry.row, entry.column);
        if (entry.row != entry.column) addSquare(path, entry.column, entry.row);
        appendInteger(values, entry.row);
        values.push_back(' ');
        appendInteger(values, entry.column);
        values.push_back(' ');
        values.append(quantityText(entry.value, unit, 4)).push_back('\n');
    });
    html << "<figure class=\"matrix\"><figcaption><small>The stronger the color, the larger: a shade is half a "
            "decade.</small></figcaption>";
    const auto side = static_cast<std::int32_t>(size);
    Coordinates box;
    box.add("-1 -1 ").step(side + 2).step(side + 2);
    html.begin("svg", {{"class", Literal("matrix")}, {TextAttribute("viewBox"), box}, {"role", Literal("img")}});
    html << "<title>" << Text(title) << " matrix of " << Text(package.name) << "</title><desc>"
         << "Each square is an entry; the stronger its color, the larger.</desc>";
    Coordinates frame;
    frame.add("M0 0h").step(side).add("v").step(side).add("H0z");
    html.path("f", frame);
    for (std::size_t shade = 0; shade < squares.size(); ++shade)
        if (!squares[shade].empty()) html.path(kShades[shade], squares[shade]);
    html << "</svg><pre class=\"entries\" hidden>";
    for (std::uint32_t pin = 0; pin < matrix.order; ++pin)
        html.cell(Text(pinName(package, pin))) << "\t";
    html << "\n" << Text(values) << "</pre></figure>\n";
}

void writeMatrix(Html& html, const PkgMdl& package, const Mtx* matrix, std::string_view title, std::string_view unit) {
    constexpr std::uint32_t kMostOfGrid = 64;
    if (matrix == nullptr) return;
    const MatrixSummary summary = summaryOf(*matrix);
    html << "<div><h5>" << Text(title) << "</h5>";
    writeSummary(html, package, *matrix, summary, unit);
    if (matrix->order <= kMostOfGrid && matrix->order > 0 && summary.largest > 0)
        writeGrid(html, package, *matrix, summary, title, unit);
    html << "</div>\n";
}

void writePins(Html& html, const PkgMdl& package) {
    if (package.pin_names.empty()) return;
    const bool has_sections = !package.pin_sections.empty();
    if (!has_sections) {
        LongTable table(html, "Pins", package.pin_names.size(), {"<th scope=\"col\">Pin</th>"}, false);
        for (const StoredText& name : package.pin_names)
            table.row(std::array{TableCell{name}});
        return;
    }
    LongTable table(html, "Pins", package.pin_names.size(),
                    {"<th scope=\"col\">Pin</th>", "<th scope=\"col\">Sections</th>"}, false);
    for (std::size_t place = 0; place < package.pin_names.size(); ++place) {
        const std::string sections =
            place < package.pin_sections.size() ? chainText(package.pin_sections[place], nullptr) : std::string();
        table.row(std::array{TableCell{package.pin_names[place]}, TableCell{sections}});
    }
}

} // namespace

void writePackageModels(const PartContext& part) {
    if (part.root.package_models.empty()) return;
    Html& html = part.html;
    writeHeading(part, PageSection::packages);
    for (const PkgMdl* const package : inFileOrder(part.root.package_models)) {
        html.begin("section", {{"class", Literal("package")}, Attribute::id(*part.anchors.find(package))});
        writeName(part, package->name);
        const bool has_both = !package->manufacturer.empty() && !package->description.empty();
        part.html << "<p class=\"sub\">" << Text(package->manufacturer) << Text(has_both ? " \u00b7 " : "")
                  << Text(package->description) << "</p>";
        if (package->file != nullptr && *package->file != part.path)
            html << "<p class=\"sub\">read from " << Text(*package->file) << "</p>";
        writeFindingLinks(part, *package);
        writePins(html, *package);
        const bool has_matrices = package->resistance || package->inductance || package->capacitance;
        if (has_matrices) html << "<div class=\"matrices\">";
        writeMatrix(html, *package, package->resistance.get(), "Resistance", kOhm);
        writeMatrix(html, *package, package->inductance.get(), "Inductance", "H");
        writeMatrix(html, *package, package->capacitance.get(), "Capacitance", "F");
        if (has_matrices) html << "</div>";
        html << "</section>\n";
    }
}

} // namespace kestrel
