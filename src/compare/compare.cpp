#include "compare/compare.hpp"

#include "compare/comparison.hpp"
#include "compare/components.hpp"
#include "compare/match.hpp"
#include "compare/models.hpp"
#include "compare/packages.hpp"
#include "compare/renames.hpp"
#include "header/hdr.hpp"
#include "ibis/ibis.hpp"
#include "ibis/run.hpp"

#include <algorithm>
#include <memory>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kestrel {

namespace {

/// The records of a list that are in the file itself, in its order.
template <class Record> std::vector<const Record*> recordsOf(const ObjectList<Record>& list, const ComparedFile& file) {
    std::vector<const Record*> records;
    for (const Record& record : list.newestFirst())
        if (record.file == file.path) records.push_back(&record);
    std::ranges::reverse(records);
    return records;
}

template <class Record> std::string_view nameOf(const Record* record) { return record->name; }

std::string_view textOf(const std::optional<std::string>& text) { return text ? std::string_view(*text) : ""; }

/// The comparison of two files as far as it has come.
class FileComparison {
public:
    FileComparison(const ComparedFile& was, const ComparedFile& is, const CompareSettings& settings)
        : was_(was), is_(is), settings_(settings) {}

    FileChanges run() {
        if (settings_.header_texts) compareHeaders();
        countSubmodelUsers();
        compareModels(); // first, since others name them
        compareAll<SubjectKind::component>(&Ibis::components, compareComponents);
        compareAll<SubjectKind::modelSelector>(&Ibis::model_selectors, compareSelectors);
        compareAll<SubjectKind::submodel>(&Ibis::submodels, compareSubmodels);
        compareAll<SubjectKind::packageModel>(&Ibis::package_models, comparePackageModels);
        compareAll<SubjectKind::externalCircuit>(&Ibis::external_circuits,
                                                 [](Comparison& comparison, const ExtCkt& was, const ExtCkt& is) {
                                                     compareExternals(comparison, {}, was, is);
                                                 });
        compareAll<SubjectKind::testLoad>(&Ibis::test_loads, compareTestLoads);
        compareAll<SubjectKind::testData>(&Ibis::test_data, compareTestData);
        RankedChanges ranked = changes_->ranked();
        result_.groups = std::move(ranked.groups);
        result_.largest = ranked.change;
        result_.largest_shift = ranked.shift;
        result_.list = std::move(changes_);
        return std::move(result_);
    }

private:
    [[nodiscard]] RecordCounts& counts(SubjectKind kind) { return result_.counts[static_cast<std::size_t>(kind)]; }

    [[nodiscard]] std::size_t modelsOf(const ComparedRecord& record) const {
        if (record.kind == SubjectKind::model) return 1;
        if (record.kind != SubjectKind::submodel) return 0;
        const auto users = submodel_users_.find(record.name);
        return users == submodel_users_.end() ? 0 : users->second;
    }

    /// Compares two records that belong together, and counts them; true when they differ.
    template <class Compare> bool compareTwo(const ComparedRecord& record, Compare compare) {
        const std::size_t before = changes_->additions();
        comparison_.record = record;
        comparison_.models = modelsOf(record);
        compare(comparison_);
        const bool differ = changes_->additions() != before;
        if (differ) ++counts(record.kind).changed;
        return differ;
    }

    void addWhole(const ComparedRecord& record, ChangeKind kind) {
        changes_->add(record, {.kind = kind}, modelsOf(record));
        ++(kind == ChangeKind::added ? counts(record.kind).added : counts(record.kind).removed);
    }

    template <SubjectKind Kind, class List, class Compare> void compareAll(List Ibis::*list, Compare compare) {
        const auto before = recordsOf(was_.root.*list, was_);
        const auto now = recordsOf(is_.root.*list, is_);
        using Record = decltype(before[0]);
        matchRows(
            before, now, nameOf<std::remove_pointer_t<std::decay_t<Record>>>,
            nameOf<std::remove_pointer_t<std::decay_t<Record>>>,
            [&](Record old_record, Record new_record) {
                const bool differ = compareTwo({.kind = Kind, .name = new_record->name}, [&](Comparison& comparison) {
                    compare(comparison, *old_record, *new_record);
                });
                if constexpr (Kind == SubjectKind::submodel)
                    result_.submodels.push_back({.was = old_record, .is = new_record, .differs = differ});
            },
            [&](Record record, bool is_new) {
                if constexpr (Kind == SubjectKind::submodel)
                    is_new ? result_.submodels.push_back({.is = record}) : result_.submodels.push_back({.was = record});
                addWhole({.kind = Kind, .name = record->name}, is_new ? ChangeKind::added : ChangeKind::removed);
            });
    }

