#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Numbers as text, in the "C" locale whatever the process or the user has set.
namespace Kestrona::Platform {

// Reads a number from the beginning of the text as strtod does: leading blanks, a sign, decimal or hexadecimal digits,
// "inf", "infinity" or "nan" in any case. Beyond the range of a double the result is infinite. `used`, when given,
// receives the number of characters read; 0 characters and the value 0.0 when there is no number.
double ParseDouble(std::wstring_view text, std::size_t* used = nullptr);

// Reads a decimal integer from the beginning of the text: leading blanks, a sign, digits. Clamped to 32 bits. `used` as
// for ParseDouble.
std::int32_t ParseInt32(std::wstring_view text, std::size_t* used = nullptr);

// The number that the whole text is, or nothing: no blanks, no hexadecimal digits, nothing behind the number, no value
// beyond the range of a double. "inf", "infinity" and "nan" in any case are numbers.
std::optional<double> TextToDouble(std::wstring_view text);

// The value as "%.17g" prints it: "5", "0.10000000000000001", "1e+21", "-0", "inf". TextToDouble gives the value back.
std::wstring DoubleToText17(double value);

// The value without its fraction; -2147483648 for NaN and for a value outside 32 bits.
std::int32_t TruncateToInt32(double value);

} // namespace Kestrona::Platform
