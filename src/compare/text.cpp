#include "base/output.hpp"
#include "compare/output.hpp"
#include "findings/format.hpp"
#include "quality/number_text.hpp"
#include "quality/physics.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <future>
#include <span>
#include <system_error>

namespace kestrel {

namespace {

void appendNumber(std::string& text, double value, Unit unit, int digits) {
    if (unit == Unit::voltsPerSecond) {
        text.append(NumberText(value * 1e-9, "V/ns", digits));
        return;
    }
    const bool has_letters = unit != Unit::celsius;
    text.append(NumberText(value, has_letters ? unitName(unit) : "", digits));
    if (unit == Unit::celsius) text.append(" C");
}

/// A place in a table: volts as they are, as tables have them.
void appendPlace(std::string& text, double value, Unit axis, int digits) {
    if (axis != Unit::volts) return appendNumber(text, value, axis, digits);
    text.append(NumberText(value, "", digits)).append(" V");
}

void appendExtent(std::string& text, const Extent& extent, Unit unit, int digits) {
    appendPlace(text, extent.low, unit, digits);
    text.append(" to ");
    appendPlace(text, extent.high, unit, digits);
}

/// True for a text of one line that is not long.
bool isShown(std::string_view text) {
    constexpr std::size_t kMost = 60;
    return text.size() <= kMost && text.find('\n') == std::string_view::npos;
}

void appendThing(std::string& text, const GivenThing& thing, Unit unit, int digits) {
    if (const double* const number = std::get_if<double>(&thing)) {
        appendNumber(text, *number, unit, digits);
    } else if (const std::string_view* const word = std::get_if<std::string_view>(&thing)) {
        text.append(isShown(*word) ? *word : "a long text");
    } else if (const Extent* const extent = std::get_if<Extent>(&thing)) {
        appendExtent(text, *extent, unit, digits);
    } else {
        text.append("not given");
    }
}

void appendPercent(std::string& text, double percent) {
    constexpr double kWhole = 999.5;
    constexpr double kMost = 1e15;
    if (percent < kWhole) {
        text.append(plainNumber(percent));
    } else if (percent >= kMost) {
        appendGeneral(text, percent);
    } else {
        appendInteger(text, std::llround(percent));
    }
    text.append(" %");
}

/// "5 pF, was 4 pF" with as many digits as it takes that both do not look the same, or that it is another text where
/// neither can be shown.
void appendWasAndIs(std::string& text, const ChangeDetail& detail, Unit unit) {
    const std::string_view* const was = std::get_if<std::string_view>(&detail.was);
    const std::string_view* const is = std::get_if<std::string_view>(&detail.is);
    if (was != nullptr && is != nullptr && (!isShown(*was) || !isShown(*is))) {
        text.append("another text");
        return;
    }
    constexpr std::string_view kWas = ", was ";
    const std::size_t begin = text.size();
    for (int digits = NumberText::kFewDigits; digits <= NumberText::kAllDigits; ++digits) {
        text.resize(begin);
        appendThing(text, detail.is, unit, digits);
        const std::size_t end = text.size();
        text.append(kWas);
        appendThing(text, detail.was, unit, digits);
        const std::string_view both = text;
        if (both.substr(begin, end - begin) != both.substr(end + kWas.size())) return;
    }
}

void appendValue(std::string& text, const ChangeDetail& detail, Unit unit) {
    appendWasAndIs(text, detail, unit);
    const double* const was = std::get_if<double>(&detail.was);
    const double* const is = std::get_if<double>(&detail.is);
    if (was == nullptr || is == nullptr) return;
    const std::string_view sign = *is > *was ? " (+" : " (-";
    if (detail.percent) {
        text.append(sign);
        appendPercent(text, *detail.percent);
    } else if (!isToldInPercent(unit)) {
        text.append(sign);
        appendNumber(text, std::abs(*is - *was), unit, NumberText::kFewDigits);
    } else {
        return;
    }
    text.push_back(')');
}

void appendShift(std::string& text, double shift) {
    text.append(seconds(std::abs(shift))).append(shift > 0 ? " later" : " earlier");
}

/// How much a value of a table differs: "up to 5 % more current".
void appendDifference(std::string& text, const ChangeDetail& detail, Unit unit) {
    const double was = std::get<double>(detail.was);
    const double is = std::get<double>(detail.is);
    const bool is_current = unit == Unit::amperes;
    const bool turns = is_current && (was < 0) != (is < 0) && was != 0 && is != 0;
    if (turns) text.append("current the other way");
    if (detail.percent) {
        text.append(turns ? ", by up to " : "up to ");
        appendPercent(text, *detail.percent);
        text.push_back(' ');
    }
    if (turns) {
        if (detail.percent) text.pop_back();
    } else if (is_current) {
        text.append(std::abs(is) > std::abs(was) ? "more current" : "less current");
    } else {
        text.append(is > was ? "higher" : "lower");
    }
}

void appendTable(std::string& text, const ChangeDetail& detail, const ChangeGroup& group) {
    if (isShiftAlone(detail)) return appendShift(text, *detail.shift);
    const ChangeDetail& first = group.details.front();
    if (detail.shift && isShiftAlone(first) && *first.shift == *detail.shift) {
        text.append("then ");
    } else if (detail.shift) {
        appendShift(text, *detail.shift);
        text.append(", and ");
    }
    appendDifference(text, detail, group.unit);
    text.append(" (at ");
    appendPlace(text, detail.at.value_or(0.0), group.axis, NumberText::kFewDigits);
    text.append(": ");
    appendWasAndIs(text, detail, group.unit);
    text.push_back(')');
}

void appendLevel(std::string& text, double level, Unit unit) {
    text.append("all of it ");
    appendNumber(text, std::abs(level), unit, NumberText::kFewDigits);
    text.append(level > 0 ? " higher" : " lower");
}

void appendCoverage(std::string& text, const ChangeDetail& detail, Unit unit) {
    if (std::holds_alternative<Extent>(detail.was) && std::holds_alternative<Extent>(detail.is)) text.append("covers ");
    appendWasAndIs(text, detail, unit);
}

void appendMatrix(std::string& text, const ChangeDetail& detail, const MatrixChange& matrix, Unit unit) {
    appendInteger(text, static_cast<std::int64_t>(matrix.count));
    text.append(matrix.count == 1 ? " entry changed" : " entries changed");
    if (detail.percent) {
        text.append(matrix.count > 1 ? ", at most by " : " by ");
        appendPercent(text, *detail.percent);
    }
    text.append(" (").append(matrix.place).append(": ");
    appendWasAndIs(text, detail, unit);
    text.push_back(')');
}

void appendDetail(std::string& text, const ChangeDetail& detail, const ChangeGroup& group) {
    switch (group.kind) {
    case ChangeKind::value: return appendValue(text, detail, group.unit);
    case ChangeKind::table: return appendTable(text, detail, group);
    case ChangeKind::shift: return appendShift(text, detail.shift.value_or(0.0));
    case ChangeKind::level: return appendLevel(text, detail.shift.value_or(0.0), group.unit);
    case ChangeKind::extent: return appendCoverage(text, detail, group.unit);
    case ChangeKind::matrix: return appendMatrix(text, detail, *group.matrix, group.unit);
    case ChangeKind::renamed:
        text.append("renamed, was ");
        return appendThing(text, detail.was, Unit::none, NumberText::kFewDigits);
    case ChangeKind::order:
        text.append("in another order; the first is ");
        return appendWasAndIs(text, detail, Unit::none);
    case ChangeKind::added:
    case ChangeKind::removed: break;
    }
}

/// Appends "typ, min and max"; nothing without a corner.
void appendCorners(std::string& text, const EnumSet<Corner>& corners) {
    std::array<std::string_view, kCornerCount> words;
    std::size_t count = 0;
    for (const Corner corner : kCorners)
        if (corners.has(corner)) words[count++] = cornerWord(corner);
    for (std::size_t i = 0; i < count; ++i)
        text.append(i == 0 ? "" : i + 1 == count ? " and " : ", ").append(words[i]);
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

void appendCapital(std::string& text, std::string_view word) {
    text.push_back(static_cast<char>(word.front() - 'a' + 'A'));
    text.append(word.substr(1));
}

void appendPassedOver(std::string& text, const std::vector<std::string_view>& keywords) {
    text.append("Not compared, since keywords of later versions are passed over: ");
    for (std::size_t i = 0; i < keywords.size(); ++i)
        text.append(i == 0 ? "[" : ", [").append(keywords[i]).append("]");
}

/// For people.
class CompareText : public CompareFormat {
public:
    CompareText(Output& out, const CompareFormatSettings& settings) : out_(out), settings_(settings) {}

    void pair(const ComparedPair& pair) override {
        if (pair.changes == nullptr) return;
        const bool same = pair.changes->groups.empty();
        if (verdictOf(pair) == CompareVerdict::same && settings_.quiet) return;
        line_.assign("Comparing ");
        writeName(pair.was.path);
        line_.assign(" with ");
        writeName(pair.is.path);
        line_.push_back('\n');
        writeLine();
        writeErrors(pair.was);
        writeErrors(pair.is);
        if (!pair.passed_over.empty()) {
            appendPassedOver(line_, pair.passed_over);
            writeLine();
        }
        writeGroups(pair.changes->groups);
        if (!same) line_.push_back('\n');
        line_.append(summaryOf(pair)).append("\n");
        writeLine();
    }

    void lonely(std::string_view path, bool is_new) override {
        line_.assign(is_new ? "Only new: " : "Only old: ");
        writeName(path);
        writeLine();
    }

    void ends(const CompareTotals& totals) override {
        if (totals.pairs + totals.only_old + totals.only_new <= 1 || settings_.quiet) return;
        appendInteger(line_, totals.pairs);
        line_.append(totals.pairs == 1 ? " file compared" : " files compared");
        const auto append = [this](std::int64_t count, std::string_view what) {
            if (count == 0) return;
            line_.append(", ");
            appendInteger(line_, count);
            line_.append(" ").append(what);
        };
        line_.append(", ");
        appendInteger(line_, totals.different);
        line_.append(" different");
        append(totals.not_whole, "not compared whole");
        append(totals.not_compared, "not compared");
        append(totals.only_old, "only old");
        append(totals.only_new, "only new");
        writeLine();
    }

private:
    /// Writes the line and begins the next one.
    void writeLine() {
        line_.push_back('\n');
        out_.write(line_);
        line_.clear();
    }

    /// Writes what the line has so far and the name of a file, which may hold any character.
    void writeName(std::string_view path) {
        out_.write(line_);
        line_.clear();
        writeOnOneLine(out_, path);
    }

    using Groups = std::span<const ChangeGroup* const>;

    static std::string linesOf(Groups groups) {
        constexpr std::size_t kMostNames = 20;
        std::string lines;
        for (const ChangeGroup* const group : groups) {
            appendLine(lines, *group, kMostNames);
            lines.push_back('\n');
        }
        return lines;
    }

    /// Writes a line for each, of many the lines of one part while a second thread makes those of the next.
    void writeGroups(Groups groups) {
        constexpr std::size_t kPart = 4096;
        while (!groups.empty()) {
            const Groups part = groups.first(std::min(kPart, groups.size()));
            groups = groups.subspan(part.size());
            const Groups next = groups.first(std::min(kPart, groups.size()));
            std::future<std::string> helper;
            if (settings_.together && !next.empty()) {
                try {
                    helper = std::async(std::launch::async, linesOf, next);
                } catch (const std::system_error&) { // then one after the other
                }
            }
            out_.write(linesOf(part));
            if (!helper.valid()) continue;
            out_.write(helper.get());
            groups = groups.subspan(next.size());
        }
    }

    void writeErrors(const ComparedPath& file) {
        if (file.errors == 0) return;
        writeName(file.path);
        line_.append(" fails with ");
        appendInteger(line_, file.errors);
        line_.append(file.errors == 1 ? " error; compared as far as it was read"
                                      : " errors; compared as far as it was read");
        writeLine();
    }

    std::string line_;
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

bool isWhole(const ComparedPair& pair) {
    return pair.was.errors == 0 && pair.is.errors == 0 && pair.passed_over.empty();
}

CompareVerdict verdictOf(const ComparedPair& pair) {
    if (pair.changes == nullptr) return CompareVerdict::notCompared;
    if (!pair.changes->groups.empty()) return CompareVerdict::different;
    const bool is_known = pair.same_bytes || (pair.same_errors && pair.passed_over.empty());
    return isWhole(pair) || is_known ? CompareVerdict::same : CompareVerdict::notWhole;
}

void appendRecords(std::string& text, const ChangeGroup& group, std::size_t most_names) {
    const std::size_t count = group.names.size();
    const bool several = count > 1;
    const KindWords& words = wordsOf(group.record);
    appendCapital(text, several && group.component.empty() ? words.many : words.one);
    if (!group.component.empty()) text.append(" ").append(group.component).append(several ? ", pins" : ", pin");
    const std::size_t named = count > most_names + 1 ? most_names : count;
    for (std::size_t i = 0; i < named; ++i) {
        const bool is_last = i + 1 == count;
        if (i > 0) text.append(is_last ? " and" : ",");
        if (!group.names[i].empty()) text.append(" ").append(group.names[i]);
    }
    if (named == count) return;
    text.append(" and ");
    appendInteger(text, static_cast<std::int64_t>(count - named));
    text.append(" more");
}

void appendBody(std::string& text, const ChangeGroup& group) {
    const std::size_t begin = text.size();
    text.append(group.field);
    if (group.kind == ChangeKind::added || group.kind == ChangeKind::removed) {
        text.append(group.field.empty() ? "" : " ").append(group.kind == ChangeKind::added ? "added" : "removed");
        return;
    }
    if (group.details.empty()) {
        text.append(" in another order");
        return;
    }
    bool is_first = true;
    for (const ChangeDetail& detail : group.details) {
        if (!is_first) text.append("; ");
        const std::size_t before = text.size();
        if (is_first && before > begin) text.push_back(' ');
        const std::size_t corners = text.size();
        appendCorners(text, detail.corners);
        if (text.size() == corners) text.resize(before);
        if (group.kind == ChangeKind::order) {
            text.push_back(' ');
        } else if (text.size() > begin) {
            text.append(": ");
        }
        appendDetail(text, detail, group);
        is_first = false;
    }
}

void appendLine(std::string& text, const ChangeGroup& group, std::size_t most_names) {
    appendRecords(text, group, most_names);
    text.append(": ");
    appendBody(text, group);
}

std::string lineOf(const ChangeGroup& group, std::size_t most_names) {
    std::string line;
    appendLine(line, group, most_names);
    return line;
}

std::string summaryOf(const FileChanges& changes) {
    if (changes.groups.empty()) return "No difference";
    std::string text;
    for (const SubjectKind kind : kCountedKinds) {
        const RecordCounts& counts = changes.counts[static_cast<std::size_t>(kind)];
        if (counts.all() != 0) text.append(text.empty() ? "" : "; ").append(countsText(kind, counts));
    }
    const auto append_field = [&text](const ChangeGroup& group) {
        text.append(group.kind == ChangeKind::extent ? " in what is covered by " : " in ");
        if (!group.component.empty()) text.append(group.component).append(" pin ");
        text.append(group.names.front()).append(" ").append(group.field);
    };
    if (const auto& [group, percent] = changes.largest; group != nullptr) {
        text.append("; largest change ");
        appendPercent(text, percent);
        append_field(*group);
    }
    if (const auto& [group, shift] = changes.largest_shift; group != nullptr) {
        text.append("; largest shift ");
        appendShift(text, shift);
        append_field(*group);
    }
    return text;
}

std::string summaryOf(const ComparedPair& pair) {
    if (pair.changes == nullptr) return "Not compared";
    if (!pair.changes->groups.empty() || isWhole(pair)) return summaryOf(*pair.changes);
    return pair.same_bytes ? "No difference: the files are the same byte for byte"
                           : "No difference in what was compared; the files were not compared whole";
}

std::unique_ptr<CompareFormat> makeCompareText(Output& out, const CompareFormatSettings& settings) {
    return std::make_unique<CompareText>(out, settings);
}

} // namespace kestrel
