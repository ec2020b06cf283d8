#pragma once

#include "compare/change.hpp"
#include "report/html.hpp"

#include <cstdint>

namespace kestrel {

/// The sections of a pair's part.
enum class ComparedSection : std::uint8_t { changes = 1, models, submodels };
[[nodiscard]] constexpr Anchor anchorOf(std::uint32_t pair, ComparedSection section) {
    return {'h', pair, static_cast<std::uint32_t>(section)};
}

/// Where records are that changed: by the order in which the changes have them, counted from 1.
[[nodiscard]] constexpr Anchor anchorOfModel(std::uint32_t pair, std::size_t place) {
    return {'m', pair, static_cast<std::uint32_t>(place + 1)};
}
[[nodiscard]] constexpr Anchor anchorOfSubmodel(std::uint32_t pair, std::size_t place) {
    return {'u', pair, static_cast<std::uint32_t>(place + 1)};
}

/// Write the models and the submodels of a pair: those that changed with their changes and the curves of both files,
/// those that one file has only with its curves, the others by their names. Nothing where neither file has any.
void writeComparedModels(Html& html, std::uint32_t pair, const FileChanges& changes);
void writeComparedSubmodels(Html& html, std::uint32_t pair, const FileChanges& changes);

} // namespace kestrel
