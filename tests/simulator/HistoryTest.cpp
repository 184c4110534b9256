#include "model/History.h"

#include <gtest/gtest.h>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

using Numbers = History<int>;

std::vector<int> Items(const Numbers& history) {
    std::vector<int> items;
    history.Each([&](int item) {
        items.push_back(item);
        return true;
    });
    return items;
}

TEST(History, KeepsTheNewestThousand) {
    Numbers history;
    for (int i = 0; i < 1003; ++i) {
        history.Add(i, 0);
    }
    EXPECT_EQ(history.Size(), 1000U);
    EXPECT_EQ(Items(history).front(), 3);
    EXPECT_EQ(Items(history).back(), 1002);
}

TEST(History, KeepsTheNewestSixteenMebibytes) {
    constexpr std::size_t mebibyte = std::size_t{1024} * 1024;
    Numbers history;
    history.Add(1, 8 * mebibyte);
    history.Add(2, 8 * mebibyte);
    EXPECT_EQ(Items(history), (std::vector<int>{1, 2}));
    history.Add(3, 1);
    EXPECT_EQ(Items(history), (std::vector<int>{2, 3}));
    history.Add(4, 100 * mebibyte);
    EXPECT_EQ(Items(history), std::vector<int>{4}) << "the newest stays, whatever it counts for";
    history.Add(5, 0);
    EXPECT_EQ(Items(history), std::vector<int>{5});
}

TEST(History, DropsOnlyWhatMayGo) {
    Numbers history;
    const auto isOdd = [](int item) {
        return item % 2 == 1;
    };
    for (int i = 0; i < 1002; ++i) {
        history.Add(i, 0, isOdd);
    }
    EXPECT_EQ(history.Size(), 1000U);
    EXPECT_EQ(Items(history)[0], 0);
    EXPECT_EQ(Items(history)[1], 2);
    EXPECT_EQ(Items(history)[2], 4);
    Numbers all;
    for (int i = 0; i < 1002; ++i) {
        all.Add(i, 0, [](int) { return false; });
    }
    EXPECT_EQ(all.Size(), 1002U);
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
