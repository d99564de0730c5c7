#pragma once

#include <kestrona/caches.h>
#include <kestrona/export.h>
#include <kestrona/translation_source.h>

#include <cstdint>
#include <string>

/// \file
/// Durations and times of day.
///
/// A duration is a `double` that counts days. Negative ones are unset; -1.0 is what the readers give for the word for
/// an unset value (message 0x698a).

namespace Kestrona {

/// How a duration is shown.
namespace DurationMode {
inline constexpr std::int16_t kDays = 0;      ///< Days, hours and minutes.
inline constexpr std::int16_t kDayNumber = 1; ///< A day number counted from 1, then the time of day.
inline constexpr std::int16_t kHours = 2;     ///< Hours and minutes, however many hours.
inline constexpr std::int16_t kWeekday = 3;   ///< A weekday and the time of day.
inline constexpr std::int16_t kPrecise = 4;   ///< Days, hours, minutes and seconds with hundredths.
} // namespace DurationMode

/// How a text is read as a duration. The values are those of `DurationMode`.
enum class DurationConversionMode : std::int32_t {
    Days = 0, ///< Also reads what `DurationMode::kHours` shows.
    DayNumber = 1,
    Weekday = 3
};

} // namespace Kestrona

/// The duration as text, its minutes rounded as `format` tells. A negative duration and NaN give the word for an unset
/// value; another mode counts as 0. Durations above 2100000000 days, for `DurationMode::kHours` above 87500000, show as
/// these.
///
/// `DurationMode::kPrecise` does not round before it splits, so that 0:27 may show as 26 minutes and 60.00 seconds.
KS_API std::wstring KSDLL_DurationToTString(double value, std::int16_t mode, const Kestrona::NumberFormat& format);
/// The same into a buffer. Requires: room for 64 characters, the two words of the host that the text may have, and the
/// decimals that `format` asks for, of which there may be 512.
KS_API void KSDLL_DurationToString(double value, wchar_t* text, std::int16_t mode,
                                   const Kestrona::NumberFormat& format);

/// Hours and minutes of the time of day, such as "8:05". -1.0 and NaN give the word for an unset value.
KS_API std::wstring KSDLL_TimeToTString(double value);
/// Reads a time of day from 0:00 to 24:00, or the word for an unset value. Any text without digits stands between hours
/// and minutes. Returns 0, or 1 with `value` unchanged when the text is none.
KS_API std::int32_t KSDLL_StringToTime(double* value, const wchar_t* text);

/// Reads a duration. `source`, null for `TranslationSource`, gives the words that it may hold; with `allow_unspecified`
/// the word for an unset value stands for -1.0. In the weekday mode the result lies within one week. Returns 0, or -1
/// with `value` unchanged when the text is none.
KS_API std::int32_t KSDLL_StringToDuration(ITranslationSource* source, double* value, const wchar_t* text,
                                           Kestrona::DurationConversionMode mode, bool allow_unspecified);
KS_API std::int32_t KSDLL_StringToDuration(double* value, const wchar_t* text, Kestrona::DurationConversionMode mode,
                                           bool allow_unspecified);
