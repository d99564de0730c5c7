#include "printable.h"

#include <kestrona/host/feedback.h>
#include <kestrona/services.h>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace Kestrona::Host {

namespace {

constexpr std::string_view kClearLine = "\r\x1b[K";

bool IsTerminal(std::FILE* stream) {
    if (stream == nullptr || isatty(fileno(stream)) == 0) {
        return false;
    }
    const char* kind = std::getenv("TERM");
    return kind != nullptr && std::string_view(kind) != "dumb";
}

std::string Percentage(std::int32_t percent) {
    const std::string digits = std::to_string(percent);
    return "[" + std::string(3 - std::min<std::size_t>(digits.size(), 3), ' ') + digits + " %] ";
}

} // namespace

void NullFeedback::SetStage(std::int32_t) {}

void NullFeedback::SetProgress(std::int32_t) {}

ConsoleFeedback::ConsoleFeedback(std::FILE* stream, std::chrono::milliseconds patience)
    : ConsoleFeedback(IsTerminal(stream) ? StreamSink(stream) : TextSink(), patience) {}

ConsoleFeedback::ConsoleFeedback(TextSink sink, std::chrono::milliseconds patience)
    : sink_(std::move(sink)),
      patience_(patience) {}

ConsoleFeedback::~ConsoleFeedback() {
    Clear();
}

void ConsoleFeedback::SetStage(std::int32_t message) {
    const std::wstring text = MessageManager::getInstance()->GetMessage(message);
    if (!text.empty()) {
        stage_ = PrintableLine(text);
    }
    Show();
}

void ConsoleFeedback::SetProgress(std::int32_t percent) {
    percent_ = std::clamp(percent, 0, 100);
    Show();
}

void ConsoleFeedback::Clear() {
    if (is_shown_) {
        sink_(kClearLine);
        is_shown_ = false;
    }
}

void ConsoleFeedback::Finish() {
    Clear();
    start_.reset();
}

bool ConsoleFeedback::IsTooEarlyToShow() {
    const auto now = std::chrono::steady_clock::now();
    if (!start_) {
        start_ = now;
    }
    return now - *start_ < patience_;
}

void ConsoleFeedback::Show() {
    if (!sink_ || IsTooEarlyToShow()) {
        return;
    }
    sink_(std::string(kClearLine) + Percentage(percent_) + stage_);
    is_shown_ = true;
}

} // namespace Kestrona::Host
