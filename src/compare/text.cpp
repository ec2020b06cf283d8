#include "base/output.hpp"
#include "compare/output.hpp"
#include "quality/number_text.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace kestrel {

namespace {

std::string numberText(double value, Unit unit, int digits) {
    if (unit == Unit::voltsPerSecond) return std::string(NumberText(value * 1e-9, "V/ns", digits));
    const bool has_letters = unit != Unit::none && unit != Unit::celsius;
    std::string text(NumberText(value, has_letters ? unitName(unit) : "", digits));
    if (unit == Unit::celsius) text.append(" C");
    return text;
}

/// A place in a table: volts as they are, as tables have them.
std::string placeText(double value, Unit axis, int digits) {
    if (axis != Unit::volts) return numberText(value, axis, digits);
    return std::string(NumberText(value, "", digits)).append(" V");
}

std::string extentText(const Extent& extent, Unit unit, int digits) {
    return placeText(extent.low, unit, digits).append(" to ").append(placeText(extent.high, unit, digits));
}

struct TwoTexts {
    std::string was;
    std::string is;
};

/// Two texts with as many digits as it takes that they do not look the same.
template <class Thing>
TwoTexts textsApart(const Thing& was, const Thing& is, Unit unit,
                    std::string (*write)(const Thing& thing, Unit unit, int digits)) {
    TwoTexts texts;
    for (int digits = NumberText::kFewDigits; digits <= NumberText::kAllDigits && texts.was == texts.is; ++digits)
        texts = {write(was, unit, digits), write(is, unit, digits)};
    return texts;
}

/// True for a text of one line that is not long.
bool isShown(const std::string& text) {
    constexpr std::size_t kMost = 60;
    return text.size() <= kMost && text.find('\n') == std::string::npos;
}

std::string textOf(const GivenThing& thing, Unit unit) {
    if (const double* const number = std::get_if<double>(&thing))
        return numberText(*number, unit, NumberText::kFewDigits);
    if (const std::string* const text = std::get_if<std::string>(&thing)) return isShown(*text) ? *text : "a long text";
    if (const Extent* const extent = std::get_if<Extent>(&thing))
        return extentText(*extent, unit, NumberText::kFewDigits);
    return "not given";
}

std::string percentText(double percent) {
    constexpr double kWhole = 999.5;
    if (percent < kWhole) return std::string(plainNumber(percent)).append(" %");
    constexpr double kMost = 1e15;
    std::string text;
    if (percent >= kMost) {
        appendGeneral(text, percent);
    } else {
        appendInteger(text, std::llround(percent));
    }
    return text.append(" %");
}

TwoTexts textsOf(const ChangeDetail& detail, Unit unit) {
    const double* const was = std::get_if<double>(&detail.was);
    const double* const is = std::get_if<double>(&detail.is);
    if (was != nullptr && is != nullptr)
        return textsApart<double>(
            *was, *is, unit, [](const double& value, Unit of, int digits) { return numberText(value, of, digits); });
    const Extent* const old_extent = std::get_if<Extent>(&detail.was);
    const Extent* const new_extent = std::get_if<Extent>(&detail.is);
    if (old_extent != nullptr && new_extent != nullptr)
        return textsApart<Extent>(*old_extent, *new_extent, unit, extentText);
    return {textOf(detail.was, unit), textOf(detail.is, unit)};
}

/// "5 pF, was 4 pF", or that it is another text where neither can be shown.
std::string wasAndIs(const ChangeDetail& detail, Unit unit) {
    const std::string* const was = std::get_if<std::string>(&detail.was);
    const std::string* const is = std::get_if<std::string>(&detail.is);
    if (was != nullptr && is != nullptr && (!isShown(*was) || !isShown(*is))) return "another text";
    TwoTexts texts = textsOf(detail, unit);
    return texts.is.append(", was ").append(texts.was);
}

std::string valueText(const ChangeDetail& detail, Unit unit) {
    std::string text = wasAndIs(detail, unit);
    if (!detail.percent) return text;
    const bool is_more = std::get<double>(detail.is) > std::get<double>(detail.was);
    return text.append(is_more ? " (+" : " (-").append(percentText(*detail.percent)).append(")");
}

std::string shiftText(double shift) {
    return std::string(seconds(std::abs(shift))).append(shift > 0 ? " later" : " earlier");
}

/// How a value of a table differs: in words that go with a percentage.
std::string_view differenceWord(double was, double is, Unit unit) {
    if (unit != Unit::amperes) return is > was ? "higher" : "lower";
    if ((was < 0) != (is < 0) && was != 0 && is != 0) return "current the other way";
    return std::abs(is) > std::abs(was) ? "more current" : "less current";
}

std::string tableText(const ChangeDetail& detail, const Change& change) {
    const double was = std::get<double>(detail.was);
    const double is = std::get<double>(detail.is);
    std::string text;
    if (detail.shift) text.append(shiftText(*detail.shift)).append(", and ");
    if (detail.percent) text.append("up to ").append(percentText(*detail.percent)).append(" ");
    text.append(differenceWord(was, is, change.unit)).append(" (at ");
    text.append(placeText(detail.at.value_or(0.0), change.axis, NumberText::kFewDigits)).append(": ");
    return text.append(wasAndIs(detail, change.unit)).append(")");
}

std::string extentChangeText(const ChangeDetail& detail, Unit unit) {
    const bool is_extent = std::holds_alternative<Extent>(detail.was) && std::holds_alternative<Extent>(detail.is);
    return std::string(is_extent ? "covers " : "").append(wasAndIs(detail, unit));
}

std::string matrixText(const ChangeDetail& detail, const Change& change) {
    std::string text;
    appendInteger(text, static_cast<std::int64_t>(change.count));
    text.append(change.count == 1 ? " entry changed" : " entries changed");
    if (detail.percent && change.count > 1) text.append(", at most");
    if (detail.percent) text.append(" by ").append(percentText(*detail.percent));
    return text.append(" (").append(change.place).append(": ").append(wasAndIs(detail, change.unit)).append(")");
}

std::string detailText(const ChangeDetail& detail, const Change& change) {
    switch (change.kind) {
    case ChangeKind::value: return valueText(detail, change.unit);
    case ChangeKind::table: return tableText(detail, change);
    case ChangeKind::shift: return shiftText(detail.shift.value_or(0.0));
    case ChangeKind::extent: return extentChangeText(detail, change.unit);
    case ChangeKind::matrix: return matrixText(detail, change);
    case ChangeKind::renamed: return std::string("renamed, was ").append(textOf(detail.was, Unit::none));
    case ChangeKind::order: return std::string("in another order; the first is ").append(wasAndIs(detail, Unit::none));
    case ChangeKind::added:
    case ChangeKind::removed: break;
    }
    return {};
}

/// "typ, min and max"; empty without a corner.
std::string cornersText(const EnumSet<Corner>& corners) {
    constexpr std::array<std::string_view, kCornerCount> kWords{"typ", "min", "max"};
    std::vector<std::string_view> words;
    for (const Corner corner : kCorners)
        if (corners.has(corner)) words.push_back(kWords[placeOf(corner)]);
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i)
        text.append(i == 0 ? "" : i + 1 == words.size() ? " and " : ", ").append(words[i]);
    return text;
}

