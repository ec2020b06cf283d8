// Names and what is found by their numbers, against the standard containers.
#include "base/name_table.hpp"

#include "base/number_index.hpp"

#include <map>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

/// Enters names into a table and holds it to what has been entered before.
struct Entered {
    NameTable table;
    std::map<std::string, std::uint32_t, std::less<>> numbers;

    void enter(const std::string& text) {
        const Name name = table.enter(text);
        const auto [at, is_new] = numbers.try_emplace(text, static_cast<std::uint32_t>(numbers.size() + 1));
        ASSERT_EQ(name.view(), text);
        ASSERT_EQ(name.number(), at->second) << text << (is_new ? ", a new one" : ", which was there");
    }
    void checkAll() const {
        for (const auto& [text, number] : numbers) {
            ASSERT_EQ(table.find(text).number(), number) << text;
            ASSERT_TRUE(table.find(text + "_").empty()) << text;
        }
        EXPECT_TRUE(table.find("").empty());
        EXPECT_EQ(table.numbers(), numbers.size() + 1);
    }
};

TEST(NameTable, numbersEveryNameOnceInWhateverOrderTheyCome) {
    Entered in_order; // which needs no index
    for (const char* const name : {"a", "a", "b", "ab", "ac", "ab", "ac", "b1", "abc"})
        in_order.enter(name);
    in_order.checkAll();
    for (const char* const name : {"aa", "a", "b", "abc", "abd", "aa", "c"}) // "aa" comes late
        in_order.enter(name);
    in_order.checkAll();

    std::mt19937_64 random(1);
    const auto below = [&random](std::size_t count) { return static_cast<std::size_t>(random() % count); };
    for (int round = 0; round < 200; ++round) {
        Entered entered;
        const std::size_t sorted = below(3) * 40; // names that come in order, before others do
        for (std::size_t i = 0; i < sorted; ++i)
            entered.enter("pin_" + std::to_string(1000 + i));
        for (std::size_t lists = below(30), first = 0; lists > 0; --lists, first += below(2)) {
            entered.enter("list_" + std::to_string(below(8)));
            for (std::size_t i = below(12); i > 0; --i)
                entered.enter((below(9) == 0 ? "x" : "pin_") + std::to_string(1000 + first + i));
        }
        entered.checkAll();
    }
}

TEST(NumberIndex, holdsDenseAndDistantNumbersApart) {
    std::mt19937_64 random(2);
    for (const std::uint32_t step : {1U, 7U, 8U, 1024U, 1U << 20U}) {
        NumberIndex index;
        std::map<std::uint32_t, std::uint32_t> places;
        for (std::uint32_t i = 1; i < 3000; ++i) {
            const std::uint32_t number = step * static_cast<std::uint32_t>(random() % 2000);
            index.at(number) = i;
            places[number] = i;
        }
        for (std::uint32_t i = 0; i < 2100; ++i) {
            const auto at = places.find(step * i);
            ASSERT_EQ(index.find(step * i), at == places.end() ? 0 : at->second) << step * i;
        }
    }
}

} // namespace
} // namespace kestrel
