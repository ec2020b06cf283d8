#include "ibis/ibis.hpp"

#include "board/ebdmdl.hpp"
#include "external/circuit.hpp"
#include "ibis/checks.hpp"
#include "ibis/model_marks.hpp"
#include "ibis/run.hpp"
#include "package/pkgmdl.hpp"

#include <algorithm>

namespace kestrel {

Ibis::Ibis() = default;
Ibis::~Ibis() = default;

Ibis& createRoot(Run& run) { return *run.roots.emplace_back(std::make_unique<Ibis>()); }

Ibis& currentRoot(const Run& run) { return *run.roots.back(); }

void freeRoot(Run& run, Ibis& root) {
    std::erase_if(run.roots, [&root](const std::unique_ptr<Ibis>& held) { return held.get() == &root; });
}

void finalChecks(Run& run, Ibis& root) {
    checkRcvThs(run, root);
    checkCompositeCurrents(run, root);
    ModelMarks models(root);
    checkDrvShs(run, root, models);
    checkAmiFiles(run, run.ami_files, root);
    checkMSels(run, root, models);
    if (root.components.empty()) {
        error(run.diagnostics, 4101);
    } else {
        checkComponentCurrents(run, root);
        checkComponents(run, root, models);
    }
    models.hand(root);
    finalPackageChecks(run, root);
    checkTestData(run, root);
    checkTestLoads(run, root);
    checkAddedSubmodels(run, root);
    checkReferences(run, root);
}

void finalPackageChecks(Run& run, const Ibis& root) {
    root.package_models.eachRepeatedName([&run](const PkgMdl& package, std::size_t behind) {
        const About about(run.diagnostics, package);
        for (; behind > 0; --behind) {
            error(run.diagnostics, 3410, package.name);
        }
    });
}

} // namespace kestrel
