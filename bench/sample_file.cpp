#include "sample_file.hpp"

#include "floor.hpp"

#include <fstream>
#include <random>
#include <stdexcept>
#include <system_error>

namespace kestrel::bench {

TemporaryFolder::TemporaryFolder() {
    // The name only has to be one that nobody else uses at the moment.
    path_ = std::filesystem::temp_directory_path() / numbered("kestrel_bench_", std::random_device{}(), 10);
    if (!std::filesystem::create_directory(path_)) throw std::runtime_error("cannot create " + path_.string());
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code failure;
    std::filesystem::remove_all(path_, failure);
}

void requireWholeFloor(const SampleKind& kind) {
    constexpr std::size_t kFew = 30;
    const std::string text = makeSample(kind, kFew, "small.ibs").text;
    for (const FloorWork work : {FloorWork::convert, FloorWork::print}) {
        const FloorResult result = floorOf(text, work);
        if (result.numbers == 0 || result != plainFloorOf(text, work))
            throw std::runtime_error("the floor leaves out some work");
    }
}

SampleFile writeSample(const SampleKind& kind, std::size_t count, const std::filesystem::path& path) {
    const Sample sample = makeSample(kind, count, path.filename().string());
    std::ofstream file(path, std::ios::binary);
    file.write(sample.text.data(), static_cast<std::streamsize>(sample.text.size()));
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path.string());
    return {path.string(), sample.text.size(), sample.contents};
}

} // namespace kestrel::bench
