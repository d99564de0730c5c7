#include <kestrona/host/console_messages.h>
#include <kestrona/host/feedback.h>
#include <kestrona/services.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <string>

namespace Kestrona::Host {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;

class Feedback : public testing::Test {
protected:
    void SetUp() override { MessageManager::setInstance(new ConsoleMessages("tool", {})); }

    void TearDown() override { MessageManager::setInstance(nullptr); }

    TextSink Sink() {
        return [this](std::string_view text) {
            out_ += text;
        };
    }

    std::string out_;
};

TEST_F(Feedback, ShowsStageAndPercentageInOneLine) {
    ConsoleFeedback feedback(Sink(), milliseconds(0));
    feedback.SetStage(17138);
    feedback.SetProgress(50);
    feedback.SetStage(1); // no text
    feedback.SetProgress(2000);
    feedback.SetProgress(-7);
    EXPECT_EQ(out_, "\r\x1b[K[  0 %] Checking the table definition"
                    "\r\x1b[K[ 50 %] Checking the table definition"
                    "\r\x1b[K[ 50 %] Checking the table definition"
                    "\r\x1b[K[100 %] Checking the table definition"
                    "\r\x1b[K[  0 %] Checking the table definition");
}

TEST_F(Feedback, TakesItsLineAwayOnce) {
    {
        ConsoleFeedback feedback(Sink(), milliseconds(0));
        feedback.Clear();
        EXPECT_EQ(out_, "");
        feedback.SetProgress(1);
        out_.clear();
        feedback.Clear();
        feedback.Finish();
        EXPECT_EQ(out_, "\r\x1b[K");
        feedback.SetProgress(2);
        out_.clear();
    }
    EXPECT_EQ(out_, "\r\x1b[K");
}

TEST_F(Feedback, StaysSilentForAShortLoad) {
    {
        ConsoleFeedback feedback(Sink(), hours(1));
        feedback.SetStage(17135);
        feedback.SetProgress(10);
        feedback.Finish();
    }
    EXPECT_EQ(out_, "");
}

// What a program prints that shows progress on this stream with this TERM.
std::string ReadBack(std::FILE* stream, int from, const char* terminal) {
    setenv("TERM", terminal, 1);
    {
        ConsoleFeedback feedback(stream, milliseconds(0));
        feedback.SetProgress(10);
    }
    std::fputs("end", stream);
    std::fflush(stream);
    std::string text;
    while (text.find("end") == std::string::npos) {
        std::array<char, 256> block{};
        const ssize_t count = read(from, block.data(), block.size());
        if (count <= 0) {
            break;
        }
        text.append(block.data(), static_cast<std::size_t>(count));
    }
    return text;
}

TEST_F(Feedback, ShowsProgressOnATerminalOnly) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0);
    std::FILE* screen = std::fopen(ptsname(terminal), "w");
    ASSERT_NE(screen, nullptr);
    EXPECT_EQ(ReadBack(screen, terminal, "xterm"), "\r\x1b[K[ 10 %] \r\x1b[Kend");
    EXPECT_EQ(ReadBack(screen, terminal, "dumb"), "end");
    std::fclose(screen);
    close(terminal);

    std::array<int, 2> pipe_ends{};
    ASSERT_EQ(pipe(pipe_ends.data()), 0);
    std::FILE* writing = fdopen(pipe_ends[1], "w");
    EXPECT_EQ(ReadBack(writing, pipe_ends[0], "xterm"), "end");
    std::fclose(writing);
    close(pipe_ends[0]);
}

} // namespace
} // namespace Kestrona::Host
