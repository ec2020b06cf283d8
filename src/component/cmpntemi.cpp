#include "component/cmpntemi.hpp"

#include "reader/line_form.hpp"

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
void readDomain(Context& context, CmpntEmi& emi, const EmiRow& row, std::string_view rest) {
    const std::optional<std::string_view> word = readWordLine(context, rest, row.name, kWordMessages);
    if (!word) return;
    const auto hit = lookUpEnumeration(kEmiDomains, *word);
    if (hit.row == nullptr) {
        warningAtLine(context.diagnostics, 4706, row.name, *word);
        emi.domain = EmiDomain::other;
    } else if (hit.exact) {
        emi.domain = hit.row->code;
    } else {
        errorAtLine(context.diagnostics, 4705, row.name, *word, hit.row->text);
    }
}

/// What stands behind the name and its "=", when that is enough for a range.
std::optional<std::string_view> rangeText(const Context& context, const EmiRow& row, std::string_view rest) {
    constexpr int kCorners = 3;
    if (row.name != kRangeName) return std::nullopt;
    const std::string_view text = withoutEqualsSign(context, rest);
    if (splitItems(context, text, 0).count < kCorners) return std::nullopt;
    return text;
}

/// Reads a range, of which the typical value is kept.
void readCorners(Context& context, std::string_view text, std::string_view name, std::optional<double>& value) {
    Rng range;
    if (!readRange(context, text, name, range, OrderCheck::off)) return;
    if (range.typ.isNumber()) {
        value = range.typ.value;
    } else {
        errorAtLine(context.diagnostics, 4708, name, splitItems(context, text, 1)[0]);
    }
    if (anyBelowZero(range)) errorAtLine(context.diagnostics, 4710, name);
}

void readValue(Context& context, CmpntEmi& emi, const EmiRow& row, std::string_view text, std::string_view rest) {
    std::optional<double>& value = emi.*row.value;
    if (const auto corners = rangeText(context, row, rest)) {
        readCorners(context, *corners, row.name, value);
    } else if (readValueLine(context, text, kValueMessages, {row.name, "EMI Component", row.name}, value) &&
               *value < 0.0) {
        errorAtLine(context.diagnostics, 4710, row.name);
    }
    if (value && row.rival != nullptr && emi.*row.rival) errorAtLine(context.diagnostics, 4711);
}

} // namespace

const BlockEnd kCmpntEmiEnd{
    .name = kEnd,
    .text_behind = [](Context& context, std::string_view text) { expectNoText(context, text, kEnd, 4702); },
    .not_ended = [](Context& context) { errorAtLine(context.diagnostics, 4712, kBegin, kEnd); },
    .no_begin = [](Context& context) { errorAtLine(context.diagnostics, 4713, kEnd, kBegin); },
    .inner = kTables,
};

void openCmpntEmi(Context& context, std::unique_ptr<CmpntEmi>& emi, std::string_view text) {
    if (emi != nullptr) {
        errorAtLine(context.diagnostics, 4701);
    } else {
        emi = std::make_unique<CmpntEmi>();
    }
    expectNoText(context, text, kBegin, 4702);
}

void cmpntEmiLine(Context& context, CmpntEmi& emi, std::string_view component, std::string_view text) {
    std::string_view rest = text;
    const EmiRow* const row = takeSubparameter(context, kRows, rest, 4703);
    if (row == nullptr) return;
    if (isGiven(emi, *row)) {
        errorAtLine(context.diagnostics, 4704, row->name, component);
    } else if (row->value == nullptr) {
        readDomain(context, emi, *row, rest);
    } else {
        readValue(context, emi, *row, text, rest);
    }
}

void checkCmpntEmi(Context& context, const CmpntEmi& emi, const PinList& pins, std::string_view component) {
    if (!pins.empty()) checkEmiPins(context, emi.pins, pins, component);
    if (emi.pin_domains.columns.seen()) checkEmiDomains(context, emi.pins, emi.pin_domains, component);
}

} // namespace kestrel
