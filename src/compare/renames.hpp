#pragma once

#include "compare/settings.hpp"

#include <utility>
#include <vector>

namespace kestrel {

struct Mdl;

/// Models that have only another name: of `gone`, the models of OLD whose names NEW lacks, and `fresh`, those of NEW
/// whose names OLD lacks, the pairs of one type with the same tables. Of several that fit the one with the fewest
/// other changes is taken; where very many may fit only those are tried that are nearest by their largest values.
[[nodiscard]] std::vector<std::pair<const Mdl*, const Mdl*>> findRenamed(const std::vector<const Mdl*>& gone,
                                                                         const std::vector<const Mdl*>& fresh,
                                                                         const CompareSettings& settings);

} // namespace kestrel
