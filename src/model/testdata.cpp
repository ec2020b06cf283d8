#include "model/testdata.hpp"

#include "reader/record_name.hpp"
#include "reader/subparameters.hpp"

namespace kestrel {

namespace {

using K = KeywordCode;
using State = RecordState<TestData>;

constexpr RecordNameRules kName{"Test Data", CheckedMessage<>(2305), 2306, 2307, 2308, 2309};

constexpr auto kData = subparameters<Subparameter<TestData, TestType>>(
    {
        {"Test_data_type", wordOf<kTestTypes>(&TestData::type)},
        {"Driver_model", &TestData::driver_model},
        {"Driver_model_inv", &TestData::driver_model_inv},
        {"Test_load", &TestData::test_load},
    },
    {
        .unknown = CheckedMessage<>(2310),
        .repeated = 2311,
        .word = WordMessages{WordLineMessages{CheckedMessage<ArgKind::text>(2312), 2313}, {2314, 2315}},
        .name = ReferredNameMessages{2316, 2317},
    });

constexpr std::size_t kFirstDiff = 4;

void dataLine(Context& context, TestData& data, std::string_view text) {
    readSubparameter(context, kData, data, text, data.name);
}

template <std::size_t Table> void openTable(Context& context, TestData& data, std::string_view text) {
    if (data.tables[Table]) errorAtLine(context.diagnostics, 2320, kGoldenWaveforms[Table].open, data.name);
    openSingleWvfrm(context, data.tables[Table], kGoldenWaveforms[Table], text);
}

/// A line under the keyword of a table: a row, or a subparameter that comes late.
template <std::size_t Table> void tableLine(Context& context, TestData& data, std::string_view text) {
    std::string_view rest = text;
    const auto* const row = kData.find(takeItem(context, rest, '='));
    if (row == nullptr) {
        wvfrmLine(context, data.tables[Table].made(context.rows), kGoldenWaveforms[Table], text);
        return;
    }
    warningAtLine(context.diagnostics, 2318, row->name, data.name);
    readSubparameter(context, kData, *row, data, text, rest, data.name);
}

template <std::size_t Table> void tableRows(Context& context, TestData& data, LineReader& reader) {
    wvfrmRows(context, data.tables[Table].made(context.rows), kGoldenWaveforms[Table], reader);
}

template <std::size_t Table> void closeTable(Context& context, const TestData& data) {
    closeWvfrm(context, *data.tables[Table], kGoldenWaveforms[Table]);
}

template <std::size_t Table> constexpr Section<State> table(K key) {
    return tableSection<State, openTable<Table>, tableLine<Table>, closeTable<Table>, tableRows<Table>>(key);
}

constexpr auto kSections = sectionTable<State>({
    section<State, openNamed<kName, State>, dataLine>(K::testData),
    table<0>(K::risingWaveformNear),
    table<1>(K::risingWaveformFar),
    table<2>(K::fallingWaveformNear),
    table<3>(K::fallingWaveformFar),
    table<4>(K::diffRisingWaveformNear),
    table<5>(K::diffRisingWaveformFar),
    table<6>(K::diffFallingWaveformNear),
    table<7>(K::diffFallingWaveformFar),
});

void closeTestData(Context& context, State& /*state*/, TestData& data) {
    Diagnostics& diagnostics = context.diagnostics;
    const auto require = [&](auto member) {
        if (!isSeen(kData, data, member)) error(diagnostics, 2321, data.name, kData.nameOf(member));
    };
    require(&TestData::type);
    require(&TestData::driver_model);
    require(&TestData::test_load);
    if (std::ranges::none_of(data.tables, [](const auto& table) { return static_cast<bool>(table); })) {
        error(diagnostics, 2322, data.name);
    }
    if (data.type != TestType::singleEnded) return;
    for (std::size_t i = kFirstDiff; i < kGoldenWaveforms.size(); ++i) {
        if (data.tables[i]) error(diagnostics, 2323, data.name, kGoldenWaveforms[i].open);
    }
    if (!data.driver_model_inv.empty()) error(diagnostics, 2324, data.name);
}

} // namespace

const RecordModule<State> kTestData{
    .opens = K::testData,
    .find = [](K code) { return kSections.find(code); },
    .close = closeTestData,
    .orphan = reportOrphan<2302, 2303>,
    .impossible = [](Context&, LineKind) {},
};

bool isRefused(const TestData& data, std::string TestData::*name) { return data.refused.has(kData.placeOf(name)); }

} // namespace kestrel
