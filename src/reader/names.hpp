#pragma once

#include "diagnostics/diagnostics.hpp"
#include "reader/parse_state.hpp"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace kestrel {

class Name;
class StoredText;
struct Context;

/// Names of later versions are as long as they are; what records say of the lengths of theirs is true up to version 5.
inline constexpr int kNoLimit = std::numeric_limits<int>::max();

/// A limit that is the same up to version 5.
[[nodiscard]] constexpr int unlessLater(IbisVersion version, int limit) {
    return version == IbisVersion::later ? kNoLimit : limit;
}

/// Most characters of a pin name.
[[nodiscard]] constexpr int pinNameLimit(IbisVersion version) {
    return unlessLater(version, version >= IbisVersion::v5 ? 8 : 5);
}

/// Most characters of the names of models, selectors, signals and function table groups.
[[nodiscard]] constexpr int modelNameLimit(IbisVersion version) {
    return unlessLater(version, version < IbisVersion::v4 ? 20 : 40);
}

/// Most characters of the name of a file.
[[nodiscard]] constexpr int fileNameLimit(IbisVersion version) {
    return unlessLater(version, version < IbisVersion::v3 ? 12 : version < IbisVersion::v4 ? 24 : 44);
}

/// Most characters of a bus label.
[[nodiscard]] constexpr int busLabelLimit(IbisVersion version) { return unlessLater(version, 15); }

/// Most characters of the names that did not grow up to version 5: components, package models, external circuits,
/// submodels, test data, test loads, boards and their paths.
[[nodiscard]] constexpr int longNameLimit(IbisVersion version) { return unlessLater(version, 40); }

/// Most characters of the name of a package pin.
[[nodiscard]] constexpr int packagePinLimit(IbisVersion version) { return unlessLater(version, 5); }

/// Most characters of a board's pin name, also where a path names it, and of the pin of a node.
[[nodiscard]] constexpr int boardPinLimit(IbisVersion version) { return unlessLater(version, 8); }

/// Most characters of a signal name of a board.
[[nodiscard]] constexpr int boardSignalLimit(IbisVersion version) { return unlessLater(version, 20); }

/// Most characters of a reference designator.
[[nodiscard]] constexpr int designatorLimit(IbisVersion version) { return unlessLater(version, 10); }

/// What is kept of a name.
[[nodiscard]] constexpr std::string_view cutName(std::string_view text, int limit) {
    return text.substr(0, static_cast<std::size_t>(limit));
}

/// A message of an overlong name. It shows the name, the limit, both in this order, or neither, as its text has it.
struct NameTooLong {
    consteval NameTooLong(MessageCode code) {
        const std::string_view text = kCatalog[catalogIndex(code)].text;
        shows_name = text.find("%s") != std::string_view::npos;
        shows_limit = text.find("%d") != std::string_view::npos;
        if (shows_name && shows_limit) {
            row = CheckedMessage<ArgKind::text, ArgKind::integer>(code).row;
        } else if (shows_name) {
            row = CheckedMessage<ArgKind::text>(code).row;
        } else if (shows_limit) {
            row = CheckedMessage<ArgKind::integer>(code).row;
        } else {
            row = CheckedMessage<>(code).row;
        }
    }
    std::uint16_t row = 0;
    bool shows_name = false;
    bool shows_limit = false;
};

/// Stores a name cut to its limit; false when it was over it, which is reported at the line.
bool storeName(Diagnostics& diagnostics, std::string& name, std::string_view text, int limit, NameTooLong too_long);

/// The same for texts and names of the context's stores.
bool storeName(Context& context, StoredText& name, std::string_view text, int limit, NameTooLong too_long);
bool storeName(Context& context, Name& name, std::string_view text, int limit, NameTooLong too_long);

/// Stores a text that may be given once, cut at `limit`. Reports at the line one that is cut or empty, and one for
/// which `destination` holds text already: then nothing is stored (false).
bool setTextOnce(Diagnostics& diagnostics, std::string& destination, std::string_view text, int limit,
                 std::string_view keyword);

/// The same for a name that many records may share.
bool setTextOnce(Context& context, Name& destination, std::string_view text, int limit, std::string_view keyword);

/// The same, but an overlong text is stored whole, up to 1024 characters.
bool setWholeTextOnce(Diagnostics& diagnostics, std::string& destination, std::string_view text, int limit,
                      std::string_view keyword);

/// Reports without line that the keyword is missing from the file being read.
void requiredKeywordMissing(Context& context, std::string_view keyword);

/// True for the characters that a file name in a file may have: letters, digits and some marks.
[[nodiscard]] bool isFileNameCharacter(char c);

/// True for "GND", "NC", "POWER", "CIRCUITCALL" and "NA" in any case.
[[nodiscard]] bool isReservedWord(std::string_view text);

/// True when `text` is free to use; a reserved word is reported at the line (false).
bool checkNotReserved(Diagnostics& diagnostics, std::string_view text);

} // namespace kestrel
