#include "report/tables.hpp"

#include "report/quantity.hpp"

namespace kestrel {

namespace {

constexpr std::size_t kRowsOfPage = 200;

/// "1,234,567".
std::string countText(std::size_t count) {
    std::string digits;
    appendInteger(digits, static_cast<std::int64_t>(count));
    std::string text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i != 0 && (digits.size() - i) % 3 == 0) text.push_back(',');
        text.push_back(digits[i]);
    }
    return text;
}

} // namespace

LongTable::LongTable(Html& html, Markup summary, std::size_t rows, std::initializer_list<Markup> head, bool open)
    : html_(html), rows_(rows) {
    if (open) {
        html_ << "<details class=\"fold\" open>";
    } else {
        html_ << "<details class=\"fold\">";
    }
    html_ << "<summary>" << summary << " (" << Text(countText(rows)) << ")</summary>";
    html_.begin("div",
                {{"class", Literal("wide long")}, {TextAttribute("data-rows"), static_cast<std::int64_t>(rows)}});
    html_ << "<table><thead><tr>";
    for (const Markup& cell : head)
        html_ << cell;
    html_ << "</tr></thead><tbody>\n";
}

LongTable::~LongTable() {
    if (written_ <= kRowsOfPage) {
        html_ << "</tbody></table></div></details>\n";
    } else {
        html_ << "</pre></div></details>\n";
    }
}

void LongTable::row(std::span<const TableCell> cells) {
    if (written_ == kRowsOfPage)
        html_ << "</tbody></table><p class=\"none more\">The first " << kRowsOfPage << " of " << Text(countText(rows_))
              << " rows are shown.</p><pre class=\"rows\" hidden>";
    const bool is_row = written_++ < kRowsOfPage;
    const Anchor* link = nullptr;
    if (is_row) html_ << "<tr>";
    for (const TableCell& cell : cells) {
        if (is_row) {
            html_ << "<td>";
            writeLink(html_, cell.link, cell.text);
            html_ << "</td>";
        } else {
            html_.cell(Text(cell.text)) << "\t";
            if (cell.link != nullptr) link = cell.link;
        }
    }
    if (is_row) {
        html_ << "</tr>\n";
    } else {
        if (link != nullptr) html_ << *link;
        html_ << "\n";
    }
}

void CornerTable::begin(std::string_view name) {
    if (!begun_) {
        html_ << "<table class=\"corners\">";
        if (!caption_.empty()) html_ << "<caption>" << Text(caption_) << "</caption>";
        html_ << "<thead><tr><td></td><th scope=\"col\">typ</th><th scope=\"col\">min</th><th scope=\"col\">max</th>"
                 "</tr></thead><tbody>\n";
    }
    begun_ = true;
    html_ << "<tr><th scope=\"row\">" << Text(name) << "</th>";
}

void CornerTable::row(std::string_view name, const Rng& range, std::string_view unit) {
    begin(name);
    for (const Cell& cell : range)
        html_ << "<td>" << Text(cellText(cell, unit)) << "</td>";
    html_ << "</tr>\n";
}

void CornerTable::row(std::string_view name, GivenValue value, std::string_view unit) {
    if (value) row(name, quantityText(*value, unit));
}

void CornerTable::row(std::string_view name, const PerCorner<std::string>& texts) {
    begin(name);
    for (const std::string& text : texts)
        html_ << "<td>" << Text(text) << "</td>";
    html_ << "</tr>\n";
}

void CornerTable::row(std::string_view name, std::string_view text) {
    begin(name);
    html_ << "<td colspan=\"3\">" << Text(text) << "</td></tr>\n";
}

void CornerTable::end() {
    if (begun_) html_ << "</tbody></table>\n";
    begun_ = false;
}

std::string cellText(const Cell& cell, std::string_view unit) {
    switch (cell.state()) {
    case CellState::number: return quantityText(cell.value(), unit);
    case CellState::na: return "NA";
    case CellState::missing: break;
    }
    return "\u2013";
}

} // namespace kestrel
