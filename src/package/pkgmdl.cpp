#include "package/pkgmdl.hpp"

#include "ibis/run.hpp"
#include "package/pkgpin.hpp"
#include "package/row.hpp"
#include "reader/names.hpp"
#include "reader/number.hpp"

#include <algorithm>
#include <array>

namespace kestrel {

namespace {

/// A text keyword: where it is stored, its name in messages and its limit.
struct TextRow {
    KeywordCode code;
    std::string PkgMdl::*text;
    std::string_view label;
    std::uint32_t limit;
};

constexpr std::array<TextRow, 4> kTexts{{
    {KeywordCode::definePackageModel, &PkgMdl::name, "Define Package Model", kLongNameLimit},
    {KeywordCode::packageManufacturer, &PkgMdl::manufacturer, "Manufacturer", kLongNameLimit},
    {KeywordCode::oem, &PkgMdl::oem, "OEM", kLongNameLimit},
    {KeywordCode::description, &PkgMdl::description, "Description", 60},
}};

/// A keyword that only marks a place.
struct MarkRow {
    KeywordCode code;
    bool PkgMdlState::*seen;
    std::string_view label;
};

constexpr std::array<MarkRow, 4> kMarks{{
    {KeywordCode::pinNumbers, &PkgMdlState::pin_numbers_seen, "Pin_Numbers"},
    {KeywordCode::modelData, &PkgMdlState::model_data_seen, "Model_Data"},
    {KeywordCode::endModelData, &PkgMdlState::end_model_data_seen, "End_Model_Data"},
    {KeywordCode::endPackageModel, &PkgMdlState::end_package_model_seen, "End_Package_Model"},
}};

/// A matrix: its keyword, where it is stored and what is said of it.
struct MatrixRow {
    KeywordCode code;
    std::optional<Mtx> PkgMdl::*matrix;
    std::string_view label;
    CheckedMessage<> duplicate;
    CheckedMessage<ArgKind::text> beside_sections;
    std::optional<CheckedMessage<ArgKind::text>> missing; ///< none for the matrix that may be left out
};

constexpr std::array<MatrixRow, 3> kMatrices{{
    {KeywordCode::resistanceMatrix, &PkgMdl::resistance, "Resistance", 3460, 3411, std::nullopt},
    {KeywordCode::inductanceMatrix, &PkgMdl::inductance, "Inductance", 3461, 3412, CheckedMessage<ArgKind::text>(3413)},
    {KeywordCode::capacitanceMatrix, &PkgMdl::capacitance, "Capacitance", 3462, 3414,
     CheckedMessage<ArgKind::text>(3415)},
}};

constexpr NumberMessages kPins{3420, 3421, 3422, 3423, 3424};
constexpr NumberMessages kSections{3425, 3426, 3428, 3429, 3430};

/// The row of a keyword in one of the tables above, or null.
template <class Table> constexpr const auto* rowOf(const Table& table, KeywordCode code) {
    const auto at = std::ranges::find(table, code, &Table::value_type::code);
    return at == table.end() ? nullptr : &*at;
}

void closeOpenMatrix(Run& run) {
    if (run.pkgmdl.open_matrix != nullptr) {
        closeMtx(run, *run.pkgmdl.open_matrix);
        run.pkgmdl.open_matrix = nullptr;
    }
}

void textKeyword(Run& run, PkgMdl& package, const TextRow& row, std::string_view text) {
    setTextOnce(run.diagnostics, package.*(row.text), text, row.limit, row.label);
    if (row.code == KeywordCode::definePackageModel) {
        currentRoot(run)->package_models.enterName(package, package.name);
    }
}

void markKeyword(Run& run, const MarkRow& row, std::string_view text) {
    PkgMdlState& state = run.pkgmdl;
    if (state.*(row.seen)) {
        errorAtLine(run.diagnostics, 3468, row.label);
    }
    if (!text.empty()) {
        errorAtLine(run.diagnostics, 3469, row.label);
    }
    state.*(row.seen) = true;
    if (row.code == KeywordCode::endModelData) {
        state.matrix_keyword = KeywordCode::notKey;
    }
    if (row.code == KeywordCode::endModelData || row.code == KeywordCode::endPackageModel) {
        closeOpenMatrix(run);
    }
}

void matrixKeyword(Run& run, PkgMdl& package, const MatrixRow& row, std::string_view text) {
    run.pkgmdl.matrix_keyword = row.code;
    std::optional<Mtx>& matrix = package.*(row.matrix);
    if (matrix) {
        errorAtLine(run.diagnostics, row.duplicate); // the matrix being read, perhaps another, stays open
        return;
    }
    closeOpenMatrix(run);
    matrix = createMtx(run, text, package.number_of_pins);
    run.pkgmdl.open_matrix = &*matrix;
}

void bandwidthKeyword(Run& run, PkgMdl& package, std::string_view text) {
    const KeywordCode before = run.pkgmdl.previous;
    if (const MatrixRow* const row = rowOf(kMatrices, before)) {
        setBandwidth(run, *(package.*(row->matrix)), text);
    } else if (before == KeywordCode::bandwidth) {
        errorAtLine(run.diagnostics, 3464);
    } else {
        errorAtLine(run.diagnostics, 3465);
    }
}

/// The matrix that rows go to, or null.
Mtx* matrixForRows(const Run& run, PkgMdl& package) {
    const MatrixRow* const row = rowOf(kMatrices, run.pkgmdl.matrix_keyword);
    return row == nullptr ? nullptr : &*(package.*(row->matrix));
}

void rowKeyword(Run& run, PkgMdl& package, std::string_view text) {
    if (Mtx* const mtx = matrixForRows(run, package)) {
        beginRow(run, *mtx, package, text);
    } else {
        errorAtLine(run.diagnostics, 3466);
    }
}

void numberOfSectionsKeyword(Run& run, PkgMdl& package, std::string_view text) {
    if (!package.pin_names.empty()) {
        errorAtLine(run.diagnostics, 3427);
    }
    if (readNumber(run, text, package.number_of_sections, kSections)) {
        run.pkgmdl.sections_declared = true;
    }
}

void keywordLine(Run& run, PkgMdl& package, const Line& line) {
    run.pkgmdl.previous = run.pkgmdl.keyword;
    run.pkgmdl.keyword = line.key;
    if (const TextRow* const text = rowOf(kTexts, line.key)) {
        textKeyword(run, package, *text, line.text);
    } else if (const MarkRow* const mark = rowOf(kMarks, line.key)) {
        markKeyword(run, *mark, line.text);
    } else if (const MatrixRow* const matrix = rowOf(kMatrices, line.key)) {
        matrixKeyword(run, package, *matrix, line.text);
    } else if (line.key == KeywordCode::numberOfPins) {
        readNumber(run, line.text, package.number_of_pins, kPins);
    } else if (line.key == KeywordCode::numberOfSections) {
        numberOfSectionsKeyword(run, package, line.text);
    } else if (line.key == KeywordCode::bandwidth) {
        bandwidthKeyword(run, package, line.text);
    } else if (line.key == KeywordCode::row) {
        rowKeyword(run, package, line.text);
    } else {
        const SourceMark mark_here = here();
        programBug(run.diagnostics, 3403, mark_here.file, mark_here.line);
    }
}

void dataLine(Run& run, PkgMdl& package, const Line& line) {
    if (line.key == KeywordCode::row) {
        if (Mtx* const mtx = matrixForRows(run, package)) {
            rowLine(run, *mtx, package, line.text);
            return;
        }
    } else if (line.key == KeywordCode::pinNumbers) {
        if (run.parse.version >= IbisVersion::v3 && run.pkgmdl.sections_declared) {
            sectionPinLine(run, package, line.text);
        } else {
            plainPinLine(run, package, line.text);
        }
        return;
    }
    errorAtLine(run.diagnostics, 3404);
}

void checkTexts(Run& run, const PkgMdl& package) {
    if (package.name.empty()) {
        error(run.diagnostics, 3417);
    }
    if (package.manufacturer.empty()) {
        error(run.diagnostics, 3467, std::string_view("Manufacturer"), package.name);
    }
    if (package.oem.empty()) {
        error(run.diagnostics, 3418, package.name);
    }
    if (package.description.empty()) {
        error(run.diagnostics, 3419, package.name);
    }
}

void checkPins(Run& run, const PkgMdl& package) {
    if (package.number_of_pins == 0) {
        error(run.diagnostics, 3431, package.name);
    }
    if (!run.pkgmdl.pin_numbers_seen) {
        error(run.diagnostics, 3452, package.name);
    } else if (package.number_of_pins != 0 && package.pin_names.empty()) {
        error(run.diagnostics, 3453, package.name);
    } else if (package.pin_names.size() != package.number_of_pins) {
        error(run.diagnostics, 3454, package.number_of_pins, package.pin_names.size(), package.name);
    }
}

void checkSections(Run& run, const PkgMdl& package) {
    ChainCursor& cursor = run.pkgmdl.cursor;
    if (!cursor.forks.empty()) {
        error(run.diagnostics, 3450);
        cursor.forks.clear();
    }
    for (std::size_t i = 0; i < package.pin_sections.size(); ++i) {
        const std::size_t count = package.pin_sections[i].sections.size();
        if (count > package.number_of_sections) {
            error(run.diagnostics, 3451, package.pin_names[i], static_cast<std::int64_t>(count),
                  std::int64_t{package.number_of_sections});
        }
    }
}

/// A package model has either sections or matrices; this checks the presence of one of the keywords that enclose the
/// matrices.
void checkMatrixMark(Run& run, const PkgMdl& package, bool seen, CheckedMessage<ArgKind::text> beside_sections,
                     CheckedMessage<ArgKind::text> missing) {
    if (seen == run.pkgmdl.sections_declared) {
        error(run.diagnostics, seen ? beside_sections : missing, package.name);
    }
}

void checkMatrices(Run& run, const PkgMdl& package) {
    for (const MatrixRow& row : kMatrices) {
        const std::optional<Mtx>& matrix = package.*(row.matrix);
        if (run.pkgmdl.sections_declared) {
            if (matrix) {
                error(run.diagnostics, row.beside_sections, package.name);
            }
        } else if (matrix) {
            checkMtx(run, *matrix, row.label);
        } else if (row.missing) {
            error(run.diagnostics, *row.missing, package.name);
        }
    }
}

/// Checks a package model as a whole.
void checkPkgMdl(Run& run, const PkgMdl& package) {
    const PkgMdlState& state = run.pkgmdl;
    checkTexts(run, package);
    checkPins(run, package);
    if (state.sections_declared) {
        checkSections(run, package);
    }
    checkMatrixMark(run, package, state.model_data_seen, 3456, 3455);
    checkMatrices(run, package);
    checkMatrixMark(run, package, state.end_model_data_seen, 3458, 3457);
    if (!state.end_package_model_seen) {
        error(run.diagnostics, 3459);
    }
}

} // namespace

std::uint32_t pinIndex(const PkgMdl& package, std::string_view name) {
    const std::string* const pin = package.pin_index.find(package.pin_names, name);
    return pin == nullptr ? 0 : static_cast<std::uint32_t>(pin - package.pin_names.data() + 1);
}

void openPkgMdl(Run& run) {
    Ibis* const root = currentRoot(run);
    if (root == nullptr) {
        const SourceMark mark = here();
        programBugAtLine(run.diagnostics, 3400, mark.file, mark.line);
        return;
    }
    PkgMdl& package = root->package_models.add(std::make_unique<PkgMdl>());
    run.pkgmdl = PkgMdlState{};
    run.pkgmdl.current = &package;
}

void pkgmdlKeywordSeen(Run& run, KeywordCode code) {
    PkgMdl* const package = run.pkgmdl.current;
    if (package == nullptr || isBetween(code, KeywordCode::packageManufacturer, KeywordCode::numberOfSections)) {
        return;
    }
    closeOpenMatrix(run);
    checkPkgMdl(run, *package);
    run.pkgmdl.current = nullptr;
}

void pkgmdlLine(Run& run, const Line& line) {
    PkgMdl* const package = run.pkgmdl.current;
    switch (line.kind) {
    case LineKind::keyword:
        if (package != nullptr) {
            keywordLine(run, *package, line);
        } else {
            errorAtLine(run.diagnostics, 3401);
        }
        return;
    case LineKind::data:
        if (package != nullptr) {
            dataLine(run, *package, line);
        } else {
            errorAtLine(run.diagnostics, 3402);
        }
        return;
    case LineKind::blank: break;
    }
    const SourceMark mark = here();
    programBug(run.diagnostics, 3405, mark.file, mark.line);
}

void checkPkgMdls(Run& run) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr) {
        return;
    }
    std::unordered_map<std::string_view, std::uint32_t> left;
    for (const PkgMdl& package : root->package_models.newestFirst()) {
        ++left[package.name];
    }
    for (const PkgMdl& package : root->package_models.newestFirst()) {
        for (std::uint32_t pairs = --left[package.name]; pairs > 0; --pairs) {
            error(run.diagnostics, 3410, package.name);
        }
    }
}

} // namespace kestrel
