#pragma once

#include "base/large_memory.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrel {

/// A text kept in a TextStore, which has to outlive it. As large as a pointer; reads as a text everywhere.
class StoredText {
public:
    StoredText() = default;

    [[nodiscard]] std::string_view view() const {
        if (at_ == nullptr) return {};
        const auto length = static_cast<unsigned char>(*at_);
        if (length != kLong) return {at_ + 1, length};
        std::size_t long_length = 0;
        std::memcpy(&long_length, at_ + 1, sizeof long_length);
        return {at_ + 1 + sizeof long_length, long_length};
    }
    operator std::string_view() const { return view(); }
    [[nodiscard]] std::size_t size() const { return view().size(); }
    [[nodiscard]] bool empty() const { return at_ == nullptr; }

    friend bool operator==(const StoredText& a, const StoredText& b) { return a.at_ == b.at_ || a.view() == b.view(); }
    friend bool operator==(const StoredText& a, std::string_view b) { return a.view() == b; }

private:
    friend class TextStore;
    explicit StoredText(const char* at) : at_(at) {}

    static constexpr unsigned char kLong = 255; ///< the length is in the eight bytes behind

    const char* at_ = nullptr; ///< its length in one byte, then its characters; null when empty
};

/// Keeps texts behind each other, without an allocation for each. They are only given back together.
class TextStore {
public:
    TextStore() = default;
    TextStore(const TextStore&) = delete;
    TextStore& operator=(const TextStore&) = delete;
    ~TextStore() = default;

    [[nodiscard]] StoredText add(std::string_view text) {
        if (text.empty()) return {};
        const bool is_long = text.size() >= StoredText::kLong;
        const std::size_t head = is_long ? 1 + sizeof(std::size_t) : 1;
        char* const at = take(head + text.size());
        *at = static_cast<char>(is_long ? StoredText::kLong : text.size());
        const std::size_t length = text.size();
        if (is_long) std::memcpy(at + 1, &length, sizeof length);
        std::memcpy(at + head, text.data(), length);
        return StoredText(at);
    }

private:
    char* take(std::size_t size) {
        if (left_ < size) addPiece(size);
        char* const at = top_;
        top_ += size;
        left_ -= size;
        return at;
    }

    void addPiece(std::size_t least) {
        constexpr std::size_t kSmallest = std::size_t{4} << 10;
        constexpr std::size_t kLargest = std::size_t{8} << 20;
        std::size_t size = std::max(least, std::clamp(stored_, kSmallest, kLargest));
        Memory memory = allocateLarge(size);
        top_ = reinterpret_cast<char*>(memory.get());
        left_ = size;
        pieces_.push_back(std::move(memory));
        stored_ += size;
    }

    std::vector<Memory> pieces_;
    std::size_t stored_ = 0; ///< size of all pieces
    char* top_ = nullptr;
    std::size_t left_ = 0;
};

} // namespace kestrel
