#include "compare/comparison.hpp"

#include <algorithm>
#include <cmath>

namespace kestrel {

namespace {

/// What is computed by another way, as 3300 milli for 3.3, is not another number.
constexpr double kRounding = 1e-12;

bool isSame(const ChangeDetail& a, const ChangeDetail& b) {
    const auto same_place = [](GivenValue x, GivenValue y) {
        return x.has_value() == y.has_value() && x.value_or(0.0) == y.value_or(0.0);
    };
    return a.was == b.was && a.is == b.is && same_place(a.at, b.at) && same_place(a.shift, b.shift);
}

/// The change of a number; nothing when there is none.
std::optional<ChangeDetail> detailOf(const Comparison& comparison, Unit unit, const GivenThing& was,
                                     const GivenThing& is) {
    const double* const before = std::get_if<double>(&was);
    const double* const now = std::get_if<double>(&is);
    if (before == nullptr && now == nullptr) return std::nullopt;
    ChangeDetail detail;
    if (before != nullptr && now != nullptr) {
        const std::optional<NumberChange> change = changeOf(*before, *now, comparison.share());
        if (!change) return std::nullopt;
        if (isToldInPercent(unit)) detail.percent = change->percent;
    }
    detail.was = was;
    detail.is = is;
    return detail;
}

void addValue(Comparison& comparison, const FieldName& field, Unit unit, std::span<const ChangeDetail> details) {
    if (!details.empty()) comparison.add({.kind = ChangeKind::value, .field = field, .unit = unit, .details = details});
}

} // namespace

GivenThing thingOf(std::string_view text) { return text.empty() ? GivenThing() : GivenThing(text); }

std::optional<NumberChange> changeOf(double was, double is, double share) {
    if (was == is) return std::nullopt;
    const double difference = std::abs(is - was);
    const double larger = std::max(std::abs(was), std::abs(is));
    if (std::isfinite(difference) && difference <= std::max(share, kRounding) * larger) return std::nullopt;
    if (was == 0.0 || !std::isfinite(difference)) return NumberChange{};
    return NumberChange{percentOf(difference, std::abs(was))};
}

void addDetail(ChangeDetails& details, const ChangeDetail& detail) {
    const auto same = std::ranges::find_if(details, [&](const ChangeDetail& other) { return isSame(other, detail); });
    if (same == details.end()) {
        details.push_back(detail);
        return;
    }
    for (const Corner corner : kCorners)
        if (detail.corners.has(corner)) same->corners = same->corners.with({corner});
    if (detail.percent) same->percent = std::max(same->percent.value_or(0.0), *detail.percent);
}

void compareNumber(Comparison& comparison, const FieldName& field, Unit unit, const GivenThing& was,
                   const GivenThing& is) {
    if (std::optional<ChangeDetail> detail = detailOf(comparison, unit, was, is))
        addValue(comparison, field, unit, {&*detail, 1});
}

void compareValue(Comparison& comparison, const FieldName& field, Unit unit, GivenValue was, GivenValue is) {
    if (was.has_value() == is.has_value() && was.value_or(0.0) == is.value_or(0.0)) return;
    compareNumber(comparison, field, unit, thingOf(was), thingOf(is));
}

void compareCell(Comparison& comparison, const FieldName& field, Unit unit, const Cell& was, const Cell& is) {
    if (was == is) return;
    compareNumber(comparison, field, unit, thingOf(was), thingOf(is));
}

void compareRange(Comparison& comparison, const FieldName& field, Unit unit, const Rng& was, const Rng& is) {
    if (was.values == is.values) return;
    ChangeDetails details;
    for (const Corner corner : kCorners) {
        std::optional<ChangeDetail> detail = detailOf(comparison, unit, thingOf(was[corner]), thingOf(is[corner]));
        if (!detail) continue;
        detail->corners = {corner};
        addDetail(details, *detail);
    }
    addValue(comparison, field, unit, details);
}

void compareRange(Comparison& comparison, const FieldName& field, Unit unit, const GivenRange& was,
                  const GivenRange& is) {
    if (!was && !is) return;
    compareRange(comparison, field, unit, was ? *was : Rng(), is ? *is : Rng());
}

void compareText(Comparison& comparison, const FieldName& field, std::string_view was, std::string_view is) {
    if (was == is) return;
    ChangeDetail detail;
    detail.was = thingOf(was);
    detail.is = thingOf(is);
    addValue(comparison, field, Unit::none, {&detail, 1});
}

void compareWord(Comparison& comparison, const FieldName& field, std::string_view was, std::string_view is,
                 std::string_view standard) {
    const auto meant = [standard](std::string_view word) { return word.empty() ? standard : word; };
    if (meant(was) != meant(is)) compareText(comparison, field, was, is);
}

std::string_view nameInNew(const Comparison& comparison, std::string_view was) {
    if (comparison.renamed.empty()) return was;
    const auto found = comparison.renamed.find(was);
    return found == comparison.renamed.end() ? was : found->second;
}

void compareModelName(Comparison& comparison, const FieldName& field, std::string_view was, std::string_view is) {
    if (was != is && nameInNew(comparison, was) != is) compareText(comparison, field, was, is);
}

bool comparePresence(Comparison& comparison, const FieldName& field, bool was, bool is) {
    if (was != is) comparison.add({.kind = is ? ChangeKind::added : ChangeKind::removed, .field = field});
    return was && is;
}

void compareNames(Comparison& comparison, const FieldName& field, std::span<const std::string> was,
                  std::span<const std::string> is, Order order) {
    if (std::ranges::equal(was, is)) return;
    const ViewSet before(was.begin(), was.end());
    const ViewSet now(is.begin(), is.end());
    std::vector<std::string_view> kept_before;
    std::vector<std::string_view> kept_now;
    const std::string name = field.text();
    for (const std::string& text : is) {
        if (before.contains(text)) {
            kept_now.push_back(text);
        } else {
            comparePresence(comparison, {name, text}, false, true);
        }
    }
    for (const std::string& text : was) {
        if (now.contains(text)) {
            kept_before.push_back(text);
        } else {
            comparePresence(comparison, {name, text}, true, false);
        }
    }
    if (order == Order::means && kept_before != kept_now) comparison.add({.kind = ChangeKind::order, .field = field});
}

} // namespace kestrel
