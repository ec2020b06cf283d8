#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestrel {

/// The lines of a file at which the rows of a table are. Rows on lines that follow each other take no room.
class RowLines {
public:
    /// Tells the line of a row, whose place is behind those that were told.
    void add(std::size_t place, std::uint32_t line) {
        if (runs_.empty() || line - runs_.back().line != place - runs_.back().place) runs_.push_back({place, line});
    }

    /// The line of a row; 0 of one ahead of all that were told.
    [[nodiscard]] std::uint32_t of(std::size_t place) const {
        const auto behind = std::ranges::upper_bound(runs_, place, {}, &Run::place);
        if (behind == runs_.begin()) return 0;
        const Run& run = *std::prev(behind);
        return run.line + static_cast<std::uint32_t>(place - run.place);
    }

private:
    /// Rows of which each is one line behind the one before it.
    struct Run {
        std::size_t place; ///< of the first
        std::uint32_t line;
    };

    std::vector<Run> runs_;
};

} // namespace kestrel
