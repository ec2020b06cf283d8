#pragma once

#include <cstddef>
#include <memory>
#include <ranges>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kestrel {

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
    [[nodiscard]] auto newestFirst() const {
        return objects_ | std::views::reverse |
               std::views::transform([](const std::unique_ptr<T>& object) -> T& { return *object; });
    }

    /// Enters the object under its finished name, which must not change any more. Of equal names the newest is found.
    void enterName(T& object, std::string_view name) { by_name_.insert_or_assign(name, &object); }

    /// The newest object entered under exactly this name, or null.
    [[nodiscard]] T* find(std::string_view name) const {
        const auto at = by_name_.find(name);
        return at == by_name_.end() ? nullptr : at->second;
    }

private:
    std::vector<std::unique_ptr<T>> objects_;
    std::unordered_map<std::string_view, T*> by_name_; // keys view the objects' own names
};

} // namespace kestrel
