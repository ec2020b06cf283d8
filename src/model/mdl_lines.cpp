#include "ibis/run.hpp"
#include "model/mdl_parts.hpp"

#include <algorithm>
#include <type_traits>
#include <variant>

namespace kestrel {

namespace {

using PlainMessage = CheckedMessage<>;

constexpr ValueLineMessages kValueMessages{176, 137, 149, std::nullopt, ValueGiven::whenAccepted};
constexpr SettingMessages kSettingMessages{175, 176, 137};
constexpr EnumerationMessages kEnumerationMessages{136, 158};

/// Which types a subparameter is for; to the others it is a warning that names the type.
struct TypeGate {
    ModelTypeSet admitted;
    CheckedMessage<ArgKind::text> refusal;
    bool silent_without_type = false; ///< nothing is said before the type is given
};

/// Where a subparameter is stored, which tells how its line is written.
using Field =
    std::variant<ModelType Mdl::*, Polarity Mdl::*, EnableMode Mdl::*, GivenValue Mdl::*, std::optional<Rng> Mdl::*>;

struct Subparameter {
    std::string_view name;
    Field field;
    std::optional<PlainMessage> from_class_4; ///< what older files are told
    std::optional<TypeGate> gate;
};

constexpr ModelTypeSet kTestLoadTypes = kNoTestLoadTypes.others();

constexpr std::array<Subparameter, 16> kSubparameters{{
    {"Model_type", &Mdl::model_type, {}, {}},
    {"Polarity", &Mdl::polarity, {}, {}},
    {"Enable", &Mdl::enable, {}, {}},
    {"Vinl", &Mdl::vinl, {}, TypeGate{kInputTypes, 159, true}},
    {"Vinh", &Mdl::vinh, {}, TypeGate{kInputTypes, 161, true}},
    {"Vmeas", &Mdl::vmeas, {}, TypeGate{kTestLoadTypes, 166}},
    {"Cref", &Mdl::cref, {}, TypeGate{kTestLoadTypes, 167}},
    {"Rref", &Mdl::rref, {}, TypeGate{kTestLoadTypes, 168}},
    {"Vref", &Mdl::vref, {}, TypeGate{kTestLoadTypes, 169}},
    {"Rref_diff", &Mdl::rref_diff, PlainMessage(164), TypeGate{kDiffLoadTypes, 165}},
    {"Cref_diff", &Mdl::cref_diff, PlainMessage(162), TypeGate{kDiffLoadTypes, 163}},
    {"C_comp", &Mdl::c_comp, {}, {}},
    {"C_comp_pullup", &Mdl::c_comp_pullup, PlainMessage(170), {}},
    {"C_comp_pulldown", &Mdl::c_comp_pulldown, PlainMessage(171), {}},
    {"C_comp_power_clamp", &Mdl::c_comp_power_clamp, PlainMessage(172), {}},
    {"C_comp_gnd_clamp", &Mdl::c_comp_gnd_clamp, PlainMessage(173), {}},
}};

/// A subparameter line: the name, the whole line and what follows the name.
struct SubparameterLine {
    std::string_view name;
    std::string_view text;
    std::string_view rest;
};

/// True when the model's type admits the subparameter.
bool admits(Run& run, const Mdl& model, const TypeGate& gate) {
    if (gate.admitted.has(model.model_type)) return true;
    if (model.model_type != ModelType::notGiven || !gate.silent_without_type) {
        warningAtLine(run.diagnostics, gate.refusal, modelTypeText(model.model_type));
    }
    return false;
}

/// Reads a setting by its table; a line that gives none still counts as the one line that the model may have.
template <EnumerationTable Rows>
void readEnumerated(Run& run, const SubparameterLine& line, const Rows& rows, CodeOf<Rows>& field) {
    constexpr CodeOf<Rows> kNone{1};
    field = kNone;
    const std::optional<std::string_view> setting = readSetting(run, line.text, line.name, kSettingMessages);
    if (!setting) return;
    field = readEnumeration(run.diagnostics, rows, line.name, *setting, kEnumerationMessages).value_or(kNone);
}

/// True when both are numbers and the first is the smaller.
bool isBelow(const Cell& a, const Cell& b) { return a.isNumber() && b.isNumber() && a.value < b.value; }

void checkCornerOrder(Run& run, const Mdl& model, std::string_view name, const Rng& range) {
    if (isBelow(range.typ(), range.min()) || isBelow(range.max(), range.min())) {
        warningAtLine(run.diagnostics, 177, model.name, name);
    }
    if (isBelow(range.max(), range.typ()) || isBelow(range.max(), range.min())) {
        warningAtLine(run.diagnostics, 179, model.name, name);
    }
}

template <class Code>
requires std::is_enum_v<Code>
bool isGiven(Code field) { return field != Code{}; }
template <class Value> bool isGiven(const std::optional<Value>& field) { return field.has_value(); }

void readInto(Run& run, const Mdl&, const SubparameterLine& line, ModelType& field) {
    readEnumerated(run, line, modelTypes(run.parse.version), field);
}

void readInto(Run& run, const Mdl&, const SubparameterLine& line, Polarity& field) {
    readEnumerated(run, line, kPolarities, field);
}

void readInto(Run& run, const Mdl&, const SubparameterLine& line, EnableMode& field) {
    readEnumerated(run, line, kEnableModes, field);
}

void readInto(Run& run, const Mdl&, const SubparameterLine& line, GivenValue& field) {
    readValueLine(run, line.text, kValueMessages, {line.name, line.name, line.name}, field);
}

void readInto(Run& run, const Mdl& model, const SubparameterLine& line, std::optional<Rng>& field) {
    readRangeLine(run, line.rest, line.name, kModelRangeRules, field);
    if (field) checkCornerOrder(run, model, line.name, *field);
}

/// What a keyword says of its corners below zero.
using NegativeMessages = std::array<PlainMessage, kCornerCount>;

/// A keyword whose range stands on its own line.
struct RangeKeyword {
    KeywordCode code;
    std::string_view name;
    std::optional<Rng> Mdl::*field;
    bool before_sections = false; ///< belongs ahead of the "[On]" and "[Off]" sections
    std::optional<NegativeMessages> negative;
};

constexpr std::array<RangeKeyword, 13> kRangeKeywords{{
    {KeywordCode::temperatureRange, "Temperature Range", &Mdl::temperature_range, true, {}},
    {KeywordCode::voltageRange, "Voltage Range", &Mdl::voltage_range, true, {}},
    {KeywordCode::pullupReference, "Pullup Reference", &Mdl::pullup_reference, true, {}},
    {KeywordCode::pulldownReference, "Pulldown Reference", &Mdl::pulldown_reference, true, {}},
    {KeywordCode::powerClampReference, "POWER Clamp Reference", &Mdl::power_clamp_reference, true, {}},
    {KeywordCode::gndClampReference, "GND Clamp Reference", &Mdl::gnd_clamp_reference, true, {}},
    {KeywordCode::externalReference, "External Reference", &Mdl::external_reference, false, {}},
    {KeywordCode::rgnd, "Rgnd", &Mdl::rgnd, false, {}},
    {KeywordCode::rpower, "Rpower", &Mdl::rpower, false, {}},
    {KeywordCode::rac, "Rac", &Mdl::rac, false, {}},
    {KeywordCode::cac, "Cac", &Mdl::cac, false, {}},
    {KeywordCode::ttgnd, "TTgnd", &Mdl::ttgnd, false, NegativeMessages{108, 109, 110}},
    {KeywordCode::ttpower, "TTpower", &Mdl::ttpower, false, NegativeMessages{112, 113, 114}},
}};

void reportNegative(Diagnostics& diagnostics, const Rng& range, const NegativeMessages& messages) {
    for (const Corner corner : kCorners) {
        const Cell& cell = range[corner];
        if (cell.isNumber() && cell.value < 0.0) errorAtLine(diagnostics, messages[placeOf(corner)]);
    }
}

} // namespace

void reportAlreadyDefined(Run& run, const Mdl& model, std::string_view name) {
    errorAtLine(run.diagnostics, 119, name, model.name);
}

void readSubparameter(Run& run, Mdl& model, std::string_view text) {
    std::string_view rest = text;
    const Subparameter* const row = takeSubparameter(run, kSubparameters, rest, 174);
    if (row == nullptr) return;
    if (row->from_class_4 && run.parse.version < IbisVersion::v4) {
        errorAtLine(run.diagnostics, *row->from_class_4);
        return;
    }
    if (row->gate && !admits(run, model, *row->gate)) return;
    const auto read = [&](auto field) {
        if (isGiven(model.*field)) {
            reportAlreadyDefined(run, model, row->name);
        } else {
            readInto(run, model, {row->name, text, rest}, model.*field);
        }
    };
    std::visit(read, row->field);
}

void readRangeKeyword(Run& run, Mdl& model, const Line& line) {
    const RangeKeyword& row = *std::ranges::find(kRangeKeywords, line.key, &RangeKeyword::code);
    std::optional<Rng>& field = model.*row.field;
    if (field) {
        reportAlreadyDefined(run, model, row.name);
        return;
    }
    const bool sections_begun = model.on_block || model.off_block;
    if (row.before_sections && sections_begun && model.model_type == ModelType::seriesSwitch) {
        errorAtLine(run.diagnostics, 204, model.name, row.name);
    }
    readRangeLine(run, line.text, row.name, kModelRangeRules, field);
    if (field && row.negative) reportNegative(run.diagnostics, *field, *row.negative);
}

} // namespace kestrel
