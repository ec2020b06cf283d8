#pragma once

#include "diagnostics/diagnostics.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// Keeps findings of one file, and what is printed between them, for later.
class FindingLog {
public:
    /// Adds a finding with the text that was printed ahead of it.
    void add(std::string_view printed, const Finding& finding);

    [[nodiscard]] bool empty() const { return entries_.empty(); }
    /// Bytes that it takes.
    [[nodiscard]] std::size_t size() const { return texts_.capacity() + entries_.capacity() * sizeof(Entry); }

    /// Calls `use` with everything that was added, in the same order.
    void replay(const std::function<void(std::string_view, const Finding&)>& use) const;

private:
    /// The texts of an entry follow each other: what was printed, the file unless it is that of the entry before, the
    /// name of the subject, the message.
    struct Entry {
        Severity severity;
        SubjectKind subject_kind;
        bool has_code;
        bool exact;
        bool has_subject;
        bool same_file;
        FindingCode code;
        std::uint32_t line;
        std::uint32_t shown_line;
        std::uint32_t subject_line;
        std::size_t printed;
        std::size_t file;
        std::size_t name;
        std::size_t text;
        TablePlaces at;
    };

    std::vector<Entry> entries_;
    std::string texts_;
    std::string last_file_;
};

} // namespace kestrel
