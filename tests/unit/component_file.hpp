#pragma once

#include "ibis/parse.hpp"
#include "ibis/run.hpp"

#include <memory>
#include <string>
#include <string_view>

namespace kestrel {

/// What every component of a test has, under its keyword.
inline constexpr std::string_view kComponentStart =
    "[Manufacturer] Ours\n"
    "[Package]\n"
    "R_pkg 0.1 NA NA\n"
    "L_pkg 1n NA NA\n"
    "C_pkg 1p NA NA\n";

/// A file with the component "Chip", whose further lines a test gives, read and checked with cautions visible. Lines of
/// other records may follow them.
struct ComponentFile {
    ComponentFile(std::string_view version, std::string_view lines, bool coded_form = false) {
        std::string text("[IBIS Ver] ");
        text.append(version).append("\n[File Name] chip.ibs\n[File Rev] 1.0\n[Component] Chip\n");
        text.append(kComponentStart).append(lines).append("[End]\n");
        run.sources.texts["chip.ibs"] = std::make_shared<const std::string>(text);
        run.diagnostics.silence_cautions = false;
        run.diagnostics.coded_form = coded_form;
        checkFile(run, "chip.ibs", FileKind::ibs);
    }
    [[nodiscard]] const Ibis& root() const { return currentRoot(run); }
    [[nodiscard]] const Cmpnt& component() const { return *root().components.find("Chip"); }

    Output out;
    Run run{out};
};

} // namespace kestrel
