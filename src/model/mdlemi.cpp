#include "model/mdlemi.hpp"

#include "ibis/run.hpp"

#include <array>
#include <memory>
#include <span>
#include <variant>

namespace kestrel {

namespace {

constexpr std::string_view kBegin = "Begin_EMI_Model";
constexpr std::string_view kEnd = "End_EMI_Model";

using TypeField = EmiType MdlEmi::*;
using DomainField = EmiDomain MdlEmi::*;

/// A subparameter by its spelling; its field tells what its word is.
struct EmiRow {
    std::string_view name;
    std::variant<TypeField, DomainField> field;
};

constexpr std::array<EmiRow, 2> kRows{{{"Model_emi_type", &MdlEmi::type}, {"Model_Domain", &MdlEmi::domain}}};

constexpr std::array<EnumerationRow<EmiType>, 2> kTypes{
    {{"Ferrite", EmiType::ferrite}, {"Not_a_ferrite", EmiType::notFerrite}}};
constexpr auto kDomains = std::span(kEmiDomains).first<2>();

constexpr WordLineMessages kWordMessages{std::nullopt, 4802};
constexpr EnumerationMessages kEnumerationMessages{4805, 4806};

/// Reads a line of which `rest` follows the name.
template <class Rows>
void readWord(Run& run, const Rows& rows, const Mdl& model, std::string_view name, std::string_view rest,
              CodeOf<Rows>& value) {
    using Code = CodeOf<Rows>;
    if (value != Code::notGiven) {
        errorAtLine(run.diagnostics, 4804, name, model.name);
        return;
    }
    const std::optional<std::string_view> word = readWordLine(run, rest, name, kWordMessages);
    value =
        readEnumeration(run.diagnostics, rows, name, word.value_or(""), kEnumerationMessages).value_or(Code::notGiven);
}

void open(Run& run, Mdl& model, std::string_view text) {
    if (model.emi_model) {
        errorAtLine(run.diagnostics, 4801);
    } else {
        model.emi_model = std::make_unique<MdlEmi>();
    }
    expectNoText(run, text, kBegin, 4802);
}

void line(Run& run, Mdl& model, std::string_view text) {
    const EmiRow* const row = takeSubparameter(run, kRows, text, 4803);
    if (row == nullptr) return;
    MdlEmi& emi = *model.emi_model;
    if (const auto* const type = std::get_if<TypeField>(&row->field)) {
        readWord(run, kTypes, model, row->name, text, emi.**type);
    } else {
        readWord(run, kDomains, model, row->name, text, emi.*std::get<DomainField>(row->field));
    }
}

void reportNoMatch(Run& run) { errorAtLine(run.diagnostics, 4807); }

} // namespace

const Block<Mdl> kEmiModel{
    .begin = KeywordCode::beginEmiModel,
    .end = KeywordCode::endEmiModel,
    .end_name = kEnd,
    .open = open,
    .line = line,
    .close = [](Run& /*run*/, Mdl& /*model*/) {}, // what it gives is judged with the model
    .text_behind_end = [](Run& run, std::string_view text) { expectNoText(run, text, kEnd, 4802); },
    .not_ended = reportNoMatch,
    .no_begin = reportNoMatch,
};

void checkMdlEmi(Run& run, const Mdl& model) {
    if (!model.emi_model || model.emi_model->type != EmiType::ferrite) return;
    if (model.model_type <= ModelType::noType || isSeries(model)) return;
    warning(run.diagnostics, 4808, model.name, modelTypeText(model.model_type));
}

} // namespace kestrel
