// Implements: KSDLL_StringToOADate.
#include "platform/characters.h"
#include "platform/locale_dates.h"
#include "platform/scan_wide.h"
#include "text/date_values.h"

#include <kestrona/translation_source.h>

#include <algorithm>
#include <cassert>
#include <initializer_list>
#include <limits>
#include <optional>
#include <utility>

using Kestrona::DateLayout;
using Kestrona::SimpleDateTime;

namespace {

enum Result : std::int32_t {
    kGood = 0,
    kNormalised = 1,
    kNoDate = -1
};

bool IsPiece(std::int32_t number) {
    return number >= 0 && number <= std::numeric_limits<std::uint16_t>::max();
}

// A digit there would have been cut off a number ("01 12 2021" is no date).
bool AreSeparators(std::initializer_list<wchar_t> separators) {
    return std::ranges::none_of(separators, Kestrona::Platform::IsDecimalDigit);
}

std::int32_t WholeYear(std::int32_t year) {
    constexpr std::int32_t kFirstYearOfLastCentury = 69;
    if (year >= 100) {
        return year;
    }
    return year + (year < kFirstYearOfLastCentury ? 2000 : 1900);
}

// The pieces as they were typed, except for a year of two digits.
std::optional<SimpleDateTime> ReadPieces(const std::wstring& text, DateLayout layout) {
    constexpr std::int32_t kMaxFirst = 32767;
    std::int32_t first{}, second{}, third{}, hour{}, minute{}, seconds{};
    wchar_t between1{}, between2{}, between3{}, between4{};
    Kestrona::Platform::ScanWide(text, L"%ld %c %ld %c %ld %ld %c %ld %c %ld", &first, &between1, &second, &between2,
                                 &third, &hour, &between3, &minute, &between4, &seconds);
    const bool all_pieces =
        std::ranges::all_of(std::initializer_list<std::int32_t>{first, second, third, hour, minute, seconds}, IsPiece);
    if (!all_pieces || first > kMaxFirst || !AreSeparators({between1, between2, between3, between4}) ||
        between1 == L'.' || between2 == L'.') {
        return std::nullopt;
    }
    // From here on the third number is the year.
    if (layout == DateLayout::YearMonthDay) {
        std::swap(first, third);
    }
    if (layout == DateLayout::MonthDayYear) {
        std::swap(first, second);
    }
    return SimpleDateTime{static_cast<std::uint16_t>(WholeYear(third)),
                          static_cast<std::uint16_t>(second),
                          static_cast<std::uint16_t>(first),
                          hour,
                          minute,
                          seconds};
}

bool IsSameMinute(const SimpleDateTime& left, const SimpleDateTime& right) {
    return left.year == right.year && left.month == right.month && left.day == right.day && left.hour == right.hour &&
           left.minute == right.minute;
}

} // namespace

std::int32_t KSDLL_StringToOADate(double* value, const std::wstring& text) {
    assert(value != nullptr);
    constexpr double kUnset = -1.0;
    const DateLayout layout = Kestrona::Platform::UserLocaleDates().layout;
    if (IsUnspecifiedText(text, true)) {
        *value = kUnset;
        return kGood;
    }
    const std::optional<SimpleDateTime> typed = ReadPieces(text, layout);
    if (!typed || layout == DateLayout::Unknown) {
        return kNoDate;
    }
    SimpleDateTime date = *typed;
    const std::optional<double> result = Kestrona::Text::DateFromPieces(date);
    if (!result) {
        return kNoDate;
    }
    *value = *result;
    const std::optional<SimpleDateTime> shown = ReadPieces(KSDLL_OADateToTString(*result, false), layout);
    return shown && IsSameMinute(*typed, *shown) ? kGood : kNormalised;
}
