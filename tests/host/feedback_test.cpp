#include <kestrona/host/console_messages.h>
#include <kestrona/host/feedback.h>
#include <kestrona/services.h>

#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

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
    {
        ConsoleFeedback patient(Sink(), hours(1)); // silent for a short load
        patient.SetStage(17135);
        patient.SetProgress(10);
    }
    EXPECT_EQ(out_, "\r\x1b[K");
}

TEST_F(Feedback, ShowsProgressOnATerminalOnly) {
    int terminal = -1;
    int follower = -1;
    ASSERT_EQ(openpty(&terminal, &follower, nullptr, nullptr, nullptr), 0);
    std::FILE* const screen = fdopen(follower, "w");
    std::FILE* const none = std::tmpfile();
    const std::pair<std::FILE*, const char*> cases[] = {{screen, "dumb"}, {none, "xterm"}, {screen, "xterm"}};
    for (const auto& [stream, terminal_type] : cases) {
        setenv("TERM", terminal_type, 1);
        ConsoleFeedback(stream, milliseconds(0)).SetProgress(10);
    }
    EXPECT_EQ(std::ftell(none), 0);
    const std::string expected = "\r\x1b[K[ 10 %] \r\x1b[K";
    std::string shown;
    for (char byte = 0; shown.size() < expected.size() && read(terminal, &byte, 1) == 1;) {
        shown += byte;
    }
    EXPECT_EQ(shown, expected);
    std::fclose(none);
    std::fclose(screen);
    close(terminal);
}

} // namespace
} // namespace Kestrona::Host
