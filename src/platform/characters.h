#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace Kestrona::Platform {

// The blanks of the "C" locale. Definitions and numbers mean the same on every machine, so no locale has a say here.
constexpr bool IsBlank(wchar_t c) {
    return c == L' ' || (c >= L'\t' && c <= L'\r');
}

constexpr bool IsDecimalDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

// Upper-case letters A to Z become lower-case, all else stays.
constexpr wchar_t LowerAscii(wchar_t c) {
    return (c >= L'A' && c <= L'Z') ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

// The number of characters at the beginning of the text for which `holds` is true.
template <typename Predicate>
constexpr std::size_t CountWhile(std::wstring_view text, Predicate holds) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), holds) - text.begin());
}

} // namespace Kestrona::Platform
