#pragma once

#include "base/enum_set.hpp"
#include "base/large_memory.hpp"
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
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
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
    level,   ///< all of a waveform is higher or lower, and its form is the same
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
    GivenValue shift{};   ///< of a waveform: by how many seconds it comes later; of a level: how much higher it is
    GivenValue percent{}; ///< how large the change is, never negative; none where nothing can be said
};

/// True for a shift in a change of form, which comes ahead of what is left of the corners that have it.
[[nodiscard]] inline bool isShiftAlone(const ChangeDetail& detail) { return detail.shift && !detail.at; }

/// The details of one change: at most one for each corner, and one for what several have in common.
class ChangeDetails {
public:
    void push_back(const ChangeDetail& detail) { details_.at(size_++) = detail; }
    void assign(std::span<const ChangeDetail> details) {
        size_ = 0;
        for (const ChangeDetail& detail : details)
            push_back(detail);
    }
    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] ChangeDetail* begin() { return details_.data(); }
    [[nodiscard]] ChangeDetail* end() { return details_.data() + size_; }
    [[nodiscard]] const ChangeDetail* begin() const { return details_.data(); }
    [[nodiscard]] const ChangeDetail* end() const { return details_.data() + size_; }

private:
    std::array<ChangeDetail, kCornerCount + 1> details_{};
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

/// What is different in a matrix.
struct MatrixChange {
    std::uint64_t count = 0;  ///< entries that differ
    std::string_view place{}; ///< the pins of the entry that differs most

    bool operator==(const MatrixChange& other) const = default;
};

/// A change of one field of a record, or of the whole record. The texts of its details have to outlive the list that it
/// is added to: they belong to a record, or are kept by the list.
struct Change {
    ChangeKind kind = ChangeKind::value;
    FieldName field{}; ///< empty for the whole record
    Unit unit = Unit::none;
    Unit axis = Unit::none;                  ///< of where a table differs
    std::span<const ChangeDetail> details{}; ///< none where there is nothing to say but the kind
    MatrixChange matrix{};
};

/// The record that is compared: its kind and its name in NEW, or in OLD where NEW lacks it; of a component one of its
/// pins, where the comparison has come to that. The texts belong to the records.
struct ComparedRecord {
    SubjectKind kind;
    std::string_view name;
    std::string_view pin{};
};

/// A change and all records that it is the same for. It is small: there may be one for every row of a file.
struct ChangeGroup {
    ChangeKind kind{};
    SubjectKind record{}; ///< the kind of the records, or of that whose pins are named
    Unit unit{};
    Unit axis{};
    Name field{};     ///< empty for the whole record
    Name component{}; ///< whose pins are named; empty where records are
    Rows<ChangeDetail> details{};
    Rows<std::string_view> names{};       ///< of the records or pins
    const MatrixChange* matrix = nullptr; ///< null for all but matrices

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

/// A group with what is largest in it; no group where there is none.
struct LargestChange {
    const ChangeGroup* group = nullptr;
    double size = 0.0;
};

/// What a group is sorted by.
struct ChangeRank {
    double size;              ///< in per cent, never negative
    std::uint32_t models = 0; ///< how many models it affects
    std::uint32_t place;      ///< in the order in which they came

    [[nodiscard]] bool isAheadOf(const ChangeRank& other) const;
};

/// Groups in the order in which they are written, and the largest of them.
struct RankedChanges {
    std::vector<const ChangeGroup*> groups;
    LargestChange change; ///< in per cent
    LargestChange shift;  ///< of a waveform, in seconds
};

/// Gathers changes; equal ones become one group.
class ChangeList {
public:
    /// `models` is how many models of the file it affects. The names of the record have to outlive the list.
    void add(const ComparedRecord& record, const Change& change, std::size_t models);

    /// Keeps a text that belongs to no record as long as the list.
    [[nodiscard]] std::string_view keep(std::string_view text) { return texts_.add(text).view(); }

    /// How often something was added.
    [[nodiscard]] std::size_t additions() const { return additions_; }

    /// The groups: what affects most models first, then what is largest, then as they came.
    /// Nothing may be added behind that.
    [[nodiscard]] RankedChanges ranked();

private:
    struct Slot {
        std::uint32_t number = 0; ///< of a group, counted from 1
        std::uint32_t hash = 0;

        [[nodiscard]] bool isFree() const { return number == 0; }
    };

    /// A change whose group is not looked up yet.
    struct Waiting {
        std::uint32_t hash = 0;
        std::uint32_t models = 0;
        ChangeGroup group{}; ///< without details and names
        ChangeDetails details{};
        MatrixChange matrix{};
        std::string_view name{};
    };

    /// The largest changes so far, of which more than one may be equal.
    struct Largest {
        double size = 0.0;
        std::vector<std::pair<std::uint32_t, double>> changes; ///< the places of their groups, and what changed

        void offer(std::uint32_t place, double change);
    };

    [[nodiscard]] Name fieldOf(const FieldName& field);
    [[nodiscard]] Name componentOf(const ComparedRecord& record);
    [[nodiscard]] std::uint32_t hashOf(const Waiting& change) const;
    void addWaiting(const Waiting& change);
    std::uint32_t placeOf(const Waiting& change);
    void addGroup(const Waiting& change);
    [[nodiscard]] LargestChange firstOf(const Largest& largest) const;

    HashSeed seed_;
    NameTable fields_;
    Name last_field_;
    NameTable components_;
    Name last_component_;
    TextStore texts_;
    RowStore rows_;
    std::vector<ChangeGroup*, LargeAllocator<ChangeGroup*>> groups_; ///< in the order in which they came
    std::vector<ChangeRank, LargeAllocator<ChangeRank>> ranks_;      ///< of the groups
    Largest largest_change_;
    Largest largest_shift_;
    OpenSlots<Slot> slots_; ///< by all that is equal in a group
    std::size_t additions_ = 0;
    std::vector<Waiting> waiting_; ///< the last few, while their slots come from the memory
    std::string field_;            ///< kept for its room
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
    LargestChange largest;                            ///< change of a value, in per cent of it
    LargestChange largest_shift;                      ///< of a waveform, in seconds, earlier where below 0
    std::array<RecordCounts, kSubjectKinds> counts{}; ///< by SubjectKind
    std::vector<RecordPair<Mdl>> models;              ///< as NEW has them, then what only OLD has
    std::vector<RecordPair<SubMdl>> submodels;        ///< as they were matched
};

} // namespace kestrel
