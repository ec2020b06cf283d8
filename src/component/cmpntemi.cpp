#include "component/cmpntemi.hpp"

#include "reader/line_form.hpp"
#include "reader/subparameters.hpp"

namespace kestrel {

namespace {

constexpr std::string_view kBegin = "Begin_EMI_Component";
constexpr std::string_view kEnd = "End_EMI_Component";
constexpr std::array<KeywordCode, 2> kTables{KeywordCode::pinEmi, KeywordCode::pinDomainEmi};

/// The mixed domain is not spelled the same everywhere, so that another word is no error.
bool readDomain(Context& context, CmpntEmi& emi, const SubparameterLine& line) {
    constexpr WordLineMessages kMessages{CheckedMessage<ArgKind::text>(4715), 4702};
    const std::optional<std::string_view> word = readWordLine(context, line.rest, line.name, kMessages);
    if (!word) return false;
    const auto hit = lookUpEnumeration(kEmiDomains, *word);
    if (hit.row == nullptr) {
        warningAtLine(context.diagnostics, 4706, line.name, *word);
        emi.domain = EmiDomain::other;
    } else if (hit.exact) {
        emi.domain = hit.row->code;
    } else {
        errorAtLine(context.diagnostics, 4705, line.name, *word, hit.row->text);
    }
    return isGiven(emi.domain);
}

constexpr SubparameterMessages kMessages{
    .unknown = CheckedMessage<>(4703),
    .repeated = 4704,
    .value = ValueLineMessages{4707, 4702, 4708, ScaleMessage(4709), ValueGiven::whenRead, TooMany::whenComplete},
    .out_of_bounds = CheckedMessage<ArgKind::text>(4710),
    .group = "EMI Component",
};

/// Reads a value that may be given for all corners, of which the typical one is kept.
bool readCpd(Context& context, CmpntEmi& emi, const SubparameterLine& line) {
    const std::string_view text = withoutEqualsSign(context, line.rest);
    const ItemList items = splitItems(context, text, 1);
    if (items.count < static_cast<int>(kCornerCount)) return readSubparameterValue(context, kMessages, line, emi.cpd);
    Rng range;
    if (!readRange(context, text, line.name, range, OrderCheck::off)) return false;
    if (range.typ().isNumber()) {
        emi.cpd = range.typ().value();
        emi.cpd_range = range;
    } else {
        errorAtLine(context.diagnostics, 4708, line.name, items[0]);
    }
    if (anyBelowZero(range)) errorAtLine(context.diagnostics, 4710, line.name);
    return emi.cpd.has_value();
}

constexpr auto kEmi = subparameters<Subparameter<CmpntEmi>>(
    {
        {"Domain", OwnForm<CmpntEmi>{[](const CmpntEmi& emi) { return isGiven(emi.domain); }, readDomain}},
        {"Cpd", OwnForm<CmpntEmi>{[](const CmpntEmi& emi) { return isGiven(emi.cpd); }, readCpd}, Bound::notBelowZero},
        {"C_Heatsink_gnd", &CmpntEmi::c_heatsink_gnd, Bound::notBelowZero},
        {"C_Heatsink_float", &CmpntEmi::c_heatsink_float, Bound::notBelowZero},
    },
    kMessages);

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
    const auto* const row = readSubparameter(context, kEmi, emi, text, component);
    if (row == nullptr) return;
    const bool heatsink = row->holds(&CmpntEmi::c_heatsink_gnd) || row->holds(&CmpntEmi::c_heatsink_float);
    if (heatsink && emi.c_heatsink_gnd && emi.c_heatsink_float) errorAtLine(context.diagnostics, 4711);
}

void checkCmpntEmi(Context& context, const CmpntEmi& emi, const PinList& pins, std::string_view component) {
    if (!pins.empty()) checkEmiPins(context, emi.pins, pins, component);
    if (emi.pin_domains.columns.seen()) checkEmiDomains(context, emi.pins, emi.pin_domains, component);
}

} // namespace kestrel
