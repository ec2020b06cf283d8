#include "compare/change.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

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

/// Has the memory fetched, so that looking there a little later does not wait for it.
void fetch([[maybe_unused]] const auto& object) {
#ifdef __GNUC__
    __builtin_prefetch(&object);
#endif
}

bool isSame(GivenValue a, GivenValue b) { return a.has_value() == b.has_value() && a.value_or(0.0) == b.value_or(0.0); }

bool isSame(const ChangeDetail& a, const ChangeDetail& b) {
    return std::ranges::all_of(kCorners,
                               [&](Corner corner) { return a.corners.has(corner) == b.corners.has(corner); }) &&
           a.was == b.was && a.is == b.is && isSame(a.at, b.at) && isSame(a.shift, b.shift) &&
           isSame(a.percent, b.percent);
}

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
    if (!isToldInPercent(group.unit)) {
        for (const ChangeDetail& detail : group.details)
            if (const GivenValue size = sizeOf(detail, group.unit)) percent = std::max(percent.value_or(0.0), *size);
    }
    return percent.value_or(std::numeric_limits<double>::infinity());
}

using Ranks = std::vector<ChangeRank, LargeAllocator<ChangeRank>>;

/// Sorts by a number of 32 bits that `key_of` gives, the largest first, equal ones as they are.
template <class KeyOf> void sortDown(Ranks& ranks, KeyOf key_of) {
    constexpr std::size_t kBytes = 4;
    constexpr std::size_t kDigits = 256;
    const auto digit = [&](const ChangeRank& rank, std::size_t byte) { return 0xFFU & ~(key_of(rank) >> 8U * byte); };
    std::array<std::array<std::uint32_t, kDigits>, kBytes> counts{};
    for (const ChangeRank& rank : ranks) {
        for (std::size_t byte = 0; byte < kBytes; ++byte)
            ++counts[byte][digit(rank, byte)];
    }
    Ranks sorted;
    for (std::size_t byte = 0; byte < kBytes; ++byte) {
        std::array<std::uint32_t, kDigits>& places = counts[byte];
        if (places[digit(ranks.front(), byte)] == ranks.size()) continue;
        std::exclusive_scan(places.begin(), places.end(), places.begin(), std::uint32_t{0});
        sorted.resize(ranks.size());
        for (const ChangeRank& rank : ranks)
            sorted[places[digit(rank, byte)]++] = rank;
        ranks.swap(sorted);
    }
}

/// Puts what is ahead first. There may be a million in hardly any order, for which a sort by comparing takes several
/// times as long: digits sort them roughly, by the models and by the upper half of the sizes.
void sortByRank(Ranks& ranks) {
    if (ranks.empty()) return;
    // Doubles that are not negative are in the order of their bits.
    const auto upper_half = [](const ChangeRank& rank) {
        return static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(rank.size) >> 32U);
    };
    sortDown(ranks, upper_half);
    sortDown(ranks, [](const ChangeRank& rank) { return rank.models; });
    const auto is_ahead = [](const ChangeRank& a, const ChangeRank& b) { return a.isAheadOf(b); };
    for (auto first = ranks.begin(); first != ranks.end();) {
        const auto last = std::find_if(first + 1, ranks.end(), [&](const ChangeRank& rank) {
            return rank.models != first->models || upper_half(rank) != upper_half(*first);
        });
        if (!std::is_sorted(first, last, is_ahead)) std::sort(first, last, is_ahead);
        first = last;
    }
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

bool ChangeRank::isAheadOf(const ChangeRank& other) const {
    if (models != other.models) return models > other.models;
    if (size != other.size) return size > other.size;
    return place < other.place;
}

void ChangeList::Largest::offer(std::uint32_t place, double change) {
    if (!changes.empty() && std::abs(change) < size) return;
    if (std::abs(change) > size) changes.clear();
    size = std::abs(change);
    changes.emplace_back(place, change);
}

/// That which is written first; nothing where there is none.
LargestChange ChangeList::firstOf(const Largest& largest) const {
    if (largest.changes.empty()) return {};
    const auto first = std::ranges::min_element(
        largest.changes, [this](const auto& a, const auto& b) { return ranks_[a.first].isAheadOf(ranks_[b.first]); });
    return {groups_[first->first], first->second};
}

