#pragma once

#include "compare/output.hpp"
#include "main/file_list.hpp"
#include "main/memory_limit.hpp"
#include "main/verimark.hpp"
#include "report/compared_page.hpp"

#include <cstddef>
#include <string_view>
#include <vector>

namespace kestrel {

/// Two files to be compared, by their places in a list; one of them lacks where only one folder has the file.
struct FilePair {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::size_t was = kNone;
    std::size_t is = kNone;
};

/// The pairs of a call, with the names of their files.
struct FilePairs {
    const FileList* files = nullptr;
    std::vector<FilePair> pairs;
};

/// Lists the pairs that two arguments mean: two files; of two folders the files of equal names in them; of a file and a
/// folder the file in it that has the name of the other. False when something was complained of.
[[nodiscard]] bool listPairs(FilePairs& pairs, FileList& files, std::string_view was, std::string_view is,
                             const Complaint& complain);

/// Where a comparison writes: what changed, what is said beside that, and a page with pictures.
struct ComparedOutputs {
    Output& out;
    Output& errors;
    CompareFormat& format;
    const MemoryLimit* memory;    ///< null for none; holds for what is read of a pair and its comparison
    ComparedPage* page = nullptr; ///< null when none is wanted
};

/// True when a comparison may use two threads. It does not where memory is limited, so that it is always the same file
/// that needs too much.
[[nodiscard]] bool worksTogether(const MemoryLimit* memory, unsigned jobs);

/// Compares the pairs one after the other, the two files of each read at the same time where two work `together`. As
/// of diff: kAllPassed when nothing differs, kSomeFailed when something does, kTrouble when files could not
/// be compared.
[[nodiscard]] VerimarkStatus compareAll(const ComparedOutputs& outputs, const FilePairs& pairs,
                                        const CompareSettings& settings, bool together);

} // namespace kestrel
