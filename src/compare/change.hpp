#pragma once

#include "base/enum_set.hpp"
#include "base/text_hash.hpp"
#include "diagnostics/subject.hpp"
#include "reader/corner.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrel {

/// What numbers of a change count.
enum class Unit : std::uint8_t {
    none,
    volts,
    amperes,
    ohms,
    farads,
    henries,
    seconds,
    celsius,
    voltsPerSecond,
    voltSeconds
};

/// The unit as data have it, such as "V"; empty for a bare number.
[[nodiscard]] std::string_view unitName(Unit unit);

/// From where to where a table goes.
struct Extent {
    double low = 0.0;
    double high = 0.0;
};

/// What a file gives: nothing, a number in its unit, a text, or an extent.
using GivenThing = std::variant<std::monostate, double, std::string, Extent>;

/// How a record or a field changed.
enum class ChangeKind : std::uint8_t {
    added,
    removed,
    renamed, ///< a model
    value,   ///< a number or a text
    table,   ///< the form of a table
    shift,   ///< a waveform comes earlier or later, and its form is the same
    extent,  ///< a table covers more or less
    order,   ///< the same entries in another order
    matrix   ///< entries of a matrix
};

/// The size of a change in per cent of a scale, without the noise of its last digits, so that equal changes are equal;
/// none where nothing can be said.
[[nodiscard]] std::optional<double> percentOf(double difference, double scale);

/// A change in some corners, or of what has none.
struct ChangeDetail {
    EnumSet<Corner> corners{};
    GivenThing was{};
    GivenThing is{};
    std::optional<double> at{};      ///< of a table: the voltage or time of the largest difference, as OLD counts it
    std::optional<double> shift{};   ///< of a waveform: by how many seconds it comes later
    std::optional<double> percent{}; ///< how large the change is, never negative; none where nothing can be said
};

/// A change of one field of a record, or of the whole record.
struct Change {
    ChangeKind kind = ChangeKind::value;
    std::string field{}; ///< empty for the whole record
    Unit unit = Unit::none;
    Unit axis = Unit::none;              ///< of where a table differs
    std::vector<ChangeDetail> details{}; ///< none where there is nothing to say but the kind
    std::uint64_t count = 0;             ///< of a matrix: entries that differ
    std::string place{};                 ///< of a matrix: the pins of the entry that differs most
};

/// The record that is compared: its kind and its name in NEW, or in OLD where NEW lacks it; of a component one of its
/// pins, where the comparison has come to that. The texts belong to the records.
struct ComparedRecord {
    SubjectKind kind;
    std::string_view name;
    std::string_view pin{};
};

/// A change and all records that it is the same for.
struct ChangeGroup {
    Change change;
    SubjectKind kind;
    std::string_view component{}; ///< whose pins are named; empty where records are
    std::vector<std::string_view> names{};
    std::size_t models = 0; ///< how many models it affects

    /// The largest change of a detail; none where nothing can be said.
    [[nodiscard]] std::optional<double> percent() const;
};

/// How many records of a kind changed.
struct RecordCounts {
    std::int64_t changed = 0;
    std::int64_t added = 0;
    std::int64_t removed = 0;
    std::int64_t renamed = 0;

    [[nodiscard]] std::int64_t all() const { return changed + added + removed + renamed; }
};

inline constexpr std::size_t kSubjectKinds = static_cast<std::size_t>(SubjectKind::board) + 1;

/// Gathers changes; equal ones become one group.
class ChangeList {
public:
    /// `models` is how many models of the file it affects.
    void add(const ComparedRecord& record, Change change, std::size_t models);

    /// How often something was added.
    [[nodiscard]] std::size_t additions() const { return additions_; }

    /// The groups: what affects most models first, then what is largest, then as they came.
    [[nodiscard]] std::vector<ChangeGroup> takeSorted();

private:
    TextMap<std::size_t> places_; // by all that is equal in a group
    std::vector<ChangeGroup> groups_;
    std::size_t additions_ = 0;
    std::string key_; // kept for its room
};

/// What is different between two files.
struct FileChanges {
    std::vector<ChangeGroup> groups;
    std::array<RecordCounts, kSubjectKinds> counts{}; ///< by SubjectKind

    /// The group with the largest change of a value; null where nothing can be said.
    [[nodiscard]] const ChangeGroup* largest() const;
};

} // namespace kestrel
