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
        result_.groups = changes_->sorted();
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

    /// Compares two records of the same name and counts them.
    template <class Compare> void compareTwo(const ComparedRecord& record, Compare compare) {
        const std::size_t before = changes_->additions();
        comparison_.record = record;
        comparison_.models = modelsOf(record);
        compare(comparison_);
        if (changes_->additions() != before) ++counts(record.kind).changed;
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
                compareTwo({.kind = Kind, .name = new_record->name},
                           [&](Comparison& comparison) { compare(comparison, *old_record, *new_record); });
            },
            [&](Record record, bool is_new) {
                addWhole({.kind = Kind, .name = record->name}, is_new ? ChangeKind::added : ChangeKind::removed);
            });
    }

    void compareModels() {
        const auto before = recordsOf(was_.root.models, was_);
        const auto now = recordsOf(is_.root.models, is_);
        std::vector<std::pair<const Mdl*, const Mdl*>> pairs;
        std::vector<const Mdl*> gone;
        std::vector<const Mdl*> fresh;
        matchRows(
            before, now, nameOf<Mdl>, nameOf<Mdl>,
            [&](const Mdl* old_model, const Mdl* new_model) { pairs.emplace_back(old_model, new_model); },
            [&](const Mdl* model, bool is_new) { (is_new ? fresh : gone).push_back(model); });
        for (const auto& [old_model, new_model] : findRenamed(gone, fresh, settings_)) {
            renamed_.emplace(old_model->name.view(), new_model->name.view());
            renamed_models_.emplace(new_model, old_model);
        }
        std::erase_if(gone, [this](const Mdl* model) { return renamed_.contains(model->name.view()); });
        addModels(pairs, fresh, gone);
    }

    void addModels(const std::vector<std::pair<const Mdl*, const Mdl*>>& pairs, const std::vector<const Mdl*>& fresh,
                   const std::vector<const Mdl*>& gone) {
        constexpr SubjectKind kKind = SubjectKind::model;
        for (const auto& [old_model, new_model] : pairs)
            compareTwoModels(*old_model, *new_model);
        for (const Mdl* const model : fresh) {
            const auto old_model = renamed_models_.find(model);
            if (old_model == renamed_models_.end()) {
                addWhole({.kind = kKind, .name = model->name}, ChangeKind::added);
                continue;
            }
            ChangeDetail detail;
            detail.was = old_model->second->name.view();
            detail.is = model->name.view();
            changes_->add({.kind = kKind, .name = model->name},
                         {.kind = ChangeKind::renamed, .details = detail}, 1);
            ++counts(kKind).renamed;
            compareTwoModels(*old_model->second, *model);
        }
        for (const Mdl* const model : gone)
            addWhole({.kind = kKind, .name = model->name}, ChangeKind::removed);
    }

    void compareTwoModels(const Mdl& was, const Mdl& is) {
        compareTwo({.kind = SubjectKind::model, .name = is.name}, [&](Comparison& comparison) {
            compareModelFields(comparison, was, is);
            compareModelTables(comparison, was, is);
        });
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
            compareText(comparison, "[Source]", was.source.value_or(""), is.source.value_or(""));
            compareText(comparison, "[Notes]", was.notes.value_or(""), is.notes.value_or(""));
            compareText(comparison, "[Disclaimer]", was.disclaimer.value_or(""), is.disclaimer.value_or(""));
            compareText(comparison, "[Copyright]", was.copyright.value_or(""), is.copyright.value_or(""));
        });
    }

    const ComparedFile& was_;
    const ComparedFile& is_;
    const CompareSettings& settings_;
    std::unique_ptr<ChangeList> changes_ = std::make_unique<ChangeList>();
    ViewMap<std::string_view> renamed_;                         // names in NEW by those in OLD
    std::unordered_map<const Mdl*, const Mdl*> renamed_models_; // models of OLD by those of NEW
    ViewMap<std::size_t> submodel_users_;                       // how many models of NEW add it
    FileChanges result_;
    Comparison comparison_{.settings = settings_, .changes = *changes_, .renamed = renamed_, .record = {}};
};

} // namespace

FileChanges compareFiles(const ComparedFile& was, const ComparedFile& is, const CompareSettings& settings) {
    return FileComparison(was, is, settings).run();
}

} // namespace kestrel
