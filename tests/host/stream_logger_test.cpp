#include <kestrona/host/stream_logger.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

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
    EXPECT_EQ(Record(LogLevel::Off), "");
    EXPECT_EQ(Record(LogLevel::Error), "error: message\ntrace: forced\n");
    EXPECT_EQ(Record(LogLevel::Info), "error: message\ninfo: first: second\ntrace: forced\n");
    EXPECT_EQ(Record(LogLevel::Debug), "error: message\ninfo: first: second\ndebug: debug\ntrace: forced\n");
    EXPECT_EQ(Record(LogLevel::Trace),
              "error: message\ninfo: first: second\ndebug: debug\ntrace: extended\ntrace: forced\n");
}

TEST(StreamLogger, LevelsAreReadByTheirNames) {
    EXPECT_EQ(ParseLogLevel("off"), LogLevel::Off);
    EXPECT_EQ(ParseLogLevel("error"), LogLevel::Error);
    EXPECT_EQ(ParseLogLevel("info"), LogLevel::Info);
    EXPECT_EQ(ParseLogLevel("debug"), LogLevel::Debug);
    EXPECT_EQ(ParseLogLevel("trace"), LogLevel::Trace);
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
    struct Case {
        std::int64_t milliseconds_of_epoch;
        const char* expected;
    };

    const Case cases[] = {
        {-1, "1969-12-31T23:59:59.999Z debug: x\n"},
        {1769846400123, "2026-01-31T08:00:00.123Z debug: x\n"},
    };
    for (const Case& c : cases) {
        std::string out;
        StreamLogger logger(
            LogLevel::Debug, [&out](std::string_view text) { out += text; },
            [&] { return system_clock::time_point(milliseconds(c.milliseconds_of_epoch)); });
        logger.Write(L"x");
        EXPECT_EQ(out, c.expected);
    }
}

TEST(FileSink, AppendsAndIsEmptyWhereNoFileCanBe) {
    const auto path = std::filesystem::temp_directory_path() / ("kestrona-sink-" + std::to_string(getpid()));
    for (const char* text : {"one\n", "two\n"}) {
        const TextSink sink = FileSink(path.string());
        ASSERT_TRUE(sink);
        sink(text);
    }
    std::ifstream file(path);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "one\ntwo\n");
    std::filesystem::remove(path);
    EXPECT_FALSE(FileSink((path / "below").string()));
    EXPECT_FALSE(FileSink(""));
    EXPECT_FALSE(StreamSink(nullptr));
}

} // namespace
} // namespace Kestrona::Host
