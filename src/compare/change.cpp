#include "compare/change.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

namespace kestrel {

namespace {

void appendBits(std::string& key, std::uint64_t bits) {
    for (int shift = 0; shift < 64; shift += 8)
        key.push_back(static_cast<char>((bits >> static_cast<unsigned>(shift)) & 0xFFU));
}

void appendText(std::string& key, std::string_view text) {
    appendBits(key, text.size());
    key.append(text);
}

void appendNumber(std::string& key, const std::optional<double>& number) {
    appendBits(key, number.has_value() ? 1 : 0);
    if (number) appendBits(key, std::bit_cast<std::uint64_t>(*number));
}

void appendThing(std::string& key, const GivenThing& thing) {
    appendBits(key, thing.index());
    if (const double* const number = std::get_if<double>(&thing)) {
        appendNumber(key, *number);
    } else if (const std::string* const text = std::get_if<std::string>(&thing)) {
        appendText(key, *text);
    } else if (const Extent* const extent = std::get_if<Extent>(&thing)) {
        appendNumber(key, extent->low);
        appendNumber(key, extent->high);
    }
}

/// Appends all of a change, so that equal texts mean equal changes.
void appendChange(std::string& key, const Change& change) {
    appendBits(key, static_cast<std::uint64_t>(change.kind));
    appendText(key, change.field);
    appendBits(key, static_cast<std::uint64_t>(change.unit));
    for (const ChangeDetail& detail : change.details) {
        for (const Corner corner : kCorners)
            key.push_back(detail.corners.has(corner) ? '1' : '0');
        appendThing(key, detail.was);
        appendThing(key, detail.is);
        appendNumber(key, detail.at);
        appendNumber(key, detail.shift);
        appendNumber(key, detail.percent);
    }
    appendBits(key, change.count);
    appendText(key, change.place);
}

/// Puts what cannot be measured, such as a record that is new, ahead of what can.
double rank(const ChangeGroup& group) { return group.percent().value_or(std::numeric_limits<double>::infinity()); }

} // namespace

std::string_view unitName(Unit unit) {
    constexpr std::array<std::string_view, 10> kNames{"", "V", "A", "ohm", "F", "H", "s", "C", "V/s", "Vs"};
    return kNames[static_cast<std::size_t>(unit)];
}

std::optional<double> percentOf(double difference, double scale) {
    constexpr double kSteps = 1e9; // of one per cent
    if (scale == 0.0) return std::nullopt;
    const double percent = std::abs(difference) / scale * 100;
    if (!std::isfinite(percent * kSteps)) return std::nullopt;
    return std::round(percent * kSteps) / kSteps;
}

std::optional<double> ChangeGroup::percent() const {
    std::optional<double> most;
    for (const ChangeDetail& detail : change.details)
        if (detail.percent) most = std::max(most.value_or(0.0), *detail.percent);
    return most;
}

void ChangeList::add(const ComparedRecord& record, Change change, std::size_t models) {
    ++additions_;
    key_.clear();
    key_.push_back(static_cast<char>(record.kind));
    const bool is_pin = !record.pin.empty();
    appendText(key_, is_pin ? record.name : std::string_view());
    appendChange(key_, change);
    const auto [at, is_new] = places_.try_emplace(key_, groups_.size());
    if (is_new) {
        groups_.push_back(
            {.change = std::move(change), .kind = record.kind, .component = is_pin ? record.name : std::string_view()});
    }
    ChangeGroup& group = groups_[at->second];
    group.names.push_back(is_pin ? record.pin : record.name);
    group.models += models;
}

std::vector<ChangeGroup> ChangeList::takeSorted() {
    places_.clear();
    std::ranges::stable_sort(groups_, [](const ChangeGroup& a, const ChangeGroup& b) {
        return a.models != b.models ? a.models > b.models : rank(a) > rank(b);
    });
    return std::exchange(groups_, {});
}

const ChangeGroup* FileChanges::largest() const {
    const ChangeGroup* largest = nullptr;
    for (const ChangeGroup& group : groups) {
        const ChangeKind kind = group.change.kind;
        if (kind == ChangeKind::shift || kind == ChangeKind::extent) continue;
        const std::optional<double> percent = group.percent();
        if (percent && (largest == nullptr || *percent > *largest->percent())) largest = &group;
    }
    return largest;
}

} // namespace kestrel
