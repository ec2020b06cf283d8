#pragma once

#include "base/output.hpp"
#include "base/text_store.hpp"
#include "diagnostics/file_outcome.hpp"
#include "ibis/run.hpp"

#include <string>
#include <string_view>
#include <vector>

#include <kestrel/kestrel.hpp>

namespace kestrel::api {

/// What a File shares with its copies: the run, which keeps all records, its findings, and the order of both.
struct ReadFile {
    explicit ReadFile(std::string_view given_name) : name(given_name) {}

    std::string name;
    Output nowhere = Output::nowhere();
    Run run{nowhere};
    FileOutcome outcome;
    std::vector<Finding> findings;
    Counts counts;
    NameTable codes;
    TextStore texts; ///< of the findings

    // The records in the order of the file.
    const Hdr* header = nullptr;
    std::vector<const Cmpnt*> components;
    std::vector<const Mdl*> models;
    std::vector<const SubMdl*> submodels;
    std::vector<const MSel*> selectors;
    std::vector<const PkgMdl*> package_models;

    /// The root of the file, null when there is none.
    [[nodiscard]] const Ibis* root() const { return run.roots.empty() ? nullptr : run.roots.front().get(); }
    /// Keeps a finding.
    void add(const kestrel::Finding& finding);
    /// Lists the records of the root when all is read.
    void listRecords();
};

} // namespace kestrel::api
