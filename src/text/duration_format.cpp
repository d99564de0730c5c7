// Implements: the texts of durations.
#include "platform/numbers.h"
#include "text/copy_out.h"
#include "text/date_messages.h"
#include "text/digits.h"
#include "text/number_format.h"
#include "text/value_forms.h"
#include "text/weekday_names.h"

#include <kestrona/durations.h>
#include <kestrona/value_text.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace Mode = Kestrona::DurationMode;
using Kestrona::NumberFormat;
using Kestrona::Platform::TruncateToInt32;
using Kestrona::Text::AppendNumber;
using Kestrona::Text::AppendTwoDigits;
using Kestrona::Text::Message;

namespace {

// Days and hours must fit into 32 bits.
constexpr double kMaxDays = 2100000000.0;
constexpr double kMaxDaysAsHours = 87500000.0;

struct Pieces {
    std::int32_t days = 0;
    std::int32_t hours = 0;
    double minutes = 0.0;
    double seconds = 0.0; // of the precise mode, whose minutes are whole

    std::int32_t WholeMinutes() const { return TruncateToInt32(minutes); }
};

Pieces Split(double value, std::int16_t mode) {
    constexpr double kNoMinutes = 1e-10;
    Pieces pieces;
    pieces.days = mode == Mode::kHours ? 0 : TruncateToInt32(value);
    const double hours = (value - pieces.days) * 24.0;
    pieces.hours = TruncateToInt32(hours);
    pieces.minutes = (hours - pieces.hours) * 60.0;
    if (pieces.minutes < kNoMinutes) {
        pieces.minutes = 0.0;
    }
    if (mode == Mode::kPrecise) {
        const double whole = std::trunc(pieces.minutes);
        pieces.seconds = (pieces.minutes - whole) * 60.0;
        pieces.minutes = whole;
    }
    return pieces;
}

// "%.2lf"
std::wstring TwoDecimals(double value) {
    std::array<char, 32> digits{}; // minutes and seconds are below 60
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, 2);
    return {digits.data(), result.ptr};
}

// The number by the field's format; with two decimals where that gives no number at all.
std::wstring ShowNumber(const NumberFormat& format, double value) {
    if (format.Specified) {
        std::wstring text = Kestrona::Text::FormatNumber(format, value);
        std::size_t used = 0;
        Kestrona::Platform::ParseDouble(text, &used);
        if (used != 0) {
            return text;
        }
    }
    return TwoDecimals(value);
}

// The minutes as their text shows them.
double RoundMinutes(double minutes, const NumberFormat& format) {
    constexpr double kMinutesPerHour = 60.0;
    const double shown = Kestrona::Platform::ParseDouble(ShowNumber(format, minutes));
    return shown >= 0.0 && shown <= kMinutesPerHour ? shown : minutes;
}

// Rounding may have filled the hour, and that the day.
void Carry(Pieces& pieces, std::int16_t mode) {
    if (pieces.minutes >= 60.0) {
        pieces.minutes -= 60.0;
        ++pieces.hours;
    }
    if (mode != Mode::kHours && pieces.hours > 23) {
        pieces.hours -= 24;
        ++pieces.days;
    }
}

// The point and the decimals of minutes that are not whole.
std::wstring Decimals(double minutes, const NumberFormat& format) {
    const double fraction = minutes - std::trunc(minutes);
    if (fraction == 0.0) {
        return {};
    }
    const std::wstring text = ShowNumber(format, fraction);
    return text.substr(std::min(text.find(L'.'), text.size()));
}

void AppendTimeOfDay(std::wstring& text, const Pieces& pieces) {
    AppendNumber(text, pieces.hours);
    text += L':';
    AppendTwoDigits(text, pieces.WholeMinutes());
}

std::wstring NumberAndWord(std::int32_t number, std::int32_t word) {
    std::wstring text;
    AppendNumber(text, number);
    return text + L' ' + Message(word) + L' ';
}

std::wstring DayCount(std::int32_t days) {
    return NumberAndWord(days, days == 1 ? Kestrona::Text::kDayWord : Kestrona::Text::kDaysWord);
}

