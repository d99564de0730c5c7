#pragma once

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

} // namespace Kestrona::Platform