    void compareModels() {
        const auto before = recordsOf(was_.root.models, was_);
        const auto now = recordsOf(is_.root.models, is_);
        std::vector<RecordPair<Mdl>>& models = result_.models;
        std::vector<const Mdl*> gone;
        std::vector<const Mdl*> fresh;
        matchRows(
            before, now, nameOf<Mdl>, nameOf<Mdl>,
            [&](const Mdl* old_model, const Mdl* new_model) { models.push_back({.was = old_model, .is = new_model}); },
            [&](const Mdl* model, bool is_new) {
                if (is_new) models.push_back({.is = model});
                (is_new ? fresh : gone).push_back(model);
            });
        std::unordered_map<const Mdl*, const Mdl*> partners; // of OLD by those of NEW
        std::set<const Mdl*> found;
        for (const auto& [old_model, new_model] : findRenamed(gone, fresh, settings_)) {
            renamed_.emplace(old_model->name.view(), new_model->name.view());
            partners.emplace(new_model, old_model);
            found.insert(old_model);
        }
        std::erase_if(gone, [&found](const Mdl* model) { return found.contains(model); });
        for (RecordPair<Mdl>& pair : models) {
            if (pair.was == nullptr)
                if (const auto partner = partners.find(pair.is); partner != partners.end()) pair.was = partner->second;
        }
        for (const Mdl* const model : gone)
            models.push_back({.was = model});
        for (RecordPair<Mdl>& pair : models)
            addModel(pair);
    }

    void addModel(RecordPair<Mdl>& pair) {
        const ComparedRecord record{.kind = SubjectKind::model,
                                    .name = (pair.is != nullptr ? pair.is : pair.was)->name};
        if (pair.was == nullptr || pair.is == nullptr)
            return addWhole(record, pair.is != nullptr ? ChangeKind::added : ChangeKind::removed);
        const bool is_renamed = pair.was->name.view() != pair.is->name.view();
        if (is_renamed) {
            const ChangeDetail detail{.was = pair.was->name.view(), .is = pair.is->name.view()};
            changes_->add(record, {.kind = ChangeKind::renamed, .details = {&detail, 1}}, 1);
            ++counts(record.kind).renamed;
        }
        const bool has_changed = compareTwo(record, [&](Comparison& comparison) {
            compareModelFields(comparison, *pair.was, *pair.is);
            compareModelTables(comparison, *pair.was, *pair.is);
        });
        pair.differs = has_changed || is_renamed;
    }

    void countSubmodelUsers() {
        for (const Mdl& model : is_.root.models.newestFirst())
            for (const AddSubmodel& row : model.add_submodels)
                ++submodel_users_[row.name];
    }

    void compareHeaders() {
        const auto before = recordsOf(was_.root.headers, was_);
        const auto now = recordsOf(is_.root.headers, is_);
        const Hdr none;
        const Hdr& was = before.empty() ? none : *before.front();
        const Hdr& is = now.empty() ? none : *now.front();
        compareTwo({.kind = SubjectKind::header, .name = {}}, [&](Comparison& comparison) {
            compareText(comparison, "[IBIS Ver]", was.ibis_version, is.ibis_version);
            compareText(comparison, "[File Name]", was.file_name, is.file_name);
            compareText(comparison, "[File Rev]", was.file_rev, is.file_rev);
            compareText(comparison, "[Date]", was.date, is.date);
            compareText(comparison, "[Source]", textOf(was.source), textOf(is.source));
            compareText(comparison, "[Notes]", textOf(was.notes), textOf(is.notes));
            compareText(comparison, "[Disclaimer]", textOf(was.disclaimer), textOf(is.disclaimer));
            compareText(comparison, "[Copyright]", textOf(was.copyright), textOf(is.copyright));
        });
    }

    const ComparedFile& was_;
    const ComparedFile& is_;
    const CompareSettings& settings_;
    std::unique_ptr<ChangeList> changes_ = std::make_unique<ChangeList>();
    ViewMap<std::string_view> renamed_;   // names in NEW by those in OLD
    ViewMap<std::size_t> submodel_users_; // how many models of NEW add it
    FileChanges result_;
    Comparison comparison_{.settings = settings_, .changes = *changes_, .renamed = renamed_, .record = {}};
};

} // namespace

FileChanges compareFiles(const ComparedFile& was, const ComparedFile& is, const CompareSettings& settings) {
    return FileComparison(was, is, settings).run();
}

} // namespace kestrel
