#include "model/mdlemi.hpp"

#include "reader/subparameters.hpp"

namespace kestrel {

namespace {

constexpr std::string_view kBegin = "Begin_EMI_Model";
constexpr std::string_view kEnd = "End_EMI_Model";

constexpr std::array<EnumerationRow<EmiType>, 2> kTypes{
    {{"Ferrite", EmiType::ferrite}, {"Not_a_ferrite", EmiType::notFerrite}}};
constexpr auto kDomains = std::span(kEmiDomains).first<2>();

constexpr auto kEmi = subparameters<Subparameter<MdlEmi, EmiType, EmiDomain>>(
    {
        {"Model_emi_type", wordOf<kTypes>(&MdlEmi::type)},
        {"Model_Domain", wordOf<kDomains>(&MdlEmi::domain)},
    },
    {.unknown = CheckedMessage<>(4803),
     .repeated = 4804,
     .word = WordMessages{WordLineMessages{std::nullopt, 4802}, {4805, 4806}}});

void reportNoMatch(Context& context) { errorAtLine(context.diagnostics, 4807); }

} // namespace

const BlockEnd kMdlEmiEnd{
    .name = kEnd,
    .text_behind = [](Context& context, std::string_view text) { expectNoText(context, text, kEnd, 4802); },
    .not_ended = reportNoMatch,
    .no_begin = reportNoMatch,
};

void openMdlEmi(Context& context, std::unique_ptr<MdlEmi>& slot, std::string_view text) {
    if (slot) {
        errorAtLine(context.diagnostics, 4801);
    } else {
        slot = std::make_unique<MdlEmi>();
    }
    expectNoText(context, text, kBegin, 4802);
}

void mdlEmiLine(Context& context, MdlEmi& emi, std::string_view text, std::string_view model) {
    readSubparameter(context, kEmi, emi, text, model);
}

void checkMdlEmi(Context& context, const MdlEmi& emi, std::string_view model, ModelType type) {
    if (emi.type != EmiType::ferrite || type <= ModelType::noType || kSeriesTypes.has(type)) return;
    warning(context.diagnostics, 4808, model, modelTypeText(type));
}

} // namespace kestrel
