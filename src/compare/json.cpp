#include "findings/json.hpp"

#include "base/output.hpp"
#include "compare/output.hpp"
#include "quality/physics.hpp"

#include <array>
#include <limits>

namespace kestrel {

namespace {

constexpr std::size_t kAllNames = std::numeric_limits<std::size_t>::max() - 1;

std::string_view kindName(ChangeKind kind) {
    constexpr std::array<std::string_view, 10> kNames{"added", "removed", "renamed", "value", "table",
                                                      "shift", "level",   "extent",  "order", "matrix"};
    return kNames[static_cast<std::size_t>(kind)];
}

void writeUnit(JsonObject& object, std::string_view key, Unit unit) {
    unitName(unit).empty() ? object.null(key) : object.text(key, unitName(unit));
}

void writeReal(JsonObject& object, std::string_view key, GivenValue value) {
    value ? object.real(key, *value) : object.null(key);
}

void writeThing(JsonObject& object, std::string_view key, const GivenThing& thing) {
    if (const double* const number = std::get_if<double>(&thing)) {
        object.real(key, *number);
    } else if (const std::string_view* const text = std::get_if<std::string_view>(&thing)) {
        object.text(key, *text);
    } else if (const Extent* const extent = std::get_if<Extent>(&thing)) {
        JsonObject ends(object, key);
        ends.real("low", extent->low);
        ends.real("high", extent->high);
    } else {
        object.null(key);
    }
}

void writeDetail(JsonArray& details, const ChangeDetail& detail) {
    JsonObject object(details);
    {
        JsonArray corners(object, "corners");
        for (const Corner corner : kCorners)
            if (detail.corners.has(corner)) corners.text(cornerWord(corner));
    }
    writeThing(object, "old", detail.was);
    writeThing(object, "new", detail.is);
    writeReal(object, "at", detail.at);
    writeReal(object, "shift", detail.shift);
    writeReal(object, "percent", detail.percent);
}

void writeGroup(JsonArray& changes, const ChangeGroup& group, std::string& line) {
    JsonObject object(changes);
    object.text("change", kindName(group.kind));
    {
        JsonObject subject(object, "subject");
        subject.text("kind", subjectKindName(group.record));
        const bool is_pin = !group.component.empty();
        is_pin ? subject.text("pins_of", group.component) : subject.null("pins_of");
        JsonArray names(subject, "names");
        for (const std::string_view name : group.names)
            names.text(name);
    }
    group.field.empty() ? object.null("field") : object.text("field", group.field);
    writeUnit(object, "unit", group.unit);
    writeUnit(object, "axis", group.axis);
    {
        JsonArray details(object, "details");
        for (const ChangeDetail& detail : group.details)
            writeDetail(details, detail);
    }
    if (group.matrix != nullptr) {
        object.number("entries", static_cast<std::int64_t>(group.matrix->count));
        object.text("place", group.matrix->place);
    }
    line.clear();
    appendLine(line, group, kAllNames);
    object.text("text", line);
}

void writePath(JsonObject& pair, std::string_view key, const ComparedPath& file) {
    JsonObject object(pair, key);
    object.text("path", file.path);
    file.version ? object.text("version", *file.version) : object.null("version");
    object.flag("read", file.read);
    object.number("errors", file.errors);
}

void writeCounts(JsonObject& pair, const FileChanges& changes) {
    JsonArray array(pair, "counts");
    for (std::size_t kind = 0; kind < kSubjectKinds; ++kind) {
        const RecordCounts& counts = changes.counts[kind];
        if (counts.all() == 0) continue;
        JsonObject object(array);
        object.text("kind", subjectKindName(static_cast<SubjectKind>(kind)));
        object.number("changed", counts.changed);
        object.number("added", counts.added);
        object.number("removed", counts.removed);
        object.number("renamed", counts.renamed);
    }
}

/// One object of everything.
class CompareJson : public CompareFormat {
public:
    CompareJson(Output& out, const CompareFormatSettings& settings) : text_{out} {
        whole_.emplace(text_);
        writeTool(*whole_, settings.tool, settings.version);
        whole_->real("tolerance", settings.settings.tolerance);
        pairs_.emplace(*whole_, "pairs", true);
    }

    void pair(const ComparedPair& pair) override {
        JsonObject object(*pairs_);
        writePath(object, "old", pair.was);
        writePath(object, "new", pair.is);
        const FileChanges none;
        const FileChanges& changes = pair.changes != nullptr ? *pair.changes : none;
        constexpr std::array<std::string_view, 4> kVerdicts{"same", "different", "not whole", "not compared"};
        object.text("verdict", kVerdicts[static_cast<std::size_t>(verdictOf(pair))]);
        object.flag("whole", pair.changes != nullptr && isWhole(pair));
        {
            JsonArray passed_over(object, "passed_over");
            for (const std::string_view keyword : pair.passed_over)
                passed_over.text(keyword);
        }
        writeCounts(object, changes);
        object.text("summary", summaryOf(pair));
        JsonArray array(object, "changes", true);
        std::string line;
        for (const ChangeGroup* const group : changes.groups)
            writeGroup(array, *group, line);
    }

    void lonely(std::string_view path, bool is_new) override {
        JsonObject object(*pairs_);
        const ComparedPath file{.path = path};
        is_new ? object.null("old") : writePath(object, "old", file);
        is_new ? writePath(object, "new", file) : object.null("new");
        object.text("verdict", is_new ? "only new" : "only old");
        object.flag("whole", false);
        { const JsonArray nothing(object, "passed_over"); }
        writeCounts(object, {});
        object.text("summary", is_new ? "Only new" : "Only old");
        JsonArray(object, "changes", true);
    }

    void ends(const CompareTotals& totals) override {
        pairs_.reset();
        {
            JsonObject object(*whole_, "totals");
            object.number("pairs", totals.pairs);
            object.number("different", totals.different);
            object.number("not_whole", totals.not_whole);
            object.number("not_compared", totals.not_compared);
            object.number("only_old", totals.only_old);
            object.number("only_new", totals.only_new);
        }
        whole_.reset();
        text_.out.write("\n");
    }

private:
    JsonText text_;
    // The second is within the first, and gone before it.
    std::optional<JsonObject> whole_;
    std::optional<JsonArray> pairs_;
};

} // namespace

std::unique_ptr<CompareFormat> makeCompareJson(Output& out, const CompareFormatSettings& settings) {
    return std::make_unique<CompareJson>(out, settings);
}

} // namespace kestrel
