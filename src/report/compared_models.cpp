#include "report/compared_models.hpp"

#include "compare/models.hpp"
#include "compare/output.hpp"
#include "compare/tables.hpp"
#include "model/mdl.hpp"
#include "model/submdl.hpp"
#include "report/pictures.hpp"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace kestrel {

namespace {

constexpr Axis kTableAxis{"Table voltage", "V"};

using Groups = std::vector<const ChangeGroup*>;

/// The changes of the records of a kind by the names of these.
ViewMap<Groups> changesOf(const FileChanges& changes, SubjectKind kind) {
    ViewMap<Groups> by_name;
    for (const ChangeGroup* const group : changes.groups) {
        if (group->record != kind) continue;
        for (const std::string_view name : group->names)
            by_name[name].push_back(group);
    }
    return by_name;
}

/// What a change says behind the name of its field.
std::string bodyBehind(const ChangeGroup& group, std::string_view field) {
    std::string text;
    appendBody(text, group);
    text.erase(0, std::min(text.size(), field.size() + 1));
    return withMinusSigns(text);
}

/// The pictures of a record that changed, or that only one file has.
class ComparedPictures {
public:
    ComparedPictures(Html& html, std::string_view owner, const Groups& groups)
        : html_(html), owner_(owner), groups_(&groups) {}
    ComparedPictures(Html& html, std::string_view owner, bool is_new)
        : html_(html), owner_(owner), has_new_(is_new), has_old_(!is_new) {}
    ComparedPictures(const ComparedPictures&) = delete;
    ComparedPictures& operator=(const ComparedPictures&) = delete;
    ~ComparedPictures() {
        if (begun_) html_ << "</div>\n";
    }

    /// The curves of an I-V table; null where a file lacks it.
    void curve(std::string_view field, std::string_view title, std::string_view note, const Crv* was, const Crv* is,
               std::vector<Rule> rails = {}) {
        const auto rows = [](const Crv* table) { return table != nullptr && *table ? &table->rows : nullptr; };
        draw(field, {std::string(title), std::string(note)}, rows(was), rows(is), {kTableAxis, kCurrentAxis},
             std::move(rails));
    }

    void waveforms(std::string_view keyword, std::string_view word, const Rows<Wvfrm>& was, const Rows<Wvfrm>& is) {
        const WaveformPairs matched = matchWaveforms(points_, was, is);
        for (const auto& [before, now] : matched.pairs)
            waveform(keyword, word, before, now);
        for (const Wvfrm* const fresh : matched.fresh)
            waveform(keyword, word, nullptr, fresh);
        for (const Wvfrm* const gone : matched.gone)
            waveform(keyword, word, gone, nullptr);
    }

    /// A waveform and its composite current; one of them may be null.
    void waveform(std::string_view keyword, std::string_view word, const Wvfrm* was, const Wvfrm* is) {
        const auto rows = [](const Wvfrm* table) { return table != nullptr ? &table->rows : nullptr; };
        const auto current = [&](const Wvfrm* table) {
            return table != nullptr && table->composite_current ? rows(&*table->composite_current) : nullptr;
        };
        const std::string field = waveformField(keyword, was != nullptr ? *was : *is);
        const Wvfrm& shown = is != nullptr ? *is : *was;
        const std::string title = waveformTitle(word, shown);
        draw(field, {title, fixtureNote(shown)}, rows(was), rows(is), {kTimeAxis, kVoltageAxis}, {});
        draw(field + " [Composite Current]", {"Supply current, " + title, {}}, current(was), current(is),
             {kTimeAxis, kCurrentAxis}, {});
    }

    void onlyWaveform(std::string_view keyword, std::string_view word, const OnDemand<Wvfrm>& was,
                      const OnDemand<Wvfrm>& is) {
        if (was || is) waveform(keyword, word, was ? &*was : nullptr, is ? &*is : nullptr);
    }

    /// The I-V tables of a model, with its rails.
    void tables(const Tables& was, const Tables& is, const ModelPhysics& physics) {
        for (const TableTitle& table : kTableTitles)
            curve(tableKeyword(table.kind), table.title, table.note, &tableOf(was, table.kind),
                  &tableOf(is, table.kind), railsOfTable(physics, table.kind));
    }

    /// Those of a submodel, whose rails are not known.
    void tables(const Tables& was, const Tables& is) {
        for (const TableTitle& table : kTableTitles)
            curve(tableKeyword(table.kind), table.title, {}, &tableOf(was, table.kind), &tableOf(is, table.kind));
    }

    void edges(const Tables& was, const Tables& is) {
        waveforms("[Rising Waveform]", "Rising", was.rising_waveforms, is.rising_waveforms);
        waveforms("[Falling Waveform]", "Falling", was.falling_waveforms, is.falling_waveforms);
    }

private:
    struct Axes {
        Axis x;
        Axis y;
    };

