#include "ibis/modules.hpp"

#include "ibis/run.hpp"
#include "reader/sections.hpp"

#include <array>
#include <cstddef>
#include <type_traits>
#include <utility>

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
        .open = [](Run& run) { openRecord(run, run.*State, currentRoot(run).*List); },
        .keyword_seen = [](Run& run, KeywordCode code) { recordKeywordSeen(run, run.*State, Reader, code); },
        .line = [](Run& run, const Line& line) { recordLine(run, run.*State, Reader, line); },
        .read_rows = [](Run& run, LineReader& reader) { recordRows(run, run.*State, Reader, reader); },
        .forget = [](Run& run) { run.*State = {}; },
    };
}

/// A file has one header, whatever comes behind it.
constexpr Module headerModule() {
    Module module = recordModule<&Ibis::headers, &Run::hdr, kHdr>(Owner::hdr, kAnyFile, KeywordCode::ibisVer);
    module.open = [](Run& run) {
        if (!run.parse.version_seen) openRecord(run, run.hdr, currentRoot(run).headers);
        run.parse.version_seen = true;
    };
    return module;
}

void endLine(Run& run, const Line& line) {
    if (!line.text.empty()) errorAtLine(run.diagnostics, 920);
    run.parse.end_seen = true;
}

/// A data line that lies under no keyword.
void strayLine(Run& run, const Line& line) { errorAtLine(run.diagnostics, 907, line.text); }

/// Such a line is dealt with ahead of the dispatch.
void commentCharLine(Run& /*run*/, const Line& /*line*/) {}

constexpr std::array<Module, 13> kModules{{
    headerModule(),
    recordModule<&Ibis::components, &Run::cmpnt, kCmpnt>(Owner::cmpnt, kIbsOnly, KeywordCode::component),
    recordModule<&Ibis::models, &Run::mdl, kMdl>(Owner::mdl, kIbsOnly, KeywordCode::model),
    recordModule<&Ibis::external_circuits, &Run::circuit, kExternalCircuit>(Owner::circuit, kIbsOnly,
                                                                            KeywordCode::externalCircuit),
    recordModule<&Ibis::submodels, &Run::submdl, kSubMdl>(Owner::submdl, kAnyFile, KeywordCode::submodel),
    recordModule<&Ibis::model_selectors, &Run::msel, kMSel>(Owner::msel, kIbsOnly, KeywordCode::modelSelector),
    recordModule<&Ibis::test_data, &Run::testdata, kTestData>(Owner::testdata, kAnyFile, KeywordCode::testData),
    recordModule<&Ibis::test_loads, &Run::testload, kTestLoad>(Owner::testload, kAnyFile, KeywordCode::testLoad),
    recordModule<&Ibis::package_models, &Run::pkgmdl, kPkgMdl>(Owner::pkgmdl, kNoBoards,
                                                               KeywordCode::definePackageModel),
    recordModule<&Ibis::board_descriptions, &Run::ebdmdl, kEbdMdl>(Owner::ebdmdl, kEbdOnly,
                                                                   KeywordCode::beginBoardDescription),
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

void showKeyword(Run& run, KeywordCode code) {
    // Calls that are known when the program is compiled: nearly all modules have no open record, which takes a call
    // through a pointer ten times as long to find out.
    const auto show = [&run, code ]<std::size_t... Place>(std::index_sequence<Place...> /*places*/) {
        const auto show_to = [&run, code]<std::size_t At>(std::integral_constant<std::size_t, At> /*place*/) {
            constexpr auto kSeen = kModules[At].keyword_seen;
            if constexpr (kSeen != nullptr) kSeen(run, code);
        };
        (show_to(std::integral_constant<std::size_t, Place>()), ...);
    };
    show(std::make_index_sequence<kModules.size()>());
}

const Module& moduleOf(KeywordCode code) { return kModules[kPlaces[static_cast<std::size_t>(ownerOf(code))]]; }

} // namespace kestrel
