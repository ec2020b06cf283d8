#pragma once

#include "base/name_table.hpp"
#include "base/number_index.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace kestrel {

/// Walk over owned objects from the last to the first, which hands them out as `T`, constant or not.
template <class T> class NewestFirst {
    using Objects = std::vector<std::unique_ptr<std::remove_const_t<T>>>;

public:
    explicit NewestFirst(const Objects& objects) : objects_(&objects) {}

    class Iterator {
    public:
        explicit Iterator(typename Objects::const_reverse_iterator at) : at_(at) {}
        T& operator*() const { return **at_; }
        Iterator& operator++() {
            ++at_;
            return *this;
        }
        bool operator==(const Iterator& other) const { return at_ == other.at_; }

    private:
        typename Objects::const_reverse_iterator at_;
    };

    [[nodiscard]] Iterator begin() const { return Iterator(objects_->rbegin()); }
    [[nodiscard]] Iterator end() const { return Iterator(objects_->rend()); }

private:
    const Objects* objects_;
};

/// The objects of one kind that a parse has made. They are kept in file order; every check and report walks them
/// through newestFirst(), so the last-defined is met first.
template <class T> class ObjectList {
public:
    /// Takes over `object` as the newest; it stays at its address.
    T& add(std::unique_ptr<T> object) {
        objects_.push_back(std::move(object));
        return *objects_.back();
    }

    [[nodiscard]] bool empty() const { return objects_.empty(); }
    [[nodiscard]] std::size_t size() const { return objects_.size(); }

    /// The one way to walk the list: from the last-defined object to the first.
    [[nodiscard]] NewestFirst<T> newestFirst() { return NewestFirst<T>(objects_); }
    [[nodiscard]] NewestFirst<const T> newestFirst() const { return NewestFirst<const T>(objects_); }

    /// Enters the newest object under its name, which is one of `names` and must not change any more. Of equal names
    /// the newest is found.
    void enterNewest(const NameTable& names) {
        names_ = &names;
        places_.at(objects_.back()->name.number()) = static_cast<std::uint32_t>(objects_.size());
    }

    /// The newest object entered under exactly this name, or null.
    [[nodiscard]] const T* find(Name name) const {
        const std::uint32_t place = places_.find(name.number());
        return place == 0 ? nullptr : objects_[place - 1].get();
    }
    [[nodiscard]] T* find(Name name) { return const_cast<T*>(std::as_const(*this).find(name)); }

    /// The same for a name that has to be looked up first.
    [[nodiscard]] const T* find(std::string_view text) const {
        if (names_ == nullptr) return nullptr;
        const Name name = names_->find(text);
        return name.empty() && !text.empty() ? nullptr : find(name);
    }
    [[nodiscard]] T* find(std::string_view text) { return const_cast<T*>(std::as_const(*this).find(text)); }

    /// Walks the objects as newestFirst() does and calls `report` with each that has others of its name behind it, and
    /// how many those are.
    template <class Report> void eachRepeatedName(Report report) const {
        NumberIndex left; // one more than there are: the index has no 0
        for (const T& object : newestFirst()) {
            std::uint32_t& count = left.at(object.name.number());
            count = std::max(count, 1U) + 1;
        }
        for (const T& object : newestFirst()) {
            const std::size_t behind = --left.at(object.name.number()) - 1;
            if (behind > 0) report(object, behind);
        }
    }

private:
    std::vector<std::unique_ptr<T>> objects_;
    NumberIndex places_; // by the numbers of the names
    const NameTable* names_ = nullptr;
};

} // namespace kestrel
