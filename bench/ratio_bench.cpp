// The checker against the least work that its file needs, both measured by turns in one run. The counter "ratio" is
// what matters; it should not depend on the size of the file.
#include "checked_contents.hpp"
#include "floor.hpp"
#include "ibis/parse.hpp"
#include "ibis/run.hpp"
#include "main/driver.hpp"
#include "sample_file.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <exception>
#include <limits>
#include <map>
#include <memory>
#include <span>
#include <stdexcept>

#include <benchmark/benchmark.h>

namespace {

using namespace kestrel::bench;

/// A way to run the checker, and the least work that goes with it.
struct Task {
    std::string_view name;
    FloorWork floor;
    void (*run)(const SampleFile& file);
};

/// The files of this benchmark run; each is made when it is first asked for.
struct Samples {
    TemporaryFolder folder;
    std::map<std::string, SampleFile> files;
};

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

void require(bool holds, const std::string& what) {
    if (!holds) throw std::runtime_error(what);
}

void checkOnly(const SampleFile& file) {
    kestrel::Output out;
    kestrel::Run run(out);
    kestrel::checkFile(run, file.path, *kestrel::kindOfName(file.path));
    benchmark::DoNotOptimize(run.diagnostics.errors);
}

void runProgram(const SampleFile& file, std::span<const std::string_view> options) {
    const std::unique_ptr<std::FILE, FileCloser> nowhere(std::fopen("/dev/null", "wb"));
    require(nowhere != nullptr, "cannot open /dev/null");
    kestrel::Output out(nowhere.get());
    kestrel::Output errors;
    std::vector<std::string_view> arguments{file.path};
    arguments.insert(arguments.end(), options.begin(), options.end());
    require(kestrel::runKestrel(out, errors, arguments) == kestrel::kSuccess, "kestrel failed on " + file.path);
}

void reportComponents(const SampleFile& file) { runProgram(file, std::array<std::string_view, 1>{"-c"}); }

void dumpTables(const SampleFile& file) { runProgram(file, std::array<std::string_view, 2>{"-m", "-t"}); }

constexpr Task kCheck{"check", FloorWork::convert, checkOnly};
constexpr Task kComponents{"report -c", FloorWork::convert, reportComponents};
constexpr Task kDump{"dump -m -t", FloorWork::print, dumpTables};

/// Makes sure that there is nothing to report in the file and that the checker finds in it what was put there.
void requireChecked(const SampleFile& file) {
    kestrel::Output out;
    kestrel::Run run(out);
    kestrel::checkFile(run, file.path, *kestrel::kindOfName(file.path));
    const kestrel::Diagnostics& found = run.diagnostics;
    require(found.errors == 0 && found.bugs == 0 && found.warnings == 0, "diagnostics:\n" + out.text().substr(0, 2000));
    require(contentsOf(currentRoot(run)) == file.contents, file.path + " was not read whole");
}

const SampleFile& sampleOf(Samples& samples, const SampleKind& kind, std::size_t megabytes) {
    const std::string name = numbered(kind.name, megabytes, 4) + "mb" + std::string(kind.extension);
    const auto [at, is_new] = samples.files.try_emplace(name);
    if (is_new) {
        requireWholeFloor(kind);
        at->second = writeSample(kind, countForSize(kind, megabytes * 1000000), samples.folder.path() / name);
        requireChecked(at->second);
    }
    return at->second;
}

/// Seconds of processor time, which other programs disturb less than the clock.
template <class Work> double secondsOf(const Work& work) {
    const std::clock_t begin = std::clock();
    work();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

void measure(benchmark::State& state, Samples& samples, const SampleKind& kind, std::size_t megabytes,
             const Task& task) {
    const SampleFile* file = nullptr;
    try {
        file = &sampleOf(samples, kind, megabytes);
    } catch (const std::exception& failure) {
        state.SkipWithError(failure.what());
        return;
    }
    double best_floor = std::numeric_limits<double>::infinity();
    double best = best_floor;
    for ([[maybe_unused]] const auto turn : state) {
        best_floor =
            std::min(best_floor, secondsOf([&] { benchmark::DoNotOptimize(floorOfFile(file->path, task.floor)); }));
        const double seconds = secondsOf([&] { task.run(*file); });
        best = std::min(best, seconds);
        state.SetIterationTime(seconds);
    }
    const auto bytes = static_cast<double>(file->bytes);
    state.SetBytesProcessed(static_cast<std::int64_t>(file->bytes) * static_cast<std::int64_t>(state.iterations()));
    state.counters["MB"] = bytes * 1e-6;
    state.counters["best_ns_per_byte"] = best * 1e9 / bytes;
    state.counters["floor_ns_per_byte"] = best_floor * 1e9 / bytes;
    state.counters["ratio"] = best / best_floor;
}

void enter(Samples& samples, const SampleKind& kind, const Task& task) {
    for (const std::size_t megabytes : {6U, 12U, 25U, 50U}) {
        std::string name(task.name);
        name.append("/").append(kind.name).append("/").append(std::to_string(megabytes)).append("MB");
        benchmark::RegisterBenchmark(name.c_str(),
                                     [&samples, &kind, &task, megabytes](benchmark::State& state) {
                                         measure(state, samples, kind, megabytes, task);
                                     })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    try {
        Samples samples;
        for (const SampleKind& kind : sampleKinds())
            enter(samples, kind, kCheck);
        for (const std::string_view name : {"components", "pins"})
            enter(samples, *findSampleKind(name), kComponents);
        for (const std::string_view name : {"models", "small_models"})
            enter(samples, *findSampleKind(name), kDump);
        benchmark::RunSpecifiedBenchmarks();
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kestrel_bench: %s\n", failure.what());
        return 2;
    }
}
