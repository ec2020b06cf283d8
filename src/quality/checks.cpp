#include "quality/checks.hpp"

#include "base/rows.hpp"
#include "quality/advised.hpp"
#include "quality/edges.hpp"
#include "quality/magnitudes.hpp"
#include "quality/structure.hpp"

#include <array>

namespace kestrel {

namespace {

constexpr auto kChecks = std::to_array<Check>({
    // magnitudes and order
    {101, "a capacitance is not that of a die", checkDieCapacitance},
    {102, "a value of a package is larger than packages have", checkPackageValues},
    {103, "values of pins are larger than packages have", checkPinValues},
    {104, "the corners of a range are out of order", checkOrder},
    {105, "temperatures are none of a chip or out of order", checkTemperatures},
    {109, "what is silent elsewhere: Vmeas beyond Vinl or Vinh, differential types", checkCautions},
    // I-V tables
    // waveforms and ramps
    {312, "a ramp is slower or faster than edges are", checkRampSlew},
    // structure
    {401, "the models of a pair of pins differ in type", checkPairTypes},
    {403, "the header does not say where or when the model was made", checkOrigin},
    {404, "the date is none, or not of a time when models were made", checkDate},
    {405, "the comment character is changed", checkCommentChar},
    {407, "driver models have no waveform", checkWaveformsGiven},
    {408, "a component has neither a package nor values of pins", checkPackageGiven},
    {409, "nothing leads to a model", checkModelsUsed},
    {410, "the levels of a converter are the wrong way round", checkConverterLevels},
    {411, "an external model lacks a port that its type uses", checkExternalPorts},
});

consteval bool codesAscend() {
    for (std::size_t i = 1; i < kChecks.size(); ++i)
        if (kChecks[i].code <= kChecks[i - 1].code) return false;
    return true;
}
static_assert(codesAscend());

} // namespace

std::span<const Check> adviceChecks() { return kChecks; }

const Check* adviceCheck(MessageCode code) { return rowOf(kChecks, code, &Check::code); }

std::vector<Advice> adviseOn(const AdvisedFile& file) {
    AdviceList list;
    for (const Check& check : kChecks)
        if (const auto* const run = std::get_if<CheckOfFile>(&check.run)) (*run)(file, list);
    for (const Mdl* const model : file.models) {
        const AdvisedModel advised{*model, file};
        for (const Check& check : kChecks)
            if (const auto* const run = std::get_if<CheckOfModel>(&check.run)) (*run)(advised, list);
    }
    return list.takeSorted();
}

} // namespace kestrel
