#pragma once

#include <kestrona/host/text_sink.h>
#include <kestrona/host_interfaces.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

/// \file
/// Progress of a load.

namespace Kestrona::Host {

/// Shows nothing.
class NullFeedback : public IInformationFeedback {
public:
    void SetStage(std::int32_t message) override;
    void SetProgress(std::int32_t percent) override;
};

/// Shows stage and percentage in one line of a terminal, "[ 50 %] Checking the table definition", written over at each
/// change and taken away at the end.
class ConsoleFeedback : public IInformationFeedback {
public:
    /// How long a load may take before anything is shown.
    static constexpr std::chrono::milliseconds kPatience{2000};

    /// Shows progress on the stream if that is a terminal which can clear a line; otherwise nothing.
    explicit ConsoleFeedback(std::FILE* stream = stderr, std::chrono::milliseconds patience = kPatience);
    /// Shows progress through the sink, whatever is behind it.
    explicit ConsoleFeedback(TextSink sink, std::chrono::milliseconds patience = kPatience);
    ConsoleFeedback(const ConsoleFeedback&) = delete;
    ConsoleFeedback& operator=(const ConsoleFeedback&) = delete;
    /// Takes the line away.
    ~ConsoleFeedback() override;

    /// Takes the text of the stage from the process's message service; a number without text keeps the former one.
    void SetStage(std::int32_t message) override;
    /// Values outside 0 to 100 count as the nearer end.
    void SetProgress(std::int32_t percent) override;

    /// Takes the line away until the next change. To be called before other output.
    void Clear();
    /// Takes the line away at the end of a load; the next one is given time again before anything is shown.
    void Finish();

private:
    void Show();
    // Begins to measure at the first call in a load.
    [[nodiscard]] bool IsTooEarlyToShow();

    TextSink sink_;
    std::chrono::milliseconds patience_;
    std::optional<std::chrono::steady_clock::time_point> start_;
    std::string stage_;
    std::int32_t percent_ = 0;
    bool is_shown_ = false;
};

} // namespace Kestrona::Host
