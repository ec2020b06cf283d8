#pragma once

#include "base/large_memory.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace kestrel {

class RowStore;

/// The rows of one table, next to each other in a RowStore, which has to outlive them. A copy shows the same rows
/// until more are added.
template <class Row> class Rows {
public:
    [[nodiscard]] const Row* begin() const { return first_; }
    [[nodiscard]] const Row* end() const { return first_ + size_; }
    [[nodiscard]] const Row* data() const { return first_; }
    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] const Row& operator[](std::size_t place) const { return first_[place]; }
    [[nodiscard]] const Row& front() const { return first_[0]; }
    [[nodiscard]] const Row& back() const { return first_[size_ - 1]; }
    /// The newest row, to store more of it.
    [[nodiscard]] Row& back() { return first_[size_ - 1]; }

private:
    friend class RowStore;

    Row* first_ = nullptr;
    std::uint32_t size_ = 0;
    std::uint32_t room_ = 0; ///< rows that there is room for
};

/// Keeps the rows of many tables without an allocation and without a gap for each: the table that was added to last
/// grows in place. Rows are only given back together.
class RowStore {
public:
    RowStore() = default;
    RowStore(const RowStore&) = delete;
    RowStore& operator=(const RowStore&) = delete;
    ~RowStore() = default;

    /// Adds a row to the end of its table.
    template <class Row> Row& add(Rows<Row>& rows, Row row) {
        static_assert(std::is_trivially_copyable_v<Row> && std::is_trivially_destructible_v<Row>);
        static_assert(alignof(Row) <= kAlignment);
        if (rows.size_ == rows.room_) makeRoom(rows);
        return *new (rows.first_ + rows.size_++) Row(row);
    }

private:
    static constexpr std::size_t kAlignment = 8;

    struct Piece {
        Memory memory;
        std::size_t size;
    };

    template <class Row> void makeRoom(Rows<Row>& rows) {
        constexpr std::size_t kMost = std::numeric_limits<std::uint32_t>::max();
        const std::size_t room = rows.room_;
        if (room == kMost) throw std::bad_alloc();
        const bool is_last = room != 0 && reinterpret_cast<std::byte*>(rows.first_ + room) == top_;
        if (is_last && left_ >= sizeof(Row)) {
            take(sizeof(Row));
            ++rows.room_;
            return;
        }
        // Rows that are no longer the last ones move and get as much room again, so that they do not move each time.
        const std::size_t new_room = is_last || room == 0 ? room + 1 : std::min(2 * room, kMost);
        const std::size_t old_piece = pieces_.size();
        const bool had_piece = is_last && reinterpret_cast<std::byte*>(rows.first_) == pieces_.back().memory.get();
        align();
        if (left_ < new_room * sizeof(Row)) addPiece(2 * new_room * sizeof(Row));
        auto* const moved = reinterpret_cast<Row*>(top_);
        take(new_room * sizeof(Row));
        if (rows.size_ != 0) std::memcpy(static_cast<void*>(moved), rows.first_, rows.size_ * sizeof(Row));
        if (had_piece) pieces_.erase(pieces_.begin() + static_cast<std::ptrdiff_t>(old_piece) - 1);
        rows.first_ = moved;
        rows.room_ = static_cast<std::uint32_t>(new_room);
    }

    void take(std::size_t size) {
        top_ += size;
        left_ -= size;
    }

    void align() {
        const std::size_t beyond = reinterpret_cast<std::uintptr_t>(top_) % kAlignment;
        if (beyond != 0) take(std::min(kAlignment - beyond, left_));
    }

    /// Pieces grow with what is stored, so that small files stay small.
    void addPiece(std::size_t least) {
        constexpr std::size_t kSmallest = std::size_t{16} << 10;
        constexpr std::size_t kLargest = std::size_t{8} << 20;
        std::size_t size = std::max(least, pieces_.empty() ? kSmallest : std::min(2 * pieces_.back().size, kLargest));
        Memory memory = allocateLarge(size);
        pieces_.push_back({std::move(memory), size}); // ahead of what points into it: this may fail
        top_ = pieces_.back().memory.get();
        left_ = size;
    }

    std::vector<Piece> pieces_;
    std::byte* top_ = nullptr; ///< where the next row goes
    std::size_t left_ = 0;     ///< bytes from there to the end of the piece
};

} // namespace kestrel
