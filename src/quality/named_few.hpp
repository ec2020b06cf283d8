#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrel {

/// What a text names of many things: the first five, then their count: "a, b, c, d, e and 7 more".
class NamedFew {
public:
    /// False when the next one is only counted, so that nobody needs to make its text.
    [[nodiscard]] bool namesNext() const { return count_ < kMost; }
    void add(std::string_view name) {
        if (namesNext()) {
            last_ = text_.size();
            text_.append(count_ == 0 ? "" : ", ").append(name);
        }
        ++count_;
    }
    void addUnnamed() { ++count_; }

    [[nodiscard]] std::size_t count() const { return count_; }
    /// Of at least one.
    [[nodiscard]] std::string text() const {
        std::string text = text_;
        if (count_ > kMost) {
            text.append(" and ").append(std::to_string(count_ - kMost)).append(" more");
        } else if (count_ > 1) {
            text.replace(last_, 1, " and");
        }
        return text;
    }

private:
    static constexpr std::size_t kMost = 5;

    std::string text_;
    std::size_t last_ = 0; // where the last one begins, with what is ahead of it
    std::size_t count_ = 0;
};

} // namespace kestrel
