#pragma once

#include "base/enum_set.hpp"
#include "base/name_table.hpp"
#include "base/open_slots.hpp"
#include "base/row_store.hpp"
#include "base/text_hash.hpp"
#include "base/text_store.hpp"
#include "diagnostics/subject.hpp"
#include "reader/corner.hpp"
#include "reader/values.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrel {

/// What numbers of a change count.
enum class Unit : std::uint8_t {
    none,
    count, ///< of things
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

/// True where per cent of the old value say how much a value changed: neither degrees nor things are told so.
[[nodiscard]] constexpr bool isToldInPercent(Unit unit) { return unit != Unit::celsius && unit != Unit::count; }

/// From where to where a table goes.
struct Extent {
    double low = 0.0;
    double high = 0.0;

    bool operator==(const Extent& other) const = default;
};

/// What a file gives: nothing, a number in its unit, a text, or an extent.
using GivenThing = std::variant<std::monostate, double, std::string_view, Extent>;

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
[[nodiscard]] GivenValue percentOf(double difference, double scale);

/// A change in some corners, or of what has none.
struct ChangeDetail {
    EnumSet<Corner> corners{};
    GivenThing was{};
    GivenThing is{};
    GivenValue at{};      ///< of a table: the voltage or time of the largest difference, as OLD counts it
    GivenValue shift{};   ///< of a waveform: by how many seconds it comes later
    GivenValue percent{}; ///< how large the change is, never negative; none where nothing can be said
};

/// The details of one change, at most one for each corner.
class ChangeDetails {
public:
    ChangeDetails() = default;
    ChangeDetails(const ChangeDetail& only) { push_back(only); }

    void push_back(const ChangeDetail& detail) { details_.at(size_++) = detail; }
    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] ChangeDetail* begin() { return details_.data(); }
    [[nodiscard]] ChangeDetail* end() { return details_.data() + size_; }
    [[nodiscard]] const ChangeDetail* begin() const { return details_.data(); }
    [[nodiscard]] const ChangeDetail* end() const { return details_.data() + size_; }

private:
    std::array<ChangeDetail, kCornerCount> details_{};
    std::size_t size_ = 0;
};

/// The name of a field in up to three words, joined only where there is something to say.
struct FieldName {
    FieldName(std::string_view first = {}, std::string_view second = {}, std::string_view third = {})
        : words{first, second, third} {}
    FieldName(const char* only) : FieldName(std::string_view(only)) {}
    FieldName(const std::string& only) : FieldName(std::string_view(only)) {}
    [[nodiscard]] std::string text() const;

    std::array<std::string_view, 3> words;
};

/// A change of one field of a record, or of the whole record. Its texts have to last until it is in a list.
struct Change {
    ChangeKind kind = ChangeKind::value;
    FieldName field{}; ///< empty for the whole record
    Unit unit = Unit::none;
    Unit axis = Unit::none;   ///< of where a table differs
    ChangeDetails details{};  ///< none where there is nothing to say but the kind
    std::uint64_t count = 0;  ///< of a matrix: entries that differ
    std::string_view place{}; ///< of a matrix: the pins of the entry that differs most
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
    ChangeKind kind;
    SubjectKind record; ///< the kind of the records, or of that whose pins are named
    Unit unit;
    Unit axis;
    std::string_view field{}; ///< empty for the whole record
    Rows<ChangeDetail> details{};
    std::uint64_t count = 0;
    std::string_view place{};
    std::string_view component{};   ///< whose pins are named; empty where records are
    Rows<std::string_view> names{}; ///< of the records or pins
    std::size_t models = 0;         ///< how many models it affects

    /// The largest change of a detail; none where nothing can be said.
    [[nodiscard]] GivenValue percent() const;
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
    /// `models` is how many models of the file it affects. The names of the record have to outlive the list.
    void add(const ComparedRecord& record, const Change& change, std::size_t models);

    /// How often something was added.
    [[nodiscard]] std::size_t additions() const { return additions_; }

    /// The groups: what affects most models first, then what is largest, then as they came.
    [[nodiscard]] std::vector<const ChangeGroup*> sorted() const;

private:
    struct Slot {
        std::uint32_t number = 0; ///< of a group, counted from 1
        std::uint32_t hash = 0;

        [[nodiscard]] bool isFree() const { return number == 0; }
    };

    [[nodiscard]] std::uint32_t hashOf(const ComparedRecord& record, const Change& change, Name field) const;
    ChangeGroup& groupOf(const ComparedRecord& record, const Change& change);
    [[nodiscard]] GivenThing kept(const GivenThing& thing);

    HashSeed seed_;
    NameTable fields_;
    TextStore texts_;
    RowStore rows_;
    std::vector<ChangeGroup*> groups_; ///< in the order in which they came
    OpenSlots<Slot> slots_;            ///< by all that is equal in a group
    std::size_t additions_ = 0;
    std::string field_; ///< kept for its room
};

/// A record of OLD and that of NEW that belongs to it; null where there is none.
template <class Record> struct RecordPair {
    const Record* was = nullptr;
    const Record* is = nullptr;
    bool differs = false; ///< both are there, and some change is about them
};

struct Mdl;
struct SubMdl;

/// What is different between two files.
struct FileChanges {
    std::unique_ptr<const ChangeList> list;           ///< keeps the groups
    std::vector<const ChangeGroup*> groups;           ///< in the order in which they are written
    std::array<RecordCounts, kSubjectKinds> counts{}; ///< by SubjectKind
    std::vector<RecordPair<Mdl>> models;              ///< as NEW has them, then what only OLD has
    std::vector<RecordPair<SubMdl>> submodels;        ///< as they were matched

    /// The group with the largest change of a value; null where nothing can be said.
    [[nodiscard]] const ChangeGroup* largest() const;
    /// The group with the largest shift of a waveform, null where there is none, and that shift in seconds.
    struct Shift {
        const ChangeGroup* group = nullptr;
        double seconds = 0.0;
    };
    [[nodiscard]] Shift largestShift() const;
};

} // namespace kestrel
