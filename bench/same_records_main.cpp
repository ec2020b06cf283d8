// Reads a generated file of every kind by the short paths and by the long ones, and compares what was read.
#include "ibis/parse.hpp"
#include "ibis/run.hpp"
#include "record_text.hpp"
#include "sample_file.hpp"

#include <cstdio>
#include <exception>

namespace {

using namespace kestrel::bench;

/// What is printed and what is read.
std::string readBack(const SampleFile& file, bool short_paths) {
    kestrel::Output out;
    kestrel::Run run(out);
    run.short_paths = short_paths;
    kestrel::checkFile(run, file.path, *kestrel::kindOfName(file.path));
    return out.text() + recordText(currentRoot(run));
}

/// False when the two differ.
bool compare(const SampleKind& kind, const TemporaryFolder& folder) {
    constexpr std::size_t kBytes = 3000000;
    const std::string name = std::string(kind.name) + std::string(kind.extension);
    const SampleFile file = writeSample(kind, countForSize(kind, kBytes), folder.path() / name);
    const std::string expected = readBack(file, false);
    const bool same = readBack(file, true) == expected;
    std::printf("%-14s %9zu bytes of records %s\n", std::string(kind.name).c_str(), expected.size(),
                same ? "are the same" : "DIFFER");
    return same;
}

} // namespace

int main() {
    try {
        const TemporaryFolder folder;
        bool all_same = true;
        for (const SampleKind& kind : sampleKinds())
            all_same = compare(kind, folder) && all_same;
        return all_same ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kestrel_same_records: %s\n", failure.what());
        return 2;
    }
}
