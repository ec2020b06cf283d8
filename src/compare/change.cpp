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
    if (!isToldInPercent(group.unit))
        for (const ChangeDetail& detail : group.details)
            if (const GivenValue size = sizeOf(detail, group.unit)) percent = std::max(percent.value_or(0.0), *size);
    return percent.value_or(std::numeric_limits<double>::infinity());
}

/// Sorts by a number of `Bytes` bytes that `key_of` gives, the largest first, equal ones as they are. There may be a
/// million in hardly any order, for which a sort by comparing takes several times as long.
template <std::size_t Bytes, class Row, class KeyOf> void sortDown(std::vector<Row>& rows, KeyOf key_of) {
    constexpr std::size_t kDigits = 256;
    const auto digit = [&](const Row& row, std::size_t byte) { return 0xFFU & ~(key_of(row) >> 8U * byte); };
    std::array<std::array<std::uint32_t, kDigits>, Bytes> counts{};
    for (const Row& row : rows)
        for (std::size_t byte = 0; byte < Bytes; ++byte)
            ++counts[byte][digit(row, byte)];
    std::vector<Row> sorted;
    for (std::size_t byte = 0; byte < Bytes; ++byte) {
        std::array<std::uint32_t, kDigits>& places = counts[byte];
        if (rows.empty() || places[digit(rows.front(), byte)] == rows.size()) continue;
        std::exclusive_scan(places.begin(), places.end(), places.begin(), std::uint32_t{0});
        sorted.resize(rows.size());
        for (const Row& row : rows)
            sorted[places[digit(row, byte)]++] = row;
        rows.swap(sorted);
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

bool ChangeList::Rank::isAheadOf(const Rank& other) const {
    if (models != other.models) return models > other.models;
    if (size != other.size) return size > other.size;
    return place < other.place;
}

void ChangeList::Largest::offer(std::uint32_t place, double change) {
    if (!places.empty() && std::abs(change) < size) return;
    if (std::abs(change) > size) places.clear();
    size = std::abs(change);
    places.emplace_back(place, change);
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

void ChangeList::addGroup(const Waiting& change) {
    if (groups_.size() == std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
    const auto place = static_cast<std::uint32_t>(groups_.size());
    Rows<ChangeGroup> only;
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
    ranks_.push_back({sizeOf(group, percent), 0, place});
}

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

void ChangeList::addWaiting() {
    const std::uint32_t place = placeOf(*waiting_);
    rows_.add(groups_[place]->names, waiting_->name);
    ranks_[place].models += waiting_->models;
}

void ChangeList::add(const ComparedRecord& record, const Change& change, std::size_t models) {
    ++additions_;
    if (waiting_) {
        addWaiting();
    } else {
        waiting_.emplace();
    }
    waiting_->models = static_cast<std::uint32_t>(models);
    waiting_->group = {.kind = change.kind,
                       .record = record.kind,
                       .unit = change.unit,
                       .axis = change.axis,
                       .field = fieldOf(change.field),
                       .component = componentOf(record)};
    waiting_->details.assign(change.details);
    waiting_->matrix = {change.matrix.count, keep(change.matrix.place)};
    waiting_->name = record.pin.empty() ? record.name : record.pin;
    waiting_->hash = hashOf(*waiting_);
    slots_.makeRoom(groups_.size(), [](const Slot& slot) { return slot.hash; });
    fetch(slots_.at(waiting_->hash, [](const Slot& /*any*/) { return true; }));
}

LargestChange ChangeList::firstOf(const Largest& largest) const {
    if (largest.places.empty()) return {};
    const auto [place, change] = *std::ranges::min_element(
        largest.places, [this](const auto& a, const auto& b) { return ranks_[a.first].isAheadOf(ranks_[b.first]); });
    return {groups_[place], change};
}

RankedChanges ChangeList::ranked() {
    if (waiting_) addWaiting();
    waiting_.reset();
    RankedChanges ranked{.groups = {}, .change = firstOf(largest_change_), .shift = firstOf(largest_shift_)};
    std::vector<Rank> ranks = ranks_;
    // Doubles that are not negative are in the order of their bits.
    sortDown<sizeof(double)>(ranks, [](const Rank& rank) { return std::bit_cast<std::uint64_t>(rank.size); });
    sortDown<sizeof(std::uint32_t)>(ranks, [](const Rank& rank) { return rank.models; });
    ranked.groups.reserve(ranks.size());
    for (const Rank& rank : ranks)
        ranked.groups.push_back(groups_[rank.place]);
    return ranked;
}

} // namespace kestrel
