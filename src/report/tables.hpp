#pragma once

#include "reader/rng.hpp"
#include "report/html.hpp"

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

/// Forms of tables that several sections of the page have.
namespace kestrel {

/// A cell of a row; a link where there is a place that it leads to.
struct TableCell {
    std::string_view text;
    const Anchor* link = nullptr;
};

/// A table that may have a million rows. The first ones are rows of the page; the others follow as plain lines, of
/// which the script makes rows when somebody wants to see them.
class LongTable {
public:
    /// `head` are the cells of the heading. At most one column has links; it is that of class "link".
    LongTable(Html& html, Markup summary, std::size_t rows, std::initializer_list<Markup> head, bool open);
    LongTable(const LongTable&) = delete;
    LongTable& operator=(const LongTable&) = delete;
    ~LongTable();

    void row(std::span<const TableCell> cells);

private:
    Html& html_;
    std::size_t rows_;
    std::size_t written_ = 0;
};

/// A table of values in the corners.
class CornerTable {
public:
    explicit CornerTable(Html& html, std::string_view caption) : html_(html), caption_(caption) {}
    CornerTable(const CornerTable&) = delete;
    CornerTable& operator=(const CornerTable&) = delete;
    ~CornerTable() { end(); }

    void row(std::string_view name, const Rng& range, std::string_view unit);
    void row(std::string_view name, const GivenRange& range, std::string_view unit) {
        if (range) row(name, *range, unit);
    }
    /// One value for all corners.
    void row(std::string_view name, GivenValue value, std::string_view unit);
    /// Texts for the corners.
    void row(std::string_view name, const PerCorner<std::string>& texts);
    /// One text for all corners.
    void row(std::string_view name, std::string_view text);
    /// Writes what is due; nothing when there were no rows.
    void end();

private:
    void begin(std::string_view name);

    Html& html_;
    std::string_view caption_;
    bool begun_ = false;
};

/// A cell's number with its unit; "NA" and what is missing as they are called.
[[nodiscard]] std::string cellText(const Cell& cell, std::string_view unit);

} // namespace kestrel
