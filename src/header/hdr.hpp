#pragma once

#include "reader/sections.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// The file header. The four long texts are absent until their keyword is met.
struct Hdr : RecordOf<SubjectKind::header> {
    std::string ibis_version; ///< at most 70 characters
    std::string file_name;
    std::string file_rev; ///< at most 70 characters up to version 5
    std::string date;     ///< at most 40 characters up to version 5
    std::uint32_t date_line = 0;
    std::optional<std::string> source;
    std::optional<std::string> notes;
    std::optional<std::string> disclaimer;
    std::optional<std::string> copyright;
};

/// The header being read and which of its keywords were seen.
struct HdrState : RecordState<Hdr> {
    bool ibis_version_seen = false;
    bool file_name_seen = false;
    bool file_rev_seen = false;
    bool date_seen = false;
    bool source_seen = false;
    bool notes_seen = false;
    bool disclaimer_seen = false;
    bool copyright_seen = false;
};

/// Reads the header, which any other keyword ends.
extern const RecordModule<HdrState> kHdr;

} // namespace kestrel
