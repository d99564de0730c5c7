#pragma once

#include <kestrona/host/text_sink.h>
#include <kestrona/services.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

/// \file
/// A log in lines of text.

namespace Kestrona::Host {

/// How much a log holds; each level includes those before it.
enum class LogLevel : std::uint8_t {
    Off,
    Error, ///< Messages that were shown to the user.
    Info,  ///< Entries of the host.
    Debug, ///< The data module's own account of what it does.
    Trace, ///< The extended log.
};

/// Reads "off", "error", "info", "debug" or "trace"; nothing for any other word.
[[nodiscard]] std::optional<LogLevel> ParseLogLevel(std::string_view word);

/// Writes what the data module logs as lines "LEVEL: TEXT" in UTF-8. Line ends and control characters inside a text are
/// shown as escapes, so a line is always one entry.
class StreamLogger : public DefaultLogger {
public:
    using Clock = std::function<std::chrono::system_clock::time_point()>;

    /// With a clock, each line begins with its time in UTC: "2026-01-31T08:00:00.000Z ".
    StreamLogger(LogLevel level, TextSink sink, Clock clock = {});

    /// A forced line belongs to a category that the host asked for: it is written at every level but `Off`. Other lines
    /// belong to `Trace`.
    void WriteEx(std::uint32_t flags, const wchar_t* text, bool forced) override;
    /// Writes both texts, separated by ": ", at `Info`.
    void LogEntry(const wchar_t* first, const wchar_t* second) override;
    /// Writes at `Debug`.
    void Write(const wchar_t* text) override;

    /// Writes a line of the host's own when the log's level includes `level`.
    void Log(LogLevel level, std::wstring_view text);

    [[nodiscard]] LogLevel Level() const { return level_; }

private:
    void WriteLine(LogLevel level, std::wstring_view text);

    LogLevel level_;
    TextSink sink_;
    Clock clock_;
};

} // namespace Kestrona::Host
