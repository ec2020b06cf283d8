#pragma once

#include "component/cmpntemi.hpp"
#include "reader/block.hpp"

#include <cstdint>

namespace kestrel {

struct Run;
struct Mdl;

/// "Model_emi_type".
enum class EmiType : std::uint8_t { notGiven, ferrite, notFerrite };

/// What "[Begin EMI Model]" gives.
struct MdlEmi {
    EmiType type = EmiType::notGiven;
    EmiDomain domain = EmiDomain::notGiven; ///< digital or analog; not given: the component's
};

/// "[Begin EMI Model]" to its end. Reports 4801 to 4807.
extern const Block<Mdl> kEmiModel;

/// Once the model is read: a ferrite is a series model (4808, no line).
void checkMdlEmi(Run& run, const Mdl& model);

} // namespace kestrel
