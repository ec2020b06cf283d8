#pragma once

#include "base/row_index.hpp"
#include "base/row_store.hpp"

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrel {

/// Rows in file order, found by one of their names, which `Name`, a member or a function, gives. A row is named once
/// and for all when it is entered; of equal names the first is found. The rows are in a vector of their own, or
/// in a store.
template <class Row, auto Name, class List = std::vector<Row>> class IndexedRows {
public:
    /// Appends a row and enters its name; false when another row has it already.
    bool add(Row row) {
        rows_.push_back(std::move(row));
        return index_.enterLast(rows_);
    }
    /// The same for rows in a store.
    bool add(RowStore& store, const Row& row) {
        store.add(rows_, row);
        return index_.enterLast(rows_);
    }

    /// The first row of exactly this name, or null.
    [[nodiscard]] const Row* find(std::string_view name) const { return index_.find(rows_, name); }
    [[nodiscard]] bool has(std::string_view name) const { return find(name) != nullptr; }
    /// True for a row that is found by its name, not one that repeats it.
    [[nodiscard]] bool isFirst(const Row& row) const { return find(std::invoke(Name, row)) == &row; }

    [[nodiscard]] bool anyRepeated() const { return index_.anyRepeated(); }

    [[nodiscard]] const List& rows() const { return rows_; }
    [[nodiscard]] bool empty() const { return rows_.empty(); }
    [[nodiscard]] std::size_t size() const { return rows_.size(); }
    [[nodiscard]] auto begin() const { return rows_.begin(); }
    [[nodiscard]] auto end() const { return rows_.end(); }
    [[nodiscard]] const Row& operator[](std::size_t place) const { return rows_[place]; }
    [[nodiscard]] const Row& back() const { return rows_.back(); }
    /// The newest row, to store more of it; its name must not change.
    [[nodiscard]] Row& back() { return rows_.back(); }

private:
    List rows_;
    RowIndex<Row, Name> index_;
};

} // namespace kestrel
