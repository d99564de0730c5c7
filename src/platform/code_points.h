#pragma once

#include <cstddef>
#include <string_view>

namespace Kestrona::Platform {

constexpr char32_t kReplacementCharacter = 0xfffd;
constexpr char32_t kLastCodePoint = 0x10ffff;
constexpr char32_t kFirstSupplementary = 0x10000;

constexpr bool IsHighSurrogate(char32_t c) {
    return c >= 0xd800 && c <= 0xdbff;
}

constexpr bool IsLowSurrogate(char32_t c) {
    return c >= 0xdc00 && c <= 0xdfff;
}

constexpr bool IsSurrogate(char32_t c) {
    return c >= 0xd800 && c <= 0xdfff;
}

constexpr char32_t CombineSurrogates(char32_t high, char32_t low) {
    return kFirstSupplementary + ((high - 0xd800) << 10) + (low - 0xdc00);
}

constexpr char32_t HighSurrogateOf(char32_t supplementary) {
    return 0xd800 + ((supplementary - kFirstSupplementary) >> 10);
}

constexpr char32_t LowSurrogateOf(char32_t supplementary) {
    return 0xdc00 + ((supplementary - kFirstSupplementary) & 0x3ff);
}

// One element of wide text as a code point. wchar_t is signed on some machines: a negative one lands above the last.
constexpr char32_t ElementToCodePoint(wchar_t element) {
    const auto value = static_cast<char32_t>(element);
    return value > kLastCodePoint ? kReplacementCharacter : value;
}

// The code point that begins at `index`, which moves behind it. Only a lone surrogate comes out as a surrogate.
//
// Requires: index < text.size().
constexpr char32_t NextCodePoint(std::wstring_view text, std::size_t& index) {
    const char32_t first = ElementToCodePoint(text[index++]);
    if (!IsHighSurrogate(first) || index == text.size()) {
        return first;
    }
    const char32_t second = ElementToCodePoint(text[index]);
    if (!IsLowSurrogate(second)) {
        return first;
    }
    ++index;
    return CombineSurrogates(first, second);
}

} // namespace Kestrona::Platform
