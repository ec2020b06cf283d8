#include "model/testdata.hpp"

#include "ibis/run.hpp"

#include <algorithm>
#include <memory>
#include <type_traits>
#include <variant>

namespace kestrel {

namespace {

using Field = std::variant<TestType TestData::*, std::string TestData::*>;

/// A subparameter by its spelling; its field tells what its word is.
struct DataRow {
    std::string_view name;
    Field field;
    bool required;
};

constexpr std::string_view kKeyword = "Test Data";

constexpr auto kRows = std::to_array({
    DataRow{"Test_data_type", &TestData::type, true},
    DataRow{"Driver_model", &TestData::driver_model, true},
    DataRow{"Driver_model_inv", &TestData::driver_model_inv, false},
    DataRow{"Test_load", &TestData::test_load, true},
});

enum Place : std::size_t { kDriver = 1, kDriverInv = 2, kLoad = 3 }; // in kRows

constexpr BlockNameMessages kNameMessages{2305, 2306, 2307, 2308, 2309};
constexpr BlockWordMessages kWordMessages{{CheckedMessage<ArgKind::text>(2312), 2313}, {2314, 2315}, 2316, 2317};

constexpr WaveformLabel golden(std::string_view label) { return {label, label, WaveformForm::golden}; }

constexpr auto kTables = std::to_array({
    golden("Rising Waveform Near"),
    golden("Rising Waveform Far"),
    golden("Falling Waveform Near"),
    golden("Falling Waveform Far"),
    golden("Diff Rising Waveform Near"),
    golden("Diff Rising Waveform Far"),
    golden("Diff Falling Waveform Near"),
    golden("Diff Falling Waveform Far"),
});
constexpr std::size_t kFirstDiff = 4;

constexpr bool isTable(KeywordCode code) {
    return isBetween(code, KeywordCode::risingWaveformNear, KeywordCode::diffFallingWaveformFar);
}

constexpr std::size_t tableOf(KeywordCode code) {
    return static_cast<std::size_t>(code) - static_cast<std::size_t>(KeywordCode::risingWaveformNear);
}
static_assert(tableOf(KeywordCode::diffRisingWaveformNear) == kFirstDiff);
static_assert(tableOf(KeywordCode::diffFallingWaveformFar) + 1 == kTables.size());

bool has(const TestData& data, const DataRow& row) {
    const auto given = [&data](auto field) {
        const auto& value = data.*field;
        if constexpr (std::is_same_v<std::remove_cvref_t<decltype(value)>, std::string>) {
            return !value.empty();
        } else {
            return value != TestType::notGiven;
        }
    };
    return std::visit(given, row.field);
}

bool readInto(Run& run, const DataRow& row, std::string_view rest, TestType& type) {
    return readTestType(run, rest, row.name, kWordMessages, type);
}

bool readInto(Run& run, const DataRow& row, std::string_view rest, std::string& name) {
    return readReferredName(run, rest, row.name, kWordMessages, name);
}

void readSubparameter(Run& run, TestData& data, const DataRow& row, std::string_view rest) {
    if (has(data, row)) {
        errorAtLine(run.diagnostics, 2311, row.name, data.name);
        return;
    }
    const auto place = static_cast<std::size_t>(&row - kRows.data());
    if (std::visit([&](auto field) { return readInto(run, row, rest, data.*field); }, row.field)) {
        data.refused.remove(place);
    } else {
        data.refused.add(place);
    }
}

/// A line under the keyword of a table: a row, or a subparameter that comes late.
void tableLine(Run& run, TestData& data, KeywordCode key, std::string_view text) {
    std::string_view rest = text;
    const std::string_view first = takeItem(run, rest, '=');
    const auto* const row = std::ranges::find(kRows, first, &DataRow::name);
    if (row == kRows.end()) {
        wvfrmLine(run, *data.tables[tableOf(key)], kTables[tableOf(key)], text);
        return;
    }
    warningAtLine(run.diagnostics, 2318, row->name, data.name);
    readSubparameter(run, data, *row, rest);
}

void openTable(Run& run, TestData& data, const Line& line) {
    const std::size_t table = tableOf(line.key);
    if (data.tables[table]) errorAtLine(run.diagnostics, 2320, kTables[table].open, data.name);
    openSingleWvfrm(run, data.tables[table], kTables[table], line.text);
    run.testdata.table = line.key;
}

void closeTestData(Run& run, const TestData& data) {
    Diagnostics& diagnostics = run.diagnostics;
    for (std::size_t i = 0; i < kRows.size(); ++i) {
        if (!kRows[i].required || has(data, kRows[i]) || data.refused.has(i)) continue;
        error(diagnostics, 2321, data.name, kRows[i].name);
    }
    if (std::ranges::none_of(data.tables, [](const auto& table) { return table != nullptr; })) {
        error(diagnostics, 2322, data.name);
    }
    if (data.type != TestType::singleEnded) return;
    for (std::size_t i = kFirstDiff; i < kTables.size(); ++i) {
        if (data.tables[i]) error(diagnostics, 2323, data.name, kTables[i].open);
    }
    if (!data.driver_model_inv.empty()) error(diagnostics, 2324, data.name);
}

/// Looks up a driver; a name that was reported at its line is not missed again.
void checkDriver(Run& run, const Ibis& root, const TestData& data, Place place, const std::string& name) {
    if (name.empty()) return;
    const Mdl* const model = root.models.find(name);
    if (model == nullptr) {
        if (!data.refused.has(place)) error(run.diagnostics, 2325, name, data.name);
    } else if (kNoTestLoadTypes.has(model->model_type)) {
        warning(run.diagnostics, 2326, name, data.name);
    }
}

void checkLoad(Run& run, const Ibis& root, const TestData& data) {
    if (data.test_load.empty()) return;
    TestLoad* const load = root.test_loads.find(data.test_load);
    if (load == nullptr) {
        if (!data.refused.has(kLoad)) error(run.diagnostics, 2327, data.test_load, data.name);
        return;
    }
    load->used = true;
    if (load->type == TestType::notGiven || data.type == TestType::notGiven || load->type == data.type) return;
    error(run.diagnostics, 2328, data.test_load, data.name);
}

} // namespace

void openTestData(Run& run) {
    Ibis* const root = currentRoot(run);
    if (root == nullptr) {
        const SourceMark mark = here();
        programBug(run.diagnostics, 2301, mark.file, mark.line);
        return;
    }
    run.testdata = {&root->test_data.add(std::make_unique<TestData>()), KeywordCode::notKey};
}

void testDataKeywordSeen(Run& run, KeywordCode code) {
    const TestData* const data = run.testdata.current;
    if (data == nullptr) return;
    if (isTable(run.testdata.table)) {
        const std::size_t table = tableOf(run.testdata.table);
        closeWvfrm(run, *data->tables[table], kTables[table]);
        run.testdata.table = KeywordCode::notKey;
    }
    if (isTable(code)) return;
    closeTestData(run, *data);
    run.testdata.current = nullptr;
}

void testDataLine(Run& run, const Line& line) {
    TestData* const data = run.testdata.current;
    const bool keyword = line.kind == LineKind::keyword;
    if (data == nullptr) {
        if (keyword) {
            errorAtLine(run.diagnostics, 2302);
        } else {
            errorAtLine(run.diagnostics, 2303);
        }
    } else if (isTable(line.key)) {
        if (keyword) {
            openTable(run, *data, line);
        } else {
            tableLine(run, *data, line.key, line.text);
        }
    } else if (keyword) {
        nameBlock(run, currentRoot(run)->test_data, *data, line.text, kKeyword, kNameMessages);
    } else {
        std::string_view rest = line.text;
        if (const DataRow* const row = takeSubparameter(run, kRows, rest, 2310)) {
            readSubparameter(run, *data, *row, rest);
        }
    }
}

void checkTestData(Run& run) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr) return;
    for (const TestData& data : root->test_data.newestFirst()) {
        checkDriver(run, *root, data, kDriver, data.driver_model);
        // A model that drives both sides is reported once.
        if (data.driver_model_inv != data.driver_model)
            checkDriver(run, *root, data, kDriverInv, data.driver_model_inv);
        checkLoad(run, *root, data);
    }
}

} // namespace kestrel
