#pragma once

#include "ibis/parse.hpp"
#include "ibis/run.hpp"

#include <memory>
#include <string>
#include <string_view>

namespace kestrel::testing {

/// Checks a text as if it were a file of this name and returns everything that is printed, summary included.
inline std::string checkText(std::string_view text, FileKind kind = FileKind::ibs,
                             const std::string& name = "test.ibs") {
    Output out;
    Run run(out);
    run.sources.texts[name] = std::make_shared<const std::string>(text);
    checkFile(run, name, kind);
    printSummary(run.diagnostics);
    return out.text();
}

} // namespace kestrel::testing
