#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace Kestrona::Platform {

struct ScanResult {
    // Conversions stored; -1 when none was and what did not fit was the end of the text.
    std::int32_t items = 0;
    // Index in the text behind the last element of the format that fitted.
    std::size_t position = 0;
};

using ScanOutput = std::variant<std::wstring*, wchar_t*, std::uint16_t*, std::int32_t*, double*>;

// Non-template half of ScanWide.
ScanResult ScanWideTo(std::wstring_view text, std::wstring_view format, std::span<const ScanOutput> outputs);

// Reads `text` by a format of the C library's scanf family, in the "C" locale, into typed outputs:
//
//   blank        any number of blanks, also none
//   character    that character
//   %%           a percent sign
//   %[set]       std::wstring  at least one character of the set; %[^set] of all but the set; a ']' that comes first
//                              belongs to the set, and a-z is a range
//   %s           std::wstring  at least one character up to a blank
//   %c           wchar_t       one character, blanks too
//   %hu          uint16_t      decimal, clamped to -32768 .. 65535 before it is stored in 16 bits
//   %ld %d       int32_t       decimal, clamped to 32 bits
//   %li %i       int32_t       the same, but 0x starts hexadecimal and 0 octal digits
//   %lf          double        as ParseDouble: of "5 e" or "5ex" it takes the 5
//
// A decimal number after the percent sign bounds the characters that the conversion reads. All but %[ and %c skip
// leading blanks, %% too. The first conversion or literal that does not fit ends the scan. Every output is set
// beforehand, to an empty text or 0, so an output that was not reached holds that. Linear in the length of the text.
//
// Requires: a format of these elements only, with an output of the type shown for each conversion. Otherwise the scan
// ends at the offending element (an assertion in debug builds).
template <typename... Outputs>
ScanResult ScanWide(std::wstring_view text, std::wstring_view format, Outputs*... outputs) {
    const std::array<ScanOutput, sizeof...(Outputs)> list{ScanOutput(outputs)...};
    return ScanWideTo(text, format, list);
}

} // namespace Kestrona::Platform
