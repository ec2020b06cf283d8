#pragma once

#include "reader/keyword.hpp"

#include <array>
#include <optional>
#include <string>

namespace kestrel {

struct Run;

/// The file header. The four long texts are absent until their keyword is met.
struct Hdr {
    std::string ibis_version; ///< at most 70 characters
    std::string file_name;
    std::string file_rev; ///< at most 70 characters
    std::string date;     ///< at most 40 characters
    std::optional<std::string> source;
    std::optional<std::string> notes;
    std::optional<std::string> disclaimer;
    std::optional<std::string> copyright;
};

/// The header being read, null outside one, and which of its keywords were seen.
struct HdrState {
    Hdr* current = nullptr;
    bool ibis_version_seen = false;
    bool file_name_seen = false;
    bool file_rev_seen = false;
    bool date_seen = false;
    bool source_seen = false;
    bool notes_seen = false;
    bool disclaimer_seen = false;
    bool copyright_seen = false;
};

/// True for the characters that a file name in a file may have: letters, digits and some marks.
[[nodiscard]] bool isFileNameCharacter(char c);

/// Opens a header at the file's first "[IBIS Ver]" and forgets which keywords were seen.
void openHdr(Run& run);

/// Told of every keyword: the first that is not a header keyword ends the header and reports what is missing (1915, no
/// line).
void hdrKeywordSeen(Run& run, KeywordCode code);

/// Reads a header keyword line or a data line under it.
void hdrLine(Run& run, const Line& line);

} // namespace kestrel
