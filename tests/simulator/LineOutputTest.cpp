#include "wire/LineOutput.h"
#include "support/ProcessTest.h"
#include "support/ResourceLimit.h"

#include <climits>
#include <fcntl.h>
#include <unistd.h>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

/// A pipe that holds two pieces of PIPE_BUF bytes.
class SmallPipe {
public:
    SmallPipe() {
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        EXPECT_EQ(fcntl(ends[1], F_SETPIPE_SZ, 2 * PIPE_BUF), 2 * PIPE_BUF);
        fcntl(ends[0], F_SETFL, O_NONBLOCK);
    }
    SmallPipe(const SmallPipe&) = delete;
    SmallPipe& operator=(const SmallPipe&) = delete;
    ~SmallPipe() {
        CloseReader();
        close(ends[1]);
    }

    void CloseReader() {
        if (ends[0] >= 0) {
            close(ends[0]);
        }
        ends[0] = -1;
    }

    int Writer() const {
        return ends[1];
    }

    /// All that is in it.
    std::string Read() const {
        std::string text(std::size_t{4} * PIPE_BUF, '\0');
        const ssize_t count = read(ends[0], text.data(), text.size());
        text.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        return text;
    }

private:
    int ends[2] = {-1, -1};
};

TEST(LineOutputTest, LinesThatNobodyReadsAreLeftOutAndTold) {
    const SmallPipe pipe;
    LineOutput output(pipe.Writer(), std::chrono::milliseconds(1));
    const auto line = [](char letter) {
        return std::string(PIPE_BUF - 1, letter);
    };
    for (const char letter : {'a', 'b', 'c', 'd', 'e'}) {
        output.Write(line(letter));
    }
    EXPECT_EQ(pipe.Read(), line('a') + "\n" + line('b') + "\n");
    output.Write("f");
    EXPECT_EQ(pipe.Read(), line('c') + "\n(lines left out, since nobody read them: 2)\nf\n");
    output.Write("g");
    EXPECT_EQ(pipe.Read(), "g\n");
}

TEST(LineOutputTest, ALineLongerThanThePipeComesWholeOrNotAtAll) {
    const SmallPipe pipe;
    LineOutput output(pipe.Writer(), std::chrono::milliseconds(1));
    const std::string line(std::size_t{3} * PIPE_BUF, 'a');
    output.Write(line);
    output.Write("left out");
    std::string text = pipe.Read();
    output.Write("next");
    text += pipe.Read();
    output.Write("last");
    text += pipe.Read();
    EXPECT_TRUE(text == line + "\n(lines left out, since nobody read them: 1)\nnext\nlast\n")
        << text.size();
}

TEST(LineOutputTest, TheEndWaitsForItsReaderAndTellsWhatWasLeftOut) {
    const SmallPipe pipe;
    LineOutput output(pipe.Writer(), std::chrono::milliseconds(1));
    for (int i = 0; i < 3; ++i) {
        output.Write(std::string(std::size_t{2} * PIPE_BUF - 1, 'a'));
    }
    std::string text;
    int asked = 0;
    output.Finish("the end\n", [&] {
        text += ++asked > 2 ? pipe.Read() : "";
        return false;
    });
    text += pipe.Read();
    const std::string line = std::string(std::size_t{2} * PIPE_BUF - 1, 'a') + "\n";
    EXPECT_TRUE(text == line + line + "(lines left out, since nobody read them: 1)\nthe end\n")
        << text.size();
}

TEST(LineOutputTest, TheEndMayBeGivenUp) {
    const SmallPipe pipe;
    LineOutput output(pipe.Writer(), std::chrono::milliseconds(1));
    const std::string line(std::size_t{2} * PIPE_BUF - 1, 'a');
    output.Write(line);
    output.Finish("the end\n", [] { return true; });
    EXPECT_TRUE(pipe.Read() == line + "\n");
    EXPECT_EQ(pipe.Read(), "");
}

TEST(LineOutputTest, LinesForNobodyAreForgotten) {
    const TavoRemotingLib::Testing::IgnoredSignal ignored(SIGPIPE);
    SmallPipe pipe;
    // Whoever keeps a line would wait for its reader.
    LineOutput output(pipe.Writer(), std::chrono::hours(1));
    pipe.CloseReader();
    output.Write("a");
    output.Write("b");
    bool isAsked = false;
    output.Finish("the end\n", [&] { return isAsked = true; });
    EXPECT_FALSE(isAsked);
}

class UnreadLines : public ProcessTest {};

TEST_F(UnreadLines, HoldUpNeitherPayloadsNorTheEnd) {
    Process process(Arguments());
    const std::uint16_t port = AwaitPort(process);
    const std::string request = GetText("/xp?op=off&id=" + std::string(4000, 'x'));
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(Exchange(port, request), okReply);
    }
    process.Signal(SIGTERM);
    EXPECT_EQ(process.Wait(), 0);
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
