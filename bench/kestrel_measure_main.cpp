// Runs the built program on generated files, by turns with the floor program, and prints how they compare.
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

/// One line of the table of growth.
struct GrowthSize {
    std::string_view kind;
    std::size_t megabytes;
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

/// The files whose ratios tell whether time goes with size: the first of each kind, and larger ones.
constexpr std::array kGrowth{
    GrowthSize{"models", 50},         GrowthSize{"models", 200},        GrowthSize{"models", 800},
    GrowthSize{"small_models", 50},   GrowthSize{"small_models", 1000}, GrowthSize{"components", 50},
    GrowthSize{"components", 1000},   GrowthSize{"pins", 50},           GrowthSize{"pins", 500},
    GrowthSize{"selectors", 50},      GrowthSize{"selectors", 1000},    GrowthSize{"submodels", 50},
    GrowthSize{"submodels", 1000},    GrowthSize{"schedules", 50},      GrowthSize{"schedules", 1000},
    GrowthSize{"full_matrix", 50},    GrowthSize{"full_matrix", 1000},  GrowthSize{"sparse_matrix", 50},
    GrowthSize{"sparse_matrix", 800}, GrowthSize{"parameters", 50},     GrowthSize{"parameters", 1000},
};

/// What rounds of runs by turns took: seconds are the best of all rounds, ratios the median of what each round has for
/// itself, since the speed of a shared machine changes from one second to the next.
struct Result {
    double kestrel = std::numeric_limits<double>::infinity();
    double floor = std::numeric_limits<double>::infinity();
    double touch = std::numeric_limits<double>::infinity(); ///< writing to as much memory
    double ratio = 0.0;
    double ratio_without_touch = 0.0;
    std::size_t peak_memory = 0;
};

double medianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

struct Options {
    int rounds = 7;
    bool growth = false;                 ///< the table of growth instead
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

/// The commands that are run by turns.
struct Commands {
    std::vector<std::string> kestrel;
    std::vector<std::string> floor;
    std::string touch; ///< empty where that is not measured
};

Result runByTurns(const Commands& commands, int rounds) {
    const std::string nowhere = "/dev/null";
    Result result;
    std::vector<double> ratios;
    std::vector<double> ratios_without_touch;
    for (int round = 0; round < rounds; ++round) {
        const ChildResult checked = runToSuccess(commands.kestrel, nowhere);
        const double floor = runToSuccess(commands.floor, nowhere).seconds;
        result.kestrel = std::min(result.kestrel, checked.seconds);
        result.floor = std::min(result.floor, floor);
        result.peak_memory = std::max(result.peak_memory, checked.peak_memory);
        ratios.push_back(checked.seconds / floor);
        if (commands.touch.empty()) continue;
        const double touch = runToSuccess({commands.touch, std::to_string(checked.peak_memory)}, nowhere).seconds;
        result.touch = std::min(result.touch, touch);
        ratios_without_touch.push_back((checked.seconds - touch) / floor);
    }
    result.ratio = medianOf(std::move(ratios));
    if (!commands.touch.empty()) result.ratio_without_touch = medianOf(std::move(ratios_without_touch));
    return result;
}

void printHeading() {
    std::puts("kind                    count      MB  kestrel s   floor s  ratio  peak/file  growth");
}

/// `growth` is the time per byte compared with the line above of the same kind: 1 when time goes with size.
void printLine(const Measurement& measurement, const std::string& label, double bytes, const Result& result,
               Previous& previous) {
    const double memory = static_cast<double>(result.peak_memory) / bytes;
    std::printf("%-20s %8zu %7.1f %10.3f %9.3f %6.2f %10.2f", label.c_str(), measurement.count, bytes * 1e-6,
                result.kestrel, result.floor, result.ratio, memory);
    if (previous.label == label) std::printf(" %7.2f", result.kestrel / previous.seconds / (bytes / previous.bytes));
    std::puts("");
    std::fflush(stdout);
    previous = {label, bytes, result.kestrel};
}

/// A generated file, as long as this lives, and what is run on it.
class Generated {
public:
    Generated(std::string_view kind_name, const std::string& size, const std::filesystem::path& programs,
              const std::filesystem::path& folder) {
        const SampleKind& kind = *findSampleKind(kind_name);
        file_ = folder / (std::string(kind.name) + std::string(kind.extension));
        const std::string output = (folder / "output.txt").string();
        // Generated by a child, so that this process stays small.
        runToSuccess({(programs / "kestrel_generate").string(), std::string(kind_name), size, file_.string()}, output);
        const std::string_view program = kind.extension == ".ibs" ? "kestrel" : "verimark";
        commands_.kestrel = {(programs / program).string(), file_.string()};
        commands_.floor = {(programs / "kestrel_floor").string(), file_.string()};
        requireWholeFloor(kind);
        requireClean(commands_.kestrel, output);
    }
    Generated(const Generated&) = delete;
    Generated& operator=(const Generated&) = delete;
    ~Generated() {
        std::error_code failure;
        std::filesystem::remove(file_, failure);
    }

