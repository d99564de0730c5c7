#pragma once

#include <cstdint>
#include <string_view>

// The kinds of characters that the language knows.

namespace Kestrona::Host::Language {

inline constexpr std::uint32_t kLastCodePoint = 0x10ffff;

// A blank inside a line. Carriage returns count, so that both kinds of line ends read alike.
[[nodiscard]] constexpr bool IsBlank(wchar_t c) {
    return c == L' ' || c == L'\t' || c == L'\r';
}

// A character that no text of the language may hold. Tabs and line ends are none.
[[nodiscard]] constexpr bool IsControl(wchar_t c) {
    return (c >= 0 && c < 0x20 && !IsBlank(c) && c != L'\n') || (c >= 0x7f && c < 0xa0);
}

[[nodiscard]] constexpr std::wstring_view Trim(std::wstring_view text) {
    while (!text.empty() && IsBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace Kestrona::Host::Language
