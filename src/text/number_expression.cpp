// Implements: numbers as expressions write them.
#include "text/number_expression.h"

#include "text/copy_out.h"
#include "text/number_format.h"

#include <kestrona/value_text.h>

#include <array>
#include <cassert>
#include <charconv>
#include <cmath>

namespace Kestrona::Text {

namespace {

// How far the value times 10 to the power of the index may stand from a whole number.
constexpr std::array<double, kTooManyDecimals> kTolerances = {1e-13, 1e-12, 1e-11, 1e-10, 1e-9, 1e-8,
                                                              1e-7,  1e-6,  1e-5,  1e-4,  1e-3};

// "%.14le"
std::wstring ExponentText(double value) {
    constexpr std::int32_t kDecimals = 14;
    std::array<char, 32> digits{};
    const auto result =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::scientific, kDecimals);
    assert(result.ec == std::errc());
    return {digits.data(), result.ptr};
}

} // namespace

std::int32_t CountDecimals(double value) {
    constexpr double kLargest = 1e15;
    std::int32_t decimals = 0;
    for (const double tolerance : kTolerances) {
        const double whole = std::trunc(value < 0.0 ? value - tolerance : value + tolerance);
        if (std::fabs(value - whole) <= tolerance) {
            return decimals;
        }
        value *= 10.0;
        if (std::fabs(value) > kLargest) {
            break;
        }
        ++decimals;
    }
    return kTooManyDecimals;
}

} // namespace Kestrona::Text

std::wstring KSDLL_ParseWriteDoubleT(double value) {
    const std::int32_t decimals = Kestrona::Text::CountDecimals(value);
    return decimals < Kestrona::Text::kTooManyDecimals ? Kestrona::Text::FixedText(value, decimals)
                                                       : Kestrona::Text::ExponentText(value);
}

void KSDLL_ParseWriteDouble(wchar_t* text, double value) {
    Kestrona::Text::CopyOut(KSDLL_ParseWriteDoubleT(value), text);
}
