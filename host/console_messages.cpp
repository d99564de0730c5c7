#include "printable.h"

#include <kestrona/host/console_messages.h>
#include <kestrona/host/expression_excerpt.h>
#include <kestrona/host/message_catalogue.h>

#include <utility>

namespace Kestrona::Host {

namespace {

constexpr std::string_view kIndent = "    ";

// Caption of the boxes about expressions.
constexpr std::wstring_view kParseError = L"Parse Error!";

// The icon of a message box stands in these bits of its style.
constexpr std::int32_t kIconMask = 0xf0;

bool IsError(const ShownMessage& message) {
    return (message.style & kIconMask) == kMessageStyleError;
}

bool IsWarning(const ShownMessage& message) {
    return (message.style & kIconMask) == kMessageStyleWarning;
}

const char* Label(const ShownMessage& message) {
    if (IsError(message)) {
        return "error";
    }
    return IsWarning(message) ? "warning" : "note";
}

std::wstring TextOrEmpty(const wchar_t* text) {
    return text == nullptr ? std::wstring() : std::wstring(text);
}

} // namespace

ConsoleMessages::ConsoleMessages(std::string program, TextSink sink)
    : program_(std::move(program)),
      sink_(std::move(sink)) {}

void ConsoleMessages::ShowMessage(const wchar_t* text, const wchar_t* caption, std::int32_t style) {
    Show({TextOrEmpty(text), TextOrEmpty(caption), style});
}

void ConsoleMessages::ShowMessage(WindowHandle, const std::wstring& text, const std::wstring& caption,
                                  std::int32_t style) {
    Show({text, caption, style});
}

void ConsoleMessages::ShowMessage(WindowHandle, const wchar_t* text, const wchar_t* caption, std::int32_t style) {
    ShowMessage(text, caption, style);
}

std::wstring ConsoleMessages::GetMessage(std::int32_t id) {
    return MessageText(id);
}

void ConsoleMessages::DisplayGenericUnableToRead(const std::wstring& file_name) {
    Show(
        {L"The file " + file_name + L" cannot be read: it is damaged, or no configuration.", {}, kMessageStyleWarning});
}

void ConsoleMessages::DisplayUnableToOpen(const std::wstring& file_name) {
    Show({L"The file " + file_name + L" cannot be opened.", {}, kMessageStyleWarning});
}

void ConsoleMessages::Clear() {
    shown_.clear();
    errors_ = 0;
    warnings_ = 0;
}

void ConsoleMessages::Show(ShownMessage message) {
    if (IsError(message)) {
        ++errors_;
    } else if (IsWarning(message)) {
        ++warnings_;
    }
    if (listener_) {
        listener_(message);
    }
    Print(message);
    if (shown_.size() < kMostKept) {
        shown_.push_back(std::move(message));
    }
}

void ConsoleMessages::Print(const ShownMessage& message) const {
    if (!sink_) {
        return;
    }
    std::string line = program_ + ": " + Label(message) + ": ";
    if (!message.caption.empty()) {
        line += PrintableLine(message.caption) + ": ";
    }
    line +=
        message.caption == kParseError ? ExplainParseBox(message.text, kIndent) : PrintableLines(message.text, kIndent);
    line += '\n';
    sink_(line);
}

} // namespace Kestrona::Host
