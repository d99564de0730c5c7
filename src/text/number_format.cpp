// Implements: BuildFormat, and the numbers that are shown by it.
#include "text/number_format.h"

#include "platform/characters.h"
#include "platform/format_text.h"
#include "platform/numbers.h"
#include "text/digits.h"

#include <kestrona/value_text.h>

#include <algorithm>
#include <cassert>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>

namespace Kestrona::Text {

namespace {

constexpr std::int32_t kMostCharacters = 512;
constexpr std::int32_t kDefaultDecimals = 2;
constexpr std::int32_t kLibraryDecimals = 6; // of "%lf"

// "%[0][width][.decimals]lf"
struct PlainFormat {
    bool zeros = false;
    std::int32_t width = 0;
    std::int32_t decimals = kDefaultDecimals;
};

bool IsWhole(double value) {
    return value == static_cast<double>(Platform::TruncateToInt32(value));
}

// Takes the digits from the beginning of the text. A number above the bound counts as one above it.
std::int32_t TakeNumber(std::wstring_view& text) {
    std::int32_t number = 0;
    while (!text.empty() && Platform::IsDecimalDigit(text.front())) {
        number = std::min(kMostCharacters + 1, number * 10 + (text.front() - L'0'));
        text.remove_prefix(1);
    }
    return number;
}

// Nothing for a format text of another form.
std::optional<PlainFormat> ParsePlain(const NumberFormat& format, double value) {
    PlainFormat plain;
    if (!format.Specified) {
        return plain;
    }
    std::wstring_view text = format.Format;
    plain.zeros = text.starts_with(L'0');
    plain.width = TakeNumber(text);
    plain.decimals = kLibraryDecimals;
    if (text.starts_with(L'.')) {
        text.remove_prefix(1);
        plain.decimals = TakeNumber(text);
        if (format.Maximum && IsWhole(value)) {
            plain.decimals = 0;
        }
    }
    return text.empty() ? std::optional(plain) : std::nullopt;
}

bool AsksTooMuch(std::wstring_view text) {
    while (!text.empty()) {
        if (TakeNumber(text) > kMostCharacters) {
            return true;
        }
        text.remove_prefix(std::min<std::size_t>(text.size(), 1));
    }
    return false;
}

// The digits behind blanks, or the sign and then zeros.
std::wstring Pad(std::string_view digits, std::size_t fill, bool zeros) {
    std::wstring text;
    text.reserve(digits.size() + fill);
    if (!zeros) {
        text.append(fill, L' ');
    } else if (digits.starts_with('-')) {
        text += L'-';
        digits.remove_prefix(1);
    }
    if (zeros) {
        text.append(fill, L'0');
    }
    return text.append(digits.begin(), digits.end());
}

std::wstring ShowPlain(const PlainFormat& plain, double value) {
    // Sign, the 309 digits of the largest number, point, decimals.
    constexpr std::size_t kMost = 1 + 309 + 1 + kMostCharacters;
    char buffer[kMost];
    const auto result = std::to_chars(buffer, buffer + kMost, value, std::chars_format::fixed, plain.decimals);
    assert(result.ec == std::errc());
    const std::string_view digits(buffer, static_cast<std::size_t>(result.ptr - buffer));
    const auto width = static_cast<std::size_t>(plain.width);
    if (width <= digits.size()) {
        return {digits.begin(), digits.end()};
    }
    return Pad(digits, width - digits.size(), plain.zeros && std::isfinite(value));
}

} // namespace

std::wstring FormatNumber(const NumberFormat& format, double value) {
    if (const auto plain = ParsePlain(format, value)) {
        const bool fits = plain->width <= kMostCharacters && plain->decimals <= kMostCharacters;
        return ShowPlain(fits ? *plain : PlainFormat(), value);
    }
    if (!AsksTooMuch(format.Format)) {
        if (auto text = Platform::TryFormatText(BuildFormat(format, value), value)) {
            return *std::move(text);
        }
    }
    return ShowPlain(PlainFormat(), value);
}

std::wstring FixedText(double value, std::int32_t decimals) {
    assert(decimals >= 0 && decimals <= kMostCharacters);
    return ShowPlain({false, 0, decimals}, value);
}

std::wstring WholeText(double value) {
    const std::int32_t whole = Platform::TruncateToInt32(value);
    if (whole == 0 || static_cast<double>(whole) != value) { // 0 may have a sign
        return FixedText(value, 0);
    }
    std::wstring text;
    AppendNumber(text, whole);
    return text;
}

} // namespace Kestrona::Text

std::wstring BuildFormat(const Kestrona::NumberFormat& format, double value) {
    if (!format.Specified) {
        return L"%.2lf";
    }
    const std::wstring& text = format.Format;
    const bool has_length = text.find(L'l') != std::wstring::npos;
    const std::size_t point = text.find(L'.');
    if (point == std::wstring::npos) {
        return L'%' + text + (has_length ? L"" : L"lf");
    }
    const bool whole = Kestrona::Text::IsWhole(value);
    const std::wstring shown = format.Maximum && whole ? text.substr(0, point) + L".0" : text;
    return L'%' + shown + (whole || !has_length ? L"lf" : L"");
}
