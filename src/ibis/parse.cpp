#include "ibis/parse.hpp"

#include "ami/check.hpp"
#include "base/text.hpp"
#include "ibis/checks.hpp"
#include "ibis/modules.hpp"
#include "ibis/run.hpp"
#include "reader/items.hpp"

#include <algorithm>
#include <new>
#include <utility>

namespace kestrel {

namespace {

void resetReader(ParseState& parse, FileKind kind) {
    parse.kind = kind;
    parse.line = 0;
    parse.tab_warned = false;
    parse.comment = '|';
    parse.new_comment_line = 0;
    parse.file_name.clear();
    parse.current = KeywordCode::notKey;
    parse.version_seen = false;
    parse.end_seen = false;
    parse.submodel_context = false;
    parse.continuation_pending = false;
    parse.passing_over = false;
    parse.in_table = false;
    parse.later_blocks = 0;
    parse.passed_over = {};
    // Only a file's own version may be a later one.
    parse.long_lines = false;
    if (parse.version == IbisVersion::later) parse.version = IbisVersion::v5;
}

/// Length and TAB checks of a line that has been read and counted.
void finishLine(Run& run, const SourceLine& line) {
    const std::size_t limit = lineLimit(run.parse);
    if (line.text.size() > limit) errorAtLine(run.diagnostics, 905, static_cast<std::int32_t>(limit));
    if (line.has_tab && !run.parse.tab_warned) {
        run.parse.tab_warned = true;
        warningAtLine(run.diagnostics, 921);
    }
}

/// Classifies a line by what is behind its leading white space.
LineKind classify(Run& run, std::string_view line, std::string_view body) {
    if (body.empty()) return LineKind::blank;
    if (body.front() != '[') return body.front() == run.parse.comment ? LineKind::blank : LineKind::data;
    if (body.size() == line.size()) return LineKind::keyword;
    // The free texts of the header may hold bracketed words.
    if (isBetween(run.parse.current, KeywordCode::source, KeywordCode::copyright)) return LineKind::data;
    errorAtLine(run.diagnostics, 906);
    return LineKind::keyword;
}

bool isCommentCharLine(std::string_view line) {
    constexpr std::size_t kLength = 14;
    return prefixEqualsNoCase(line, "[COMMENT_CHAR]", kLength) || prefixEqualsNoCase(line, "[COMMENT CHAR]", kLength);
}

/// What follows the first "]" of a keyword line and its white space.
std::string_view textAfterKeyword(const Run& run, std::string_view line) {
    return skipWhiteSpace(run, line.substr(line.find(']') + 1));
}

/// "[Comment Char] #_char": the new character counts at once, also for the rest of its line.
void changeCommentChar(Run& run, std::string_view line) {
    constexpr std::string_view kSuffix = "_char";
    constexpr std::string_view kForbidden = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ[]._/=+-";
    const std::string_view text = textAfterKeyword(run, line);
    if (text.empty() || text.substr(1, kSuffix.size()) != kSuffix) {
        errorAtLine(run.diagnostics, 917);
        return;
    }
    const char wanted = text.front();
    if (kForbidden.find(wanted) != std::string_view::npos) {
        errorAtLine(run.diagnostics, 918, wanted);
        return;
    }
    if (wanted != run.parse.comment && run.parse.new_comment_line == 0) {
        run.parse.new_comment = wanted;
        run.parse.new_comment_line = run.parse.line;
    }
    run.parse.comment = wanted;
    const std::string_view rest = skipWhiteSpace(run, text.substr(1 + kSuffix.size()));
    if (!rest.empty() && rest.front() != wanted) errorAtLine(run.diagnostics, 919);
}

/// Some names belong to several keywords; which one is meant follows from where they are.
KeywordCode inContext(const ParseState& parse, KeywordCode code) {
    using K = KeywordCode;
    if (code == K::manufacturer) {
        if (isBetween(parse.current, K::definePackageModel, K::description)) return K::packageManufacturer;
        if (isBetween(parse.current, K::beginBoardDescription, K::boardManufacturer)) return K::boardManufacturer;
        return code;
    }
    // Whatever the version: the oldest table, which also serves a version that was refused, lacks the board's keyword,
    // and the program bug that handOn makes of it is meant.
    if (code == K::numberOfPins && parse.kind == FileKind::ebd) return K::boardNumberOfPins;
    if (!parse.submodel_context) return code;
    switch (code) {
    case K::pulldown: return K::submodelPulldown;
    case K::pullup: return K::submodelPullup;
    case K::gndClamp: return K::submodelGndClamp;
    case K::powerClamp: return K::submodelPowerClamp;
    case K::ramp: return K::submodelRamp;
    case K::risingWaveform: return K::submodelRisingWaveform;
    case K::fallingWaveform: return K::submodelFallingWaveform;
    default: return code;
    }
}

/// Counts the blocks of later versions that are open, by the keywords that begin and end them.
void countBlocks(ParseState& parse, LaterKeyword keyword) {
    switch (keyword) {
    case LaterKeyword::beginInterconnectModelSet:
    case LaterKeyword::cCompModel:
    case LaterKeyword::interconnectModel:
    case LaterKeyword::interconnectModelGroup:
    case LaterKeyword::interconnectModelSet: ++parse.later_blocks; break;
    case LaterKeyword::endCCompModel:
    case LaterKeyword::endInterconnectModel:
    case LaterKeyword::endInterconnectModelGroup:
    case LaterKeyword::endInterconnectModelSet:
        if (parse.later_blocks > 0) --parse.later_blocks;
        break;
    default: break;
    }
}

/// True for a keyword of 5.1 that belongs to the open block of a later version; every other one ends the blocks.
bool belongsToLaterBlock(ParseState& parse, KeywordCode code) {
    const bool belongs =
        parse.later_blocks > 0 && (code == KeywordCode::manufacturer || code == KeywordCode::description);
    if (!belongs) parse.later_blocks = 0;
    return belongs;
}

/// Passes over a keyword of a later version with its data lines; false for any other name. Records stay open, as for
/// every keyword that is none.
bool passOver(ParseState& parse, std::string_view name) {
    if (parse.version != IbisVersion::later) return false;
    const std::optional<LaterKeyword> later = findLaterKeyword(name);
    if (!later) return false;
    ++parse.passed_over[static_cast<std::size_t>(*later)];
    countBlocks(parse, *later);
    parse.passing_over = true;
    return true;
}

/// Notes which keywords of a file were passed over.
void notePassedOver(Context& context) {
    std::uint32_t count = 0;
    std::string names;
    for (std::size_t i = 0; i < kLaterKeywordCount; ++i) {
        const std::uint32_t times = context.parse.passed_over[i];
        if (times == 0) continue;
        count += times;
        names.append(names.empty() ? "" : ", ").append(laterKeywordName(static_cast<LaterKeyword>(i)));
    }
    if (count == 0) return;
    noteTextAtLine(context.diagnostics, "Passed over: %u %s of later versions: %s", count,
                   std::string_view(count == 1 ? "keyword" : "keywords"), names);
}

/// Finds the keyword of a line, or reports that it is none or passes over it.
std::optional<KeywordCode> recognise(Run& run, std::string_view line) {
    const std::size_t bracket = line.find(']');
    if (bracket == std::string_view::npos) {
        errorAtLine(run.diagnostics, 914);
        return std::nullopt;
    }
    const std::string_view name = line.substr(1, bracket - 1);
    if (name.empty() || name.size() > kMaxKeywordName) {
        errorAtLine(run.diagnostics, 915);
        return std::nullopt;
    }
    if (const std::optional<KeywordCode> code = findKeyword(name, run.parse.version)) {
        run.parse.passing_over = belongsToLaterBlock(run.parse, *code);
        return run.parse.passing_over ? std::nullopt : std::optional(inContext(run.parse, *code));
    }
    if (passOver(run.parse, name)) return std::nullopt;
    std::string shown(name);
    std::replace(shown.begin(), shown.end(), ' ', '_');
    errorAtLine(run.diagnostics, 916, shown);
    return std::nullopt;
}

/// Whether the module of a keyword takes lines of a file of this kind.
bool takesKind(const ParseState& parse, const Module& module) {
    // The oldest versions know no boards, and took package models wherever they were.
    if (module.owner == Owner::pkgmdl && parse.version < IbisVersion::v3) return true;
    return module.kinds.has(parse.kind);
}

void reportIllegalForKind(Run& run) {
    switch (run.parse.kind) {
    case FileKind::pkg: errorAtLine(run.diagnostics, 911); break;
    case FileKind::ebd: errorAtLine(run.diagnostics, 912); break;
    case FileKind::ibs:
    case FileKind::ami: errorAtLine(run.diagnostics, 913); break;
    }
}

/// Reports a keyword that has no place in a file of this kind, and a second "[IBIS Ver]".
void checkKind(Run& run, KeywordCode code) {
    if (code == KeywordCode::ibisVer && run.parse.version_seen) errorAtLine(run.diagnostics, 910);
    if (run.parse.version >= IbisVersion::v3) {
        if (!takesKind(run.parse, moduleOf(code))) reportIllegalForKind(run);
    } else if ((code == KeywordCode::component || code == KeywordCode::model) && run.parse.kind != FileKind::ibs) {
        errorAtLine(run.diagnostics, 911);
    }
}

/// Hands a line to the module that its keyword belongs to.
void handOn(Run& run, const Module& module, const Line& line) {
    if (!takesKind(run.parse, module)) return;
    if (isKeywordOf(line.key, run.parse.version)) {
        module.line(run, line);
    } else {
        programBugHereAtLine(run.diagnostics, 908);
    }
}

void dispatchKeyword(Run& run, std::string_view line) {
    ParseState& parse = run.parse;
    if (parse.continuation_pending && parse.version >= IbisVersion::v3) {
        errorAtLine(run.diagnostics, 909);
        parse.continuation_pending = false;
    }
    parse.passing_over = false;
    parse.in_table = false;
    const std::optional<KeywordCode> code = recognise(run, line);
    // Where a keyword passed over is left, the one before it still tells what the next belongs to.
    if (parse.passing_over) return;
    parse.current = code.value_or(KeywordCode::notKey);
    if (!code) return;
    if (*code == KeywordCode::model) parse.submodel_context = false;
    if (*code == KeywordCode::submodel) parse.submodel_context = true;
    showKeyword(run, *code);
    checkKind(run, *code);
    const Module& module = moduleOf(*code);
    if (module.opens == *code && takesKind(parse, module)) module.open(run);
    handOn(run, module, Line{LineKind::keyword, *code, textAfterKeyword(run, line)});
}

/// One line from the file, without its line feed.
void handleLine(Run& run, const SourceLine& read) {
    finishLine(run, read);
    const std::string_view& line = read.text;
    const std::string_view body = skipWhiteSpace(run, line);
    const LineKind kind = classify(run, line, body);
    if (kind == LineKind::blank) return;
    if (run.parse.end_seen) {
        errorAtLine(run.diagnostics, 902);
        return;
    }
    if (kind == LineKind::keyword && isCommentCharLine(body)) {
        changeCommentChar(run, body);
        return;
    }
    std::string_view text = stripTrailing(line.substr(0, read.comment));
    if (kind == LineKind::keyword) {
        text.remove_prefix(line.size() - body.size()); // a keyword is read from its bracket on
        dispatchKeyword(run, text);
    } else if (!run.parse.passing_over) {
        handOn(run, moduleOf(run.parse.current), Line{LineKind::data, run.parse.current, text});
    }
}

/// The name by which a version class is announced; nothing for one that is refused.
std::optional<std::string_view> announcedVersion(IbisVersion version) {
    switch (version) {
    case IbisVersion::v2: return "2.1";
    case IbisVersion::v3: return "3.2";
    case IbisVersion::v4: return "4.2";
    case IbisVersion::v5:
    case IbisVersion::later: return "5.1";
    case IbisVersion::none:
    case IbisVersion::v1: break;
    }
    return std::nullopt;
}

/// Does `work` and reports when the memory for it runs out; what was read until then stays.
template <class Work> void withinMemory(Run& run, const Work& work) {
    try {
        work();
    } catch (const std::bad_alloc&) {
        for (const Module& module : modules()) {
            if (module.forget != nullptr) module.forget(run);
        }
        programBugHere(run.diagnostics, 1908);
    }
}

/// Nothing when the file could not be opened.
std::optional<std::string> readAmi(Context& context, std::string_view name) {
    announce(context, name, kAmiVersion);
    std::optional<Source> source = openSource(context, name, FileKind::ami);
    if (source) nameFile(context.diagnostics, source->path);
    return source ? std::optional(collectAmi(context, *source)) : std::nullopt;
}

/// A parameter file is checked if it could be read, the others in any case.
void runCompletionChecks(Run& run, FileKind kind, const std::optional<std::string>& ami_text) {
    switch (kind) {
    case FileKind::ibs: finalChecks(run, currentRoot(run)); break;
    // Read for itself, a package file has no .ibs file whose final checks would look at its package models.
    case FileKind::pkg: finalPackageChecks(run, currentRoot(run)); break;
    case FileKind::ebd: checkBoards(run, currentRoot(run), false); break;
    case FileKind::ami:
        if (ami_text) checkAmi(run, *ami_text);
        break;
    }
}

} // namespace

void announce(Context& context, std::string_view name, std::string_view version) {
    std::string text("\nChecking ");
    text.append(name).append(" for IBIS ").append(version).append(" Compatibility...\n\n");
    context.out.write(text);
}

bool parseFile(Run& run, std::string_view name, FileKind kind) {
    resetReader(run.parse, kind);
    std::uint32_t scanned = 0;
    const IbisVersion found = scanVersion(run, name, kind, scanned);
    const std::optional<std::string_view> version = announcedVersion(found);
    if (!version && scanned == 0) { // not there, or empty: whoever named it is to blame
        error(run.diagnostics, 900, name);
        return false;
    }
    // What the check of a record leads to is a file of its own.
    const About about(run.diagnostics, nullptr);
    if (version) announce(run, name, *version);
    std::optional<Source> source = openSource(run, name, kind);
    if (!source) return false;
    nameFile(run.diagnostics, source->path);
    if (!version) {
        error(run.diagnostics, 900, name);
        return false;
    }
    run.parse.file_name = source->bare_name;
    run.parse.long_lines = found == IbisVersion::later;
    const std::size_t capacity = run.parse.long_lines ? kNoCapacity : kLineCapacity;
    LineReader reader(std::move(source->bytes));
    while (const std::optional<SourceLine> line = reader.next(run, capacity)) {
        ++run.parse.line;
        handleLine(run, *line);
        if (run.parse.in_table) moduleOf(run.parse.current).read_rows(run, reader);
    }
    if (reader.failed()) reportNotOpened(run, *source);
    if (!run.parse.end_seen) {
        error(run.diagnostics, 903);
        dispatchKeyword(run, "[END]");
    }
    notePassedOver(run);
    return true;
}

bool checkFile(Run& run, std::string_view name, FileKind kind) {
    nameFile(run.diagnostics, name);
    try {
        createRoot(run);
    } catch (const std::bad_alloc&) {
        error(run.diagnostics, 1906, static_cast<std::uint32_t>(sizeof(Ibis)));
        error(run.diagnostics, 4100);
        return false;
    }
    run.parse.top_level = true;
    const std::string_view path = name.substr(0, kMaxPath);
    bool read = false;
    std::optional<std::string> ami_text;
    withinMemory(run, [&] {
        if (kind == FileKind::ami) {
            ami_text = readAmi(run, path);
            read = ami_text.has_value();
        } else {
            read = parseFile(run, path, kind);
        }
    });
    withinMemory(run, [&] { runCompletionChecks(run, kind, ami_text); });
    return read;
}

} // namespace kestrel
