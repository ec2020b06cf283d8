#pragma once

#include "ami/outline.hpp"
#include "ami/tree.hpp"
#include "base/enum_set.hpp"
#include "diagnostics/diagnostics.hpp"
#include "reader/enumeration.hpp"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kestrel {

/// "Usage" of a parameter.
enum class AmiUsage : std::uint8_t { in, out, info, inOut };
using AmiUsageSet = EnumSet<AmiUsage>;

/// "Type" of a parameter.
enum class AmiType : std::uint8_t { real, integer, text, boolean, tap, unitInterval };
using AmiTypeSet = EnumSet<AmiType>;

inline constexpr std::array<EnumerationRow<AmiType>, 6> kAmiTypes{{
    {"Float", AmiType::real},
    {"Integer", AmiType::integer},
    {"String", AmiType::text},
    {"Boolean", AmiType::boolean},
    {"Tap", AmiType::tap},
    {"UI", AmiType::unitInterval},
}};

static_assert(standAtCodes(kAmiTypes));

inline constexpr AmiTypeSet kAmiNumbers{AmiType::real, AmiType::integer, AmiType::tap, AmiType::unitInterval};

/// How a parameter's values are given.
enum class AmiFormat : std::uint8_t { value, range, corner, list, increment, steps, table, gaussian, dualDirac, djRj };
using AmiFormatSet = EnumSet<AmiFormat>;

/// A format word, the number of values that it asks for (of a list and of a table's rows, the least) and the types
/// that it serves.
struct AmiFormatRow : EnumerationRow<AmiFormat> {
    int values;
    AmiTypeSet types;
};

inline constexpr auto kAmiFormats = std::to_array<AmiFormatRow>({
    {{"Value", AmiFormat::value}, 1, AmiTypeSet{}.others()},
    {{"Range", AmiFormat::range}, 3, kAmiNumbers},
    {{"Corner", AmiFormat::corner}, 3, AmiTypeSet{}.others()},
    {{"List", AmiFormat::list}, 1, AmiTypeSet{}.others()},
    {{"Increment", AmiFormat::increment}, 4, kAmiNumbers},
    {{"Steps", AmiFormat::steps}, 4, kAmiNumbers},
    {{"Table", AmiFormat::table}, 1, AmiTypeSet{AmiType::tap}.others()},
    {{"Gaussian", AmiFormat::gaussian}, 2, {AmiType::real, AmiType::unitInterval}},
    {{"Dual-Dirac", AmiFormat::dualDirac}, 3, {AmiType::real, AmiType::unitInterval}},
    {{"DjRj", AmiFormat::djRj}, 3, {AmiType::real, AmiType::unitInterval}},
});

static_assert(standAtCodes(kAmiFormats));

/// By which rules a parameter file is checked, as its "AMI_Version" chooses them.
struct AmiRules {
    std::string_view version;   ///< for messages; empty when there was none
    bool first_version = false; ///< there was no "AMI_Version"
    bool later = false;         ///< it names a version of which some words are not known here
};

/// What is at hand while the tree of one parameter file is checked.
struct AmiCheck {
    Context& context;
    LineFinder lines;
    AmiRules rules;
};

/// Where to report at the line of `item`.
[[nodiscard]] AtLine at(AmiCheck& check, const AmiItem& item);

/// What a parameter says of itself; every format word counts as the one "Format".
enum class AmiPart : std::uint8_t { usage, type, format, initial, description, listTip };

inline constexpr std::array<EnumerationRow<AmiPart>, 6> kAmiParts{{
    {"Usage", AmiPart::usage},
    {"Type", AmiPart::type},
    {"Format", AmiPart::format},
    {"Default", AmiPart::initial},
    {"Description", AmiPart::description},
    {"List_Tip", AmiPart::listTip},
}};

static_assert(standAtCodes(kAmiParts));

/// A parameter as far as it could be read.
struct AmiLeaf {
    /// Whether and how one part was given.
    struct Given {
        const AmiItem* word = nullptr; ///< the first: usage, type, format word or value; null without any
        bool met = false;              ///< it was there
        bool reported = false;         ///< it was there, or something like it, and what is missing of it was reported
    };
    /// The type of a table's column.
    struct ColumnType {
        AmiType type;
        const AmiItem* word;
    };

    const AmiItem* node = nullptr;
    std::array<Given, kAmiParts.size()> parts{}; ///< by AmiPart
    std::optional<AmiUsage> usage;
    std::optional<AmiType> type;          ///< of all values
    std::vector<ColumnType> column_types; ///< in place of it, if the columns have types of their own and all are known
    int type_words = 0;
    std::optional<AmiFormat> format;
    AmiItems values; ///< of the format
    const AmiItem* list_tip = nullptr;
    bool format_fits = true;      ///< it may have values of the type
    bool good_values = true;      ///< none of them was reported as not being of the type
    bool good_default = true;     ///< nor the default
    bool default_outside = false; ///< of the bounds or the list, which was reported

    [[nodiscard]] Given& operator[](AmiPart part) { return parts[static_cast<std::size_t>(part)]; }
    [[nodiscard]] const Given& operator[](AmiPart part) const { return parts[static_cast<std::size_t>(part)]; }
    [[nodiscard]] std::string_view name() const { return shown(node->text); }
};

/// True when a node is a parameter, false when it is a branch that holds some.
[[nodiscard]] bool isAmiLeaf(const AmiItem& node);
[[nodiscard]] bool isAmiLeaf(const AmiNode& node);

/// True of "(Table ..." and "(Format Table ...". In a parameter these hold rows; a parameter or a branch may have the
/// name, too.
[[nodiscard]] bool isAmiTable(const AmiItem& node);

/// The first type of the parameter or of a column that is none of `types`, and its word.
[[nodiscard]] std::optional<AmiLeaf::ColumnType> firstTypeOutside(const AmiLeaf& leaf, AmiTypeSet types);

/// What "Value" or "Default" gives; null when it was reported or is not there.
[[nodiscard]] const AmiItem* firstValue(const AmiLeaf& leaf);
[[nodiscard]] const AmiItem* defaultValue(const AmiLeaf& leaf);

/// The one value of a parameter: that of "Value" if that is its format, otherwise that of "Default".
[[nodiscard]] const AmiItem* singleValue(const AmiLeaf& leaf);

/// Reads a parameter and checks it by itself, at the lines of what is reported.
AmiLeaf checkAmiLeaf(AmiCheck& check, const AmiItem& node);

/// Checks the values of a parameter against its type and format.
void checkAmiValues(AmiCheck& check, AmiLeaf& leaf);

/// Reports a word or string that does not belong where it is: in `place`.
void reportAmiText(AmiCheck& check, const AmiItem& text, const AmiItem& place);

/// Reports a node in a parameter that is none of its parts, nor one of their values.
void reportUnknownAmiItem(AmiCheck& check, const AmiLeaf& leaf, const AmiItem& item);

/// Reports a description that is not one string in quotes; `owner` is what it describes.
void checkAmiDescription(AmiCheck& check, const AmiItem& description, const AmiItem& owner);

} // namespace kestrel
