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

    /// The number that a text was given when it was added; of others only the empty one may be asked, which has 0.
    [[nodiscard]] std::uint32_t tag() const {
        std::uint32_t tag = 0;
        if (at_ != nullptr) std::memcpy(&tag, at_ - sizeof tag, sizeof tag);
        return tag;
    }
    /// True for one and the same stored text, not one that reads alike.
    [[nodiscard]] bool isSameAs(const StoredText& other) const { return at_ == other.at_; }

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
        return text.empty() ? StoredText() : put(take(roomFor(text)), text);
    }

    /// The same with a number, which is kept ahead of the text; it must not be empty.
    [[nodiscard]] StoredText addTagged(std::uint32_t tag, std::string_view text) {
        char* const at = take(sizeof tag + roomFor(text));
        std::memcpy(at, &tag, sizeof tag);
        return put(at + sizeof tag, text);
    }

private:
    static bool isLong(std::string_view text) { return text.size() >= StoredText::kLong; }
    static std::size_t headOf(std::string_view text) { return isLong(text) ? 1 + sizeof(std::size_t) : 1; }
    static std::size_t roomFor(std::string_view text) { return headOf(text) + text.size(); }

    static StoredText put(char* at, std::string_view text) {
        const std::size_t length = text.size();
        *at = static_cast<char>(isLong(text) ? StoredText::kLong : length);
        if (isLong(text)) std::memcpy(at + 1, &length, sizeof length);
        std::memcpy(at + headOf(text), text.data(), length);
        return StoredText(at);
    }

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
        pieces_.push_back(std::move(memory)); // ahead of what points into it: this may fail
        top_ = reinterpret_cast<char*>(pieces_.back().get());
        left_ = size;
        stored_ += size;
    }

    std::vector<Memory> pieces_;
    std::size_t stored_ = 0; ///< size of all pieces
    char* top_ = nullptr;
    std::size_t left_ = 0;
};

} // namespace kestrel
