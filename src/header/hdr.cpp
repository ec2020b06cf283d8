#include "header/hdr.hpp"

#include "ibis/run.hpp"

#include <algorithm>
#include <array>

namespace kestrel {

namespace {

constexpr std::uint32_t kShortTextLimit = 70;
constexpr std::uint32_t kDateLimit = 40;

constexpr std::array<std::string_view, 10> kVersions{"2.0", "2.1", "3.0", "3.1", "3.2",
                                                     "4.0", "4.1", "4.2", "5.0", "5.1"};

/// A free text that goes on over its data lines.
struct TextKeyword {
    KeywordCode code;
    std::optional<std::string> Hdr::*text;
    bool HdrState::*seen;
    std::optional<CheckedMessage<>> duplicate; ///< absent for the keyword that may be repeated
};

constexpr std::array<TextKeyword, 4> kTextKeywords{{
    {KeywordCode::source, &Hdr::source, &HdrState::source_seen, CheckedMessage<>(1017)},
    {KeywordCode::notes, &Hdr::notes, &HdrState::notes_seen, CheckedMessage<>(1018)},
    {KeywordCode::disclaimer, &Hdr::disclaimer, &HdrState::disclaimer_seen, std::nullopt},
    {KeywordCode::copyright, &Hdr::copyright, &HdrState::copyright_seen, CheckedMessage<>(1019)},
}};

const TextKeyword* findTextKeyword(KeywordCode code) {
    const auto* const at = std::ranges::find(kTextKeywords, code, &TextKeyword::code);
    return at == kTextKeywords.end() ? nullptr : at;
}

/// A text of one line.
struct ValueKeyword {
    KeywordCode code;
    std::string_view name;
    std::string Hdr::*text;
    bool HdrState::*seen;
    std::uint32_t limit;
    CheckedMessage<> duplicate;
};

constexpr std::array<ValueKeyword, 2> kValueKeywords{{
    {KeywordCode::fileRev, "File_Rev", &Hdr::file_rev, &HdrState::file_rev_seen, kShortTextLimit, 1015},
    {KeywordCode::date, "Date", &Hdr::date, &HdrState::date_seen, kDateLimit, 1016},
}};

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

bool isLegalVersion(std::string_view text, bool top_level) {
    return std::ranges::find(kVersions, text) != kVersions.end() || (top_level && text.starts_with("1."));
}

void ibisVerLine(Run& run, Hdr& header, std::string_view text) {
    HdrState& state = run.hdr;
    if (anyOtherKeywordSeen(state)) errorAtLine(run.diagnostics, 1007);
    if (state.ibis_version_seen) {
        errorAtLine(run.diagnostics, 1005);
        return;
    }
    state.ibis_version_seen = true;
    std::string& stored = header.ibis_version;
    setTextOnce(run.diagnostics, stored, text, kShortTextLimit, "IBIS_Version");
    if (stored.empty()) return;
    if (!isLegalVersion(stored, run.parse.top_level)) {
        errorAtLine(run.diagnostics, 1008, stored);
        return;
    }
    run.parse.version = static_cast<IbisVersion>(stored.front() - '0');
}

void checkFileName(Diagnostics& diagnostics, std::string_view name) {
    int periods = 0;
    for (const char c : name) {
        if (isUpper(c)) {
            errorAtLine(diagnostics, 1010, name, c);
        } else if (!isFileNameCharacter(c)) {
            errorAtLine(diagnostics, 1011, name, c);
        } else if (c == '.' && ++periods > 1) {
            errorAtLine(diagnostics, 1012, name);
        }
    }
    if (periods == 0) errorAtLine(diagnostics, 1013, name);
}

void storeFileName(Run& run, Hdr& header, std::string_view text) {
    constexpr std::string_view kName = "File_name";
    const auto limit = static_cast<std::uint32_t>(fileNameLimit(run.parse.version));
    if (run.parse.version < IbisVersion::v3) {
        setTextOnce(run.diagnostics, header.file_name, text, limit, kName);
    } else {
        setWholeTextOnce(run.diagnostics, header.file_name, text, limit, kName);
    }
}

void fileNameLine(Run& run, Hdr& header, std::string_view text) {
    if (run.hdr.file_name_seen) {
        errorAtLine(run.diagnostics, 1009);
        return;
    }
    run.hdr.file_name_seen = true;
    storeFileName(run, header, text);
    const std::string& name = header.file_name;
    if (!name.empty()) checkFileName(run.diagnostics, name);
    if (!equalsNoCase(name, run.parse.file_name)) errorAtLine(run.diagnostics, 1014, run.parse.file_name, name);
    checkNotReserved(run.diagnostics, name);
}

void valueLine(Run& run, Hdr& header, const ValueKeyword& keyword, std::string_view text) {
    bool& seen = run.hdr.*keyword.seen;
    if (seen) {
        errorAtLine(run.diagnostics, keyword.duplicate);
        return;
    }
    seen = true;
    std::string& stored = header.*keyword.text;
    setTextOnce(run.diagnostics, stored, text, keyword.limit, keyword.name);
    checkNotReserved(run.diagnostics, stored);
}

void textLine(Run& run, Hdr& header, const TextKeyword& keyword, std::string_view text) {
    bool& seen = run.hdr.*keyword.seen;
    if (seen && keyword.duplicate) {
        errorAtLine(run.diagnostics, *keyword.duplicate);
        return;
    }
    seen = true;
    append(header.*keyword.text, text);
}

void keywordLine(Run& run, Hdr& header, const Line& line) {
    if (line.key == KeywordCode::ibisVer) {
        ibisVerLine(run, header, line.text);
        return;
    }
    if (line.key == KeywordCode::fileName) {
        fileNameLine(run, header, line.text);
        return;
    }
    const auto* const value = std::ranges::find(kValueKeywords, line.key, &ValueKeyword::code);
    if (value != kValueKeywords.end()) {
        valueLine(run, header, *value, line.text);
    } else if (const TextKeyword* const text = findTextKeyword(line.key)) {
        textLine(run, header, *text, line.text);
    } else {
        programBugAtLine(run.diagnostics, 1003);
    }
}

void dataLine(Run& run, Hdr& header, const Line& line) {
    if (const TextKeyword* const text = findTextKeyword(line.key)) {
        append(header.*text->text, line.text);
    } else {
        errorAtLine(run.diagnostics, 1002);
    }
}

} // namespace

bool isFileNameCharacter(char c) {
    constexpr std::string_view kMarks = "_^$~!#%&-{}()@'`.";
    return isAlpha(c) || isDigit(c) || kMarks.find(c) != std::string_view::npos;
}

void openHdr(Run& run) {
    Ibis* const root = currentRoot(run);
    if (root == nullptr) {
        programBug(run.diagnostics, 1000);
        return;
    }
    run.hdr = {.current = &root->headers.add(std::make_unique<Hdr>())};
}

void hdrKeywordSeen(Run& run, KeywordCode code) {
    HdrState& state = run.hdr;
    if (state.current == nullptr || isBetween(code, KeywordCode::fileName, KeywordCode::copyright)) return;
    if (code == KeywordCode::ibisVer) {
        errorAtLine(run.diagnostics, 1005);
        return;
    }
    if (!state.ibis_version_seen) requiredKeywordMissing(run, "IBIS_Version");
    if (!state.file_name_seen) requiredKeywordMissing(run, "File_name");
    if (!state.file_rev_seen) requiredKeywordMissing(run, "File_Rev");
    state.current = nullptr;
}

void hdrLine(Run& run, const Line& line) {
    Hdr* const header = run.hdr.current;
    if (header == nullptr) {
        if (line.kind == LineKind::keyword) {
            errorAtLine(run.diagnostics, 1001);
        } else {
            errorAtLine(run.diagnostics, 1002);
        }
        return;
    }
    switch (line.kind) {
    case LineKind::keyword: keywordLine(run, *header, line); return;
    case LineKind::data: dataLine(run, *header, line); return;
    case LineKind::blank: break;
    }
    programBugAtLine(run.diagnostics, 1004);
}

} // namespace kestrel
