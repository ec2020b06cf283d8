#pragma once

#include "reader/keyword.hpp"

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

namespace kestrel {

struct Run;

/// A construct from a begin keyword to its end keyword, within a record of type `Owner` that has at most one open. Data
/// between the keywords goes to `line`; the other functions report at the line.
template <class Owner> struct Block {
    KeywordCode begin;
    KeywordCode end;
    std::string_view end_name; ///< of the end keyword, as messages name it
    void (*open)(Run& run, Owner& owner, std::string_view text);
    void (*line)(Run& run, Owner& owner, std::string_view text);
    void (*close)(Run& run, Owner& owner); ///< checks the whole block
    void (*text_behind_end)(Run& run, std::string_view text);
    void (*not_ended)(Run& run);
    void (*no_begin)(Run& run);
    std::span<const KeywordCode> inner{}; ///< keywords that may stand within; the owner reads them
};

/// The block of the list that a keyword begins or ends, or null.
template <class Owner>
[[nodiscard]] const Block<Owner>* blockOf(std::span<const Block<Owner>* const> blocks, KeywordCode code) {
    const auto at = std::ranges::find_if(
        blocks, [code](const Block<Owner>* block) { return block->begin == code || block->end == code; });
    return at == blocks.end() ? nullptr : *at;
}

/// Told of every keyword: one that is not the block's own closes it.
template <class Owner>
void blockKeywordSeen(Run& run, Owner& owner, const Block<Owner>*& open_block, KeywordCode code) {
    if (open_block == nullptr || code == open_block->end) return;
    if (std::ranges::find(open_block->inner, code) != open_block->inner.end()) return;
    const Block<Owner>& block = *std::exchange(open_block, nullptr);
    block.not_ended(run);
    block.close(run, owner);
}

/// Reads the begin or end keyword line of a block. No block is open at a begin keyword, since it closes any.
template <class Owner>
void blockKeywordLine(Run& run, Owner& owner, const Block<Owner>& block, const Block<Owner>*& open_block,
                      const Line& line) {
    if (line.key == block.begin) {
        open_block = &block;
        block.open(run, owner, line.text);
        return;
    }
    if (!line.text.empty()) block.text_behind_end(run, line.text);
    if (std::exchange(open_block, nullptr) == &block) {
        block.close(run, owner);
    } else {
        block.no_begin(run);
    }
}

} // namespace kestrel
