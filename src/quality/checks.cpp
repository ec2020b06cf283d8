#include "quality/checks.hpp"

#include "quality/advised.hpp"
#include "quality/edges.hpp"

#include <array>

namespace kestrel {

namespace {

constexpr auto kChecks = std::to_array<Check>({
    // magnitudes and order
    // I-V tables
    // waveforms and ramps
    {312, "a ramp is slower or faster than edges are", checkRampSlew},
    // structure
});

consteval bool codesAscend() {
    for (std::size_t i = 1; i < kChecks.size(); ++i)
        if (kChecks[i].code <= kChecks[i - 1].code) return false;
    return true;
}
static_assert(codesAscend());

} // namespace

std::span<const Check> adviceChecks() { return kChecks; }

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
