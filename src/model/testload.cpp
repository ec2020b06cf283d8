#include "model/testload.hpp"

#include "reader/record_name.hpp"
#include "reader/subparameters.hpp"

namespace kestrel {

namespace {

constexpr std::string_view kKeyword = "Test Load";
constexpr RecordNameRules kName{kKeyword, CheckedMessage<>(2205), 2206, 2207, 2208, 2209};

constexpr auto kLoad = subparameters<Subparameter<TestLoad, TestType>>(
    {
        {"Test_load_type", wordOf<kTestTypes>(&TestLoad::type)},
        {"C1_near", &TestLoad::c1_near, Bound::notBelowZero},
        {"C2_near", &TestLoad::c2_near, Bound::notBelowZero},
        {"C1_far", &TestLoad::c1_far, Bound::notBelowZero},
        {"C2_far", &TestLoad::c2_far, Bound::notBelowZero},
        {"Rs_near", &TestLoad::rs_near, Bound::notBelowZero},
        {"Rs_far", &TestLoad::rs_far, Bound::notBelowZero},
        {"Rp1_near", &TestLoad::rp1_near, Bound::notBelowZero},
        {"Rp2_near", &TestLoad::rp2_near, Bound::notBelowZero},
        {"Rp1_far", &TestLoad::rp1_far, Bound::notBelowZero},
        {"Rp2_far", &TestLoad::rp2_far, Bound::notBelowZero},
        {"Ls_near", &TestLoad::ls_near, Bound::notBelowZero},
        {"Ls_far", &TestLoad::ls_far, Bound::notBelowZero},
        {"Td", &TestLoad::td, Bound::notBelowZero},
        {"Zo", &TestLoad::zo, Bound::aboveZero},
        {"V_term1", &TestLoad::v_term1},
        {"V_term2", &TestLoad::v_term2},
        {"Receiver_model", &TestLoad::receiver_model},
        {"Receiver_model_inv", &TestLoad::receiver_model_inv},
        {"R_diff_near", &TestLoad::r_diff_near},
        {"R_diff_far", &TestLoad::r_diff_far},
    },
    {
        .unknown = CheckedMessage<>(2210),
        .repeated = 2211,
        .value = ValueLineMessages{2213, 2214, 2217, ScaleMessage(2218), ValueGiven::whenRead, TooMany::whenComplete},
        .range = RangeLineRules{CheckedMessage<ArgKind::text>(2219), true},
        .word = WordMessages{WordLineMessages{CheckedMessage<ArgKind::text>(2212), 2214}, {2215, 2216}},
        .name = ReferredNameMessages{2220, 2221},
        .out_of_bounds = CheckedMessage<ArgKind::text>(2227),
        .group = kKeyword,
    });

using Value = GivenValue TestLoad::*;

/// Parallel resistors and the voltage that they end at.
struct Termination {
    std::array<Value, 2> resistors;
    GivenRange TestLoad::*voltage;
};
constexpr std::array<Termination, 2> kTerminations{{
    {{&TestLoad::rp1_near, &TestLoad::rp1_far}, &TestLoad::v_term1},
    {{&TestLoad::rp2_near, &TestLoad::rp2_far}, &TestLoad::v_term2},
}};

void dataLine(Context& context, TestLoad& load, std::string_view text) {
    readSubparameter(context, kLoad, load, text, load.name);
}

void checkDifferentialOnly(Context& context, const TestLoad& load) {
    if (load.type != TestType::singleEnded) return;
    const auto check = [&](auto member) {
        if (isGiven(load.*member)) error(context.diagnostics, 2225, load.name, kLoad.nameOf(member));
    };
    check(&TestLoad::r_diff_near);
    check(&TestLoad::r_diff_far);
    check(&TestLoad::receiver_model_inv);
}

void closeTestLoad(Context& context, RecordState<TestLoad>& /*state*/, TestLoad& load) {
    Diagnostics& diagnostics = context.diagnostics;
    if (!isSeen(kLoad, load, &TestLoad::type)) error(diagnostics, 2222, load.name);
    const auto alone = [&load](Value one, Value other) { return load.*one && !isSeen(kLoad, load, other); };
    if (alone(&TestLoad::td, &TestLoad::zo) || alone(&TestLoad::zo, &TestLoad::td)) {
        warning(diagnostics, 2223, load.name);
    }
    for (const Termination& termination : kTerminations) {
        if (isSeen(kLoad, load, termination.voltage)) continue;
        const auto is_given = [&load](Value resistor) { return isGiven(load.*resistor); };
        const Value* const given = rowOf(termination.resistors, true, is_given);
        if (given == nullptr) continue;
        warning(diagnostics, 2224, load.name, kLoad.nameOf(*given), kLoad.nameOf(termination.voltage));
    }
    checkDifferentialOnly(context, load);
    if (!load.receiver_model_inv.empty() && !isSeen(kLoad, load, &TestLoad::receiver_model)) {
        warning(diagnostics, 2226, load.name);
    }
}

constexpr auto kSections = sectionTable<RecordState<TestLoad>>({
    section<RecordState<TestLoad>, openNamed<kName, RecordState<TestLoad>>, dataLine>(KeywordCode::testLoad),
});

} // namespace

const RecordModule<RecordState<TestLoad>> kTestLoad{
    .opens = KeywordCode::testLoad,
    .find = [](KeywordCode code) { return kSections.find(code); },
    .close = closeTestLoad,
    .orphan = reportOrphan<2202, 2203>,
    .impossible = [](Context&, LineKind) {},
};

bool isRefused(const TestLoad& load, std::string TestLoad::*name) { return load.refused.has(kLoad.placeOf(name)); }

} // namespace kestrel