/// What changed, without the records.
std::string bodyOf(const Change& change) {
    std::string text = change.field;
    if (change.kind == ChangeKind::added || change.kind == ChangeKind::removed) {
        text.append(text.empty() ? "" : " ").append(change.kind == ChangeKind::added ? "added" : "removed");
        return text;
    }
    if (change.details.empty()) return text.append(" in another order");
    bool is_first = true;
    for (const ChangeDetail& detail : change.details) {
        if (!is_first) text.append("; ");
        const std::string corners = cornersText(detail.corners);
        if (is_first && !text.empty() && !corners.empty()) text.push_back(' ');
        text.append(corners);
        if (change.kind == ChangeKind::order) {
            text.push_back(' ');
        } else if (!text.empty()) {
            text.append(": ");
        }
        text.append(detailText(detail, change));
        is_first = false;
    }
    return text;
}

struct KindWords {
    std::string_view one;
    std::string_view many;
};
constexpr std::array<KindWords, kSubjectKinds> kKindWords{{
    {"header", "headers"},
    {"component", "components"},
    {"model", "models"},
    {"external circuit", "external circuits"},
    {"submodel", "submodels"},
    {"selector", "selectors"},
    {"test data", "test data"},
    {"test load", "test loads"},
    {"package model", "package models"},
    {"board", "boards"},
}};
const KindWords& wordsOf(SubjectKind kind) { return kKindWords[static_cast<std::size_t>(kind)]; }

