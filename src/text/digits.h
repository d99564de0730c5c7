#pragma once

#include <cassert>
#include <cstdint>
#include <string>

// The two number forms that dates and durations are made of, without the cost of a format text.
namespace Kestrona::Text {

// "%li"
inline void AppendNumber(std::wstring& text, std::int64_t value) {
    wchar_t digits[20]; // sign and 19 digits
    wchar_t* begin = digits + 20;
    std::uint64_t rest = value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    do {
        *--begin = static_cast<wchar_t>(L'0' + static_cast<wchar_t>(rest % 10));
        rest /= 10;
    } while (rest != 0);
    if (value < 0) {
        *--begin = L'-';
    }
    text.append(begin, digits + 20);
}

// "%02li" of a number that is not negative.
inline void AppendTwoDigits(std::wstring& text, std::int64_t value) {
    assert(value >= 0);
    if (value >= 100) {
        AppendNumber(text, value);
        return;
    }
    text += static_cast<wchar_t>(L'0' + static_cast<wchar_t>(value / 10));
    text += static_cast<wchar_t>(L'0' + static_cast<wchar_t>(value % 10));
}

} // namespace Kestrona::Text
