#pragma once

#include "base/text_hash.hpp"

#include <cstddef>
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

    /// Enters the object under its finished name, which must not change any more. Of equal names the newest is found.
    void enterName(T& object, std::string_view name) { by_name_.insert_or_assign(name, &object); }

    /// The newest object entered under exactly this name, or null.
    [[nodiscard]] const T* find(std::string_view name) const {
        const auto at = by_name_.find(name);
        return at == by_name_.end() ? nullptr : at->second;
    }
    [[nodiscard]] T* find(std::string_view name) { return const_cast<T*>(std::as_const(*this).find(name)); }

    /// Walks the objects as newestFirst() does and calls `report` with each that has others of its name behind it, and
    /// how many those are.
    template <class Report> void eachRepeatedName(Report report) const {
        ViewMap<std::size_t> left;
        for (const T& object : newestFirst()) {
            ++left[object.name];
        }
        for (const T& object : newestFirst()) {
            if (const std::size_t behind = --left[object.name]; behind > 0) report(object, behind);
        }
    }

private:
    std::vector<std::unique_ptr<T>> objects_;
    ViewMap<T*> by_name_; // keys view the objects' own names
};

} // namespace kestrel
