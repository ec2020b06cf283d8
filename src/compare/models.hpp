#pragma once

#include "compare/comparison.hpp"

#include <functional>
#include <string>

namespace kestrel {

struct ExtCkt;
struct Mdl;
struct MSel;
struct SMos;
struct SeriesBlock;
struct SubMdl;
struct TestData;
struct TestLoad;

/// The tables of two models, from which it shows whether they are one under two names.
void compareModelTables(Comparison& comparison, const Mdl& was, const Mdl& is);

/// All else of two models.
void compareModelFields(Comparison& comparison, const Mdl& was, const Mdl& is);

/// Calls `use` with the name of the field, the table of OLD and that of NEW for all MOSFETs; null where a block lacks
/// one.
void eachMosfetPair(const SeriesBlock& was, const SeriesBlock& is,
                    const std::function<void(const std::string& field, const SMos* was, const SMos* is)>& use);

/// Other records.
void compareSubmodels(Comparison& comparison, const SubMdl& was, const SubMdl& is);
void compareSelectors(Comparison& comparison, const MSel& was, const MSel& is);
void compareTestLoads(Comparison& comparison, const TestLoad& was, const TestLoad& is);
void compareTestData(Comparison& comparison, const TestData& was, const TestData& is);

/// An external circuit, or the external model of a model; `group` is what its fields belong to.
void compareExternals(Comparison& comparison, std::string_view group, const ExtCkt& was, const ExtCkt& is);

} // namespace kestrel
