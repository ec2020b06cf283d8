#pragma once

#include "codes.hpp"
#include "ibis/modules.hpp"
#include "ibis/run.hpp"
#include "reader/keyword.hpp"

#include <string>
#include <string_view>

namespace kestrel::testing {

/// Feeds lines of package models to their module as the reader does and shows the diagnostics by their codes.
struct PackageLines {
    explicit PackageLines(IbisVersion version = IbisVersion::v3) : root(createRoot(run)) {
        run.diagnostics.coded_form = true;
        run.parse.version = version;
    }

    void feed(std::string_view text) {
        while (!text.empty()) {
            const std::string_view line = text.substr(0, text.find('\n'));
            text.remove_prefix(std::min(text.size(), line.size() + 1));
            if (line.starts_with('[')) {
                keyword(line);
            } else {
                module.line(run, {LineKind::data, run.parse.current, line});
            }
        }
    }

    /// Starts a package model with so many pins, named A, B, C and so on.
    void start(std::uint32_t pins) {
        feed("[Define Package Model] P\n[Number Of Pins] " + std::to_string(pins) + "\n[Pin Numbers]");
        for (std::uint32_t pin = 0; pin < std::min(pins, 26U); ++pin)
            feed(std::string(1, static_cast<char>('A' + pin)));
    }

    /// The codes of what was printed since the last call.
    std::string codes() {
        const std::string codes = codesOf(std::string_view(out.text()).substr(shown));
        shown = out.text().size();
        return codes;
    }

    [[nodiscard]] PkgMdl& newest() const { return *root.package_models.newestFirst().begin(); }

    Output out;
    Run run{out};
    Ibis& root;
    const Module& module = moduleOf(KeywordCode::definePackageModel);
    std::size_t shown = 0;

private:
    void keyword(std::string_view line) {
        const std::size_t end = line.find(']');
        KeywordCode code = findKeyword(line.substr(1, end - 1), IbisVersion::v5).value_or(KeywordCode::end);
        if (code == KeywordCode::manufacturer) code = KeywordCode::packageManufacturer;
        run.parse.current = code;
        module.keyword_seen(run, code);
        if (code == module.opens) module.open(run);
        if (ownerOf(code) != module.owner) return;
        module.line(run, {LineKind::keyword, code, line.substr(std::min(line.size(), end + 2))});
    }
};

} // namespace kestrel::testing
