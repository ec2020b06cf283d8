#pragma once

#include "reader/parse_state.hpp"
#include "report/shown_findings.hpp"

namespace kestrel {

struct Run;
struct Chain;
struct EbdPath;

/// What the sections of a file's part of the page work with.
struct PartContext {
    Html& html;
    Run& run;
    const Ibis& root;
    std::string_view path; ///< of the file
    FileKind kind;
    const Anchors& anchors;
    const ShownFindings& findings;
};

/// A chain of sections in one line, with its branches in braces; the texts of a board's pins and nodes are in `path`.
[[nodiscard]] std::string chainText(const Chain& chain, const EbdPath* path);

/// The sections of a file's part.
enum class PageSection : std::uint8_t {
    findings,
    components,
    selectors,
    models,
    submodels,
    testData,
    packages,
    boards,
    parameters
};

/// Writes the heading of a section, to which the file's head has a link.
void writeHeading(const PartContext& part, PageSection section);

/// Writes the name of a record as its heading.
void writeName(const PartContext& part, std::string_view name);

/// Writes links to the findings about a record; nothing when there are none.
void writeFindingLinks(const PartContext& part, const Subject& record);

/// The sections of the page, one file each. Each writes nothing where the file has no such records.
void writeComponents(const PartContext& part);
void writeSelectors(const PartContext& part);
void writeModels(const PartContext& part);
void writeSubmodels(const PartContext& part);
void writeTestData(const PartContext& part);
void writePackageModels(const PartContext& part);
void writeBoards(const PartContext& part);
void writeParameterFiles(const PartContext& part);

} // namespace kestrel
