#pragma once

#include "codes.hpp"
#include "ibis/parse.hpp"
#include "ibis/run.hpp"

#include <memory>
#include <string>
#include <string_view>

namespace kestrel::testing {

/// Files in memory, checked as verimark checks them; what is printed is shown by its codes.
struct BoardFiles {
    BoardFiles() { run.diagnostics.coded_form = true; }

    /// Adds a file: a correct header in front of `text`, "[End]" behind it.
    BoardFiles& add(const std::string& name, std::string_view text, std::string_view version = "4.2") {
        std::string whole("[IBIS Ver] ");
        whole.append(version).append("\n[File Name] ").append(name).append("\n[File Rev] 1\n").append(text);
        run.sources.texts[name] = std::make_shared<const std::string>(whole.append("\n[End]\n"));
        return *this;
    }

    std::string check(const std::string& name) {
        checkFile(run, name, kindOfName(name).value_or(FileKind::ibs));
        return codesOf(out.text());
    }

    /// How often a file was announced.
    [[nodiscard]] int timesRead(const std::string& name) const {
        int times = 0;
        const std::string announcement = "Checking " + name + " for";
        for (std::size_t at = out.text().find(announcement); at != std::string::npos;
             at = out.text().find(announcement, at + 1))
            ++times;
        return times;
    }

    Output out;
    Run run{out};
};

} // namespace kestrel::testing
