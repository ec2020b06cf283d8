#include "model/mdl_parts.hpp"
#include "reader/subparameters.hpp"

namespace kestrel {

namespace {

using PlainMessage = CheckedMessage<>;
using Row = Subparameter<MdlValues, ModelType, Polarity, EnableMode>;
using Gate = bool (*)(Context& context, const MdlValues& values);

/// Admits a subparameter to models of these types; to the others it is a warning that names the type.
template <const ModelTypeSet& Types, CheckedMessage<ArgKind::text> Refusal>
bool ofType(Context& context, const MdlValues& values) {
    if (Types.has(values.model_type)) return true;
    warningAtLine(context.diagnostics, Refusal, modelTypeText(values.model_type));
    return false;
}

/// The same, but nothing is said before the type is given.
template <const ModelTypeSet& Types, CheckedMessage<ArgKind::text> Refusal>
bool ofGivenType(Context& context, const MdlValues& values) {
    return values.model_type != ModelType::notGiven && ofType<Types, Refusal>(context, values);
}

/// Admits a subparameter to files of class 4 and later.
template <CheckedMessage<> Refusal> bool fromClass4(Context& context, const MdlValues& /*values*/) {
    if (context.parse.version >= IbisVersion::v4) return true;
    errorAtLine(context.diagnostics, Refusal);
    return false;
}

template <Gate First, Gate Second> bool both(Context& context, const MdlValues& values) {
    return First(context, values) && Second(context, values);
}

constexpr Row gated(std::string_view name, const Row::Field& field, Gate gate) {
    return {name, field, Bound::none, IbisVersion::none, gate};
}

constexpr ModelTypeSet kTestLoadTypes = kNoTestLoadTypes.others();

constexpr auto kSubparameters = subparameters<Row>(
    {
        {"Model_type", WordField<MdlValues, ModelType>{&MdlValues::model_type, modelTypes}},
        {"Polarity", wordOf<kPolarities>(&MdlValues::polarity)},
        {"Enable", wordOf<kEnableModes>(&MdlValues::enable)},
        gated("Vinl", &MdlValues::vinl, ofGivenType<kInputTypes, 159>),
        gated("Vinh", &MdlValues::vinh, ofGivenType<kInputTypes, 161>),
        gated("Vmeas", &MdlValues::vmeas, ofType<kTestLoadTypes, 166>),
        gated("Cref", &MdlValues::cref, ofType<kTestLoadTypes, 167>),
        gated("Rref", &MdlValues::rref, ofType<kTestLoadTypes, 168>),
        gated("Vref", &MdlValues::vref, ofType<kTestLoadTypes, 169>),
        gated("Rref_diff", &MdlValues::rref_diff, both<fromClass4<164>, ofType<kDiffLoadTypes, 165>>),
        gated("Cref_diff", &MdlValues::cref_diff, both<fromClass4<162>, ofType<kDiffLoadTypes, 163>>),
        {"C_comp", &MdlValues::c_comp},
        gated("C_comp_pullup", &MdlValues::c_comp_pullup, fromClass4<170>),
        gated("C_comp_pulldown", &MdlValues::c_comp_pulldown, fromClass4<171>),
        gated("C_comp_power_clamp", &MdlValues::c_comp_power_clamp, fromClass4<172>),
        gated("C_comp_gnd_clamp", &MdlValues::c_comp_gnd_clamp, fromClass4<173>),
    },
    {
        .unknown = CheckedMessage<>(174),
        .repeated = 119,
        .value = ValueLineMessages{176, 137, 149, std::nullopt, ValueGiven::whenAccepted},
        .range = kModelRangeRules,
        .word = WordMessages{SettingMessages{175, 176, 137}, {136, 158}},
    });

/// True when both are numbers and the first is the smaller.
bool isBelow(const Cell& a, const Cell& b) { return a.isNumber() && b.isNumber() && a.value() < b.value(); }

void checkCornerOrder(Context& context, const Mdl& model, std::string_view name, const Rng& range) {
    if (isBelow(range.typ(), range.min()) || isBelow(range.max(), range.min())) {
        warningAtLine(context.diagnostics, 177, model.name, name);
    }
    if (isBelow(range.max(), range.typ()) || isBelow(range.max(), range.min())) {
        warningAtLine(context.diagnostics, 179, model.name, name);
    }
}

/// What a keyword says of its corners below zero.
using NegativeMessages = std::array<PlainMessage, kCornerCount>;

/// A keyword whose range stands on its own line.
struct RangeKeyword {
    KeywordCode code;
    std::string_view name;
    MdlRange which;
    bool before_sections = false; ///< belongs ahead of the "[On]" and "[Off]" sections
    std::optional<NegativeMessages> negative;
};

constexpr std::array<RangeKeyword, 13> kRangeKeywords{{
    {KeywordCode::temperatureRange, "Temperature Range", MdlRange::temperatureRange, true, {}},
    {KeywordCode::voltageRange, "Voltage Range", MdlRange::voltageRange, true, {}},
    {KeywordCode::pullupReference, "Pullup Reference", MdlRange::pullupReference, true, {}},
    {KeywordCode::pulldownReference, "Pulldown Reference", MdlRange::pulldownReference, true, {}},
    {KeywordCode::powerClampReference, "POWER Clamp Reference", MdlRange::powerClampReference, true, {}},
    {KeywordCode::gndClampReference, "GND Clamp Reference", MdlRange::gndClampReference, true, {}},
    {KeywordCode::externalReference, "External Reference", MdlRange::externalReference, false, {}},
    {KeywordCode::rgnd, "Rgnd", MdlRange::rgnd, false, {}},
    {KeywordCode::rpower, "Rpower", MdlRange::rpower, false, {}},
    {KeywordCode::rac, "Rac", MdlRange::rac, false, {}},
    {KeywordCode::cac, "Cac", MdlRange::cac, false, {}},
    {KeywordCode::ttgnd, "TTgnd", MdlRange::ttgnd, false, NegativeMessages{108, 109, 110}},
    {KeywordCode::ttpower, "TTpower", MdlRange::ttpower, false, NegativeMessages{112, 113, 114}},
}};

void reportNegative(Diagnostics& diagnostics, const Rng& range, const NegativeMessages& messages) {
    for (const Corner corner : kCorners) {
        const Cell& cell = range[corner];
        if (cell.isNumber() && cell.value() < 0.0) errorAtLine(diagnostics, messages[placeOf(corner)]);
    }
}

} // namespace

void reportAlreadyDefined(Context& context, const Mdl& model, std::string_view name) {
    errorAtLine(context.diagnostics, 119, name, model.name);
}

void readSubparameter(Context& context, Mdl& model, std::string_view text) {
    MdlValues& values = model.values.made(context.rows);
    const Row* const row = readSubparameter(context, kSubparameters, values, text, model.name);
    if (row == nullptr) return;
    if (const auto* const range = std::get_if<GivenRange MdlValues::*>(&row->field)) {
        checkCornerOrder(context, model, row->name, *(values.**range));
    }
}

void readRangeKeyword(Context& context, Mdl& model, const Line& line) {
    const RangeKeyword& row = *rowOf(kRangeKeywords, line.key, &RangeKeyword::code);
    if (findRange(model, row.which) != nullptr) {
        reportAlreadyDefined(context, model, row.name);
        return;
    }
    const bool sections_begun = model.on_block || model.off_block;
    if (row.before_sections && sections_begun && model.type() == ModelType::seriesSwitch) {
        errorAtLine(context.diagnostics, 204, model.name, row.name);
    }
    GivenRange range;
    if (!readRangeLine(context, line.text, row.name, kModelRangeRules, range)) return;
    context.rows.add(model.ranges, {row.which, *range});
    if (row.negative) reportNegative(context.diagnostics, *range, *row.negative);
}

} // namespace kestrel
