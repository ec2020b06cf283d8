#include "package/pkgmdl.hpp"
#include "package/token.hpp"
#include "reader/context.hpp"
#include "reader/names.hpp"

namespace kestrel {

namespace {

constexpr std::string_view kLen = "Len";

constexpr NameWarnings kPinWarnings{3445, 3446, 3447};

/// The name of a pin, cut.
struct PinName {
    StoredText text;
    bool fits;
};

PinName readPinName(Context& context, std::string_view text) {
    PinName name;
    name.fits = storeName(context, name.text, text, packagePinLimit(context.parse.version), 3432);
    return name;
}

/// Stores a pin; false when it was reported that there is no room for it.
bool storePin(Context& context, PkgMdl& package, const PinName& name) {
    Diagnostics& diagnostics = context.diagnostics;
    if (package.number_of_pins == 0) {
        errorAtLine(diagnostics, 3433);
        return false;
    }
    if (package.pin_names.size() >= package.number_of_pins) {
        errorAtLine(diagnostics, 3435);
        return false;
    }
    const bool is_new = package.pin_names.add(context.rows, name.text);
    if (!is_new) errorAtLine(diagnostics, 3437, name.text);
    if (!is_new || !name.fits) package.odd_pins.push_back(static_cast<std::uint32_t>(package.pin_names.size() - 1));
    return true;
}

/// The chain of the pin read last.
Chain& lastChain(PkgMdl& package) {
    // Pins that were read before sections came into use have no chain yet.
    package.pin_sections.resize(package.pin_names.size());
    return package.pin_sections.back();
}

void forkLine(Diagnostics& diagnostics, ChainCursor& cursor, PkgMdl& package) {
    if (!cursor.forks.empty()) errorAtLine(diagnostics, 3439);
    if (package.pin_names.empty()) {
        errorAtLine(diagnostics, 3440);
        return;
    }
    openFork(lastChain(package), cursor);
}

void endforkLine(Diagnostics& diagnostics, ChainCursor& cursor, PkgMdl& package) {
    if (package.pin_names.empty()) {
        errorAtLine(diagnostics, 3441);
        return;
    }
    closeFork(diagnostics, lastChain(package), cursor, {3443, 3442});
}

/// Attaches the sections of a line to the last pin; one that fails ends the line.
void readSections(Diagnostics& diagnostics, ChainCursor& cursor, PkgMdl& package, std::string_view text) {
    Sect sect;
    while (readSection(diagnostics, text, sect) == SectResult::section) {
        attachSection(lastChain(package), cursor, sect);
    }
    if (cursor.tail == kNoElement) errorAtLine(diagnostics, 3449);
}

/// True for a line that goes on with the sections of the pin before it.
bool isContinuation(std::string_view text) {
    return text.starts_with(kLen) && skipBlanks(text.substr(kLen.size())).starts_with('=');
}

/// A line that begins a pin; its sections follow the name.
void newPinLine(Context& context, ChainCursor& cursor, PkgMdl& package, std::string_view text) {
    Diagnostics& diagnostics = context.diagnostics;
    const std::string_view name = takeToken(text);
    cursor.tail = kNoElement;
    if (!cursor.forks.empty()) {
        errorAtLine(diagnostics, 3444, name);
        cursor.forks.clear();
    }
    const PinName stored = readPinName(context, name);
    warnOfName(diagnostics, name, kPinWarnings);
    if (storePin(context, package, stored)) readSections(diagnostics, cursor, package, text);
}

} // namespace

void plainPinLine(Context& context, PkgMdl& package, std::string_view text) {
    storePin(context, package, readPinName(context, skipBlanks(text)));
}

void sectionPinLine(Context& context, ChainCursor& cursor, PkgMdl& package, std::string_view text) {
    Diagnostics& diagnostics = context.diagnostics;
    text = skipBlanks(text);
    if (text == "Fork") {
        forkLine(diagnostics, cursor, package);
    } else if (text == "Endfork") {
        endforkLine(diagnostics, cursor, package);
    } else if (!isContinuation(text)) {
        newPinLine(context, cursor, package, text);
    } else if (cursor.tail == kNoElement) {
        errorAtLine(diagnostics, 3438); // no section or fork that it could go on from
    } else {
        readSections(diagnostics, cursor, package, text);
    }
}

} // namespace kestrel
