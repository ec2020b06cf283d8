#include "compare/comparison.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kestrel {

namespace {

/// What is computed by another way, as 3300 milli for 3.3, is not another number.
constexpr double kRounding = 1e-12;

bool isSame(const ChangeDetail& a, const ChangeDetail& b) {
    const auto same_thing = [](const GivenThing& x, const GivenThing& y) {
        if (x.index() != y.index()) return false;
        if (const Extent* const extent = std::get_if<Extent>(&x))
            return extent->low == std::get<Extent>(y).low && extent->high == std::get<Extent>(y).high;
        if (const double* const number = std::get_if<double>(&x)) return *number == std::get<double>(y);
        if (const std::string* const text = std::get_if<std::string>(&x)) return *text == std::get<std::string>(y);
        return true;
    };
    return same_thing(a.was, b.was) && same_thing(a.is, b.is) && a.at == b.at && a.shift == b.shift;
}

/// The change of a number; nothing when there is none.
std::optional<ChangeDetail> detailOf(const Comparison& comparison, const GivenThing& was, const GivenThing& is) {
    const double* const before = std::get_if<double>(&was);
    const double* const now = std::get_if<double>(&is);
    if (before == nullptr && now == nullptr) return std::nullopt;
    ChangeDetail detail;
    if (before != nullptr && now != nullptr) {
        const std::optional<NumberChange> change = changeOf(*before, *now, comparison.share());
        if (!change) return std::nullopt;
        detail.percent = change->percent;
    }
    detail.was = was;
    detail.is = is;
    return detail;
}

void addValue(Comparison& comparison, const FieldName& field, Unit unit, std::vector<ChangeDetail> details) {
    if (details.empty()) return;
    comparison.add({.kind = ChangeKind::value, .field = field.text(), .unit = unit, .details = std::move(details)});
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

GivenThing thingOf(std::string_view text) { return text.empty() ? GivenThing() : GivenThing(std::string(text)); }

std::optional<NumberChange> changeOf(double was, double is, double share) {
    if (was == is) return std::nullopt;
    const double difference = std::abs(is - was);
    const double larger = std::max(std::abs(was), std::abs(is));
    if (std::isfinite(difference) && difference <= std::max(share, kRounding) * larger) return std::nullopt;
    if (was == 0.0 || !std::isfinite(difference)) return NumberChange{};
    return NumberChange{percentOf(difference, std::abs(was))};
}

void addDetail(std::vector<ChangeDetail>& details, ChangeDetail detail) {
    const auto same = std::ranges::find_if(details, [&](const ChangeDetail& other) { return isSame(other, detail); });
    if (same == details.end()) {
        details.push_back(std::move(detail));
        return;
    }
    for (const Corner corner : kCorners)
        if (detail.corners.has(corner)) same->corners = same->corners.with({corner});
}

void compareNumber(Comparison& comparison, const FieldName& field, Unit unit, const GivenThing& was,
                   const GivenThing& is) {
    if (std::optional<ChangeDetail> detail = detailOf(comparison, was, is))
        addValue(comparison, field, unit, {std::move(*detail)});
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
    std::vector<ChangeDetail> details;
    for (const Corner corner : kCorners) {
        std::optional<ChangeDetail> detail = detailOf(comparison, thingOf(was[corner]), thingOf(is[corner]));
        if (!detail) continue;
        detail->corners = {corner};
        addDetail(details, std::move(*detail));
    }
    addValue(comparison, field, unit, std::move(details));
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
    addValue(comparison, field, Unit::none, {std::move(detail)});
}

std::string_view nameInNew(const Comparison& comparison, std::string_view was) {
    const auto found = comparison.renamed.find(was);
    return found == comparison.renamed.end() ? was : found->second;
}

void compareModelName(Comparison& comparison, const FieldName& field, std::string_view was, std::string_view is) {
    if (was != is && nameInNew(comparison, was) != is) compareText(comparison, field, was, is);
}

bool comparePresence(Comparison& comparison, const FieldName& field, bool was, bool is) {
    if (was != is) comparison.add({.kind = is ? ChangeKind::added : ChangeKind::removed, .field = field.text()});
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
    if (order == Order::means && kept_before != kept_now) comparison.add({.kind = ChangeKind::order, .field = name});
}

} // namespace kestrel
