#include "printable.h"

#include <kestrona/host/stream_logger.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <string>
#include <utility>

namespace Kestrona::Host {

namespace {

// By LogLevel.
constexpr std::array<std::string_view, 5> kLevelNames{"off", "error", "info", "debug", "trace"};

std::string_view LevelName(LogLevel level) {
    return kLevelNames[static_cast<std::size_t>(level)];
}

std::wstring_view View(const wchar_t* text) {
    return text == nullptr ? std::wstring_view() : std::wstring_view(text);
}

std::string TimeStamp(std::chrono::system_clock::time_point time) {
    using namespace std::chrono;
    const auto whole = floor<seconds>(time);
    const std::time_t seconds_of_epoch = system_clock::to_time_t(whole);
    std::tm utc{};
    gmtime_r(&seconds_of_epoch, &utc);
    std::array<char, 64> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc);
    std::snprintf(text.data() + length, text.size() - length, ".%03dZ ",
                  static_cast<int>(duration_cast<milliseconds>(time - whole).count()));
    return text.data();
}

} // namespace

std::optional<LogLevel> ParseLogLevel(std::string_view word) {
    for (std::size_t i = 0; i < kLevelNames.size(); ++i) {
        if (kLevelNames[i] == word) {
            return static_cast<LogLevel>(i);
        }
    }
    return std::nullopt;
}

StreamLogger::StreamLogger(LogLevel level, TextSink sink, Clock clock)
    : level_(level),
      sink_(std::move(sink)),
      clock_(std::move(clock)) {}

void StreamLogger::WriteEx(std::uint32_t, const wchar_t* text, bool forced) {
    if (forced && level_ != LogLevel::Off) {
        WriteLine(LogLevel::Trace, View(text));
    } else {
        Log(LogLevel::Trace, View(text));
    }
}

void StreamLogger::LogEntry(const wchar_t* first, const wchar_t* second) {
    std::wstring text(View(first));
    if (!text.empty() && !View(second).empty()) {
        text += L": ";
    }
    text += View(second);
    Log(LogLevel::Info, text);
}

void StreamLogger::Write(const wchar_t* text) {
    Log(LogLevel::Debug, View(text));
}

void StreamLogger::Log(LogLevel level, std::wstring_view text) {
    if (level != LogLevel::Off && level <= level_) {
        WriteLine(level, text);
    }
}

void StreamLogger::WriteLine(LogLevel level, std::wstring_view text) {
    if (!sink_) {
        return;
    }
    std::string line = clock_ ? TimeStamp(clock_()) : std::string();
    line += LevelName(level);
    line += ": ";
    line += PrintableLine(text);
    line += '\n';
    sink_(line);
}

} // namespace Kestrona::Host
