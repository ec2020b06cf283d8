#include "component/cmpntemi.hpp"

#include "ibis/run.hpp"

#include <cstddef>

namespace kestrel {

namespace {

constexpr std::string_view kBegin = "Begin_EMI_Component";
constexpr std::string_view kEnd = "End_EMI_Component";
constexpr std::string_view kRangeName = "Cpd"; ///< may be given for all corners

using ValueField = std::optional<double> CmpntEmi::*;

/// A subparameter by its spelling. One without a value is the domain.
struct EmiRow {
    std::string_view name;
    ValueField value = nullptr;
    ValueField rival = nullptr; ///< may not be given together with it
};

constexpr auto kRows = std::to_array({
    EmiRow{"Domain"},
    EmiRow{kRangeName, &CmpntEmi::cpd},
    EmiRow{"C_Heatsink_gnd", &CmpntEmi::c_heatsink_gnd, &CmpntEmi::c_heatsink_float},
    EmiRow{"C_Heatsink_float", &CmpntEmi::c_heatsink_float, &CmpntEmi::c_heatsink_gnd},
});

constexpr ValueLineMessages kValueMessages{
    4707, 4702, 4708, ScaleMessage(4709), ValueGiven::whenRead, TooMany::whenComplete};
constexpr WordLineMessages kWordMessages{CheckedMessage<ArgKind::text>(4715), 4702};
constexpr std::array<KeywordCode, 2> kTables{KeywordCode::pinEmi, KeywordCode::pinDomainEmi};

bool isGiven(const CmpntEmi& emi, const EmiRow& row) {
    return row.value == nullptr ? emi.domain != EmiDomain::notGiven : (emi.*row.value).has_value();
}

/// The mixed domain is not spelled the same everywhere, so that another word is no error.
void readDomain(Run& run, CmpntEmi& emi, const EmiRow& row, std::string_view rest) {
    const std::optional<std::string_view> word = readWordLine(run, rest, row.name, kWordMessages);
    if (!word) return;
    const auto hit = lookUpEnumeration(kEmiDomains, *word);
    if (hit.row == nullptr) {
        warningAtLine(run.diagnostics, 4706, row.name, *word);
        emi.domain = EmiDomain::other;
    } else if (hit.exact) {
        emi.domain = hit.row->code;
    } else {
        errorAtLine(run.diagnostics, 4705, row.name, *word, hit.row->text);
    }
}

/// What stands behind the name and its "=", when that is enough for a range.
std::optional<std::string_view> rangeText(const Run& run, const EmiRow& row, std::string_view rest) {
    constexpr int kCorners = 3;
    if (row.name != kRangeName) return std::nullopt;
    const std::string_view text = withoutEqualsSign(run, rest);
    if (splitItems(run, text, 0).count < kCorners) return std::nullopt;
    return text;
}

/// Reads a range, of which the typical value is kept.
void readCorners(Run& run, std::string_view text, std::string_view name, std::optional<double>& value) {
    Rng range;
    if (!readRange(run, text, name, range, OrderCheck::off)) return;
    if (range.typ().isNumber()) {
        value = range.typ().value;
    } else {
        errorAtLine(run.diagnostics, 4708, name, splitItems(run, text, 1)[0]);
    }
    if (anyBelowZero(range)) errorAtLine(run.diagnostics, 4710, name);
}

void readValue(Run& run, CmpntEmi& emi, const EmiRow& row, std::string_view text, std::string_view rest) {
    std::optional<double>& value = emi.*row.value;
    if (const auto corners = rangeText(run, row, rest)) {
        readCorners(run, *corners, row.name, value);
    } else if (readValueLine(run, text, kValueMessages, {row.name, "EMI Component", row.name}, value) && *value < 0.0) {
        errorAtLine(run.diagnostics, 4710, row.name);
    }
    if (value && row.rival != nullptr && emi.*row.rival) errorAtLine(run.diagnostics, 4711);
}

void open(Run& run, Cmpnt& component, std::string_view text) {
    if (component.emi) {
        errorAtLine(run.diagnostics, 4701);
    } else {
        component.emi.emplace();
    }
    expectNoText(run, text, kBegin, 4702);
}

void line(Run& run, Cmpnt& component, std::string_view text) {
    std::string_view rest = text;
    const EmiRow* const row = takeSubparameter(run, kRows, rest, 4703);
    if (row == nullptr) return;
    CmpntEmi& emi = *component.emi;
    if (isGiven(emi, *row)) {
        errorAtLine(run.diagnostics, 4704, row->name, component.name);
    } else if (row->value == nullptr) {
        readDomain(run, emi, *row, rest);
    } else {
        readValue(run, emi, *row, text, rest);
    }
}

} // namespace

const Block<Cmpnt> kEmiComponent{
    .begin = KeywordCode::beginEmiComponent,
    .end = KeywordCode::endEmiComponent,
    .end_name = kEnd,
    .open = open,
    .line = line,
    .close = checkDomainPercentages,
    .text_behind_end = [](Run& run, std::string_view text) { expectNoText(run, text, kEnd, 4702); },
    .not_ended = [](Run& run) { errorAtLine(run.diagnostics, 4712, kBegin, kEnd); },
    .no_begin = [](Run& run) { errorAtLine(run.diagnostics, 4713, kEnd, kBegin); },
    .inner = kTables,
};

} // namespace kestrel
