#include <MirrinFramework/Logger.h>

#include <future>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>

namespace Brenmoor {
namespace MirrinFramework {

namespace {

TEST(Logger, LevelsUpToTheHighestAreEnabled) {
    std::ostringstream out;
    const Logger logger(out, 7);
    EXPECT_TRUE(logger.IsLevelEnabled(-1));
    EXPECT_TRUE(logger.IsLevelEnabled(7));
    EXPECT_FALSE(logger.IsLevelEnabled(8));
}

TEST(Logger, SubclassDecidesOtherwise) {
    class OnlyEight : public Logger {
    public:
        using Logger::Logger;
        bool IsLevelEnabled(int level) const override {
            return level == 8;
        }
    };
    std::ostringstream out;
    const OnlyEight logger(out, 0);
    const Logger& base = logger;
    EXPECT_TRUE(base.IsLevelEnabled(8));
    EXPECT_FALSE(base.IsLevelEnabled(0));
}

TEST(LoggerLocked, GivesTheStream) {
    std::ostringstream out;
    Logger logger(out, 0);
    *Logger::Locked(logger) << "a";
    Logger::Locked(logger)->put('b');
    EXPECT_EQ(out.str(), "ab");
    EXPECT_EQ(&*Logger::Locked(logger), &out);
}

TEST(LoggerLocked, MayBeTakenAgainByItsThread) {
    std::ostringstream out;
    Logger logger(out, 0);
    const Logger::Locked outer(logger);
    {
        const Logger::Locked inner(logger);
        *inner << "inner ";
    }
    *outer << "outer";
    EXPECT_EQ(out.str(), "inner outer");
}

TEST(LoggerLocked, KeepsOtherThreadsOutUntilItIsGone) {
    std::ostringstream out;
    Logger logger(out, 0);
    std::promise<void> started;
    std::thread other;
    {
        const Logger::Locked locked(logger);
        other = std::thread([&] {
            started.set_value();
            *Logger::Locked(logger) << "other";
        });
        started.get_future().wait();
        for (int i = 0; i < 1000; ++i) {
            *locked << "first ";
            std::this_thread::yield();
        }
    }
    other.join();
    EXPECT_EQ(out.str().find("other"), 6000U);
}

} // namespace

} // namespace MirrinFramework
} // namespace Brenmoor