    struct Caption {
        std::string title;
        std::string note; ///< of the table, ahead of what changed
    };

    /// Draws a table in which something changed; of a record without changes every one that is there.
    void draw(std::string_view field, Caption caption, const Rows<TableRow>* was, const Rows<TableRow>* is,
              const Axes& axes, std::vector<Rule> rails) {
        if (was == nullptr && is == nullptr) return;
        std::string changes;
        double last_change = std::numeric_limits<double>::lowest();
        if (groups_ != nullptr) {
            for (const ChangeGroup* const group : *groups_) {
                if (group->field != field) continue;
                for (const ChangeDetail& detail : group->details)
                    last_change = std::max(last_change, detail.at.value_or(last_change));
                changes.append(changes.empty() ? "" : "; ").append(bodyBehind(*group, field));
            }
            if (changes.empty()) return;
        }
        Plot plot = plotOf(is != nullptr ? *is : Rows<TableRow>(), std::move(caption.title), owner_, axes.x, axes.y);
        plot.note = std::move(caption.note);
        if (!changes.empty()) plot.note.append(plot.note.empty() ? "" : "; ").append(changes);
        plot.rules = std::move(rails);
        if (was != nullptr) {
            // Below those of the new file.
            std::vector<PlotLine> old_lines = plotOf(*was, {}, {}, axes.x, axes.y).lines;
            for (PlotLine& line : old_lines)
                line.is_old = true;
            plot.lines.insert(plot.lines.begin(), std::make_move_iterator(old_lines.begin()),
                              std::make_move_iterator(old_lines.end()));
        }
        if (axes.x.unit == kTimeAxis.unit) {
            const Flat flat = axes.y.unit == kVoltageAxis.unit ? Flat::ofSwing : Flat::ofRange;
            endBehind(plot, std::max(settledTime(plot, flat), last_change));
        }
        begin(!plot.rules.empty());
        writePlot(html_, plot);
    }

    /// The first table has rails where any has.
    void begin(bool has_rails) {
        if (std::exchange(begun_, true)) return;
        writeComparedLegend(html_, has_new_, has_old_, has_rails);
        html_ << "<div class=\"plots\">\n";
    }

