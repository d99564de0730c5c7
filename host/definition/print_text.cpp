#include "definition/print_text.h"

#include "definition/characters.h"
#include "definition/values.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <cstdint>

namespace Kestrona::Host::Language {

namespace {

bool IsSurrogate(wchar_t c) {
    return c >= 0xd800 && c <= 0xdfff;
}

bool IsCodePoint(wchar_t c) {
    return c > 0 && static_cast<std::uint32_t>(c) <= kLastCodePoint;
}

bool IsEncodable(wchar_t c) {
    return IsCodePoint(c) && !IsSurrogate(c);
}

bool IsNameCharacter(wchar_t c) {
    return (c >= L'0' && c <= L'9') || (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z') || c == L'_' || c > 0xff;
}

// "\u{1f}"; what is no code point has no escape either.
std::string PrintEscape(wchar_t c) {
    const std::string digits = PrintBits(static_cast<std::uint32_t>(c)).substr(2);
    return IsCodePoint(c) ? "\\u{" + digits + "}" : "\\u{fffd}";
}

std::string PrintCharacter(wchar_t c) {
    switch (c) {
    case L'"':
        return "\\\"";
    case L'\\':
        return "\\\\";
    case L'\n':
        return "\\n";
    case L'\t':
        return "\\t";
    default:
        return IsEncodable(c) && !IsControl(c) && c != L'\r' ? ToUtf8(std::wstring_view(&c, 1)) : PrintEscape(c);
    }
}

} // namespace

std::string PrintText(std::wstring_view text) {
    std::string printed = "\"";
    for (const wchar_t c : text) {
        printed += PrintCharacter(c);
    }
    return printed + "\"";
}

std::string PrintName(std::wstring_view name) {
    const bool is_bare = !name.empty() && std::all_of(name.begin(), name.end(), IsNameCharacter) && FitsUtf8(name) &&
                         !(name.front() >= L'0' && name.front() <= L'9');
    return is_bare ? ToUtf8(name) : PrintText(name);
}

bool FitsUtf8(std::wstring_view text) {
    return std::all_of(text.begin(), text.end(), IsEncodable);
}

} // namespace Kestrona::Host::Language
