#pragma once

#include "board/ebdmdl.hpp"
#include "component/cmpnt.hpp"
#include "external/circuit.hpp"
#include "header/hdr.hpp"
#include "ibis/amifiles.hpp"
#include "ibis/ibis.hpp"
#include "ibis/pkgsearch.hpp"
#include "model/mdl.hpp"
#include "model/msel.hpp"
#include "model/submdl.hpp"
#include "model/testdata.hpp"
#include "model/testload.hpp"
#include "package/pkgmdl.hpp"
#include "reader/context.hpp"

#include <memory>
#include <vector>

namespace kestrel {

/// Everything that one run knows: the context, the roots and each module's state. Passed explicitly wherever it is
/// needed; two runs share nothing, unless they are given a common search for package models.
struct Run : Context {
    explicit Run(Output& output) : Context(output) {}
    /// A run that searches for package models together with others.
    Run(Output& output, PkgSearch& shared_search) : Context(output), pkgsearch(&shared_search) {}

    std::vector<std::unique_ptr<Ibis>> roots; ///< the current one last, above those of the parses that it is nested in
    HdrState hdr;
    CmpntState cmpnt;
    CircuitState circuit;
    MdlState mdl;
    AmiFiles ami_files;
    MSelState msel;
    SubMdlState submdl;
    RecordState<TestData> testdata;
    RecordState<TestLoad> testload;
    PkgMdlState pkgmdl;
    EbdMdlState ebdmdl;
    PkgSearch own_pkgsearch;
    PkgSearch* pkgsearch = &own_pkgsearch;
};

} // namespace kestrel
