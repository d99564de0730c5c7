#include "fuzz.h"
#include "platform/numbers.h"
#include "platform/scan_wide.h"

#include <kestrona/value_text.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>

// The readers of numbers, beside the C library's, which reads the same text with every character above 127 as a letter
// that no number has. What was read is written and read again.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;

bool Same(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

std::string Narrow(const std::wstring& text) {
    std::string narrow(text.size(), '@');
    std::ranges::transform(text, narrow.begin(),
                           [](wchar_t c) { return c > 0 && c < 0x80 ? static_cast<char>(c) : '@'; });
    return narrow;
}

std::int32_t Clamp(long long value) {
    return static_cast<std::int32_t>(std::clamp<long long>(value, std::numeric_limits<std::int32_t>::min(),
                                                           std::numeric_limits<std::int32_t>::max()));
}

void CheckWritten(double value) {
    const std::wstring exact = Platform::DoubleToText17(value);
    char printed[64];
    std::snprintf(printed, sizeof printed, "%.17g", value);
    Require(Narrow(exact) == printed);
    const std::optional<double> back = Platform::TextToDouble(exact);
    Require(back && Same(*back, value));

    constexpr double kAbsolute = 2e-13;
    constexpr double kRelative = 1e-14;
    if (std::isfinite(value)) {
        const double shown = Platform::ParseDouble(KSDLL_ParseWriteDoubleT(value));
        Require(std::fabs(shown - value) <= kAbsolute + kRelative * std::fabs(value));
    }
}

void CheckDouble(const std::wstring& text, const std::string& narrow) {
    char* end = nullptr;
    const double expected = std::strtod(narrow.c_str(), &end);
    std::size_t used = 0;
    const double value = Platform::ParseDouble(text, &used);
    Require(used == static_cast<std::size_t>(end - narrow.c_str()) && Same(value, expected));
    if (used != 0) {
        CheckWritten(value);
    }
    // A blank, a hexadecimal digit or a value beyond the range makes the text none as a whole.
    const bool is_whole =
        used == text.size() && used != 0 && narrow.find_first_of(" \t\n\v\f\rxX") == std::string::npos;
    const bool is_word = narrow.find_first_of("nN") != std::string::npos;
    const std::optional<double> whole = Platform::TextToDouble(text);
    if (is_whole) {
        Require(whole.has_value() == (is_word || std::isfinite(value)) && (!whole || Same(*whole, value)));
    } else {
        Require(!whole || std::isnan(*whole)); // "nan(...)" may hold anything there
    }
}

void CheckIntegers(const std::wstring& text, const std::string& narrow) {
    char* end = nullptr;
    const std::int32_t expected = Clamp(std::strtoll(narrow.c_str(), &end, 10));
    const auto length = static_cast<std::size_t>(end - narrow.c_str());
    std::size_t used = 0;
    Require(Platform::ParseInt32(text, &used) == expected && used == length);

    std::int32_t decimal = 0;
    const Platform::ScanResult result = Platform::ScanWide(text, L"%ld", &decimal);
    Require(decimal == expected && (result.items == 1) == (length != 0));
    Require(length == 0 || result.position == length);

    std::int32_t any = 0;
    const std::int32_t expected_any = Clamp(std::strtoll(narrow.c_str(), &end, 0));
    const Platform::ScanResult any_result = Platform::ScanWide(text, L"%li", &any);
    Require(any == expected_any && (any_result.items == 1) == (end != narrow.c_str()));

    std::uint16_t small = 0;
    Platform::ScanWide(text, L"%hu", &small);
    Require(small == static_cast<std::uint16_t>(std::clamp(expected, -32768, 65535)));
}

void CheckTexts(const std::wstring& text, const std::string& narrow) {
    // As long as the text, which no conversion can outrun.
    std::string a(text.size() + 1, '\0');
    std::string b(text.size() + 1, '\0');
    std::wstring wide_a;
    std::wstring wide_b;
    const auto check = [&](const wchar_t* format, const char* narrow_format) {
        std::fill(a.begin(), a.end(), '\0');
        std::fill(b.begin(), b.end(), '\0');
        const int items = std::sscanf(narrow.c_str(), narrow_format, a.data(), b.data());
        Require(Platform::ScanWide(text, format, &wide_a, &wide_b).items == items);
        Require(Narrow(wide_a) == a.substr(0, a.find('\0')) && Narrow(wide_b) == b.substr(0, b.find('\0')));
    };
    check(L" %[^(] ( %[^)]", " %[^(] ( %[^)]");
    check(L"%[0-9.e] %s", "%[0-9.e] %s");
    check(L"%3s%%%[]a-f]", "%3s%%%[]a-f]");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::wstring text = TextOf(data, size);
    text.resize(std::min(text.find(L'\0'), text.size()));
    const std::string narrow = Narrow(text);
    CheckDouble(text, narrow);
    CheckIntegers(text, narrow);
    CheckTexts(text, narrow);
    return 0;
}
