#pragma once

#include "component/circuit.hpp"
#include "component/cmpnt.hpp"
#include "ibis/diagnostics.hpp"
#include "ibis/ibis.hpp"
#include "model/mdl.hpp"
#include "model/msel.hpp"
#include "model/submdl.hpp"
#include "model/testdata.hpp"
#include "model/testload.hpp"
#include "package/ebdmdl.hpp"
#include "package/pkgmdl.hpp"
#include "package/pkgsearch.hpp"
#include "reader/hdr.hpp"
#include "reader/parse_state.hpp"
#include "reader/source.hpp"

namespace kestrel {

/// Everything that one run knows: the reader's state, the diagnostics, the roots and each module's state. Passed
/// explicitly wherever it is needed; two runs share nothing.
struct Run {
    explicit Run(Output& output) : out(output), diagnostics(output, parse.line) {}
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() = default;

    Output& out;
    ParseState parse;
    Diagnostics diagnostics;
    SourceStore sources;
    RootStack roots;
    HdrState hdr;
    CmpntState cmpnt;
    CircuitState circuit;
    MdlState mdl;
    AlgModState algmod;
    MSelState msel;
    SubMdlState submdl;
    TestDataState testdata;
    TestLoadState testload;
    PkgMdlState pkgmdl;
    EbdMdlState ebdmdl;
    PkgSearch pkgsearch;
};

} // namespace kestrel
