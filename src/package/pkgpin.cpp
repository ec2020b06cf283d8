#include "package/pkgpin.hpp"

#include "ibis/run.hpp"
#include "package/token.hpp"

namespace kestrel {

namespace {

constexpr std::string_view kLen = "Len";

constexpr NameWarnings kPinWarnings{3445, 3446, 3447};

/// The name of a pin, cut.
struct PinName {
    std::string text;
    bool fits;
};

PinName readPinName(Run& run, std::string_view text) {
    PinName name;
    name.fits = storeName(run.diagnostics, name.text, text, kPackagePinLimit, 3432);
    return name;
}

/// Stores a pin; false when it was reported that there is no room for it.
bool storePin(Run& run, PkgMdl& package, const PinName& name) {
    if (package.number_of_pins == 0) {
        errorAtLine(run.diagnostics, 3433);
        return false;
    }
    if (package.pin_names.size() >= package.number_of_pins) {
        errorAtLine(run.diagnostics, 3435);
        return false;
    }
    package.pin_names.push_back(name.text);
    if (!package.pin_index.enterLast(package.pin_names)) {
        errorAtLine(run.diagnostics, 3437, name.text);
    } else if (name.fits) {
        package.own_pins.push_back(static_cast<std::uint32_t>(package.pin_names.size() - 1));
    }
    return true;
}

/// The chain of the pin read last.
Chain& lastChain(PkgMdl& package) {
    // Pins that were read before sections came into use have no chain yet.
    package.pin_sections.resize(package.pin_names.size());
    return package.pin_sections.back();
}

void forkLine(Run& run, PkgMdl& package) {
    ChainCursor& cursor = run.pkgmdl.cursor;
    if (!cursor.forks.empty()) {
        errorAtLine(run.diagnostics, 3439);
    }
    if (package.pin_names.empty()) {
        errorAtLine(run.diagnostics, 3440);
        return;
    }
    openFork(lastChain(package), cursor);
}

void endforkLine(Run& run, PkgMdl& package) {
    if (package.pin_names.empty()) {
        errorAtLine(run.diagnostics, 3441);
        return;
    }
    switch (closeFork(lastChain(package), run.pkgmdl.cursor)) {
    case ForkEnd::noneOpen: errorAtLine(run.diagnostics, 3443); break;
    case ForkEnd::emptyBranch: errorAtLine(run.diagnostics, 3442); break;
    case ForkEnd::closed: break;
    }
}

/// Attaches the sections of a line to the last pin; one that fails ends the line.
void readSections(Run& run, PkgMdl& package, std::string_view text) {
    ChainCursor& cursor = run.pkgmdl.cursor;
    Sect sect;
    while (readSection(run, text, sect) == SectResult::section) {
        attachSection(lastChain(package), cursor, sect);
    }
    if (cursor.tail == kNoElement) {
        errorAtLine(run.diagnostics, 3449);
    }
}

/// True for a line that goes on with the sections of the pin before it.
bool isContinuation(std::string_view text) {
    return text.starts_with(kLen) && skipBlanks(text.substr(kLen.size())).starts_with('=');
}

/// A line that begins a pin; its sections follow the name.
void newPinLine(Run& run, PkgMdl& package, std::string_view text) {
    ChainCursor& cursor = run.pkgmdl.cursor;
    const std::string_view name = takeToken(text);
    cursor.tail = kNoElement;
    if (!cursor.forks.empty()) {
        errorAtLine(run.diagnostics, 3444, name);
        cursor.forks.clear();
    }
    const PinName stored = readPinName(run, name);
    warnOfName(run, name, kPinWarnings);
    if (storePin(run, package, stored)) {
        readSections(run, package, text);
    }
}

} // namespace

void plainPinLine(Run& run, PkgMdl& package, std::string_view text) {
    storePin(run, package, readPinName(run, skipBlanks(text)));
}

void sectionPinLine(Run& run, PkgMdl& package, std::string_view text) {
    text = skipBlanks(text);
    if (text == "Fork") {
        forkLine(run, package);
    } else if (text == "Endfork") {
        endforkLine(run, package);
    } else if (!isContinuation(text)) {
        newPinLine(run, package, text);
    } else if (run.pkgmdl.cursor.tail == kNoElement) {
        errorAtLine(run.diagnostics, 3438); // no section or fork that it could go on from
    } else {
        readSections(run, package, text);
    }
}

} // namespace kestrel
