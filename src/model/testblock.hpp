#pragma once

#include "base/object_list.hpp"
#include "reader/enumeration.hpp"
#include "reader/line_form.hpp"
#include "reader/names.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What "[Test Data]" and "[Test Load]" have in common.
namespace kestrel {

struct Run;

/// Whether a test is of one signal or of a pair.
enum class TestType : std::uint8_t { notGiven, singleEnded, differential };

inline constexpr std::array<EnumerationRow<TestType>, 2> kTestTypes{{
    {"Single_ended", TestType::singleEnded},
    {"Differential", TestType::differential},
}};

/// What the keyword line of a named block reports.
struct BlockNameMessages {
    CheckedMessage<> missing;
    CountMessage wrong_count; ///< items, the keyword, 1
    NameTooLong length;
    CheckedMessage<ArgKind::text> reserved; ///< the name
    CheckedMessage<ArgKind::text> repeated; ///< the name
};

/// Reads the name behind a keyword, cut to its limit; empty when there is none. `is_new` tells whether it may still be
/// the name of another record: a name too long or reserved has been reported and is asked no more.
struct BlockName {
    std::string text;
    bool is_new = false;
};
[[nodiscard]] BlockName readBlockName(Run& run, std::string_view text, std::string_view keyword,
                                      const BlockNameMessages& messages);

void reportRepeatedName(Run& run, const BlockNameMessages& messages, std::string_view name);

/// Reads the name of a block at its keyword line and enters the record under it.
template <class Block>
void nameBlock(Run& run, ObjectList<Block>& list, Block& block, std::string_view text, std::string_view keyword,
               const BlockNameMessages& messages) {
    const BlockName name = readBlockName(run, text, keyword, messages);
    if (name.text.empty()) return;
    if (name.is_new && list.find(name.text) != nullptr) reportRepeatedName(run, messages, name.text);
    block.name = name.text;
    list.enterName(block, block.name);
}

/// What the words of such a block report.
struct BlockWordMessages {
    WordLineMessages word;
    EnumerationMessages type;
    CheckedMessage<ArgKind::text, ArgKind::integer> length; ///< the subparameter, the limit
    CheckedMessage<ArgKind::text, ArgKind::text> reserved;  ///< the subparameter, the name
};

/// Reads "name type" behind its name; false when it gives none.
bool readTestType(Run& run, std::string_view rest, std::string_view name, const BlockWordMessages& messages,
                  TestType& type);

/// Reads the name of a record behind that of the subparameter and stores it, cut to its limit; false when something
/// was reported of the name itself.
bool readReferredName(Run& run, std::string_view rest, std::string_view name, const BlockWordMessages& messages,
                      std::string& referred);

} // namespace kestrel
