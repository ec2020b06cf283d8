#pragma once

#include "text_writer.hpp"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace kestrel::bench {

/// A generated file in which nothing is wrong.
struct Sample {
    std::string text;
    Contents contents;
};

/// One kind of generated file. All its size lies in `count` things of one sort.
struct SampleKind {
    std::string_view name;
    std::string_view counted; ///< what the count counts, and what each of them holds
    std::size_t usual_count;  ///< of a large file of this kind
    bool quadratic;           ///< the size grows with the square of the count
    void (*write)(TextWriter& writer, std::size_t count);
    std::string_view extension = ".ibs";
};

[[nodiscard]] std::span<const SampleKind> sampleKinds();

/// The kind of that name, or null.
[[nodiscard]] const SampleKind* findSampleKind(std::string_view name);

/// Makes a file of `count` things. `file_name` is the name it has to be stored under, without its directory.
[[nodiscard]] Sample makeSample(const SampleKind& kind, std::size_t count, std::string_view file_name);

/// The count that gives a file of about `bytes`.
[[nodiscard]] std::size_t countForSize(const SampleKind& kind, std::size_t bytes);

} // namespace kestrel::bench
