#include "compare/change.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace kestrel {

namespace {

/// Gathers the parts of a change into a number that depends on the seed.
class ChangeHash {
public:
    explicit ChangeHash(const HashSeed& seed) : seed_(seed), state_(seed.value()) {}

    void add(std::uint64_t bits) {
        constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
        state_ = (state_ ^ bits) * (seed_.value() ^ (kOdd & ~std::uint64_t{1}));
        state_ ^= state_ >> 29U;
    }
    void add(std::string_view text) { add(seed_.hashOf(text)); }
    void add(GivenValue value) { add(value ? std::bit_cast<std::uint64_t>(*value) : std::uint64_t{1}); }
    void add(const GivenThing& thing) {
        if (const double* const number = std::get_if<double>(&thing)) return add(GivenValue(*number));
        if (const std::string_view* const text = std::get_if<std::string_view>(&thing)) return add(*text);
        const Extent* const extent = std::get_if<Extent>(&thing);
        if (extent == nullptr) return add(std::uint64_t{2});
        add(GivenValue(extent->low));
        add(GivenValue(extent->high));
    }

    [[nodiscard]] std::uint32_t value() const { return static_cast<std::uint32_t>(state_ ^ state_ >> 32U); }

private:
    const HashSeed& seed_;
    std::uint64_t state_;
};

bool isSame(GivenValue a, GivenValue b) { return a.has_value() == b.has_value() && a.value_or(0.0) == b.value_or(0.0); }

bool isSame(const ChangeDetail& a, const ChangeDetail& b) {
    return std::ranges::all_of(kCorners,
                               [&](Corner corner) { return a.corners.has(corner) == b.corners.has(corner); }) &&
           a.was == b.was && a.is == b.is && isSame(a.at, b.at) && isSame(a.shift, b.shift) &&
           isSame(a.percent, b.percent);
}

/// What a group is sorted by.
struct Rank {
    double percent;
    std::uint32_t models;
    std::uint32_t place; ///< in the order in which they came

    [[nodiscard]] bool isAheadOf(const Rank& other) const {
        if (models != other.models) return models > other.models;
        if (percent != other.percent) return percent > other.percent;
        return place < other.place;
    }
};

/// The largest one so far, of equal ones that which is written first.
struct Largest {
    LargestChange of{};
    Rank rank{};

    void offer(const LargestChange& other, const Rank& other_rank) {
        const double size = std::abs(of.size);
        const double other_size = std::abs(other.size);
        if (of.group != nullptr && (other_size < size || (other_size == size && rank.isAheadOf(other_rank)))) return;
        of = other;
        rank = other_rank;
    }
};

/// How large a change in degrees or of a count is, in per cent.
GivenValue sizeOf(const ChangeDetail& detail, Unit unit) {
    constexpr double kRoom = 298.15; // kelvin
    const double* const was = std::get_if<double>(&detail.was);
    const double* const is = std::get_if<double>(&detail.is);
    if (was == nullptr || is == nullptr) return {};
    return percentOf(*is - *was, unit == Unit::celsius ? kRoom : std::abs(*was));
}

/// By how many per cent a group is sorted. What cannot be measured, such as a record that is new, comes ahead of what
/// can.
double sizeOf(const ChangeGroup& group, GivenValue percent) {
    if (!isToldInPercent(group.unit))
        for (const ChangeDetail& detail : group.details)
            if (const GivenValue size = sizeOf(detail, group.unit)) percent = std::max(percent.value_or(0.0), *size);
    return percent.value_or(std::numeric_limits<double>::infinity());
}

} // namespace

std::string FieldName::text() const {
    std::string text;
    for (const std::string_view word : words) {
        if (word.empty()) continue;
        text.append(text.empty() ? "" : " ").append(word);
    }
    return text;
}

std::string_view unitName(Unit unit) {
    static constexpr std::array<std::string_view, 11> kNames{"", "", "V", "A", "ohm", "F", "H", "s", "C", "V/s", "Vs"};
    return kNames[static_cast<std::size_t>(unit)];
}

GivenValue percentOf(double difference, double scale) {
    constexpr double kSteps = 1e9; // of one per cent
    if (scale == 0.0) return {};
    const double percent = std::abs(difference) / scale * 100;
    if (!std::isfinite(percent * kSteps)) return {};
    return std::round(percent * kSteps) / kSteps;
}

GivenValue ChangeGroup::percent() const {
    GivenValue most;
    for (const ChangeDetail& detail : details) {
        if (kind == ChangeKind::table && isShiftAlone(detail)) continue;
        if (detail.percent) most = std::max(most.value_or(0.0), *detail.percent);
    }
    return most;
}

