#pragma once

#include "base/enum_set.hpp"
#include "reader/keyword.hpp"
#include "reader/parse_state.hpp"

#include <span>

namespace kestrel {

class LineReader;
struct Run;

/// A module that keywords belong to, as the dispatcher sees it.
struct Module {
    Owner owner;
    EnumSet<FileKind> kinds;                                    ///< the files in which it takes lines
    KeywordCode opens = KeywordCode::notKey;                    ///< the keyword that begins one of its records
    void (*open)(Run& run) = nullptr;                           ///< begins that record
    void (*keyword_seen)(Run& run, KeywordCode code) = nullptr; ///< closes what any keyword ends
    void (*line)(Run& run, const Line& line) = nullptr;         ///< reads a keyword line, or a data line under one
    void (*read_rows)(Run& run, LineReader& reader) = nullptr;  ///< reads rows of the open table while lines are plain
    void (*forget)(Run& run) = nullptr; ///< drops what is being read; no later keyword closes it
};

/// All modules, in the order in which they see keywords.
[[nodiscard]] std::span<const Module> modules();

/// Shows a keyword to all modules, which close what it ends.
void showKeyword(Run& run, KeywordCode code);

/// The module that a keyword belongs to.
[[nodiscard]] const Module& moduleOf(KeywordCode code);

} // namespace kestrel
