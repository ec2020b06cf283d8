#pragma once

#include "base/text_store.hpp"

#include <cstdio>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

namespace kestrel {

/// The names of the files to check, in order.
class FileList {
public:
    void add(std::string_view name) { names_.push_back(texts_.add(name)); }
    [[nodiscard]] std::size_t size() const { return names_.size(); }
    [[nodiscard]] std::string_view operator[](std::size_t place) const { return names_[place].view(); }

private:
    TextStore texts_;
    std::vector<StoredText> names_;
};

/// Hears of what is wrong: with what, and the words about it.
using Complaint = std::function<void(std::string_view subject, std::string_view text)>;

/// Adds the files that arguments mean: the argument itself; of a folder all files in it, and in the folders in it, that
/// have a right extension, sorted by name; for "-" what the lines of `in` mean. Links to folders are only followed when
/// they are named. False when something was complained of.
[[nodiscard]] bool listFiles(FileList& files, std::span<const std::string_view> arguments, std::FILE* in,
                             const Complaint& complain);

} // namespace kestrel
