#pragma once

#include "compare/change.hpp"
#include "compare/curve.hpp"
#include "compare/settings.hpp"
#include "model/ramp.hpp"
#include "reader/rng.hpp"

#include <array>
#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What the comparisons of the kinds of records share.
namespace kestrel {

/// A comparison of two records: where it writes, what it goes by, and what it has come to.
struct Comparison {
    const CompareSettings& settings;
    ChangeList& changes;
    /// Models that have another name in NEW, by their names in OLD.
    const ViewMap<std::string_view>& renamed;
    ComparedRecord record;
    std::size_t models = 0;            ///< how many models a change affects
    std::array<PointRoom, 2> points{}; ///< for the points of two tables
    std::vector<Point> levelled{};     ///< for those of a waveform that is brought to the levels of another

    [[nodiscard]] double share() const { return settings.tolerance / 100; }
    void add(const Change& change) { changes.add(record, change, models); }
};

/// A number as a record keeps it, or none.
[[nodiscard]] inline GivenThing thingOf(GivenValue value) { return value ? GivenThing(*value) : GivenThing(); }
[[nodiscard]] inline GivenThing thingOf(const Cell& cell) {
    return cell.isNumber() ? GivenThing(cell.value()) : GivenThing();
}
[[nodiscard]] GivenThing thingOf(std::string_view text);

/// Reports a number that is new, gone or another.
void compareNumber(Comparison& comparison, const FieldName& field, Unit unit, const GivenThing& was,
                   const GivenThing& is);
void compareValue(Comparison& comparison, const FieldName& field, Unit unit, GivenValue was, GivenValue is);
void compareCell(Comparison& comparison, const FieldName& field, Unit unit, const Cell& was, const Cell& is);

/// The same in each corner. What is "NA" is not given.
void compareRange(Comparison& comparison, const FieldName& field, Unit unit, const GivenRange& was,
                  const GivenRange& is);
void compareRange(Comparison& comparison, const FieldName& field, Unit unit, const Rng& was, const Rng& is);

/// Reports a text that is another; an empty one is not given.
void compareText(Comparison& comparison, const FieldName& field, std::string_view was, std::string_view is);

/// The same of a word that stands for the standard one where it is not given.
void compareWord(Comparison& comparison, const FieldName& field, std::string_view was, std::string_view is,
                 std::string_view standard);

/// The same of the name of a model, which may have been renamed.
void compareModelName(Comparison& comparison, const FieldName& field, std::string_view was, std::string_view is);
/// What the model of this name in OLD is called in NEW.
[[nodiscard]] std::string_view nameInNew(const Comparison& comparison, std::string_view was);

/// Reports a part that is new or gone; true when both have it.
bool comparePresence(Comparison& comparison, const FieldName& field, bool was, bool is);

/// Reports names that are new or gone, and of another order where that matters.
enum class Order : bool { meansNothing, means };
void compareNames(Comparison& comparison, const FieldName& field, std::span<const std::string> was,
                  std::span<const std::string> is, Order order = Order::meansNothing);

/// Adds the difference of a corner to those of a field; those that are equal become one.
void addDetail(ChangeDetails& details, const ChangeDetail& detail);

/// The change from one number to another in per cent of the old one; nothing when it is within the share of the larger.
struct NumberChange {
    GivenValue percent; ///< none from 0, and where one of them is not finite
};
[[nodiscard]] std::optional<NumberChange> changeOf(double was, double is, double share);

/// A row of the fields of a record: its name, its unit and what holds it.
template <class Record, class Value> struct FieldRow {
    std::string_view name;
    Unit unit;
    Value Record::*field;
};

/// Compares the fields of such rows.
template <class Record, class Value, std::size_t Count>
void compareFields(Comparison& comparison, std::string_view group, const FieldRow<Record, Value> (&rows)[Count],
                   const Record& was, const Record& is) {
    for (const FieldRow<Record, Value>& row : rows) {
        const FieldName name = group.empty() ? FieldName(row.name) : FieldName(group, row.name);
        if constexpr (std::is_same_v<Value, GivenRange>) {
            compareRange(comparison, name, row.unit, was.*row.field, is.*row.field);
        } else {
            compareValue(comparison, name, row.unit, was.*row.field, is.*row.field);
        }
    }
}

} // namespace kestrel
