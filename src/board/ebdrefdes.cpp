#include "base/text.hpp"
#include "board/ebdmdl.hpp"
#include "reader/items.hpp"
#include "reader/names.hpp"

#include <algorithm>
#include <array>

namespace kestrel {

namespace {

/// Kinds of files that came after version 5.1.
bool isLaterExtension(std::string_view extension) {
    constexpr std::array<std::string_view, 3> kExtensions{".ims", ".emd", ".ems"};
    return std::ranges::any_of(kExtensions, [extension](std::string_view row) { return equalsNoCase(extension, row); });
}

void checkExtension(Diagnostics& diagnostics, std::string_view name, bool is_later) {
    const std::size_t period = name.rfind('.');
    if (period == std::string_view::npos) {
        errorAtLine(diagnostics, 4384, name);
        return;
    }
    const std::string_view extension = name.substr(period);
    const std::optional<FileKind> kind = kindOfName(name);
    if (kind == FileKind::ibs || kind == FileKind::ebd || (is_later && isLaterExtension(extension))) return;
    errorAtLine(diagnostics, 4385, extension);
}

void checkFileName(Context& context, std::string_view name) {
    Diagnostics& diagnostics = context.diagnostics;
    const bool is_later = context.parse.version == IbisVersion::later;
    checkExtension(diagnostics, name, is_later);
    for (const char c : name) {
        if (isUpper(c)) {
            if (!is_later) errorAtLine(diagnostics, 4386, name, c);
        } else if (!isFileNameCharacter(c)) {
            errorAtLine(diagnostics, 4387, name, c);
        }
    }
    if (std::ranges::count(name, '.') > 1) errorAtLine(diagnostics, 4388, name);
}

} // namespace

void refDesLine(Context& context, EbdMdl& board, std::string_view text) {
    Diagnostics& diagnostics = context.diagnostics;
    const ItemList items = splitItems(context, text, 3);
    if (!items.has(0)) {
        errorAtLine(diagnostics, 4377);
        return;
    }
    std::string designator;
    storeName(diagnostics, designator, items[0], designatorLimit(context.parse.version), 4375);
    const bool is_new = board.refdes_map.add({.designator = std::move(designator)});
    EbdRefDes& entry = board.refdes_map.back();
    if (!is_new) errorAtLine(diagnostics, 4376, entry.designator);
    if (items.has(1)) {
        // The short limit of the oldest headers plays no part: boards came with version 3.
        storeName(diagnostics, entry.file_name, items[1], fileNameLimit(context.parse.version), 4378);
        checkFileName(context, items[1]);
    } else {
        errorAtLine(diagnostics, 4379);
    }
    if (items.has(2)) {
        storeName(diagnostics, entry.component, items[2], longNameLimit(context.parse.version), 4380);
    } else {
        errorAtLine(diagnostics, 4383);
    }
    if (items.count > 3) errorAtLine(diagnostics, 4382);
}

} // namespace kestrel
