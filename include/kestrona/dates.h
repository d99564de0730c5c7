#pragma once

#include <kestrona/export.h>
#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>

/// \file
/// Dates and times.
///
/// A date is a `double`: days since midnight of 30 December 1899, the fraction being the time of day. -1.0 means that
/// no date is set. Dates run from 1 January 1400 to the last moment of 9999; values outside count as the nearer end,
/// and NaN counts as 0.0 unless told otherwise. Times are exact to one millisecond.
///
/// Texts follow the user's locale (LC_ALL, LC_TIME, LANG) in the order of day, month and year, in the length of the
/// year and in the text between hours and minutes. It is read once and kept for the life of the process. Between the
/// pieces of a date stands "-" in every locale.
///
/// Functions that write into a `wchar_t*` do not know its size: it must hold 64 characters.

// Callers of the functions that name it include <boost/date_time/posix_time/posix_time_types.hpp>.
namespace boost::posix_time {
class ptime;
}

namespace Kestrona {

/// Order of the pieces of a date.
enum class DateLayout : std::int32_t {
    Unknown = -1, ///< The locale does not tell. Texts have no date then, and no text is a date.
    MonthDayYear = 0,
    DayMonthYear = 1,
    YearMonthDay = 2
};

/// A date in pieces, which may be out of range: see `SimpleDateTimeToOADate`.
struct SimpleDateTime {
    std::uint16_t year = 0;
    std::uint16_t month = 0;
    std::uint16_t day = 0;
    std::int32_t hour = 0;
    std::int32_t minute = 0;
    std::int32_t second = 0;
};

} // namespace Kestrona

// Values.

/// Rounds to milliseconds. Whole days and fraction are added up, so -1.5 is noon of 28 December 1899.
KS_API boost::posix_time::ptime OADateToTime(double value);
/// Returns -1.0 for a time that is no point in time (infinite, not a date).
KS_API double TimeToOADate(const boost::posix_time::ptime& time);
/// Puts the pieces of `date` into their ranges, in place: seconds of 60 or more carry into minutes, minutes into hours,
/// hours into days, days into months and months into years, so 31 February becomes 2 or 3 March. Returns the date. When
/// there is none (month or day 0, a year outside 1400 to 9999) returns -1.0 and leaves `date` as it is.
KS_API double SimpleDateTimeToOADate(Kestrona::SimpleDateTime* date);

/// Weekday, 0 for Sunday to 6.
KS_API std::int32_t KSDLL_OADateToDow(double value);
/// ISO 8601 number of the week.
KS_API std::int32_t KSDLL_OADateToWoy(double value);
/// Moves a date by months; the last day of a month stays the last day. Returns `value` when the result would leave the
/// years 1400 to 9999.
KS_API double KSDLL_IncrementDateByMonths(double value, std::int32_t months);
/// Moves a date by years; see `KSDLL_IncrementDateByMonths`.
KS_API double KSDLL_IncrementDateByYears(double value, std::int32_t years);
/// The time of now: the save variable `kSvFixedNow` unless it is -1.0, else the machine's local time and
/// `kSvTimeShift`.
KS_API double KSDLL_KestronaTime();

// Texts.

/// Tells the layout and the length of a date's text: 10 with a year of four digits, 8 with two. Either pointer may be
/// null.
KS_API void GetFormatInformation(Kestrona::DateLayout* layout, std::int32_t* length);
/// The pattern of a date as users see it, such as "DD-MM-YYYY"; "" for an unknown layout.
KS_API std::wstring KSDLL_GetTimeFormatT();
KS_API void KSDLL_GetTimeFormat(wchar_t* text);

/// Date and time as text, also for -1.0. A fraction of a second above one half counts as the next second.
KS_API std::wstring KSDLL_TStringFromOADate(double value, bool include_seconds, bool short_year);
/// The same with the year of the locale's length, and seconds when `IncludeSecondsGlobally`.
KS_API void KSDLL_StringFromOADate(double value, wchar_t* text);
/// The same with the year of the locale's length; -1.0 and NaN give the word for an unset value (message 0x698a).
KS_API std::wstring KSDLL_OADateToTString(double value, bool include_seconds);
KS_API void KSDLL_OADateToString(double value, wchar_t* text, bool include_seconds);
/// Reads a date in the locale's layout, with or without a time. Any character but a digit separates the pieces; a point
/// does not between those of the date. A year below 69 is one of this century, up to 99 of the last one.
///
/// Returns 0 when the text is a date, or the word for an unset value, which stands for -1.0; 1 when it names a date
/// that does not exist, or one that would read differently when it is shown: `value` is the date that it comes down to;
/// -1 when it is none: `value` is left unchanged.
KS_API std::int32_t KSDLL_StringToOADate(double* value, const std::wstring& text);

/// The weekday's name from the messages that start at 0x698b.
KS_API std::wstring KSDLL_OADateToDayOfWeekString(double value);
/// The weekday's name from the messages that start at 0x6992. The buffer must hold that message.
KS_API void KSDLL_OADateToTdow(double value, wchar_t* text);

/// Writes when the file was last written, in local time, as `KSDLL_StringFromOADate` does; "" when there is no such
/// file.
KS_API void KSDLL_GetFileTime(const wchar_t* path, wchar_t* text);

// Seconds.

/// Whether all times show their seconds. False at first.
KS_API bool IncludeSecondsGlobally();
/// There is no way back within a process.
KS_API void EnableIncludeSecondsGlobally();
/// Whether the times of a field show their seconds: by its class, or because all do.
KS_API bool ColumnIncludeSeconds(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                 std::int32_t field);
