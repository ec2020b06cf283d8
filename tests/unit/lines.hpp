#pragma once

#include "base/text.hpp"
#include "files.hpp"
#include "ibis/modules.hpp"
#include "reader/keyword.hpp"

#include <ranges>
#include <string>
#include <string_view>

namespace kestrel {

/// Feeds lines to one module as the reader does; what is read can be looked at while it is open. Cautions are visible.
struct Lines : TestRun {
    /// The module is that of the keyword.
    explicit Lines(KeywordCode keyword, IbisVersion version = IbisVersion::v5)
        : TestRun(true), root(createRoot(run)), module(moduleOf(keyword)) {
        run.parse.version = version;
        run.diagnostics.silence_cautions = false;
    }

    Lines& read(std::string_view lines) {
        for (const auto part : std::views::split(lines, '\n'))
            if (!part.empty()) readLine(std::string_view(part.begin(), part.end()));
        return *this;
    }

    /// The codes of what was printed since the last call.
    std::string codes() {
        const std::string codes = codesOf(std::string_view(out.text()).substr(shown));
        shown = out.text().size();
        return codes;
    }

    Ibis& root;
    const Module& module;
    std::size_t shown = 0;

private:
    void readLine(std::string_view text) {
        ++run.parse.line;
        if (!text.starts_with('[')) return module.line(run, {LineKind::data, run.parse.current, text});
        const std::size_t bracket = text.find(']');
        KeywordCode code = findKeyword(text.substr(1, bracket - 1), IbisVersion::v5).value();
        if (code == KeywordCode::manufacturer) code = KeywordCode::packageManufacturer;
        run.parse.current = code;
        module.keyword_seen(run, code);
        if (code == module.opens) module.open(run);
        if (ownerOf(code) == module.owner) module.line(run, {LineKind::keyword, code, trim(text.substr(bracket + 1))});
    }
};

} // namespace kestrel