    Html& html_;
    std::string_view owner_;
    const Groups* groups_ = nullptr; ///< what changed; null where one file has the record only
    std::array<PointRoom, 2> points_;
    bool has_new_ = true;
    bool has_old_ = true;
    bool begun_ = false;
};

void writeSeries(ComparedPictures& pictures, std::string_view label, const SeriesBlock* was, const SeriesBlock* is) {
    if (was == nullptr && is == nullptr) return;
    const SeriesBlock none{};
    if (was == nullptr) was = &none;
    if (is == nullptr) is = &none;
    pictures.curve(FieldName(label, "[Series Current]").text(), std::string("Series Current ").append(label), {},
                   &was->series_current, &is->series_current);
    eachMosfetPair(*was, *is, [&](const std::string& field, const SMos* before, const SMos* now) {
        pictures.curve(FieldName(label, field).text(), mosfetTitle(label, now != nullptr ? *now : *before), {},
                       before != nullptr ? &before->table : nullptr, now != nullptr ? &now->table : nullptr);
    });
}

/// `of` is the one whose rails are drawn.
void writePictures(ComparedPictures& pictures, const Mdl& was, const Mdl& is, const Mdl& of) {
    PointRoom room;
    const ModelPhysics physics(of, room);
    pictures.tables(*was.tables, *is.tables, physics);
    pictures.curve("[ISSO_PD]", "ISSO PD", {}, &was.tables->isso_pd, &is.tables->isso_pd);
    pictures.curve("[ISSO_PU]", "ISSO PU", {}, &was.tables->isso_pu, &is.tables->isso_pu);
    writeSeries(pictures, kOnLabel, was.on_block.get(), is.on_block.get());
    writeSeries(pictures, kOffLabel, was.off_block.get(), is.off_block.get());
    pictures.edges(*was.tables, *is.tables);
}

void writePictures(ComparedPictures& pictures, const SubMdl& was, const SubMdl& is, const SubMdl& /*of*/) {
    pictures.tables(*was.tables, *is.tables);
    pictures.edges(*was.tables, *is.tables);
    pictures.onlyWaveform("[GND Pulse Table]", "GND pulse", was.gnd_pulse, is.gnd_pulse);
    pictures.onlyWaveform("[POWER Pulse Table]", "POWER pulse", was.power_pulse, is.power_pulse);
}

struct LinkedName {
    std::string_view name;
    std::optional<Anchor> place{};
};

/// Names of records, with links to those that have a section.
void writeNames(Html& html, Markup heading, const std::vector<LinkedName>& names) {
    constexpr std::size_t kShort = 20;
    if (names.empty()) return;
    if (names.size() > kShort) {
        html << "<details class=\"fold\"><summary>" << heading << " (" << names.size()
             << ")</summary><p class=\"names\">";
    } else {
        html << "<p class=\"names\">" << heading << ": ";
    }
    bool is_first = true;
    for (const LinkedName& name : names) {
        html << (is_first ? Markup("") : Markup(", ")) << "<bdi>";
        writeLink(html, name.place ? &*name.place : nullptr, name.name);
        html << "</bdi>";
        is_first = false;
    }
    html << (names.size() > kShort ? Markup("</p></details>\n") : Markup("</p>\n"));
}

template <class Record>
void writeChanged(Html& html, Anchor anchor, const RecordPair<Record>& pair, const Groups& groups) {
    html.begin("section", {{"class", Literal("model")}, Attribute::id(anchor)});
    html << "<h4>" << Text(pair.is->name) << "</h4><div class=\"values\"><ul>";
    for (const ChangeGroup* const group : groups) {
        std::string text;
        appendBody(text, *group);
        html << "<li>" << Text(withMinusSigns(text));
        if (const std::size_t others = group->names.size() - 1; others > 0)
            html << " <small>as " << others << (others == 1 ? Markup(" other") : Markup(" others")) << "</small>";
        html << "</li>\n";
    }
    html << "</ul></div>\n";
    {
        ComparedPictures pictures(html, pair.is->name, groups);
        writePictures(pictures, *pair.was, *pair.is, *pair.is);
    }
    html << "</section>\n";
}

/// A record that only one of the files has, with all its curves.
template <class Record> void writeLonely(Html& html, Anchor anchor, const RecordPair<Record>& pair) {
    const Record& record = pair.is != nullptr ? *pair.is : *pair.was;
    html.begin("section", {{"class", Literal("model")}, Attribute::id(anchor)});
    html << "<h4>" << Text(record.name) << "</h4><p class=\"sub\">"
         << (pair.is != nullptr ? Markup("added") : Markup("removed")) << "</p>\n";
    {
        const Record none{};
        ComparedPictures pictures(html, record.name, pair.is != nullptr);
        writePictures(pictures, pair.was != nullptr ? *pair.was : none, pair.is != nullptr ? *pair.is : none, record);
    }
    html << "</section>\n";
}

template <class Record>
void writeRecords(Html& html, Anchor (*anchor_of)(std::uint32_t pair, std::size_t place), std::uint32_t pair,
                  const std::vector<RecordPair<Record>>& records, const ViewMap<Groups>& changes) {
    std::vector<LinkedName> added;
    std::vector<LinkedName> removed;
    std::vector<LinkedName> unchanged;
    for (std::size_t place = 0; place < records.size(); ++place) {
        const RecordPair<Record>& record = records[place];
        if (record.was == nullptr) {
            added.push_back({record.is->name, anchor_of(pair, place)});
        } else if (record.is == nullptr) {
            removed.push_back({record.was->name, anchor_of(pair, place)});
        } else if (!record.differs) {
            unchanged.push_back({record.is->name});
        }
    }
    writeNames(html, "Added", added);
    writeNames(html, "Removed", removed);
    writeNames(html, "Unchanged", unchanged);
    for (std::size_t place = 0; place < records.size(); ++place) {
        const RecordPair<Record>& record = records[place];
        if (record.was == nullptr || record.is == nullptr) {
            writeLonely(html, anchor_of(pair, place), record);
            continue;
        }
        if (!record.differs) continue;
        const auto groups = changes.find(record.is->name.view());
        if (groups != changes.end()) writeChanged(html, anchor_of(pair, place), record, groups->second);
    }
}

} // namespace

void writeComparedModels(Html& html, std::uint32_t pair, const FileChanges& changes) {
    if (changes.models.empty()) return;
    html.begin("h3", {Attribute::id(anchorOf(pair, ComparedSection::models))}) << "Models</h3>\n";
    writeRecords(html, anchorOfModel, pair, changes.models, changesOf(changes, SubjectKind::model));
}

void writeComparedSubmodels(Html& html, std::uint32_t pair, const FileChanges& changes) {
    if (changes.submodels.empty()) return;
    html.begin("h3", {Attribute::id(anchorOf(pair, ComparedSection::submodels))}) << "Submodels</h3>\n";
    writeRecords(html, anchorOfSubmodel, pair, changes.submodels, changesOf(changes, SubjectKind::submodel));
}

} // namespace kestrel
