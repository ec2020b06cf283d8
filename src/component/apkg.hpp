#pragma once

#include "base/name_list.hpp"
#include "base/text_hash.hpp"
#include "reader/sections.hpp"

#include <memory>
#include <string_view>

namespace kestrel {

/// "[Alternate Package Models]": package models that may take the place of the component's own.
struct Alternates {
    NameList models;     ///< of at most 40 characters
    TextSet cut;         ///< those that no line has but cut, which was reported
    bool listed = false; ///< a line was there, or the lack of any was reported
};

/// The end of the block.
extern const BlockEnd kAlternatesEnd;

/// Begins the block at its keyword, anew or once more.
void openAlternates(Context& context, std::unique_ptr<Alternates>& alternates, std::string_view text);

/// Reads a name; the component's is for messages.
void alternateLine(Context& context, Alternates& alternates, std::string_view component, std::string_view text);

/// Reports a block without names.
void closeAlternates(Context& context, Alternates& alternates, std::string_view component);

} // namespace kestrel
