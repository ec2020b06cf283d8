#include "model/testload.hpp"

#include "ibis/run.hpp"

#include <algorithm>
#include <array>
#include <memory>
#include <type_traits>
#include <variant>

namespace kestrel {

namespace {

using TypeField = TestType TestLoad::*;
using ValueField = std::optional<double> TestLoad::*;
using RangeField = std::optional<Rng> TestLoad::*;
using NameField = std::string TestLoad::*;
using Field = std::variant<TypeField, ValueField, RangeField, NameField>;

/// What a value may not be.
enum class Bound : std::uint8_t { none, notBelowZero, aboveZero };

/// A subparameter by its spelling; its field tells the form of its line.
struct LoadRow {
    std::string_view name;
    Field field;
    Bound bound = Bound::none;
};

constexpr std::string_view kKeyword = "Test Load";
constexpr std::string_view kTypeName = "Test_load_type";
constexpr std::string_view kReceiver = "Receiver_model";
constexpr std::string_view kReceiverInv = "Receiver_model_inv";

constexpr auto kRows = std::to_array({
    LoadRow{kTypeName, &TestLoad::type},
    LoadRow{"C1_near", &TestLoad::c1_near, Bound::notBelowZero},
    LoadRow{"C2_near", &TestLoad::c2_near, Bound::notBelowZero},
    LoadRow{"C1_far", &TestLoad::c1_far, Bound::notBelowZero},
    LoadRow{"C2_far", &TestLoad::c2_far, Bound::notBelowZero},
    LoadRow{"Rs_near", &TestLoad::rs_near, Bound::notBelowZero},
    LoadRow{"Rs_far", &TestLoad::rs_far, Bound::notBelowZero},
    LoadRow{"Rp1_near", &TestLoad::rp1_near, Bound::notBelowZero},
    LoadRow{"Rp2_near", &TestLoad::rp2_near, Bound::notBelowZero},
    LoadRow{"Rp1_far", &TestLoad::rp1_far, Bound::notBelowZero},
    LoadRow{"Rp2_far", &TestLoad::rp2_far, Bound::notBelowZero},
    LoadRow{"Ls_near", &TestLoad::ls_near, Bound::notBelowZero},
    LoadRow{"Ls_far", &TestLoad::ls_far, Bound::notBelowZero},
    LoadRow{"Td", &TestLoad::td, Bound::notBelowZero},
    LoadRow{"Zo", &TestLoad::zo, Bound::aboveZero},
    LoadRow{"V_term1", &TestLoad::v_term1},
    LoadRow{"V_term2", &TestLoad::v_term2},
    LoadRow{kReceiver, &TestLoad::receiver_model},
    LoadRow{kReceiverInv, &TestLoad::receiver_model_inv},
    LoadRow{"R_diff_near", &TestLoad::r_diff_near},
    LoadRow{"R_diff_far", &TestLoad::r_diff_far},
});

constexpr BlockNameMessages kNameMessages{2205, 2206, 2207, 2208, 2209};
constexpr BlockWordMessages kWordMessages{{CheckedMessage<ArgKind::text>(2212), 2214}, {2215, 2216}, 2220, 2221};
constexpr ValueLineMessages kValueMessages{
    2213, 2214, 2217, ScaleMessage(2218), ValueGiven::whenRead, TooMany::whenComplete};
constexpr RangeLineRules kRangeRules{CheckedMessage<ArgKind::text>(2219), true};

/// Parallel resistors and the voltage that they end at.
struct Termination {
    std::array<std::string_view, 2> resistors;
    std::string_view voltage;
};
constexpr std::array<Termination, 2> kTerminations{{
    {{"Rp1_near", "Rp1_far"}, "V_term1"},
    {{"Rp2_near", "Rp2_far"}, "V_term2"},
}};

constexpr std::array<std::string_view, 3> kDifferentialOnly{"R_diff_near", "R_diff_far", kReceiverInv};

/// Types that a load may end at; a model without a type has been reported.
constexpr ModelTypeSet kReceivers =
    kReceivingTypes.with({ModelType::terminator, ModelType::notGiven, ModelType::noType});

constexpr std::size_t placeOf(std::string_view name) { return rowPlace(kRows, name, &LoadRow::name); }

bool has(const TestLoad& load, std::string_view name) {
    const auto given = [&load](auto field) {
        const auto& value = load.*field;
        using Value = std::remove_cvref_t<decltype(value)>;
        if constexpr (std::is_same_v<Value, std::string>) {
            return !value.empty();
        } else if constexpr (std::is_same_v<Value, TestType>) {
            return value != TestType::notGiven;
        } else {
            return value.has_value();
        }
    };
    return std::visit(given, kRows[placeOf(name)].field);
}

/// True when a line for it was there; one that was refused has been reported.
bool hasLine(const TestLoad& load, std::string_view name) { return has(load, name) || load.refused.has(placeOf(name)); }

bool readInto(Run& run, const LoadRow& row, std::string_view, std::string_view rest, TestType& type) {
    return readTestType(run, rest, row.name, kWordMessages, type);
}

bool readInto(Run& run, const LoadRow& row, std::string_view line, std::string_view, std::optional<double>& value) {
    if (!readValueLine(run, line, kValueMessages, {row.name, kKeyword, row.name}, value)) return false;
    const bool below = row.bound == Bound::aboveZero ? *value <= 0.0 : *value < 0.0;
    if (row.bound != Bound::none && below) errorAtLine(run.diagnostics, 2227, row.name);
    return true;
}

bool readInto(Run& run, const LoadRow& row, std::string_view, std::string_view rest, std::optional<Rng>& range) {
    return readRangeLine(run, rest, row.name, kRangeRules, range);
}

bool readInto(Run& run, const LoadRow& row, std::string_view, std::string_view rest, std::string& name) {
    return readReferredName(run, rest, row.name, kWordMessages, name);
}

void dataLine(Run& run, TestLoad& load, std::string_view text) {
    std::string_view rest = text;
    const LoadRow* const row = takeSubparameter(run, kRows, rest, 2210);
    if (row == nullptr) return;
    if (has(load, row->name)) {
        errorAtLine(run.diagnostics, 2211, row->name, load.name);
        return;
    }
    if (std::visit([&](auto field) { return readInto(run, *row, text, rest, load.*field); }, row->field)) {
        load.refused.remove(placeOf(row->name));
    } else {
        load.refused.add(placeOf(row->name));
    }
}

void closeTestLoad(Run& run, const TestLoad& load) {
    Diagnostics& diagnostics = run.diagnostics;
    if (!hasLine(load, kTypeName)) error(diagnostics, 2222, load.name);
    const auto alone = [&load](std::string_view one, std::string_view other) {
        return has(load, one) && !hasLine(load, other);
    };
    if (alone("Td", "Zo") || alone("Zo", "Td")) warning(diagnostics, 2223, load.name);
    for (const Termination& termination : kTerminations) {
        if (hasLine(load, termination.voltage)) continue;
        const auto* const given =
            std::ranges::find_if(termination.resistors, [&load](std::string_view name) { return has(load, name); });
        if (given != termination.resistors.end()) {
            warning(diagnostics, 2224, load.name, *given, termination.voltage);
        }
    }
    for (const std::string_view name : kDifferentialOnly) {
        if (load.type == TestType::singleEnded && has(load, name)) error(diagnostics, 2225, load.name, name);
    }
    if (has(load, kReceiverInv) && !hasLine(load, kReceiver)) warning(diagnostics, 2226, load.name);
}

/// Looks up a receiver; a name that was reported at its line is not missed again.
void checkReceiver(Run& run, const Ibis& root, const TestLoad& load, std::string_view subparameter,
                   const std::string& name) {
    if (name.empty()) return;
    const Mdl* const model = root.models.find(name);
    if (model == nullptr) {
        if (!load.refused.has(placeOf(subparameter))) error(run.diagnostics, 2228, name, load.name);
        return;
    }
    if (!kReceivers.has(model->model_type)) warning(run.diagnostics, 2229, name, load.name);
}

} // namespace

void openTestLoad(Run& run) {
    Ibis* const root = currentRoot(run);
    if (root == nullptr) {
        const SourceMark mark = here();
        programBug(run.diagnostics, 2201, mark.file, mark.line);
        return;
    }
    run.testload.current = &root->test_loads.add(std::make_unique<TestLoad>());
}

void testLoadKeywordSeen(Run& run) {
    if (run.testload.current == nullptr) return;
    closeTestLoad(run, *run.testload.current);
    run.testload.current = nullptr;
}

void testLoadLine(Run& run, const Line& line) {
    TestLoad* const load = run.testload.current;
    if (line.kind == LineKind::keyword) {
        if (load == nullptr) {
            errorAtLine(run.diagnostics, 2202);
        } else {
            nameBlock(run, currentRoot(run)->test_loads, *load, line.text, kKeyword, kNameMessages);
        }
    } else if (load == nullptr) {
        errorAtLine(run.diagnostics, 2203);
    } else {
        dataLine(run, *load, line.text);
    }
}

void checkTestLoads(Run& run) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr) return;
    for (const TestLoad& load : root->test_loads.newestFirst()) {
        checkReceiver(run, *root, load, kReceiver, load.receiver_model);
        // A model that receives both sides is reported once.
        if (load.receiver_model_inv != load.receiver_model) {
            checkReceiver(run, *root, load, kReceiverInv, load.receiver_model_inv);
        }
        // Of loads of one name, which has been reported, only the newest can be used.
        if (load.used || root->test_loads.find(load.name) != &load) continue;
        warning(run.diagnostics, 2230, load.name);
    }
}

} // namespace kestrel
