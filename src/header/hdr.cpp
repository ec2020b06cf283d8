#include "header/hdr.hpp"

#include "base/text.hpp"
#include "reader/names.hpp"

namespace kestrel {

namespace {

constexpr int kShortTextLimit = 70;
constexpr int kDateLimit = 40;

constexpr std::array<std::string_view, 10> kVersions{"2.0", "2.1", "3.0", "3.1", "3.2",
                                                     "4.0", "4.1", "4.2", "5.0", "5.1"};

/// A free text that goes on over its data lines.
struct TextKeyword {
    std::optional<std::string> Hdr::*text;
    bool HdrState::*seen;
    std::optional<CheckedMessage<>> duplicate; ///< absent for the keyword that may be repeated
};

constexpr TextKeyword kSource{&Hdr::source, &HdrState::source_seen, CheckedMessage<>(1017)};
constexpr TextKeyword kNotes{&Hdr::notes, &HdrState::notes_seen, CheckedMessage<>(1018)};
constexpr TextKeyword kDisclaimer{&Hdr::disclaimer, &HdrState::disclaimer_seen, std::nullopt};
constexpr TextKeyword kCopyright{&Hdr::copyright, &HdrState::copyright_seen, CheckedMessage<>(1019)};

/// A text of one line.
struct ValueKeyword {
    std::string_view name;
    std::string Hdr::*text;
    bool HdrState::*seen;
    int limit;
    CheckedMessage<> duplicate;
    std::uint32_t Hdr::*line = nullptr; ///< where the record keeps it
};

constexpr ValueKeyword kFileRev{"File_Rev", &Hdr::file_rev, &HdrState::file_rev_seen, kShortTextLimit, 1015};
constexpr ValueKeyword kDate{"Date", &Hdr::date, &HdrState::date_seen, kDateLimit, 1016, &Hdr::date_line};

/// In place, so that a text of many lines is not copied for each of them.
void append(std::optional<std::string>& text, std::string_view line) {
    if (!text) {
        text.emplace(line);
        return;
    }
    text->push_back('\n');
    text->append(line);
}

bool anyOtherKeywordSeen(const HdrState& state) {
    return state.file_name_seen || state.file_rev_seen || state.date_seen || state.source_seen || state.notes_seen ||
           state.disclaimer_seen || state.copyright_seen;
}

/// The version class of a text, for one that is legal.
std::optional<IbisVersion> legalVersion(const ParseState& parse, std::string_view text) {
    if (parse.takes_later && isLaterVersion(text)) return IbisVersion::later;
    if (!contains(kVersions, text) && !(parse.top_level && text.starts_with("1."))) return std::nullopt;
    return static_cast<IbisVersion>(text.front() - '0');
}

void ibisVerLine(Context& context, HdrState& state, Hdr& header, std::string_view text) {
    if (anyOtherKeywordSeen(state)) errorAtLine(context.diagnostics, 1007);
    if (state.ibis_version_seen) {
        errorAtLine(context.diagnostics, 1005);
        return;
    }
    state.ibis_version_seen = true;
    std::string& stored = header.ibis_version;
    setTextOnce(context.diagnostics, stored, text, kShortTextLimit, "IBIS_Version");
    if (stored.empty()) return;
    const std::optional<IbisVersion> version = legalVersion(context.parse, stored);
    if (!version) {
        errorAtLine(context.diagnostics, 1008, stored);
        return;
    }
    context.parse.version = *version;
    if (version == IbisVersion::later) noteLaterVersion(context.diagnostics, stored);
}

void checkFileName(Context& context, std::string_view name) {
    Diagnostics& diagnostics = context.diagnostics;
    const bool takes_upper = context.parse.version == IbisVersion::later;
    int periods = 0;
    for (const char c : name) {
        if (isUpper(c)) {
            if (!takes_upper) errorAtLine(diagnostics, 1010, name, c);
        } else if (!isFileNameCharacter(c)) {
            errorAtLine(diagnostics, 1011, name, c);
        } else if (c == '.' && ++periods > 1) {
            errorAtLine(diagnostics, 1012, name);
        }
    }
    if (periods == 0) errorAtLine(diagnostics, 1013, name);
}

void storeFileName(Context& context, Hdr& header, std::string_view text) {
    constexpr std::string_view kName = "File_name";
    const int limit = fileNameLimit(context.parse.version);
    if (context.parse.version < IbisVersion::v3) {
        setTextOnce(context.diagnostics, header.file_name, text, limit, kName);
    } else {
        setWholeTextOnce(context.diagnostics, header.file_name, text, limit, kName);
    }
}

void fileNameLine(Context& context, HdrState& state, Hdr& header, std::string_view text) {
    if (state.file_name_seen) {
        errorAtLine(context.diagnostics, 1009);
        return;
    }
    state.file_name_seen = true;
    storeFileName(context, header, text);
    const std::string& name = header.file_name;
    if (!name.empty()) checkFileName(context, name);
    if (!equalsNoCase(name, context.parse.file_name)) {
        errorAtLine(context.diagnostics, 1014, context.parse.file_name, name);
    }
    checkNotReserved(context.diagnostics, name);
}

template <const ValueKeyword& Keyword>
void valueLine(Context& context, HdrState& state, Hdr& header, std::string_view text) {
    if (std::exchange(state.*Keyword.seen, true)) {
        errorAtLine(context.diagnostics, Keyword.duplicate);
        return;
    }
    std::string& stored = header.*Keyword.text;
    setTextOnce(context.diagnostics, stored, text, unlessLater(context.parse.version, Keyword.limit), Keyword.name);
    checkNotReserved(context.diagnostics, stored);
    if (Keyword.line != nullptr) header.*Keyword.line = context.parse.line;
}

template <const TextKeyword& Keyword>
void textLine(Context& context, HdrState& state, Hdr& header, std::string_view text) {
    if (std::exchange(state.*Keyword.seen, true) && Keyword.duplicate) {
        errorAtLine(context.diagnostics, *Keyword.duplicate);
        return;
    }
    append(header.*Keyword.text, text);
}

template <const TextKeyword& Keyword> void moreText(Context& /*context*/, Hdr& header, std::string_view text) {
    append(header.*Keyword.text, text);
}

void dataOutOfPlace(Context& context, std::string_view /*text*/) { errorAtLine(context.diagnostics, 1002); }

template <const ValueKeyword& Keyword> constexpr Section<HdrState> value(KeywordCode key) {
    return section<HdrState, valueLine<Keyword>, dataOutOfPlace>(key);
}

template <const TextKeyword& Keyword> constexpr Section<HdrState> text(KeywordCode key) {
    return section<HdrState, textLine<Keyword>, moreText<Keyword>>(key);
}

using K = KeywordCode;

constexpr auto kSections = sectionTable<HdrState>({
    section<HdrState, ibisVerLine, dataOutOfPlace>(K::ibisVer),
    section<HdrState, fileNameLine, dataOutOfPlace>(K::fileName),
    value<kFileRev>(K::fileRev),
    value<kDate>(K::date),
    text<kSource>(K::source),
    text<kNotes>(K::notes),
    text<kDisclaimer>(K::disclaimer),
    text<kCopyright>(K::copyright),
});

void close(Context& context, HdrState& state, Hdr& /*header*/) {
    if (!state.ibis_version_seen) requiredKeywordMissing(context, "IBIS_Version");
    if (!state.file_name_seen) requiredKeywordMissing(context, "File_name");
    if (!state.file_rev_seen) requiredKeywordMissing(context, "File_Rev");
}

void reportImpossible(Context& context, LineKind kind) {
    if (kind == LineKind::keyword) {
        programBugAtLine(context.diagnostics, 1003);
    } else {
        programBugAtLine(context.diagnostics, 1004);
    }
}

} // namespace

const RecordModule<HdrState> kHdr{
    .opens = K::ibisVer,
    .find = [](K code) { return kSections.find(code); },
    .close = close,
    .orphan = reportOrphan<1001, 1002>,
    .impossible = reportImpossible,
    .reopened = [](Context& context) { errorAtLine(context.diagnostics, 1005); },
};

} // namespace kestrel
