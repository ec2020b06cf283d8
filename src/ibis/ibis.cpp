#include "ibis/ibis.hpp"

#include "board/ebdmdl.hpp"
#include "external/circuit.hpp"
#include "ibis/check_tests.hpp"
#include "ibis/run.hpp"
#include "model/acdc.hpp"
#include "package/pkgmdl.hpp"

#include <algorithm>

namespace kestrel {

Ibis::Ibis() = default;
Ibis::~Ibis() = default;

Ibis& createRoot(Run& run) {
    run.roots.roots.push_back(std::make_unique<Ibis>());
    return *run.roots.roots.back();
}

Ibis* currentRoot(const Run& run) { return run.roots.roots.empty() ? nullptr : run.roots.roots.back().get(); }

void freeRoot(Run& run, Ibis& root) {
    std::erase_if(run.roots.roots, [&root](const std::unique_ptr<Ibis>& held) { return held.get() == &root; });
}

void finalChecks(Run& run) {
    Ibis* const root = currentRoot(run);
    if (root == nullptr) return;
    for (const Mdl& model : root->models.newestFirst()) {
        if (model.receiver_thresholds) checkRcvTh(run, *model.receiver_thresholds, model.name);
    }
    checkCompositeCurrents(run);
    checkDrvShs(run);
    checkAlgMods(run);
    checkMSels(run);
    if (root->components.empty()) {
        error(run.diagnostics, 4101);
    } else {
        checkComponentCurrents(run);
        checkCmpnts(run);
    }
    checkPkgMdls(run);
    checkTestData(run, *root);
    checkTestLoads(run, *root);
    checkAddedSubmodels(run);
    checkReferences(run);
}

void finalBoardChecks(Run& run, bool nested) { checkEbdMdls(run, nested); }

} // namespace kestrel
