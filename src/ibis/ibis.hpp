#pragma once

#include "base/object_list.hpp"

namespace kestrel {

struct Run;
struct Hdr;
struct Cmpnt;
struct Mdl;
struct ExtCkt;
struct SubMdl;
struct PkgMdl;
struct EbdMdl;
struct MSel;
struct TestData;
struct TestLoad;

/// Root record: owns everything that the parse of one source file makes.
struct Ibis {
    Ibis();
    Ibis(const Ibis&) = delete;
    Ibis& operator=(const Ibis&) = delete;
    ~Ibis();

    ObjectList<Hdr> headers;
    ObjectList<Cmpnt> components;
    ObjectList<Mdl> models;
    ObjectList<ExtCkt> external_circuits;
    ObjectList<SubMdl> submodels;
    ObjectList<PkgMdl> package_models;
    ObjectList<EbdMdl> board_descriptions;
    ObjectList<MSel> model_selectors;
    ObjectList<TestData> test_data;
    ObjectList<TestLoad> test_loads;
};

/// Puts a new, empty root on the stack and returns it.
Ibis& createRoot(Run& run);

/// The root of the file being read or checked; there must be one.
[[nodiscard]] Ibis& currentRoot(const Run& run);

/// Unlinks `root` wherever it is on the stack and frees it with all that it owns.
void freeRoot(Run& run, Ibis& root);

/// Checks over the records of a root once its .ibs file is read, in their fixed order.
void finalChecks(Run& run, Ibis& root);

/// Checks over the package models of a root once its file is read: repeated names.
void finalPackageChecks(Run& run, const Ibis& root);

} // namespace kestrel
