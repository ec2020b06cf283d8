#include "compare/packages.hpp"

#include "compare/match.hpp"
#include "package/pkgmdl.hpp"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <variant>

namespace kestrel {

namespace {

/// An entry of a matrix by the places of its pins, counted from 0 as NEW has them; the first is not behind the second.
struct Entry {
    std::uint32_t row;
    std::uint32_t column;
    double value;

    [[nodiscard]] std::pair<std::uint32_t, std::uint32_t> place() const { return {row, column}; }
};

/// What differs in a matrix: how many entries, and which one most.
class MatrixDifference {
public:
    explicit MatrixDifference(double share) : share_(share) {}

    void compare(std::uint32_t row, std::uint32_t column, double was, double is) {
        const std::optional<NumberChange> change = changeOf(was, is, share_);
        if (!change) return;
        ++count_;
        const double size = change->percent.value_or(0.0);
        if (count_ > 1 && size <= most_) return;
        most_ = size;
        percent_ = change->percent;
        row_ = row;
        column_ = column;
        was_ = was;
        is_ = is;
    }

    /// Adds it to the changes; `pins` are those of NEW.
    void addTo(Comparison& comparison, const FieldName& field, Unit unit, const PackagePins& pins) const {
        if (count_ == 0) return;
        ChangeDetail detail;
        detail.was = was_;
        detail.is = is_;
        detail.percent = percent_;
        std::string place("pin ");
        place.append(pins[row_].view());
        if (row_ != column_) place.append(" to ").append(pins[column_].view());
        comparison.add({.kind = ChangeKind::matrix,
                        .field = field,
                        .unit = unit,
                        .details = {&detail, 1},
                        .matrix = {.count = count_, .place = place}});
    }

private:
    double share_;
    std::uint64_t count_ = 0;
    double most_ = 0.0;
    GivenValue percent_;
    std::uint32_t row_ = 0;
    std::uint32_t column_ = 0;
    double was_ = 0.0;
    double is_ = 0.0;
};

/// Calls `use` with the place of the column, counted from 0, and the value of each entry of the row at this place.
template <class Use> void eachEntry(const Mtx& matrix, const MtxRow& row, std::uint64_t place, Use use) {
    if (const auto* const values = std::get_if<MtxValues>(&row.given)) {
        for (std::size_t slot = 0; slot < values->size(); ++slot) {
            std::uint64_t column = place + slot;
            if (column >= matrix.order && matrix.kind == MtxKind::bandedWrap) column -= matrix.order;
            if (column < matrix.order) use(static_cast<std::uint32_t>(column), (*values)[slot]);
        }
        return;
    }
    for (const MtxEntry& entry : std::get<MtxEntries>(row.given))
        if (entry.column() >= 1 && entry.column() <= matrix.order) use(entry.column() - 1, entry.value());
}

/// All entries in the order of their places; `moved` says where the pins of the matrix are in NEW.
std::vector<Entry> entriesOf(const Mtx& matrix, const PackagePins& pins,
                             const std::vector<std::optional<std::uint32_t>>& moved) {
    std::vector<Entry> entries;
    std::size_t guess = 0;
    for (const MtxRow& row : matrix.rows) {
        const std::uint32_t place = pinPlace(pins, row.pin_name, ++guess);
        if (place == 0 || !moved[place - 1]) continue;
        const std::uint32_t from = *moved[place - 1];
        eachEntry(matrix, row, place - 1, [&](std::uint32_t column, double value) {
            if (column >= moved.size() || !moved[column]) return;
            const auto [low, high] = std::minmax(from, *moved[column]);
            entries.push_back({low, high, value});
        });
    }
    if (!std::ranges::is_sorted(entries, {}, &Entry::place)) std::ranges::stable_sort(entries, {}, &Entry::place);
    // Of an entry that was given twice the last counts, as nobody can say which one is meant.
    std::size_t kept = 0;
    for (const Entry& entry : entries) {
        const bool repeats = kept > 0 && entries[kept - 1].place() == entry.place();
        entries[repeats ? kept - 1 : kept++] = entry;
    }
    entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(kept), entries.end());
    return entries;
}

/// An entry that a matrix does not have is 0.
void compareEntries(MatrixDifference& difference, const std::vector<Entry>& was, const std::vector<Entry>& is) {
    auto left = was.begin();
    auto right = is.begin();
    while (left != was.end() || right != is.end()) {
        if (right == is.end() || (left != was.end() && left->place() < right->place())) {
            difference.compare(left->row, left->column, left->value, 0.0);
            ++left;
        } else if (left == was.end() || right->place() < left->place()) {
            difference.compare(right->row, right->column, 0.0, right->value);
            ++right;
        } else {
            difference.compare(left->row, left->column, left->value, right->value);
            ++left;
            ++right;
        }
    }
}

template <class Slots> bool haveSameBytes(const Slots& a, const Slots& b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]) == 0);
}