std::uint32_t ChangeList::hashOf(const Waiting& change) const {
    const ChangeGroup& group = change.group;
    ChangeHash hash(seed_);
    hash.add(std::uint64_t{group.field.number()} << 32U | static_cast<std::uint64_t>(group.kind) << 16U |
             static_cast<std::uint64_t>(group.record) << 8U | static_cast<std::uint64_t>(group.unit));
    if (!group.component.empty()) hash.add(std::uint64_t{group.component.number()});
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

/// Makes a group for a change that no other is equal to so far.
void ChangeList::addGroup(const Waiting& change) {
    if (groups_.size() == std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
    Rows<ChangeGroup> only;
    const auto place = static_cast<std::uint32_t>(groups_.size());
    ChangeGroup& group = rows_.add(only, change.group);
    for (const ChangeDetail& detail : change.details) {
        rows_.add(group.details, detail);
        if (detail.shift && group.kind != ChangeKind::level) largest_shift_.offer(place, *detail.shift);
    }
    if (group.kind == ChangeKind::matrix) {
        Rows<MatrixChange> matrix;
        group.matrix = &rows_.add(matrix, change.matrix);
    }
    const GivenValue percent = group.percent();
    if (percent && group.kind != ChangeKind::shift) largest_change_.offer(place, *percent);
    groups_.push_back(&group);
    ranks_.push_back({.size = sizeOf(group, percent), .place = place});
}

/// The place of the group of changes that are equal to this one, which is made when there is none.
std::uint32_t ChangeList::placeOf(const Waiting& change) {
    Slot& slot = slots_.at(change.hash, [&](const Slot& other) {
        if (other.hash != change.hash) return false;
        const ChangeGroup& group = *groups_[other.number - 1];
        return group.kind == change.group.kind && group.record == change.group.record &&
               group.unit == change.group.unit && group.field == change.group.field &&
               group.component == change.group.component &&
               (group.matrix == nullptr || *group.matrix == change.matrix) &&
               std::ranges::equal(group.details, change.details,
                                  [](const ChangeDetail& a, const ChangeDetail& b) { return isSame(a, b); });
    });
    if (slot.isFree()) {
        addGroup(change);
        slot = {static_cast<std::uint32_t>(groups_.size()), change.hash};
    }
    return slot.number - 1;
}

void ChangeList::addWaiting(const Waiting& change) {
    slots_.makeRoom(groups_.size(), [](const Slot& slot) { return slot.hash; });
    const std::uint32_t place = placeOf(change);
    rows_.add(groups_[place]->names, change.name);
    ranks_[place].models += change.models;
}

void ChangeList::add(const ComparedRecord& record, const Change& change, std::size_t models) {
    constexpr std::size_t kMostWaiting = 8;
    const std::size_t place = additions_++ % kMostWaiting;
    if (place == waiting_.size()) {
        waiting_.emplace_back();
    } else {
        addWaiting(waiting_[place]);
    }
    Waiting& added = waiting_[place];
    added.group = {.kind = change.kind,
                   .record = record.kind,
                   .unit = change.unit,
                   .axis = change.axis,
                   .field = fieldOf(change.field),
                   .component = componentOf(record)};
    added.models = static_cast<std::uint32_t>(models);
    added.details.assign(change.details);
    added.matrix = {change.matrix.count, keep(change.matrix.place)};
    added.name = record.pin.empty() ? record.name : record.pin;
    added.hash = hashOf(added);
    if (!slots_.empty()) fetch(slots_.at(added.hash, [](const Slot& /*any*/) { return true; }));
}

RankedChanges ChangeList::ranked() {
    const std::size_t oldest = waiting_.empty() ? 0 : additions_ % waiting_.size();
    for (std::size_t i = 0; i < waiting_.size(); ++i)
        addWaiting(waiting_[(oldest + i) % waiting_.size()]);
    waiting_.clear();
    RankedChanges ranked{.groups = {}, .change = firstOf(largest_change_), .shift = firstOf(largest_shift_)};
    sortByRank(ranks_);
    ranked.groups.reserve(ranks_.size());
    for (const ChangeRank& rank : ranks_)
        ranked.groups.push_back(groups_[rank.place]);
    return ranked;
}

} // namespace kestrel
