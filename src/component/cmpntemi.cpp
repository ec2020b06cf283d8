#include "component/cmpntemi.hpp"

#include "ibis/run.hpp"
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
    if (items.count < static_cast<int>(kCornerCount)) {
        return readSubparameterValue(context, kMessages, line, emi.cpd);
    }
    Rng range;
    if (!readRange(context, text, line.name, range, OrderCheck::off)) return false;
    if (range.typ().isNumber()) {
        emi.cpd = range.typ().value;
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

void open(Run& run, Cmpnt& component, std::string_view text) {
    if (component.emi) {
        errorAtLine(run.diagnostics, 4701);
    } else {
        component.emi.emplace();
    }
    expectNoText(run, text, kBegin, 4702);
}

void line(Run& run, Cmpnt& component, std::string_view text) {
    CmpntEmi& emi = *component.emi;
    const auto* const row = readSubparameter(run, kEmi, emi, text, component.name);
    if (row == nullptr) return;
    const bool heatsink = row->holds(&CmpntEmi::c_heatsink_gnd) || row->holds(&CmpntEmi::c_heatsink_float);
    if (heatsink && emi.c_heatsink_gnd && emi.c_heatsink_float) errorAtLine(run.diagnostics, 4711);
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
