#pragma once

#include <kestrona/host/text_sink.h>
#include <kestrona/services.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

/// \file
/// Messages for a program without windows.

namespace Kestrona::Host {

/// A message as the data module asked to show it.
struct ShownMessage {
    std::wstring text;
    std::wstring caption;
    std::int32_t style = kMessageStyleError;
};

/// Prints messages as "PROGRAM: error: TEXT" ("warning" for `kMessageStyleWarning`, "note" for styles that are neither)
/// and keeps them. A caption stands before the text; further lines of a text are indented; control characters are shown
/// as escapes, and a caret stands under the place where an expression fails. Numbered texts are those of `MessageText`.
class ConsoleMessages : public CoreMessage {
public:
    /// Messages that are kept; later ones are printed and counted only.
    static constexpr std::size_t kMostKept = 1000;

    /// With an empty `sink` nothing is printed.
    explicit ConsoleMessages(std::string program = "kestrona", TextSink sink = StreamSink(stderr));

    void ShowMessage(const wchar_t* text, const wchar_t* caption, std::int32_t style) override;
    void ShowMessage(WindowHandle owner, const std::wstring& text, const std::wstring& caption,
                     std::int32_t style) override;
    void ShowMessage(WindowHandle owner, const wchar_t* text, const wchar_t* caption, std::int32_t style) override;

    std::wstring GetMessage(std::int32_t id) override;
    void DisplayGenericUnableToRead(const std::wstring& file_name) override;
    void DisplayUnableToOpen(const std::wstring& file_name) override;

    /// Returns the messages since the start or the last `Clear`, the oldest first, at most `kMostKept`.
    [[nodiscard]] const std::vector<ShownMessage>& Shown() const { return shown_; }

    [[nodiscard]] std::size_t ErrorCount() const { return errors_; }

    [[nodiscard]] std::size_t WarningCount() const { return warnings_; }

    /// Forgets the messages and their counts.
    void Clear();

    /// Calls `listener` with every message before it is printed: to clear a progress line, or to log the message too.
    void SetListener(std::function<void(const ShownMessage&)> listener) { listener_ = std::move(listener); }

private:
    void Show(ShownMessage message);
    void Print(const ShownMessage& message) const;

    std::string program_;
    TextSink sink_;
    std::function<void(const ShownMessage&)> listener_;
    std::vector<ShownMessage> shown_;
    std::size_t errors_ = 0;
    std::size_t warnings_ = 0;
};

} // namespace Kestrona::Host
