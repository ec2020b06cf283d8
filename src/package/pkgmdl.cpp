#include "package/pkgmdl.hpp"

#include "reader/line_form.hpp"
#include "reader/names.hpp"

namespace kestrel {

namespace {

using K = KeywordCode;

/// A text keyword: where it is stored, its name in messages and its limit.
struct TextRow {
    KeywordCode code;
    std::string PkgMdl::*text;
    std::string_view label;
    int (*limit)(IbisVersion version);
};

constexpr int descriptionLimit(IbisVersion version) { return unlessLater(version, 60); }

constexpr std::array<TextRow, 3> kTexts{{
    {K::packageManufacturer, &PkgMdl::manufacturer, "Manufacturer", longNameLimit},
    {K::oem, &PkgMdl::oem, "OEM", longNameLimit},
    {K::description, &PkgMdl::description, "Description", descriptionLimit},
}};

/// A keyword that only marks a place.
struct MarkRow {
    KeywordCode code;
    bool PkgMdlState::*seen;
    std::string_view label;
};

constexpr std::array<MarkRow, 4> kMarks{{
    {K::pinNumbers, &PkgMdlState::pin_numbers_seen, "Pin_Numbers"},
    {K::modelData, &PkgMdlState::model_data_seen, "Model_Data"},
    {K::endModelData, &PkgMdlState::end_model_data_seen, "End_Model_Data"},
    {K::endPackageModel, &PkgMdlState::end_package_model_seen, "End_Package_Model"},
}};

/// A matrix: its keyword, where it is stored and what is reported of it.
struct MatrixRow {
    KeywordCode code;
    std::unique_ptr<Mtx> PkgMdl::*matrix;
    std::string_view label;
    CheckedMessage<> duplicate;
    CheckedMessage<ArgKind::text> beside_sections;
    std::optional<CheckedMessage<ArgKind::text>> missing; ///< none for the matrix that may be left out
};

constexpr std::array<MatrixRow, 3> kMatrices{{
    {K::resistanceMatrix, &PkgMdl::resistance, "Resistance", 3460, 3411, std::nullopt},
    {K::inductanceMatrix, &PkgMdl::inductance, "Inductance", 3461, 3412, CheckedMessage<ArgKind::text>(3413)},
    {K::capacitanceMatrix, &PkgMdl::capacitance, "Capacitance", 3462, 3414, CheckedMessage<ArgKind::text>(3415)},
}};

constexpr NumberMessages kPins{3420, 3421, 3422, 3423, 3424};
constexpr NumberMessages kSections{3425, 3426, 3428, 3429, 3430};

void closeOpenMatrix(Diagnostics& diagnostics, PkgMdlState& state) {
    if (Mtx* const matrix = std::exchange(state.open_matrix, nullptr)) closeMtx(diagnostics, *matrix);
}

/// The matrix of a keyword, or null.
Mtx* matrixOf(PkgMdl& package, KeywordCode code) {
    const MatrixRow* const row = rowOf(kMatrices, code, &MatrixRow::code);
    return row == nullptr ? nullptr : (package.*(row->matrix)).get();
}

void nameKeyword(Context& context, PkgMdlState& state, PkgMdl& package, const Line& line) {
    setTextOnce(context, package.name, line.text, longNameLimit(context.parse.version), "Define Package Model");
    state.list->enterNewest(context.names);
}

void textKeyword(Context& context, PkgMdlState& /*state*/, PkgMdl& package, const Line& line) {
    const TextRow& row = *rowOf(kTexts, line.key, &TextRow::code);
    setTextOnce(context.diagnostics, package.*(row.text), line.text, row.limit(context.parse.version), row.label);
}

void numberOfPinsKeyword(Context& context, PkgMdlState& /*state*/, PkgMdl& package, const Line& line) {
    readNumber(context, line.text, package.number_of_pins, kPins);
}

void numberOfSectionsKeyword(Context& context, PkgMdlState& state, PkgMdl& package, const Line& line) {
    if (!package.pin_names.empty()) errorAtLine(context.diagnostics, 3427);
    if (readNumber(context, line.text, package.number_of_sections, kSections)) state.sections_declared = true;
}

void markKeyword(Context& context, PkgMdlState& state, PkgMdl& /*package*/, const Line& line) {
    const MarkRow& row = *rowOf(kMarks, line.key, &MarkRow::code);
    if (std::exchange(state.*(row.seen), true)) errorAtLine(context.diagnostics, 3468, row.label);
    if (!line.text.empty()) errorAtLine(context.diagnostics, 3469, row.label);
    if (line.key == K::endModelData) state.row_matrix = nullptr;
    if (line.key == K::endModelData || line.key == K::endPackageModel) closeOpenMatrix(context.diagnostics, state);
}

void matrixKeyword(Context& context, PkgMdlState& state, PkgMdl& package, const Line& line) {
    const MatrixRow& row = *rowOf(kMatrices, line.key, &MatrixRow::code);
    std::unique_ptr<Mtx>& matrix = package.*(row.matrix);
    if (matrix) {
        state.row_matrix = matrix.get();
        errorAtLine(context.diagnostics, row.duplicate); // the matrix being read, perhaps another, stays open
        return;
    }
    closeOpenMatrix(context.diagnostics, state);
    matrix = std::make_unique<Mtx>(createMtx(context.diagnostics, line.text, package.number_of_pins));
    state.row_matrix = matrix.get();
    state.open_matrix = state.row_matrix;
}

void bandwidthKeyword(Context& context, PkgMdlState& state, PkgMdl& package, const Line& line) {
    if (Mtx* const matrix = matrixOf(package, state.previous)) {
        setBandwidth(context.diagnostics, *matrix, line.text);
    } else if (state.previous == K::bandwidth) {
        errorAtLine(context.diagnostics, 3464);
    } else {
        errorAtLine(context.diagnostics, 3465);
    }
}

void rowKeyword(Context& context, PkgMdlState& state, PkgMdl& package, const Line& line) {
    if (state.row_matrix != nullptr) {
        beginRow(context, *state.row_matrix, package.pin_names, line.text);
    } else {
        errorAtLine(context.diagnostics, 3466);
    }
}

void dataOutOfPlace(Context& context, std::string_view /*text*/) { errorAtLine(context.diagnostics, 3404); }

void matrixLine(Context& context, PkgMdlState& state, PkgMdl& package, std::string_view text) {
    if (state.row_matrix != nullptr) {
        rowLine(context, *state.row_matrix, package.pin_names, text);
    } else {
        dataOutOfPlace(context, text);
    }
}

void pinLine(Context& context, PkgMdlState& state, PkgMdl& package, std::string_view text) {
    if (context.parse.version >= IbisVersion::v3 && state.sections_declared) {
        sectionPinLine(context, state.cursor, package, text);
    } else {
        plainPinLine(context, package, text);
    }
}

void checkTexts(Diagnostics& diagnostics, const PkgMdl& package) {
    if (package.name.empty()) error(diagnostics, 3417);
    if (package.manufacturer.empty()) error(diagnostics, 3467, std::string_view("Manufacturer"), package.name);
    if (package.oem.empty()) error(diagnostics, 3418, package.name);
    if (package.description.empty()) error(diagnostics, 3419, package.name);
}

void checkPins(Diagnostics& diagnostics, const PkgMdlState& state, const PkgMdl& package) {
    if (package.number_of_pins == 0) error(diagnostics, 3431, package.name);
    if (!state.pin_numbers_seen) {
        error(diagnostics, 3452, package.name);
    } else if (package.number_of_pins != 0 && package.pin_names.empty()) {
        error(diagnostics, 3453, package.name);
    } else if (package.pin_names.size() != package.number_of_pins) {
        error(diagnostics, 3454, package.number_of_pins, package.pin_names.size(), package.name);
    }
}

void checkSections(Diagnostics& diagnostics, const PkgMdlState& state, const PkgMdl& package) {
    if (!state.cursor.forks.empty()) error(diagnostics, 3450);
    for (std::size_t i = 0; i < package.pin_sections.size(); ++i) {
        const std::size_t count = package.pin_sections[i].sections.size();
        if (count > package.number_of_sections) {
            error(diagnostics, 3451, package.pin_names[i], static_cast<std::int64_t>(count),
                  std::int64_t{package.number_of_sections});
        }
    }
}

/// A package model has either sections or matrices; this checks the presence of one of the keywords that enclose the
/// matrices.
void checkMatrixMark(Diagnostics& diagnostics, const PkgMdlState& state, bool seen,
                     CheckedMessage<ArgKind::text> beside_sections, CheckedMessage<ArgKind::text> missing) {
    if (seen == state.sections_declared) error(diagnostics, seen ? beside_sections : missing, state.current->name);
}

void checkMatrices(Diagnostics& diagnostics, const PkgMdlState& state, const PkgMdl& package) {
    for (const MatrixRow& row : kMatrices) {
        const std::unique_ptr<Mtx>& matrix = package.*(row.matrix);
        if (state.sections_declared) {
            if (matrix) error(diagnostics, row.beside_sections, package.name);
        } else if (matrix) {
            checkMtx(diagnostics, *matrix, row.label);
        } else if (row.missing) {
            error(diagnostics, *row.missing, package.name);
        }
    }
}

void closePkgMdl(Context& context, PkgMdlState& state, PkgMdl& package) {
    Diagnostics& diagnostics = context.diagnostics;
    closeOpenMatrix(diagnostics, state);
    checkTexts(diagnostics, package);
    checkPins(diagnostics, state, package);
    if (state.sections_declared) checkSections(diagnostics, state, package);
    checkMatrixMark(diagnostics, state, state.model_data_seen, 3456, 3455);
    checkMatrices(diagnostics, state, package);
    checkMatrixMark(diagnostics, state, state.end_model_data_seen, 3458, 3457);
    if (!state.end_package_model_seen) error(diagnostics, 3459);
}

/// A keyword of package models, which is remembered for the one that follows it.
template <auto Keyword, auto DataLine = dataOutOfPlace> constexpr Section<PkgMdlState> own(KeywordCode key) {
    constexpr auto kOpen = [](Context& context, PkgMdlState& state, PkgMdl& package, const Line& line) {
        Keyword(context, state, package, line);
        state.previous = line.key;
    };
    return section<PkgMdlState, kOpen, DataLine>(key);
}

constexpr auto kKeywords = sectionTable<PkgMdlState>({
    own<nameKeyword>(K::definePackageModel),
    own<textKeyword>(K::packageManufacturer),
    own<textKeyword>(K::oem),
    own<textKeyword>(K::description),
    own<numberOfPinsKeyword>(K::numberOfPins),
    own<numberOfSectionsKeyword>(K::numberOfSections),
    own<markKeyword, pinLine>(K::pinNumbers),
    own<markKeyword>(K::modelData),
    own<matrixKeyword>(K::resistanceMatrix),
    own<matrixKeyword>(K::inductanceMatrix),
    own<matrixKeyword>(K::capacitanceMatrix),
    own<bandwidthKeyword>(K::bandwidth),
    own<rowKeyword, matrixLine>(K::row),
    own<markKeyword>(K::endModelData),
    own<markKeyword>(K::endPackageModel),
});

void reportImpossible(Context& context, LineKind kind) {
    if (kind == LineKind::blank) {
        programBugHere(context.diagnostics, 3405);
    } else {
        programBugHere(context.diagnostics, 3403);
    }
}

} // namespace

const RecordModule<PkgMdlState> kPkgMdl{
    .opens = K::definePackageModel,
    .find = [](K code) { return kKeywords.find(code); },
    .close = closePkgMdl,
    .orphan = reportOrphan<3401, 3402>,
    .impossible = reportImpossible,
};

} // namespace kestrel
