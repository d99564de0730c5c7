// Implements: the system path, and the tags in texts that stand for paths and the run mode.
#include "platform/files.h"

#include <kestrona/host_settings.h>
#include <kestrona/process.h>

#include <algorithm>
#include <array>
#include <cwchar>
#include <string_view>

namespace {

constexpr std::size_t kMaxSystemPath = 511;
constexpr const wchar_t* kSystemPathTag = L"{KESTRONA PATH}";
constexpr const wchar_t* kDirectoryTag = L"{PATH}";
constexpr const wchar_t* kModeTag = L"{MODE}";

// Empty while nothing is overridden.
constinit std::array<wchar_t, kMaxSystemPath + 1> overriding_path{};

std::wstring SystemPath() {
    return overriding_path[0] != L'\0' ? overriding_path.data() : Kestrona::Platform::ProgramFolder();
}

} // namespace

void override_system_path(const wchar_t* path) {
    const std::wstring wanted = path != nullptr ? path : L"";
    overriding_path.fill(L'\0');
    if (wanted.size() <= kMaxSystemPath) {
        std::ranges::copy(wanted, overriding_path.begin());
    }
}

void get_system_path(wchar_t* path, std::int32_t size) {
    if (path == nullptr || size <= 0) {
        return;
    }
    const std::wstring text = SystemPath();
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    std::wmemcpy(path, text.c_str(), length);
    path[length] = L'\0';
}

std::wstring ExpandKestronaTPathTags(std::wstring text) {
    text = KSDLL_TStringSubstitute(std::move(text), kSystemPathTag, SystemPath());
    return KSDLL_TStringSubstitute(std::move(text), kDirectoryTag, Kestrona::Platform::CurrentDirectory());
}

void ExpandKestronaPathTags(wchar_t* text) {
    KSDLL_StringSubstitute(text, kSystemPathTag, SystemPath());
    KSDLL_StringSubstitute(text, kDirectoryTag, Kestrona::Platform::CurrentDirectory());
}

std::wstring ExpandMODETag(const std::wstring& text) {
    return KSDLL_TStringSubstitute(text, kModeTag, Kestrona::GetRunModeName());
}

std::wstring ExpandMODETag(const wchar_t* text) {
    return text != nullptr ? ExpandMODETag(std::wstring(text)) : std::wstring();
}

void ExpandMODETag(wchar_t* text) {
    KSDLL_StringSubstitute(text, kModeTag, Kestrona::GetRunModeName());
}
