#include "generate.hpp"

#include "sections.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace kestrel::bench {

namespace {

void writeHeader(TextWriter& writer, std::string_view file_name) {
    writeLine(writer, {"[IBIS Ver]      5.1"});
    writeLine(writer, {"[File Name]     ", file_name});
    writeLine(writer, {"[File Rev]      1.0"});
    writeLine(writer, {"[Date]          February 29, 2024"});
    writeLine(writer, {"[Source]        Generated for measurements."});
    writeLine(writer, {"[Notes]         Every name and value is made up."});
    writeLine(writer, {"|"});
}

constexpr std::array kKinds{
    SampleKind{"components", "components of 50 pins", 20000, false, writeComponents},
    SampleKind{"pins", "pins of one component", 1000000, false, writeOneComponent},
    SampleKind{"models", "models of 4 I-V tables and 4 waveforms", 2000, false, writeModels},
    SampleKind{"small_models", "models of two short tables at most", 20000, false, writeSmallModels},
    SampleKind{"selectors", "model selectors of 20 entries", 10000, false, writeSelectors},
    SampleKind{"submodels", "submodels, each added by a model", 10000, false, writeSubmodels},
    SampleKind{"schedules", "driver schedules of 10 entries", 10000, false, writeSchedules},
    SampleKind{"full_matrix", "pins of a package model with full matrices", 2000, true, writeFullMatrices},
    SampleKind{"sparse_matrix", "pins of a package model, 10 entries a row", 100000, false, writeSparseMatrices},
    SampleKind{"parameters", "branches of 20 parameters of an algorithmic model", 20000, false, writeParameters,
               ".ami"},
};

} // namespace

std::span<const SampleKind> sampleKinds() { return kKinds; }

const SampleKind* findSampleKind(std::string_view name) {
    const auto* const kind = std::ranges::find(kKinds, name, &SampleKind::name);
    return kind == kKinds.end() ? nullptr : kind;
}

Sample makeSample(const SampleKind& kind, std::size_t count, std::string_view file_name) {
    TextWriter writer;
    const bool is_ibis = kind.extension == ".ibs";
    if (is_ibis) writeHeader(writer, file_name);
    kind.write(writer, count);
    if (is_ibis) writeLine(writer, {"[End]"});
    return {std::move(writer.text), writer.contents};
}

std::size_t countForSize(const SampleKind& kind, std::size_t bytes) {
    // Two small files tell what a thing takes and what the rest of the file takes. Where the size is quadratic they are
    // not that small, lest the part that grows evenly counts for too much.
    const std::size_t few = kind.usual_count / (kind.quadratic ? 5 : 100);
    const auto things = [&kind](std::size_t count) {
        const auto number = static_cast<double>(count);
        return kind.quadratic ? number * number : number;
    };
    const auto size = [&kind](std::size_t count) {
        return static_cast<double>(makeSample(kind, count, "size.ibs").text.size());
    };
    const double per_thing = (size(2 * few) - size(few)) / (things(2 * few) - things(few));
    const double rest = size(few) - per_thing * things(few);
    const double wanted = std::max((static_cast<double>(bytes) - rest) / per_thing, 1.0);
    return static_cast<std::size_t>(std::lround(kind.quadratic ? std::sqrt(wanted) : wanted));
}

} // namespace kestrel::bench
