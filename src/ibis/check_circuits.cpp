#include "ibis/check_circuits.hpp"

#include "external/circuit.hpp"
#include "ibis/ibis.hpp"

namespace kestrel {

void checkExtCkts(Context& context, const Ibis& root) {
    for (const ExtCkt& circuit : root.external_circuits.newestFirst()) {
        const About about(context.diagnostics, circuit);
        // A repeated name is taken by the last-defined circuit.
        if (circuit.name.empty() || circuit.used || root.external_circuits.find(circuit.name) != &circuit) continue;
        warning(context.diagnostics, 1844, circuit.name);
    }
}

} // namespace kestrel
