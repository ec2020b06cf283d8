#pragma once

#include "ibis/parse.hpp"
#include "ibis/run.hpp"

#include <memory>
#include <string>
#include <string_view>

namespace kestrel {

/// The diagnostics of an output in the coded form, as "E1104@ W1113": class letter, number, and "@" for one at a line.
inline std::string codesOf(std::string_view output) {
    std::string codes;
    while (!output.empty()) {
        const std::string_view line = output.substr(0, output.find('\n'));
        output.remove_prefix(line.size() == output.size() ? line.size() : line.size() + 1);
        const std::size_t end = line.find(' ');
        if (end != 5 || line.find_first_not_of("0123456789", 1) != end) continue;
        codes.append(codes.empty() ? "" : " ").append(line, 0, end);
        if (line.substr(end).starts_with(" (line")) codes.push_back('@');
    }
    return codes;
}

/// Output in memory and the run that prints to it, in the coded form if wanted.
struct TestRun {
    explicit TestRun(bool coded_form = false) { run.diagnostics.coded_form = coded_form; }
    [[nodiscard]] std::string codes() const { return codesOf(out.text()); }

    Output out;
    Run run{out};
};

/// Files in memory, checked as verimark checks them.
struct Files : TestRun {
    using TestRun::TestRun;

    Files& put(const std::string& name, std::string_view text) {
        run.sources.texts[name] = std::make_shared<const std::string>(text);
        return *this;
    }

    /// Adds a file with a correct header in front of `text`, "[End]" behind it.
    Files& add(const std::string& name, std::string_view text, std::string_view version = "4.2") {
        std::string whole("[IBIS Ver] ");
        whole.append(version).append("\n[File Name] ").append(name).append("\n[File Rev] 1\n").append(text);
        return put(name, whole.append("\n[End]\n"));
    }

    /// Everything that is printed of the file.
    const std::string& check(const std::string& name) {
        run.parse.takes_later = true;
        checkFile(run, name, kindOfName(name).value_or(FileKind::ibs));
        return out.text();
    }

    [[nodiscard]] const Ibis& root() const { return currentRoot(run); }

    /// How often a file was announced.
    [[nodiscard]] int timesRead(const std::string& name) const {
        int times = 0;
        const std::string announcement = "Checking " + name + " for";
        for (std::size_t at = out.text().find(announcement); at != std::string::npos;
             at = out.text().find(announcement, at + 1))
            ++times;
        return times;
    }
};

/// Checks a text as if it were a file of this name and returns everything that is printed, summary included.
inline std::string checkText(std::string_view text, const std::string& name = "test.ibs") {
    Files files;
    files.put(name, text).check(name);
    printSummary(files.run.diagnostics);
    return files.out.text();
}

/// The codes of a file whose lines follow a correct header.
inline std::string codesOfFile(std::string_view lines, const std::string& name = "test.ibs",
                               std::string_view version = "4.2") {
    return codesOf(Files(true).add(name, lines, version).check(name));
}

/// What every component of a test has, under its keyword.
inline constexpr std::string_view kComponentStart =
    "[Manufacturer] Ours\n"
    "[Package]\n"
    "R_pkg 0.1 NA NA\n"
    "L_pkg 1n NA NA\n"
    "C_pkg 1p NA NA\n";

/// A file with the component "Chip", whose further lines a test gives, checked with cautions visible. Lines of other
/// records may follow them.
struct ComponentFile : Files {
    ComponentFile(std::string_view version, std::string_view lines, bool coded_form = false) : Files(coded_form) {
        run.diagnostics.silence_cautions = false;
        add("chip.ibs", std::string("[Component] Chip\n").append(kComponentStart).append(lines), version);
        check("chip.ibs");
    }
    [[nodiscard]] const Cmpnt& component() const { return *root().components.find("Chip"); }
};

} // namespace kestrel
