#include "platform/numbers.h"

#include "platform/characters.h"

#include <locale.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace Kestrona::Platform {

namespace {

constexpr bool IsSign(wchar_t c) {
    return c == L'+' || c == L'-';
}

constexpr bool IsHexDigit(wchar_t c) {
    const wchar_t lower = LowerAscii(c);
    return IsDecimalDigit(c) || (lower >= L'a' && lower <= L'f');
}

constexpr bool IsNanDetail(wchar_t c) {
    const wchar_t lower = LowerAscii(c);
    return IsDecimalDigit(c) || (lower >= L'a' && lower <= L'z') || c == L'_';
}

bool StartsWithWord(std::wstring_view text, std::wstring_view lower_word) {
    return text.size() >= lower_word.size() &&
           std::equal(lower_word.begin(), lower_word.end(), text.begin(),
                      [](wchar_t expected, wchar_t c) { return LowerAscii(c) == expected; });
}

// The functions below measure the longest form of their kind that `text` begins with, 0 for none. A sign and blanks
// before the number are the caller's.

constexpr std::wstring_view kNan = L"nan";

std::size_t InfinityLength(std::wstring_view text) {
    constexpr std::wstring_view kInfinity = L"infinity";
    constexpr std::wstring_view kInf = L"inf";
    if (!StartsWithWord(text, kInf)) {
        return 0;
    }
    return StartsWithWord(text, kInfinity) ? kInfinity.size() : kInf.size();
}

std::size_t NanLength(std::wstring_view text) {
    if (!StartsWithWord(text, kNan)) {
        return 0;
    }
    text.remove_prefix(kNan.size());
    if (!text.starts_with(L'(')) {
        return kNan.size();
    }
    const std::size_t detail = CountWhile(text.substr(1), IsNanDetail);
    return text.substr(1 + detail).starts_with(L')') ? kNan.size() + detail + 2 : kNan.size();
}

// Digits with at most one point among them, at least one digit.
template <typename Predicate>
std::size_t MantissaLength(std::wstring_view text, Predicate is_digit) {
    const std::size_t whole = CountWhile(text, is_digit);
    if (!text.substr(whole).starts_with(L'.')) {
        return whole;
    }
    const std::size_t fraction = CountWhile(text.substr(whole + 1), is_digit);
    return whole + fraction == 0 ? 0 : whole + 1 + fraction;
}

std::size_t ExponentLength(std::wstring_view text, wchar_t lower_mark) {
    if (text.empty() || LowerAscii(text[0]) != lower_mark) {
        return 0;
    }
    const std::size_t before_digits = text.size() > 1 && IsSign(text[1]) ? 2 : 1;
    const std::size_t digits = CountWhile(text.substr(before_digits), IsDecimalDigit);
    return digits == 0 ? 0 : before_digits + digits;
}

std::size_t DecimalLength(std::wstring_view text) {
    const std::size_t mantissa = MantissaLength(text, IsDecimalDigit);
    return mantissa == 0 ? 0 : mantissa + ExponentLength(text.substr(mantissa), L'e');
}

std::size_t HexLength(std::wstring_view text) {
    if (!StartsWithWord(text, L"0x")) {
        return 0;
    }
    const std::size_t mantissa = MantissaLength(text.substr(2), IsHexDigit);
    return mantissa == 0 ? 0 : 2 + mantissa + ExponentLength(text.substr(2 + mantissa), L'p');
}

// Unlike strtod, the exact conversion takes anything between the parentheses of "nan(...)".
bool IsNanText(std::wstring_view text) {
    if (!StartsWithWord(text, kNan)) {
        return false;
    }
    text.remove_prefix(kNan.size());
    return text.empty() || (text.front() == L'(' && text.back() == L')');
}

std::size_t SignLength(std::wstring_view text) {
    return !text.empty() && IsSign(text[0]) ? 1 : 0;
}

// Never freed: it must outlive every other static object.
locale_t ClassicLocale() {
    static const locale_t classic = newlocale(LC_ALL_MASK, "C", locale_t{});
    return classic;
}

// The value of a text that one of the functions above measured, with its sign.
double Evaluate(std::wstring_view number) {
    const auto narrow = [](wchar_t c) {
        assert(c > 0 && c < 0x80);
        return static_cast<char>(c);
    };
    std::array<char, 64> small{};
    if (number.size() < small.size()) {
        std::transform(number.begin(), number.end(), small.begin(), narrow);
        return strtod_l(small.data(), nullptr, ClassicLocale());
    }
    std::string large(number.size(), '\0');
    std::transform(number.begin(), number.end(), large.begin(), narrow);
    return strtod_l(large.c_str(), nullptr, ClassicLocale());
}

void Report(std::size_t* used, std::size_t count) {
    if (used != nullptr) {
        *used = count;
    }
}

} // namespace

double ParseDouble(std::wstring_view text, std::size_t* used) {
    const std::size_t blanks = CountWhile(text, IsBlank);
    const std::wstring_view number = text.substr(blanks);
    const std::size_t sign = SignLength(number);
    const std::wstring_view unsigned_part = number.substr(sign);
    const std::size_t length = std::max({InfinityLength(unsigned_part), NanLength(unsigned_part),
                                         HexLength(unsigned_part), DecimalLength(unsigned_part)});
    Report(used, length == 0 ? 0 : blanks + sign + length);
    return length == 0 ? 0.0 : Evaluate(number.substr(0, sign + length));
}

std::int32_t ParseInt32(std::wstring_view text, std::size_t* used) {
    constexpr std::int64_t kBeyond = std::int64_t{1} << 32;
    const std::size_t blanks = CountWhile(text, IsBlank);
    const std::size_t sign = SignLength(text.substr(blanks));
    const std::wstring_view tail = text.substr(blanks + sign);
    const std::wstring_view digits = tail.substr(0, CountWhile(tail, IsDecimalDigit));
    std::int64_t value = 0;
    for (const wchar_t digit : digits) {
        value = std::min(kBeyond, value * 10 + (digit - L'0'));
    }
    if (sign == 1 && text[blanks] == L'-') {
        value = -value;
    }
    Report(used, digits.empty() ? 0 : blanks + sign + digits.size());
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

std::optional<double> TextToDouble(std::wstring_view text) {
    const std::wstring_view unsigned_part = text.substr(SignLength(text));
    if (unsigned_part.empty()) {
        return std::nullopt;
    }
    if (IsNanText(unsigned_part)) {
        return std::copysign(std::numeric_limits<double>::quiet_NaN(), text.front() == L'-' ? -1.0 : 1.0);
    }
    if (InfinityLength(unsigned_part) == unsigned_part.size()) {
        return Evaluate(text);
    }
    if (DecimalLength(unsigned_part) != unsigned_part.size()) {
        return std::nullopt;
    }
    const double value = Evaluate(text);
    return std::isinf(value) ? std::nullopt : std::optional(value);
}

std::wstring DoubleToText17(double value) {
    // Sign, 17 digits, point, and an exponent such as "e-308".
    std::array<char, 32> digits{};
    const auto result =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::general, 17);
    assert(result.ec == std::errc());
    return {digits.data(), result.ptr};
}

std::int32_t TruncateToInt32(double value) {
    // Both bounds are exact doubles; a NaN fails the test.
    const bool fits = value > -2147483649.0 && value < 2147483648.0;
    return fits ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

} // namespace Kestrona::Platform