std::wstring HoursText(const Pieces& pieces, const std::wstring& decimals) {
    std::wstring text = NumberAndWord(pieces.hours, Kestrona::Text::kHoursWord);
    AppendTwoDigits(text, pieces.WholeMinutes());
    return text + decimals + L' ' + Message(Kestrona::Text::kMinutesWord);
}

std::wstring DaysText(const Pieces& pieces, const std::wstring& decimals) {
    if (pieces.days == 0) {
        return HoursText(pieces, decimals);
    }
    std::wstring text = DayCount(pieces.days);
    AppendTimeOfDay(text, pieces);
    return text + decimals;
}

std::wstring DayNumberText(const Pieces& pieces, const std::wstring& decimals) {
    std::wstring text = Message(Kestrona::Text::kDayWord) + L' ';
    AppendNumber(text, std::int64_t{pieces.days} + 1);
    text += L' ';
    AppendTimeOfDay(text, pieces);
    return text + decimals;
}

std::wstring WeekdayText(const Pieces& pieces, const std::wstring& decimals) {
    constexpr std::int32_t kWeek = 7;
    if (pieces.days == kWeek && pieces.hours == 0 && pieces.minutes == 0.0) {
        return Message(Kestrona::Text::kSaturdayName) + L" 24:00";
    }
    std::wstring text = WeekdayName(pieces.days, Kestrona::Text::WeekdayKind::Duration) + L' ';
    AppendTimeOfDay(text, pieces);
    return text + decimals;
}

// "%05.2lf"
void AppendSeconds(std::wstring& text, double seconds) {
    constexpr std::size_t kWidth = 5;
    const std::wstring digits = TwoDecimals(seconds);
    text.append(kWidth - std::min(digits.size(), kWidth), L'0');
    text += digits;
}

void AppendPadded(std::wstring& text, std::int32_t number, const std::wstring& unit) {
    AppendTwoDigits(text, number);
    text += unit;
}

std::wstring PreciseText(const Pieces& pieces) {
    std::wstring text;
    if (pieces.days != 0) {
        text = DayCount(pieces.days);
        AppendPadded(text, pieces.hours, L"h ");
        AppendPadded(text, pieces.WholeMinutes(), L"m ");
        AppendSeconds(text, pieces.seconds);
        return text + L's';
    }
    if (pieces.hours != 0) {
        AppendPadded(text, pieces.hours, L' ' + Message(Kestrona::Text::kHoursWord) + L' ');
    }
    if (pieces.hours != 0 || pieces.WholeMinutes() != 0) {
        AppendPadded(text, pieces.WholeMinutes(), L' ' + Message(Kestrona::Text::kMinutesWord) + L' ');
    }
    text += L' ';
    AppendSeconds(text, pieces.seconds);
    return text + L" Sec";
}

} // namespace

std::wstring KSDLL_DurationToTString(double value, std::int16_t mode, const NumberFormat& format) {
    if (std::isnan(value) || value < 0.0) {
        return Message(Kestrona::Text::kUnsetWord);
    }
    Pieces pieces = Split(std::min(value, mode == Mode::kHours ? kMaxDaysAsHours : kMaxDays), mode);
    pieces.minutes = RoundMinutes(pieces.minutes, format);
    Carry(pieces, mode);
    if (mode == Mode::kPrecise) {
        return PreciseText(pieces);
    }
    const std::wstring decimals = Decimals(pieces.minutes, format);
    switch (mode) {
    case Mode::kDayNumber:
        return DayNumberText(pieces, decimals);
    case Mode::kHours:
        return HoursText(pieces, decimals);
    case Mode::kWeekday:
        return WeekdayText(pieces, decimals);
    default:
        return DaysText(pieces, decimals);
    }
}

void KSDLL_DurationToString(double value, wchar_t* text, std::int16_t mode, const NumberFormat& format) {
    Kestrona::Text::CopyOut(KSDLL_DurationToTString(value, mode, format), text);
}