GivenThing ChangeList::kept(const GivenThing& thing) {
    const std::string_view* const text = std::get_if<std::string_view>(&thing);
    return text == nullptr ? thing : GivenThing(texts_.add(*text).view());
}

std::uint32_t ChangeList::hashOf(const ComparedRecord& record, const Change& change, Name field) const {
    ChangeHash hash(seed_);
    hash.add(std::uint64_t{field.number()} << 32U | static_cast<std::uint64_t>(change.kind) << 16U |
             static_cast<std::uint64_t>(record.kind) << 8U | static_cast<std::uint64_t>(change.unit));
    if (!record.pin.empty()) hash.add(record.name);
    for (const ChangeDetail& detail : change.details) {
        hash.add(detail.was);
        hash.add(detail.is);
        if (detail.at) hash.add(detail.at);
        if (detail.shift) hash.add(detail.shift);
    }
    if (change.matrix.count != 0) hash.add(change.matrix.count);
    return hash.value();
}

Name ChangeList::fieldOf(const FieldName& field) {
    const auto& [first, second, third] = field.words;
    if (second.empty() && third.empty()) {
        if (last_field_ != first) last_field_ = fields_.enter(first);
        return last_field_;
    }
    field_.clear();
    for (const std::string_view word : field.words) {
        if (word.empty()) continue;
        if (!field_.empty()) field_.push_back(' ');
        field_.append(word);
    }
    return fields_.enter(field_);
}

/// Whose pins are named; empty where records are.
Name ChangeList::componentOf(const ComparedRecord& record) {
    if (record.pin.empty()) return {};
    if (last_component_ != record.name) last_component_ = components_.enter(record.name);
    return last_component_;
}

ChangeGroup& ChangeList::groupOf(const ComparedRecord& record, const Change& change) {
    const Name field = fieldOf(change.field);
    const Name component = componentOf(record);
    const std::uint32_t hash = hashOf(record, change, field);
    slots_.makeRoom(groups_.size(), [](const Slot& slot) { return slot.hash; });
    Slot& slot = slots_.at(hash, [&](const Slot& other) {
        if (other.hash != hash) return false;
        const ChangeGroup& group = *groups_[other.number - 1];
        return group.kind == change.kind && group.record == record.kind && group.unit == change.unit &&
               group.field == field && group.component == component &&
               (group.matrix == nullptr || *group.matrix == change.matrix) &&
               std::ranges::equal(group.details, change.details,
                                  [](const ChangeDetail& a, const ChangeDetail& b) { return isSame(a, b); });
    });
    if (!slot.isFree()) return *groups_[slot.number - 1];
    if (groups_.size() == std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
    Rows<ChangeGroup> only;
    ChangeGroup& group = rows_.add(only, ChangeGroup{.kind = change.kind,
                                                     .record = record.kind,
                                                     .unit = change.unit,
                                                     .axis = change.axis,
                                                     .field = field,
                                                     .component = component});
    groups_.push_back(&group);
    for (ChangeDetail detail : change.details) {
        detail.was = kept(detail.was);
        detail.is = kept(detail.is);
        rows_.add(group.details, detail);
    }
    if (change.kind == ChangeKind::matrix) {
        Rows<MatrixChange> matrix;
        group.matrix = &rows_.add(matrix, {change.matrix.count, texts_.add(change.matrix.place).view()});
    }
    slot = {static_cast<std::uint32_t>(groups_.size()), hash};
    return group;
}

void ChangeList::add(const ComparedRecord& record, const Change& change, std::size_t models) {
    ++additions_;
    ChangeGroup& group = groupOf(record, change);
    rows_.add(group.names, record.pin.empty() ? record.name : record.pin);
    group.models += static_cast<std::uint32_t>(models);
}

RankedChanges ChangeList::ranked() const {
    RankedChanges ranked;
    std::vector<Rank> ranks;
    ranks.reserve(groups_.size());
    Largest change;
    Largest shift;
    for (const ChangeGroup* const group : groups_) {
        const GivenValue percent = group->percent();
        const Rank rank{sizeOf(*group, percent), group->models, static_cast<std::uint32_t>(ranks.size())};
        ranks.push_back(rank);
        if (percent && group->kind != ChangeKind::shift) change.offer({group, *percent}, rank);
        for (const ChangeDetail& detail : group->details)
            if (detail.shift && group->kind != ChangeKind::level) shift.offer({group, *detail.shift}, rank);
    }
    ranked.change = change.of;
    ranked.shift = shift.of;
    std::ranges::stable_sort(ranks, [](const Rank& a, const Rank& b) { return a.isAheadOf(b); });
    ranked.groups.reserve(ranks.size());
    for (const Rank& rank : ranks)
        ranked.groups.push_back(groups_[rank.place]);
    return ranked;
}

} // namespace kestrel
