#include "board/ebdpath.hpp"

#include "base/rows.hpp"
#include "package/token.hpp"
#include "reader/context.hpp"
#include "reader/names.hpp"

#include <utility>

namespace kestrel {

namespace {

constexpr NameWarnings kPinWarnings{4363, 4362, 4364};
constexpr NameWarnings kNodeWarnings{4371, 4372, 4373};

/// Takes the next token off the front of `text`, which ends at a blank or "="; empty at the end of the line. Reports
/// each "=" and "/" in front of it.
std::string_view takePathToken(Diagnostics& diagnostics, std::string_view& text) {
    for (text = skipBlanks(text); text.starts_with('=') || text.starts_with('/'); text = skipBlanks(text.substr(1))) {
        if (text.front() == '=') {
            errorAtLine(diagnostics, 4340);
        } else {
            errorAtLine(diagnostics, 4341);
        }
    }
    const std::string_view token = text.substr(0, text.find_first_of(" \t="));
    text.remove_prefix(token.size());
    return token;
}

/// A place on a line of the path being read.
struct PathReader {
    Diagnostics& diagnostics;
    IbisVersion version;
    EbdPath& path;
    ChainCursor& cursor;
    std::string_view text; ///< what follows the token

    /// Attaches an element whose payload is the newest of `list`.
    template <class List> void attachNewest(ElementKind kind, const List& list) {
        attach(path.chain, cursor, {.kind = kind, .payload = static_cast<std::uint32_t>(list.size() - 1)});
    }
};

void pinToken(PathReader& reader, std::string_view) {
    Diagnostics& diagnostics = reader.diagnostics;
    const std::string_view name = takePathToken(diagnostics, reader.text);
    if (name.empty()) {
        errorAtLine(diagnostics, 4349);
        return;
    }
    storeName(diagnostics, reader.path.pins.emplace_back(), name, boardPinLimit(reader.version), 4361);
    warnOfName(diagnostics, name, kPinWarnings);
    reader.attachNewest(ElementKind::pin, reader.path.pins);
}

/// Sections follow each other without a new "Len" token; what is none of their items is a token of the path again.
void lenToken(PathReader& reader, std::string_view token) {
    if (reader.path.chain.empty()) {
        errorAtLine(reader.diagnostics, 4342);
        reader.text = {};
        return;
    }
    reader.text = std::string_view(token.data(), token.size() + reader.text.size());
    Sect sect;
    do {
        if (readSection(reader.diagnostics, reader.text, sect) != SectResult::section) {
            reader.text = {};
            return;
        }
        attachSection(reader.path.chain, reader.cursor, sect);
    } while (beginsSection(reader.text));
}

void ncToken(PathReader& reader, std::string_view) {
    if (reader.path.chain.empty()) {
        errorAtLine(reader.diagnostics, 4344);
        return;
    }
    attach(reader.path.chain, reader.cursor, {.kind = ElementKind::nc});
}

void forkToken(PathReader& reader, std::string_view) {
    if (reader.path.chain.empty()) {
        errorAtLine(reader.diagnostics, 4345);
        return;
    }
    openFork(reader.path.chain, reader.cursor);
}

void endforkToken(PathReader& reader, std::string_view) {
    if (reader.path.chain.empty()) {
        errorAtLine(reader.diagnostics, 4346);
        return;
    }
    closeFork(reader.diagnostics, reader.path.chain, reader.cursor, {4348, 4347});
}

/// Checks "designator.pin" and attaches it; without a period there is nothing to attach.
void readNode(PathReader& reader, std::string_view text) {
    Diagnostics& diagnostics = reader.diagnostics;
    const std::size_t period = text.find('.');
    if (period == std::string_view::npos) {
        error(diagnostics, 4368);
        warnOfName(diagnostics, text, kNodeWarnings);
        return;
    }
    const std::string_view designator = text.substr(0, period);
    const std::string_view pin = text.substr(period + 1);
    const int designator_limit = designatorLimit(reader.version);
    const int pin_limit = boardPinLimit(reader.version);
    if (std::cmp_greater(designator.size(), designator_limit)) error(diagnostics, 4369);
    if (std::cmp_greater(pin.size(), pin_limit)) error(diagnostics, 4370);
    warnOfName(diagnostics, text, kNodeWarnings);
    reader.path.nodes.push_back({.designator = std::string(cutName(designator, designator_limit)),
                                 .pin = std::string(cutName(pin, pin_limit))});
    reader.attachNewest(ElementKind::node, reader.path.nodes);
}

void nodeToken(PathReader& reader, std::string_view) {
    const std::string_view text = takePathToken(reader.diagnostics, reader.text);
    if (text.empty()) {
        errorAtLine(reader.diagnostics, 4350);
    } else if (reader.path.chain.empty()) {
        errorAtLine(reader.diagnostics, 4351);
    } else {
        readNode(reader, text);
    }
}

/// What a token means; the reader goes on behind what was taken with it.
struct TokenRow {
    std::string_view token;
    void (*read)(PathReader& reader, std::string_view token);
};

constexpr std::array<TokenRow, 6> kTokens{{
    {"Pin", pinToken},
    {"Len", lenToken},
    {"NC", ncToken},
    {"Fork", forkToken},
    {"Endfork", endforkToken},
    {"Node", nodeToken},
}};

} // namespace

void pathLine(Context& context, EbdPath& path, ChainCursor& cursor, std::string_view text) {
    Diagnostics& diagnostics = context.diagnostics;
    PathReader reader{
        .diagnostics = diagnostics, .version = context.parse.version, .path = path, .cursor = cursor, .text = text};
    for (;;) {
        const std::string_view token = takePathToken(diagnostics, reader.text);
        if (token.empty()) return;
        if (const TokenRow* const row = rowOf(kTokens, token, &TokenRow::token)) {
            row->read(reader, token);
        } else {
            errorAtLine(diagnostics, 4352, token);
        }
    }
}

} // namespace kestrel
