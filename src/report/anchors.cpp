#include "report/anchors.hpp"

#include "ibis/run.hpp"

namespace kestrel {

template <class Record> void Anchors::enterList(const ObjectList<Record>& list, char kind) {
    std::uint32_t number = 0;
    for (const Record* const record : inFileOrder(list)) {
        const Anchor anchor{kind, file_, ++number};
        of_records_.emplace(record, anchor);
        of_lines_.emplace(Key{record->kind, record->line, record->file != nullptr ? *record->file : std::string_view()},
                          anchor);
    }
}

void Anchors::enter(const Ibis& root) {
    enterList(root.components, 'c');
    enterList(root.model_selectors, 's');
    enterList(root.models, 'm');
    enterList(root.submodels, 'u');
    enterList(root.test_data, 't');
    enterList(root.test_loads, 'l');
    enterList(root.package_models, 'p');
    enterList(root.board_descriptions, 'b');
}

const Anchor* Anchors::find(const Subject* record) const {
    const auto at = of_records_.find(record);
    return at == of_records_.end() ? nullptr : &at->second;
}

const Anchor* Anchors::find(const Finding& finding) const {
    if (finding.subject == nullptr) return nullptr;
    const auto at = of_lines_.find({finding.subject->kind, finding.subject->line, finding.file});
    return at == of_lines_.end() ? nullptr : &at->second;
}

} // namespace kestrel
