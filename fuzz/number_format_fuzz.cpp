#include "fuzz.h"
#include "platform/format_text.h"
#include "text/number_format.h"

#include <kestrona/value_text.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

// Formats that a definition or a message text asks for: eight bytes of a number, a byte for the word MAX, and the rest
// as the format text. The C library shows what is a plain format.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;

constexpr std::size_t kMostDigits = 512;

// "%", digits and one point, "lf"; or a plain number of decimals and letters that mean the same.
bool IsPlain(const std::wstring& format) {
    const std::size_t point = format.find(L'.');
    const auto is_bounded = [](const std::wstring& digits) {
        return digits.size() <= 3 && digits.find_first_not_of(L"0123456789") == std::wstring::npos &&
               (digits.empty() || std::stoul(digits) <= kMostDigits);
    };
    return is_bounded(format.substr(0, point)) && (point == std::wstring::npos || is_bounded(format.substr(point + 1)));
}

std::wstring ByLibrary(const std::wstring& format, double value) {
    char text[2048];
    const std::string narrow(format.begin(), format.end());
    std::snprintf(text, sizeof text, narrow.c_str(), value);
    return {text, text + std::strlen(text)};
}

void CheckNumber(const NumberFormat& format, double value) {
    const std::wstring shown = Text::FormatNumber(format, value);
    // Two numbers of the format and the 309 digits of the largest number.
    Require(shown.size() <= format.Format.size() + 2 * kMostDigits + 330);
    if (IsPlain(format.Format)) {
        Require(shown == ByLibrary(BuildFormat(format, value), value));
    }
    Require(Text::FormatNumber({}, value) == ByLibrary(L"%.2lf", value));
    Require(Text::WholeText(value) == ByLibrary(L"%.0lf", value));
}

// Any text may come as a format, with any arguments.
void CheckText(const std::wstring& text, double value) {
    const auto whole = static_cast<std::int32_t>(text.size());
    constexpr std::size_t kWidest = 999 + 330;
    const std::size_t most = text.size() + kWidest * (1 + static_cast<std::size_t>(std::ranges::count(text, L'%')));
    Require(Platform::FormatText(text, value, whole, text, L'x').size() <= most + text.size() * text.size());
    Require(Platform::FormatText(text, L"argument", -whole, value).size() <= most * 2);
    if (text.find(L'%') == std::wstring::npos) {
        Require(Platform::FormatText(text, value) == text);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    double value = 0.0;
    if (size <= sizeof value) {
        return 0;
    }
    std::memcpy(&value, data, sizeof value);
    const std::uint8_t choice = data[sizeof value];
    if ((choice & 2U) != 0) { // most numbers that are shown are small ones
        value = std::trunc(std::fmod(value, 100000.0)) / ((choice & 4U) != 0 ? 8.0 : 1.0);
    }
    const std::wstring text = TextOf(data + sizeof value + 1, size - sizeof value - 1);
    CheckNumber({true, text, (choice & 1U) != 0}, value);
    CheckText(text, value);
    return 0;
}
