#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Numbers, dates and durations of the language.

namespace Kestrona::Host::Language {

// Reads 12, -1.5, 1e6, 0xff0000, 2026-01-31, 2026-01-31 08:00, 2026-01-31 08:00:30, and durations with a unit: 1.5d,
// 8h, 30min, 45s. Dates are days since 30 December 1899, durations days. Nothing for any other text, for a date that
// the calendar does not have, and for numbers beyond the range of a double.
[[nodiscard]] std::optional<double> ParseValue(std::wstring_view text);

// Reads a decimal or 0x number of at most 32 bits. Nothing for any other text.
[[nodiscard]] std::optional<std::uint32_t> ParseBits(std::wstring_view text);

// Reads a whole number between `lowest` and `highest`.
[[nodiscard]] std::optional<std::int32_t> ParseWhole(std::wstring_view text, std::int32_t lowest, std::int32_t highest);

// Whether the text begins as a value does, with a digit, a sign or a point, and so cannot be a name of a constant.
[[nodiscard]] bool LooksLikeValue(std::wstring_view text);

// The shortest text that `ParseValue` reads as this very number.
[[nodiscard]] std::string PrintValue(double value);

// "0x1f"
[[nodiscard]] std::string PrintBits(std::uint32_t bits);

} // namespace Kestrona::Host::Language