    [[nodiscard]] const Commands& commands() const { return commands_; }
    [[nodiscard]] double bytes() const { return static_cast<double>(std::filesystem::file_size(file_)); }

private:
    std::filesystem::path file_;
    Commands commands_;
};

void measure(const Measurement& measurement, const std::filesystem::path& programs, const std::filesystem::path& folder,
             int rounds, Previous& previous) {
    const Generated file(measurement.kind, std::to_string(measurement.count), programs, folder);
    Commands commands = file.commands();
    std::string label(measurement.kind);
    if (measurement.dump) {
        commands.kestrel.insert(commands.kestrel.end(), {"-m", "-t"});
        commands.floor.emplace_back("print");
        label.append(" -m -t");
    }
    printLine(measurement, label, file.bytes(), runByTurns(commands, rounds), previous);
}

void printGrowthHeading() {
    std::puts("kind                      MB  kestrel s   floor s  ratio   touch s  ratio without touch");
}

/// How a ratio grows is partly what the machine takes for memory, which may differ for much and for little of it: what
/// writing to as much memory takes is measured by turns with the rest and told apart.
void measureGrowth(const GrowthSize& size, const std::filesystem::path& programs, const std::filesystem::path& folder,
                   int rounds) {
    const Generated file(size.kind, std::to_string(size.megabytes) + "MB", programs, folder);
    Commands commands = file.commands();
    commands.touch = (programs / "kestrel_touch").string();
    const Result result = runByTurns(commands, rounds);
    std::printf("%-20s %7.1f %10.3f %9.3f %6.2f %9.3f %20.2f\n", std::string(size.kind).c_str(), file.bytes() * 1e-6,
                result.kestrel, result.floor, result.ratio, result.touch, result.ratio_without_touch);
    std::fflush(stdout);
}

int usage() {
    std::fputs("usage: kestrel_measure [-g] [-r ROUNDS] [KIND...]\n", stderr);
    return 1;
}

/// False for a wrong command line.
bool readOptions(std::vector<std::string_view> words, Options& options) {
    if (!words.empty() && words.front() == "-g") {
        options.growth = true;
        words.erase(words.begin());
    }
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
        const auto is_wanted = [&options](std::string_view kind) {
            return options.kinds.empty() || std::ranges::find(options.kinds, kind) != options.kinds.end();
        };
        if (options.growth) {
            printGrowthHeading();
            for (const GrowthSize& size : kGrowth)
                if (is_wanted(size.kind)) measureGrowth(size, programs, folder.path(), options.rounds);
            return 0;
        }
        Previous previous;
        printHeading();
        for (const Measurement& measurement : kMeasurements)
            if (is_wanted(measurement.kind)) measure(measurement, programs, folder.path(), options.rounds, previous);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kestrel_measure: %s\n", failure.what());
        return 2;
    }
}
