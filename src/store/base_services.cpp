// Implements: the services that do nothing.
#include <kestrona/services.h>

#include <algorithm>

void DefaultLogger::WriteEx(std::uint32_t /*flags*/, const wchar_t* /*text*/, bool /*forced*/) {}

void DefaultLogger::LogEntry(const wchar_t* /*first*/, const wchar_t* /*second*/) {}

void DefaultLogger::Write(const wchar_t* /*text*/) {}

void CoreMessage::ShowMessage(const wchar_t* /*text*/, const wchar_t* /*caption*/, std::int32_t /*style*/) {}

void CoreMessage::ShowMessage(WindowHandle /*owner*/, const std::wstring& /*text*/, const std::wstring& /*caption*/,
                              std::int32_t /*style*/) {}

void CoreMessage::ShowMessage(WindowHandle /*owner*/, const wchar_t* /*text*/, const wchar_t* /*caption*/,
                              std::int32_t /*style*/) {}

void CoreMessage::GetMessageText(std::int32_t id, wchar_t* buffer, std::size_t size) {
    if (buffer == nullptr || size == 0) {
        return;
    }
    const std::wstring text = GetMessage(id);
    const std::size_t length = std::min(text.size(), size - 1);
    std::copy_n(text.begin(), length, buffer);
    buffer[length] = L'\0';
}

std::wstring CoreMessage::GetMessage(std::int32_t /*id*/) {
    return {};
}

void CoreMessage::Reserved6() {}

void CoreMessage::DisplayGenericUnableToRead(const std::wstring& /*file_name*/) {}

void CoreMessage::DisplayUnableToOpen(const std::wstring& /*file_name*/) {}
