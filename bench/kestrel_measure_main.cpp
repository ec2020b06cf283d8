// Runs the built program on generated files, by turns with the floor program, and prints the best of each.
#include "child_process.hpp"
#include "sample_file.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace kestrel::bench;

/// One line of the table.
struct Measurement {
    std::string_view kind;
    std::size_t count;
    bool dump; ///< with "-m -t", against the floor that prints
};

constexpr std::array kMeasurements{
    Measurement{"models", 500, false},           Measurement{"models", 1000, false},
    Measurement{"models", 2000, false},          Measurement{"models", 4000, false},
    Measurement{"models", 1000, true},           Measurement{"models", 2000, true},
    Measurement{"small_models", 10000, false},   Measurement{"small_models", 20000, false},
    Measurement{"small_models", 40000, false},   Measurement{"components", 10000, false},
    Measurement{"components", 20000, false},     Measurement{"components", 40000, false},
    Measurement{"pins", 500000, false},          Measurement{"pins", 1000000, false},
    Measurement{"pins", 2000000, false},         Measurement{"selectors", 5000, false},
    Measurement{"selectors", 10000, false},      Measurement{"selectors", 20000, false},
    Measurement{"submodels", 5000, false},       Measurement{"submodels", 10000, false},
    Measurement{"submodels", 20000, false},      Measurement{"schedules", 5000, false},
    Measurement{"schedules", 10000, false},      Measurement{"schedules", 20000, false},
    Measurement{"full_matrix", 1400, false},     Measurement{"full_matrix", 2000, false},
    Measurement{"full_matrix", 2800, false},     Measurement{"sparse_matrix", 50000, false},
    Measurement{"sparse_matrix", 100000, false}, Measurement{"sparse_matrix", 200000, false},
    Measurement{"parameters", 10000, false},     Measurement{"parameters", 20000, false},
    Measurement{"parameters", 40000, false},
};

struct Best {
    double kestrel = std::numeric_limits<double>::infinity();
    double floor = std::numeric_limits<double>::infinity();
    std::size_t peak_memory = 0;
};

struct Options {
    int rounds = 7;
    std::vector<std::string_view> kinds; ///< all of them when empty
};

/// The last line that was measured, to tell how the time grows from one to the next of its kind.
struct Previous {
    std::string label;
    double bytes = 0.0;
    double seconds = 0.0;
};

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

ChildResult runToSuccess(const std::vector<std::string>& command, const std::string& output) {
    const ChildResult result = runChild(command, output);
    if (result.status != 0)
        throw std::runtime_error(command.front() + " ended with status " + std::to_string(result.status));
    return result;
}

/// Makes sure that the program calls the file clean.
void requireClean(const std::vector<std::string>& command, const std::string& output) {
    [[maybe_unused]] const ChildResult result = runToSuccess(command, output);
    const std::string printed = contentOf(output);
    const bool clean = printed.find("File Passed") != std::string::npos &&
                       printed.find("WARNING") == std::string::npos && printed.find("NOTE (") == std::string::npos;
    if (!clean) throw std::runtime_error("the generated file is not clean:\n" + printed.substr(0, 2000));
}

Best runByTurns(const std::vector<std::string>& kestrel, const std::vector<std::string>& floor, int rounds) {
    const std::string nowhere = "/dev/null";
    Best best;
    for (int round = 0; round < rounds; ++round) {
        const ChildResult checked = runToSuccess(kestrel, nowhere);
        best.kestrel = std::min(best.kestrel, checked.seconds);
        best.peak_memory = std::max(best.peak_memory, checked.peak_memory);
        best.floor = std::min(best.floor, runToSuccess(floor, nowhere).seconds);
    }
    return best;
}

void printHeading() {
    std::puts("kind                    count      MB  kestrel s   floor s  ratio  peak/file  growth");
}

/// `growth` is the time per byte compared with the line above of the same kind: 1 when time goes with size.
void printLine(const Measurement& measurement, const std::string& label, double bytes, const Best& best,
               Previous& previous) {
    const double memory = static_cast<double>(best.peak_memory) / bytes;
    std::printf("%-20s %8zu %7.1f %10.3f %9.3f %6.2f %10.2f", label.c_str(), measurement.count, bytes * 1e-6,
                best.kestrel, best.floor, best.kestrel / best.floor, memory);
    if (previous.label == label) std::printf(" %7.2f", best.kestrel / previous.seconds / (bytes / previous.bytes));
    std::puts("");
    std::fflush(stdout);
    previous = {label, bytes, best.kestrel};
}

void measure(const Measurement& measurement, const std::filesystem::path& programs, const std::filesystem::path& folder,
             int rounds, Previous& previous) {
    const SampleKind& kind = *findSampleKind(measurement.kind);
    const std::string name = std::string(kind.name) + std::string(kind.extension);
    const std::string file = (folder / name).string();
    const std::string output = (folder / "output.txt").string();
    // Generated by a child, so that this process stays small.
    runToSuccess({(programs / "kestrel_generate").string(), std::string(measurement.kind),
                  std::to_string(measurement.count), file},
                 output);
    const std::string_view program = kind.extension == ".ibs" ? "kestrel" : "verimark";
    std::vector<std::string> kestrel{(programs / program).string(), file};
    std::vector<std::string> floor{(programs / "kestrel_floor").string(), file};
    requireWholeFloor(kind);
    requireClean(kestrel, output);
    std::string label(measurement.kind);
    if (measurement.dump) {
        kestrel.insert(kestrel.end(), {"-m", "-t"});
        floor.emplace_back("print");
        label.append(" -m -t");
    }
    const Best best = runByTurns(kestrel, floor, rounds);
    printLine(measurement, label, static_cast<double>(std::filesystem::file_size(file)), best, previous);
    std::filesystem::remove(file);
}

int usage() {
    std::fputs("usage: kestrel_measure [-r ROUNDS] [KIND...]\n", stderr);
    return 1;
}

/// False for a wrong command line.
bool readOptions(std::vector<std::string_view> words, Options& options) {
    if (words.size() >= 2 && words.front() == "-r") {
        options.rounds = std::atoi(std::string(words[1]).c_str());
        words.erase(words.begin(), words.begin() + 2);
    }
    options.kinds = words;
    return options.rounds > 0 &&
           std::ranges::all_of(options.kinds, [](std::string_view kind) { return findSampleKind(kind) != nullptr; });
}

} // namespace

int main(int argc, char** argv) {
    try {
        Options options;
        if (!readOptions({argv + 1, argv + argc}, options)) return usage();
        const std::filesystem::path programs = std::filesystem::path(argv[0]).parent_path();
        const TemporaryFolder folder;
        Previous previous;
        printHeading();
        for (const Measurement& measurement : kMeasurements) {
            if (!options.kinds.empty() && std::ranges::find(options.kinds, measurement.kind) == options.kinds.end())
                continue;
            measure(measurement, programs, folder.path(), options.rounds, previous);
        }
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kestrel_measure: %s\n", failure.what());
        return 2;
    }
}
