#pragma once

#include "diagnostics/diagnostics.hpp"

#include <array>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace kestrel {

/// The messages that a user wants left out.
struct Ignored {
    bool any = false;                                      ///< there are some
    std::set<FindingCode> codes;                           ///< of any class
    std::array<std::set<FindingCode>, kLevels> of_level{}; ///< of one class only

    [[nodiscard]] bool has(const Finding& finding) const;
};

/// Adds a list such as "905,E1104,W921,Q304"; a letter means one class only. The first word that is neither a message
/// of the catalog nor, by `is_advice`, an advice is returned.
[[nodiscard]] std::optional<std::string> ignore(Ignored& ignored, std::string_view list,
                                                bool (*is_advice)(MessageCode code));

} // namespace kestrel