bool isSameRow(const MtxRow& a, const MtxRow& b) {
    if (a.pin_name.view() != b.pin_name.view() || a.given.index() != b.given.index()) return false;
    const auto* const values = std::get_if<MtxValues>(&a.given);
    return values != nullptr ? haveSameBytes(*values, std::get<MtxValues>(b.given))
                             : haveSameBytes(std::get<MtxEntries>(a.given), std::get<MtxEntries>(b.given));
}

/// True for matrices that are the same entry by entry, as most are.
bool areSame(const Mtx& was, const Mtx& is) {
    return was.kind == is.kind && was.order == is.order && std::ranges::equal(was.rows, is.rows, isSameRow);
}

/// True for matrices that are laid out alike, in which equal slots are equal entries, all of them of listed pins: a
/// matrix may have room for more.
bool areLaidOutAlike(const Mtx& was, const Mtx& is, std::size_t pins) {
    return is.order <= pins && is.rows.size() <= pins && was.kind == is.kind && was.kind != MtxKind::sparse &&
           was.order == is.order && was.in_order && is.in_order && was.rows.size() == is.rows.size();
}

void compareSlots(MatrixDifference& difference, const Mtx& was, const Mtx& is) {
    for (std::size_t row = 0; row < is.rows.size(); ++row) {
        const auto* const before = std::get_if<MtxValues>(&was.rows[row].given);
        const auto* const now = std::get_if<MtxValues>(&is.rows[row].given);
        if (before == nullptr || now == nullptr) continue;
        const auto& longer = now->size() >= before->size() ? is : was;
        eachEntry(longer, longer.rows[row], row, [&, slot = std::size_t{0}](std::uint32_t column, double) mutable {
            const double old_value = slot < before->size() ? (*before)[slot] : 0.0;
            const double new_value = slot < now->size() ? (*now)[slot] : 0.0;
            ++slot;
            if (old_value != new_value)
                difference.compare(static_cast<std::uint32_t>(row), column, old_value, new_value);
        });
    }
}

/// Where the pins of OLD are in NEW.
struct MovedPins {
    std::vector<std::optional<std::uint32_t>> places;
    bool none_moved = true;
};

MovedPins movedPins(const PackagePins& was, const PackagePins& is) {
    MovedPins moved;
    moved.places.reserve(was.size());
    for (std::size_t i = 0; i < was.size(); ++i) {
        const std::uint32_t place = pinPlace(is, was[i], i + 1);
        moved.places.push_back(place == 0 ? std::nullopt : std::optional(place - 1));
        moved.none_moved = moved.none_moved && place == i + 1;
    }
    moved.none_moved = moved.none_moved && was.size() == is.size();
    return moved;
}

struct MatrixOf {
    std::string_view name;
    Unit unit;
    std::unique_ptr<Mtx> PkgMdl::*matrix;
};
constexpr MatrixOf kMatrices[] = {
    {"[Resistance Matrix]", Unit::ohms, &PkgMdl::resistance},
    {"[Inductance Matrix]", Unit::henries, &PkgMdl::inductance},
    {"[Capacitance Matrix]", Unit::farads, &PkgMdl::capacitance},
};

