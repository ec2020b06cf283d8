#include "component/apkg.hpp"

#include "ibis/run.hpp"

#include <utility>

namespace kestrel {

namespace {

constexpr std::string_view kBegin = "Alternate_Package_Models";
constexpr std::string_view kEnd = "End_Alternate_Package_Models";

void open(Run& run, Cmpnt& component, std::string_view text) {
    if (component.alternates_seen) errorAtLine(run.diagnostics, 534, kBegin);
    component.alternates_seen = true;
    if (!text.empty()) errorAtLine(run.diagnostics, 533, kBegin);
}

/// Reads a name, which may hold blanks. One that is reported as cut or reserved is not looked for later, unless another
/// line has it whole.
void line(Run& run, Cmpnt& component, std::string_view text) {
    run.cmpnt.alternate_listed = true;
    std::string name;
    const bool fits = storeName(run.diagnostics, name, trim(text), kLongNameLimit, 535);
    if (!checkNotReserved(run.diagnostics, name)) return;
    const bool is_new = name != component.package_model && component.alternates.add(name);
    if (!fits) {
        if (is_new) component.cut_alternates.insert(name);
        return;
    }
    component.cut_alternates.erase(name);
    if (!is_new) warningAtLine(run.diagnostics, 536, name, component.name);
}

void close(Run& run, Cmpnt& component) {
    if (!std::exchange(run.cmpnt.alternate_listed, true)) warning(run.diagnostics, 539, component.name);
}

} // namespace

const Block<Cmpnt> kAlternatePackages{
    .begin = KeywordCode::alternatePackageModels,
    .end = KeywordCode::endAlternatePackageModels,
    .end_name = kEnd,
    .open = open,
    .line = line,
    .close = close,
    .text_behind_end = [](Run& run, std::string_view /*text*/) { errorAtLine(run.diagnostics, 533, kEnd); },
    .not_ended = [](Run& run) { errorAtLine(run.diagnostics, 538, kBegin, kEnd); },
    .no_begin = [](Run& run) { errorAtLine(run.diagnostics, 540, kEnd, kBegin); },
};

void checkAlternatePackages(Run& run, const Cmpnt& component) {
    for (const std::string& name : component.alternates.names) {
        if (name == component.package_model || component.cut_alternates.contains(name)) continue;
        findPackageModel(run, name, component.name);
    }
}

} // namespace kestrel
