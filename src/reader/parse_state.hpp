#pragma once

#include "reader/keyword.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace kestrel {

/// What a source file is; chosen by who opens it, never taken from its content.
enum class FileKind : std::uint8_t { ibs = 1, pkg = 2, ebd = 3, ami = 4 };

/// Class of the IBIS language version: the first digit of the version text. Limits and gates go by class. Versions 6
/// and 7 are one class: they are read by the rules of 5.1, without what these forbid and later ones allow.
enum class IbisVersion : std::uint8_t { none = 0, v1 = 1, v2 = 2, v3 = 3, v4 = 4, v5 = 5, later = 6 };

/// True for a version text from 6.0 to 7.9.
[[nodiscard]] constexpr bool isLaterVersion(std::string_view text) {
    return text.size() == 3 && (text[0] == '6' || text[0] == '7') && text[1] == '.' && '0' <= text[2] && text[2] <= '9';
}

/// The reader's state for the file being read. A nested parse puts it back (KeptParse).
struct ParseState {
    std::string directory;  ///< directory part, separator included, of the last name opened
    std::string file_name;  ///< bare name of the file being read
    std::uint32_t line = 0; ///< lines read so far
    FileKind kind = FileKind::ibs;
    IbisVersion file_version = IbisVersion::none; ///< found by the pre-scan
    IbisVersion version = IbisVersion::none;      ///< set by "[IBIS Ver]"; chooses keyword table and limits
    KeywordCode current = KeywordCode::notKey;    ///< keyword that data lines belong to
    char comment = '|';
    char new_comment = '|';             ///< what "[Comment Char]" first changed it to
    std::uint32_t new_comment_line = 0; ///< at which that was; 0 when it never did
    bool tab_warned = false;
    bool version_seen = false;         ///< "[IBIS Ver]" was read
    bool end_seen = false;             ///< "[End]" was read
    bool submodel_context = false;     ///< table keywords belong to a "[Submodel]"
    bool continuation_pending = false; ///< a construct over several lines is still open
    bool long_lines = false;           ///< no bound on white space and line length: .ami files, later versions
    bool top_level = false;            ///< set by the run driver; admits version texts 1.x
    bool takes_later = false;          ///< set by the run driver; admits files of later versions
    bool passing_over = false;         ///< data lines belong to a keyword of a later version
    bool in_table = false;             ///< data lines belong to a section with `read_rows`
    std::uint32_t later_blocks = 0;    ///< blocks of later versions that are open, one within the other
    std::array<std::uint32_t, kLaterKeywordCount> passed_over{}; ///< how often, by LaterKeyword
};

/// The most characters that a line may have.
[[nodiscard]] constexpr std::size_t lineLimit(const ParseState& parse) {
    if (parse.long_lines) return std::numeric_limits<std::size_t>::max();
    return parse.version < IbisVersion::v4 ? 80 : 120;
}

/// True when the file has a keyword that is passed over and may hold what a check would miss.
[[nodiscard]] constexpr bool wasPassedOver(const ParseState& parse, LaterKeyword keyword) {
    return parse.passed_over[static_cast<std::size_t>(keyword)] != 0;
}

/// Puts the reader back to where it was at the end of a nested parse, whatever happens in it.
class KeptParse {
public:
    explicit KeptParse(ParseState& state) : state_(state), kept_(state) {}
    KeptParse(const KeptParse&) = delete;
    KeptParse& operator=(const KeptParse&) = delete;
    ~KeptParse() { state_ = std::move(kept_); }

private:
    ParseState& state_;
    ParseState kept_;
};

} // namespace kestrel
