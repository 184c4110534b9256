#include <MirrinFramework/Ultos.h>

#include "support/Throws.h"

#include <gtest/gtest.h>

namespace Brenmoor {
namespace MirrinFramework {

namespace {

TEST(Ultos, WritesZero) {
    EXPECT_EQ(ultos(0, 10, 0, 0), "0");
}

TEST(Ultos, PadsWithZeros) {
    EXPECT_EQ(ultos(10, 16, 2, 0), "0A");
    EXPECT_EQ(ultos(255, 16, 2, 0), "FF");
    EXPECT_EQ(ultos(256, 16, 2, 0), "100");
}

TEST(Ultos, FlagOneGivesSmallLetters) {
    EXPECT_EQ(ultos(255, 16, 2, 1), "ff");
}

TEST(Ultos, TakesBasesTwoToThirtySix) {
    EXPECT_EQ(ultos(5, 2, 8, 0), "00000101");
    EXPECT_EQ(ultos(35, 36, 0, 0), "Z");
    EXPECT_EQ(ultos(0xFFFFFFFFUL, 10, 0, 0), "4294967295");
}

TEST(Ultos, RefusesOtherBases) {
    using TavoRemotingLib::Testing::ExpectThrows;
    for (const unsigned base : {0U, 1U, 37U}) {
        ExpectThrows<std::invalid_argument>([&] { ultos(1, base, 0, 0); },
                                            "ultos: base " + std::to_string(base) +
                                                " is not 2 to 36");
    }
}

} // namespace

} // namespace MirrinFramework
} // namespace Brenmoor