void compareMatrices(Comparison& comparison, const PkgMdl& was, const PkgMdl& is) {
    const MovedPins moved = movedPins(was.pin_names, is.pin_names);
    // Entries of pins that only one of the files has are no changes of their own.
    std::vector<std::optional<std::uint32_t>> kept(is.pin_names.size());
    for (const std::optional<std::uint32_t> place : moved.places)
        if (place) kept[*place] = place;
    for (const MatrixOf& row : kMatrices) {
        const Mtx* const before = (was.*row.matrix).get();
        const Mtx* const now = (is.*row.matrix).get();
        if (before == nullptr && now == nullptr) continue;
        if (!comparePresence(comparison, row.name, before != nullptr, now != nullptr)) continue;
        if (moved.none_moved && areSame(*before, *now)) continue;
        MatrixDifference difference(comparison.share());
        if (moved.none_moved && areLaidOutAlike(*before, *now, is.pin_names.size())) {
            compareSlots(difference, *before, *now);
        } else {
            compareEntries(difference, entriesOf(*before, was.pin_names, moved.places),
                           entriesOf(*now, is.pin_names, kept));
        }
        difference.addTo(comparison, row.name, row.unit, is.pin_names);
    }
}

bool isSameElement(const ChainElement& a, const ChainElement& b) {
    return std::tie(a.kind, a.next, a.payload) == std::tie(b.kind, b.next, b.payload);
}

void compareChains(Comparison& comparison, const Chain& was, const Chain& is) {
    const auto count = [&](const Chain& chain) {
        const std::size_t sections = chain.sections.size();
        return comparison.changes.keep(std::to_string(sections).append(sections == 1 ? " section" : " sections"));
    };
    if (was.sections.size() != is.sections.size()) return compareText(comparison, "path", count(was), count(is));
    if (!std::ranges::equal(was.elements, is.elements, isSameElement))
        comparison.add({.kind = ChangeKind::order, .field = "forks"});
    for (std::size_t i = 0; i < is.sections.size(); ++i) {
        const auto compare = [&](std::string_view name, Unit unit, std::optional<double> before,
                                 std::optional<double> now) {
            if (before == now) return;
            const auto thing = [](std::optional<double> value) { return value ? GivenThing(*value) : GivenThing(); };
            compareNumber(comparison, {"section", std::to_string(i + 1), name}, unit, thing(before), thing(now));
        };
        compare("Len", Unit::none, was.sections[i].len, is.sections[i].len);
        compare("R", Unit::ohms, was.sections[i].r, is.sections[i].r);
        compare("L", Unit::henries, was.sections[i].l, is.sections[i].l);
        compare("C", Unit::farads, was.sections[i].c, is.sections[i].c);
    }
}

void comparePinsOfPackage(Comparison& comparison, const PkgMdl& was, const PkgMdl& is) {
    const auto name_of = [](const StoredText& pin) { return pin.view(); };
    const auto& before = was.pin_names.rows();
    const auto& now = is.pin_names.rows();
    const bool has_sections = !was.pin_sections.empty() || !is.pin_sections.empty();
    const Chain none;
    const auto chain_of = [&none](const PkgMdl& package, std::size_t place) -> const Chain& {
        return place < package.pin_sections.size() ? package.pin_sections[place] : none;
    };
    matchRows(
        before, now, name_of, name_of,
        [&](const StoredText& old_pin, const StoredText& new_pin) {
            if (!has_sections) return;
            comparison.record.pin = new_pin;
            compareChains(comparison, chain_of(was, static_cast<std::size_t>(&old_pin - before.begin())),
                          chain_of(is, static_cast<std::size_t>(&new_pin - now.begin())));
        },
        [&](const StoredText& pin, bool is_new) {
            comparison.record.pin = pin;
            comparePresence(comparison, "", !is_new, is_new);
        });
    comparison.record.pin = {};
}

} // namespace

void comparePackageModels(Comparison& comparison, const PkgMdl& was, const PkgMdl& is) {
    compareText(comparison, "[Manufacturer]", was.manufacturer, is.manufacturer);
    compareText(comparison, "[OEM]", was.oem, is.oem);
    compareText(comparison, "[Description]", was.description, is.description);
    compareValue(comparison, "[Number Of Pins]", Unit::count, GivenValue(was.number_of_pins),
                 GivenValue(is.number_of_pins));
    comparePinsOfPackage(comparison, was, is);
    compareMatrices(comparison, was, is);
}

} // namespace kestrel
