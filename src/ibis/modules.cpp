#include "ibis/modules.hpp"

#include "ibis/run.hpp"
#include "reader/sections.hpp"

#include <array>
#include <cstddef>

namespace kestrel {

namespace {

using KindSet = EnumSet<FileKind>;

constexpr KindSet kIbsOnly{FileKind::ibs};
constexpr KindSet kEbdOnly{FileKind::ebd};
constexpr KindSet kNoBoards{FileKind::ibs, FileKind::pkg, FileKind::ami};
constexpr KindSet kAnyFile{FileKind::ibs, FileKind::pkg, FileKind::ebd, FileKind::ami};

/// The row of a module that keeps records of one kind in a list of the root.
template <auto List, auto State, const auto& Reader>
constexpr Module recordModule(Owner owner, KindSet kinds, KeywordCode opens) {
    return {
        .owner = owner,
        .kinds = kinds,
        .opens = opens,
        .open = [](Run& run) { openRecord(run, run.*State, (*currentRoot(run)).*List); },
        .keyword_seen = [](Run& run, KeywordCode code) { recordKeywordSeen(run, run.*State, Reader, code); },
        .line = [](Run& run, const Line& line) { recordLine(run, run.*State, Reader, line); },
        .forget = [](Run& run) { run.*State = {}; },
    };
}

void openHeader(Run& run) {
    if (!run.parse.version_seen) openHdr(run);
    run.parse.version_seen = true;
}

void endLine(Run& run, const Line& line) {
    if (!line.text.empty()) errorAtLine(run.diagnostics, 920);
    run.parse.end_seen = true;
}

/// A data line that lies under no keyword.
void strayLine(Run& run, const Line& line) { errorAtLine(run.diagnostics, 907, line.text); }

/// Such a line is dealt with ahead of the dispatch.
void commentCharLine(Run& /*run*/, const Line& /*line*/) {}

template <auto State> void forget(Run& run) { run.*State = {}; }

constexpr std::array<Module, 13> kModules{{
    {Owner::hdr, kAnyFile, KeywordCode::ibisVer, openHeader, hdrKeywordSeen, hdrLine, forget<&Run::hdr>},
    {Owner::cmpnt, kIbsOnly, KeywordCode::component, openCmpnt, cmpntKeywordSeen, cmpntLine, forget<&Run::cmpnt>},
    {Owner::mdl, kIbsOnly, KeywordCode::model, openMdl, mdlKeywordSeen, mdlLine, forget<&Run::mdl>},
    {Owner::circuit, kIbsOnly, KeywordCode::notKey, nullptr, circuitKeywordSeen, circuitLine, forget<&Run::circuit>},
    recordModule<&Ibis::submodels, &Run::submdl, kSubMdl>(Owner::submdl, kAnyFile, KeywordCode::submodel),
    {Owner::msel, kIbsOnly, KeywordCode::modelSelector, openMSel, mselKeywordSeen, mselLine, forget<&Run::msel>},
    recordModule<&Ibis::test_data, &Run::testdata, kTestData>(Owner::testdata, kAnyFile, KeywordCode::testData),
    recordModule<&Ibis::test_loads, &Run::testload, kTestLoad>(Owner::testload, kAnyFile, KeywordCode::testLoad),
    {Owner::pkgmdl, kNoBoards, KeywordCode::definePackageModel, openPkgMdl, pkgmdlKeywordSeen, pkgmdlLine,
     forget<&Run::pkgmdl>},
    {Owner::ebdmdl, kEbdOnly, KeywordCode::beginBoardDescription, openEbdMdl, ebdmdlKeywordSeen, ebdmdlLine,
     forget<&Run::ebdmdl>},
    {.owner = Owner::end, .kinds = kAnyFile, .line = endLine},
    {.owner = Owner::none, .kinds = kAnyFile, .line = strayLine},
    {.owner = Owner::commentChar, .kinds = kAnyFile, .line = commentCharLine},
}};

constexpr std::array<std::uint8_t, kModules.size()> kPlaces = [] {
    std::array<std::uint8_t, kModules.size()> places{};
    for (std::size_t i = 0; i < kModules.size(); ++i) {
        places[static_cast<std::size_t>(kModules[i].owner)] = static_cast<std::uint8_t>(i);
    }
    return places;
}();

} // namespace

std::span<const Module> modules() { return kModules; }

const Module& moduleOf(KeywordCode code) { return kModules[kPlaces[static_cast<std::size_t>(ownerOf(code))]]; }

} // namespace kestrel
