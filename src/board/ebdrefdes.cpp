#include "board/ebdrefdes.hpp"

#include "base/text.hpp"
#include "ibis/run.hpp"
#include "reader/items.hpp"
#include "reader/names.hpp"

#include <algorithm>

namespace kestrel {

namespace {

void checkExtension(Run& run, std::string_view name) {
    const std::size_t period = name.rfind('.');
    if (period == std::string_view::npos) {
        errorAtLine(run.diagnostics, 4384, name);
        return;
    }
    const std::optional<FileKind> kind = kindOfName(name);
    if (kind != FileKind::ibs && kind != FileKind::ebd) {
        errorAtLine(run.diagnostics, 4385, name.substr(period));
    }
}

void checkFileName(Run& run, std::string_view name) {
    checkExtension(run, name);
    for (const char c : name) {
        if (isUpper(c)) {
            errorAtLine(run.diagnostics, 4386, name, c);
        } else if (!isFileNameCharacter(c)) {
            errorAtLine(run.diagnostics, 4387, name, c);
        }
    }
    if (std::ranges::count(name, '.') > 1) {
        errorAtLine(run.diagnostics, 4388, name);
    }
}

} // namespace

void refDesLine(Run& run, EbdMdl& board, std::string_view text) {
    const ItemList items = splitItems(run, text, 3);
    if (!items.has(0)) {
        errorAtLine(run.diagnostics, 4377);
        return;
    }
    EbdRefDes& entry = board.refdes_map.emplace_back();
    storeName(run.diagnostics, entry.designator, items[0], kDesignatorLimit, 4375);
    if (!run.ebdmdl.designators.insert(entry.designator).second) {
        errorAtLine(run.diagnostics, 4376, entry.designator);
    }
    if (items.has(1)) {
        // The short limit of the oldest headers plays no part: boards came with version 3.
        storeName(run.diagnostics, entry.file_name, items[1], fileNameLimit(run.parse.version), 4378);
        checkFileName(run, items[1]);
    } else {
        errorAtLine(run.diagnostics, 4379);
    }
    if (items.has(2)) {
        storeName(run.diagnostics, entry.component, items[2], kLongNameLimit, 4380);
    } else {
        errorAtLine(run.diagnostics, 4383);
    }
    if (items.count > 3) {
        errorAtLine(run.diagnostics, 4382);
    }
}

} // namespace kestrel
