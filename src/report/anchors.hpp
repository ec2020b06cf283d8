#pragma once

#include "diagnostics/diagnostics.hpp"
#include "ibis/ibis.hpp"
#include "report/html.hpp"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

namespace kestrel {

/// The records of a list in the order of the file.
template <class Record> [[nodiscard]] std::vector<const Record*> inFileOrder(const ObjectList<Record>& list) {
    std::vector<const Record*> records;
    records.reserve(list.size());
    for (const Record& record : list.newestFirst())
        records.push_back(&record);
    std::ranges::reverse(records);
    return records;
}

/// Where in the page the records of a file are.
class Anchors {
public:
    explicit Anchors(std::uint32_t file) : file_(file) {}
    /// The places of the records that have some.
    void enter(const Ibis& root);

    [[nodiscard]] Anchor file() const { return {'f', file_, 0}; }
    [[nodiscard]] Anchor numbered(char kind, std::uint32_t number) const { return {kind, file_, number}; }
    /// The place of a record; null when it has none.
    [[nodiscard]] const Anchor* find(const Subject* record) const;
    /// The place of the record of a finding, whose subject is a copy.
    [[nodiscard]] const Anchor* find(const Finding& finding) const;

private:
    struct Key {
        SubjectKind kind;
        std::uint32_t line;
        std::string_view file;

        friend bool operator==(const Key&, const Key&) = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const {
            return std::size_t{key.line} * 16 + static_cast<std::size_t>(key.kind);
        }
    };

    template <class Record> void enterList(const ObjectList<Record>& list, char kind);

    std::uint32_t file_;
    std::unordered_map<const Subject*, Anchor> of_records_;
    std::unordered_map<Key, Anchor, KeyHash> of_lines_;
};

} // namespace kestrel
