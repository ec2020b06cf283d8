#include "main/verimark.hpp"

#include "ibis/parse.hpp"
#include "ibis/run.hpp"
#include "main/program_versions.hpp"
#include "main/usage.hpp"
#include "main/version.hpp"

#include <algorithm>
#include <vector>

namespace kestrel {

namespace {

void printHelp(Output& out) {
    out.write(
        "Usage: verimark [--] FILE...\n"
        "       verimark --help | --version\n"
        "\n"
        "Checks each FILE and prints what is wrong with it. The extension tells its kind:\n"
        "\n"
        "  .ibs  IBIS file; also taken for a name without an extension\n"
        "  .pkg  package models\n"
        "  .ebd  electrical board description, with the files that it refers to\n"
        "  .ami  parameters of an algorithmic model\n"
        "\n"
        "Exit status: 0 when every file passed, 1 when one failed, 2 when the command\n"
        "line is wrong or a file could not be read.\n");
}

void printVersion(Output& out) {
    out.write("Verimark ");
    out.write(kCheckerVersion);
    out.write("\n");
}

/// Tells something on the error output, behind what was printed so far.
void tell(Output& out, Output& errors, std::string_view subject, std::string_view text) {
    out.flush();
    errors.write("verimark: ");
    errors.write(subject);
    errors.write(text);
    errors.write("\n");
    errors.flush();
}

VerimarkStatus notChecked(Output& out, Output& errors, std::string_view name, VerimarkStatus status) {
    tell(out, errors, name, ": not checked");
    return status;
}

/// Checks one file. A name without an extension that gives a kind is handled as that of an .ibs file, as kestrel does.
VerimarkStatus checkOne(Output& out, Output& errors, std::string_view name) {
    Run run(out);
    const FileKind kind = kindOfName(name).value_or(FileKind::ibs);
    // The reader takes no longer names of these kinds.
    if (name.size() >= kMaxPath && (kind == FileKind::pkg || kind == FileKind::ami)) {
        return notChecked(out, errors, name, kTrouble);
    }
    if (kind != FileKind::ami) {
        switch (determineVersion(run, name, kind)) {
        case VersionSearch::found: break;
        case VersionSearch::nothingRead: return notChecked(out, errors, name, kTrouble);
        case VersionSearch::refused: return notChecked(out, errors, name, kSomeFailed);
        }
    }
    const bool read = checkFile(run, name, kind);
    printSummary(run.diagnostics);
    out.write("\n");
    if (!read && kind == FileKind::ami) return notChecked(out, errors, name, kTrouble);
    return failureCount(run.diagnostics) == 0 ? kAllPassed : kSomeFailed;
}

/// Does what the arguments ask for.
VerimarkStatus obey(Output& out, Output& errors, std::span<const std::string_view> arguments) {
    std::vector<std::string_view> files;
    bool options_ended = false;
    for (const std::string_view argument : arguments) {
        if (options_ended || !argument.starts_with('-')) {
            files.push_back(argument);
        } else if (argument == "--") {
            options_ended = true;
        } else if (argument == "--help") {
            printHelp(out);
            return kAllPassed;
        } else if (argument == "--version") {
            printVersion(out);
            return kAllPassed;
        } else {
            tell(out, errors, argument, ": no such option; try \"verimark --help\"");
            return kTrouble;
        }
    }
    if (files.empty()) {
        tell(out, errors, "no file given", "; try \"verimark --help\"");
        return kTrouble;
    }
    VerimarkStatus status = kAllPassed;
    for (const std::string_view file : files) {
        status = std::max(status, checkOne(out, errors, file));
    }
    return status;
}

} // namespace

int runVerimark(Output& out, Output& errors, std::span<const std::string_view> arguments) {
    const VerimarkStatus status = obey(out, errors, arguments);
    out.flush();
    if (!out.failed()) return status;
    tell(out, errors, "the output", " cannot be written");
    return kTrouble;
}

} // namespace kestrel
