// What two checks get of a limit that both have to share.

#include "main/memory_limit.hpp"

#include <gtest/gtest.h>

namespace kestrel {
namespace {

TEST(MemoryLimit, isSharedAndWhoGoesFirstGetsAllOfIt) {
    MemoryBudget budget{.limit = 100};
    std::atomic<std::size_t> turn = 0;
    MemoryAccount first(budget, turn, 0);
    {
        MemoryAccount second(budget, turn, 1);
        EXPECT_TRUE(second.take(70));
        EXPECT_FALSE(second.take(31)) << "more than the limit";
        EXPECT_EQ(second.end(), MemoryEnd::over);
        EXPECT_TRUE(second.take(30)) << "the limit";
        second.giveBack(40);

        EXPECT_TRUE(first.take(100)) << "it goes first, whatever the other has";
        MemoryAccount third(budget, turn, 2);
        EXPECT_FALSE(third.take(1));
        EXPECT_EQ(third.end(), MemoryEnd::crowded);
        EXPECT_FALSE(second.take(1));
    }
    EXPECT_EQ(budget.taken.load(), 100) << "those that ended take nothing";
    EXPECT_FALSE(first.take(1));
    EXPECT_EQ(first.end(), MemoryEnd::over);

    // Whose turn comes next is let in at once; who needs too much is told so in any case.
    MemoryAccount next(budget, turn, 1);
    EXPECT_FALSE(next.take(50));
    EXPECT_EQ(next.end(), MemoryEnd::crowded);
    turn = 1;
    EXPECT_TRUE(next.take(50));
    EXPECT_FALSE(next.take(51));
    EXPECT_EQ(next.end(), MemoryEnd::over);
}

TEST(MemoryLimit, whereTheSystemHasTooLittleWhoGoesFirstGetsWhatThereIs) {
    MemoryBudget budget{.limit = 100};
    std::atomic<std::size_t> turn = 0;
    MemoryAccount second(budget, turn, 1);
    EXPECT_FALSE(second.awaitOthers()) << "it makes room for the first";
    EXPECT_EQ(second.end(), MemoryEnd::refused);

    MemoryAccount third(budget, turn, 2);
    {
        MemoryAccount first(budget, turn, 0);
        EXPECT_TRUE(first.take(10));
        EXPECT_TRUE(first.awaitOthers()) << "they may have given something back";
        EXPECT_FALSE(first.awaitOthers()) << "there is nobody left to wait for";
        EXPECT_EQ(first.end(), MemoryEnd::none);
        EXPECT_FALSE(third.take(1));
        EXPECT_EQ(third.end(), MemoryEnd::crowded);
        EXPECT_TRUE(first.take(90));
    }
    MemoryAccount fourth(budget, turn, 3);
    EXPECT_TRUE(fourth.take(1)) << "the first one is done";
}

} // namespace
} // namespace kestrel