std::string capital(std::string_view word) {
    std::string text(word);
    text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

/// Whom a change is about.
std::string recordsOf(const ChangeGroup& group, std::size_t most_names) {
    const bool several = group.names.size() > 1;
    const KindWords& words = wordsOf(group.kind);
    std::string text = capital(several && group.component.empty() ? words.many : words.one);
    if (!group.component.empty()) text.append(" ").append(group.component).append(several ? ", pins" : ", pin");
    const std::size_t named = group.names.size() > most_names + 1 ? most_names : group.names.size();
    for (std::size_t i = 0; i < named; ++i) {
        const bool is_last = i + 1 == group.names.size();
        if (i > 0) text.append(is_last ? " and" : ",");
        if (!group.names[i].empty()) text.append(" ").append(group.names[i]);
    }
    if (named == group.names.size()) return text;
    text.append(" and ");
    appendInteger(text, static_cast<std::int64_t>(group.names.size() - named));
    return text.append(" more");
}

/// For people.
class CompareText : public CompareFormat {
public:
    CompareText(Output& out, const CompareFormatSettings& settings) : out_(out), settings_(settings) {}

    void pair(const ComparedPair& pair) override {
        constexpr std::size_t kMostNames = 20;
        if (pair.changes == nullptr) return;
        const bool same = pair.changes->groups.empty();
        if (same && settings_.quiet) return;
        writeLine(std::string("Comparing ").append(pair.was.path).append(" with ").append(pair.is.path).append("\n"));
        writeErrors(pair.was);
        writeErrors(pair.is);
        for (const ChangeGroup& group : pair.changes->groups)
            writeLine(lineOf(group, kMostNames));
        writeLine(std::string(same ? "" : "\n").append(summaryOf(*pair.changes)).append("\n"));
    }

    void lonely(std::string_view path, bool is_new) override {
        writeLine(std::string(is_new ? "Only new: " : "Only old: ").append(path));
    }

    void ends(const CompareTotals& totals) override {
        if (totals.pairs + totals.only_old + totals.only_new <= 1 || settings_.quiet) return;
        std::string text;
        appendInteger(text, totals.pairs);
        text.append(totals.pairs == 1 ? " file compared, " : " files compared, ");
        appendInteger(text, totals.different);
        writeLine(text.append(" different"));
    }

private:
    void writeLine(std::string_view line) {
        out_.write(line);
        out_.write("\n");
    }

    void writeErrors(const ComparedPath& file) {
        if (file.errors == 0) return;
        std::string text(file.path);
        text.append(" fails with ");
        appendInteger(text, file.errors);
        writeLine(text.append(file.errors == 1 ? " error; compared as far as it was read"
                                               : " errors; compared as far as it was read"));
    }

    Output& out_;
    CompareFormatSettings settings_;
};

/// The kinds in the order in which they are counted.
constexpr auto kCountedKinds =
    std::to_array({SubjectKind::model, SubjectKind::submodel, SubjectKind::modelSelector, SubjectKind::component,
                   SubjectKind::packageModel, SubjectKind::externalCircuit, SubjectKind::testLoad,
                   SubjectKind::testData, SubjectKind::header});

std::string countsText(SubjectKind kind, const RecordCounts& counts) {
    std::string text;
    const auto append = [&](std::int64_t count, std::string_view what) {
        if (count == 0) return;
        const bool is_first = text.empty();
        if (!is_first) text.append(", ");
        appendInteger(text, count);
        if (is_first) text.append(" ").append(count == 1 ? wordsOf(kind).one : wordsOf(kind).many);
        text.append(" ").append(what);
    };
    append(counts.changed, "changed");
    append(counts.added, "added");
    append(counts.removed, "removed");
    append(counts.renamed, "renamed");
    return text;
}

} // namespace

std::string lineOf(const ChangeGroup& group, std::size_t most_names) {
    return recordsOf(group, most_names).append(": ").append(bodyOf(group.change));
}

std::string summaryOf(const FileChanges& changes) {
    if (changes.groups.empty()) return "No difference";
    std::string text;
    for (const SubjectKind kind : kCountedKinds) {
        const RecordCounts& counts = changes.counts[static_cast<std::size_t>(kind)];
        if (counts.all() != 0) text.append(text.empty() ? "" : "; ").append(countsText(kind, counts));
    }
    if (const ChangeGroup* const largest = changes.largest()) {
        text.append("; largest change ").append(percentText(*largest->percent())).append(" in ");
        if (!largest->component.empty()) text.append(largest->component).append(" pin ");
        text.append(largest->names.front()).append(" ").append(largest->change.field);
    }
    return text;
}

std::unique_ptr<CompareFormat> makeCompareText(Output& out, const CompareFormatSettings& settings) {
    return std::make_unique<CompareText>(out, settings);
}

} // namespace kestrel
