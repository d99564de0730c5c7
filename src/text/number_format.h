#pragma once

#include <kestrona/caches.h>

#include <cstdint>
#include <string>

// Numbers as text.
//
// The forms that nearly every field has ("8.2", "MAX 0.3", no format at all) are written digit by digit; any other
// format text goes through the format library, at twenty times the cost.
namespace Kestrona::Text {

// The value as the format of `BuildFormat` shows it; as "%.2lf" where that is no format of one number or asks for more
// than 512 characters.
std::wstring FormatNumber(const NumberFormat& format, double value);

// "%.{decimals}lf"
std::wstring FixedText(double value, std::int32_t decimals);

// "%.0lf"
std::wstring WholeText(double value);

} // namespace Kestrona::Text
