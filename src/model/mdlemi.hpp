#pragma once

#include "model/types.hpp"
#include "reader/emi_domain.hpp"
#include "reader/sections.hpp"

#include <cstdint>
#include <memory>
#include <string_view>

namespace kestrel {

/// "Model_emi_type".
enum class EmiType : std::uint8_t { notGiven, ferrite, notFerrite };

/// What "[Begin EMI Model]" gives.
struct MdlEmi {
    EmiType type = EmiType::notGiven;
    EmiDomain domain = EmiDomain::notGiven; ///< digital or analog; not given: the component's
};

/// Opens the block at its begin keyword; a second one goes on with the first, which is reported.
void openMdlEmi(Context& context, std::unique_ptr<MdlEmi>& slot, std::string_view text);

/// Reads one line of it; `model` is the model's name in messages.
void mdlEmiLine(Context& context, MdlEmi& emi, std::string_view text, std::string_view model);

/// How the block ends.
extern const BlockEnd kMdlEmiEnd;

/// Once the model is read: a ferrite is a series model; no line.
void checkMdlEmi(Context& context, const MdlEmi& emi, std::string_view model, ModelType type);

} // namespace kestrel
