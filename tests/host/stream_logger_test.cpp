#include "fixtures/scratch_files.h"

#include <kestrona/host/stream_logger.h>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>

namespace Kestrona::Host {
namespace {

using std::chrono::milliseconds;
using std::chrono::system_clock;

std::string Record(LogLevel level) {
    std::string out;
    StreamLogger logger(level, [&out](std::string_view text) { out += text; });
    logger.Log(LogLevel::Error, L"message");
    logger.LogEntry(L"first", L"second");
    logger.Write(L"debug");
    logger.WriteEx(32, L"extended", false);
    logger.WriteEx(33, L"forced", true);
    return out;
}

TEST(StreamLogger, WritesWhatItsLevelIncludes) {
    const std::pair<const char*, const char*> levels[] = {
        {"off", ""},
        {"error", "error: message\ntrace: forced\n"},
        {"info", "error: message\ninfo: first: second\ntrace: forced\n"},
        {"debug", "error: message\ninfo: first: second\ndebug: debug\ntrace: forced\n"},
        {"trace", "error: message\ninfo: first: second\ndebug: debug\ntrace: extended\ntrace: forced\n"},
    };
    for (const auto& [name, expected] : levels) {
        const auto level = ParseLogLevel(name);
        ASSERT_TRUE(level) << name;
        EXPECT_EQ(Record(*level), expected);
    }
    for (const char* word : {"", "Debug", "warn", "debug "}) {
        EXPECT_EQ(ParseLogLevel(word), std::nullopt) << word;
    }
}

TEST(StreamLogger, AnEntryIsOneLine) {
    std::string out;
    StreamLogger logger(LogLevel::Info, [&out](std::string_view text) { out += text; });
    logger.LogEntry(L"a\nerror: forged", L"\x1b[0m\u00fc");
    logger.LogEntry(nullptr, L"only second");
    logger.LogEntry(L"only first", nullptr);
    logger.LogEntry(nullptr, nullptr);
    EXPECT_EQ(out, "info: a\\nerror: forged: \\x1b[0m\u00fc\ninfo: only second\ninfo: only first\ninfo: \n");
}

TEST(StreamLogger, TimesAreUtcToTheMillisecond) {
    const std::pair<std::int64_t, const char*> times[] = {
        {-1, "1969-12-31T23:59:59.999Z debug: x\n"},
        {1769846400123, "2026-01-31T08:00:00.123Z debug: x\n"},
    };
    for (const auto& [time, expected] : times) {
        std::string out;
        StreamLogger logger(
            LogLevel::Debug, [&out](std::string_view text) { out += text; },
            [since_epoch = milliseconds(time)] { return system_clock::time_point(since_epoch); });
        logger.Write(L"x");
        EXPECT_EQ(out, expected);
    }
}

TEST(FileSink, AppendsAndIsEmptyWhereNoFileCanBe) {
    const Testing::ScratchFolder folder;
    for (const char* text : {"one\n", "two\n"}) {
        const TextSink sink = FileSink(folder.Path("log"));
        ASSERT_TRUE(sink);
        sink(text);
    }
    EXPECT_EQ(folder.Read("log"), "one\ntwo\n");
    EXPECT_FALSE(FileSink(folder.Path("log/below")));
    EXPECT_FALSE(FileSink(""));
    EXPECT_FALSE(StreamSink(nullptr));
}

} // namespace
} // namespace Kestrona::Host
