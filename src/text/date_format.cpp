// Implements: the texts of dates.
#include "platform/locale_dates.h"
#include "text/copy_out.h"
#include "text/date_messages.h"
#include "text/digits.h"

#include <kestrona/dates.h>
#include <kestrona/services.h>

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <cmath>

using Kestrona::DateLayout;
using Kestrona::Platform::LocaleDates;
using Kestrona::Platform::UserLocaleDates;
using Kestrona::Text::AppendTwoDigits;
using Kestrona::Text::CopyOut;

namespace {

constexpr wchar_t kDateSeparator = L'-';
constexpr double kUnsetDate = -1.0;
constexpr std::int32_t kLongLength = 10;

bool HasShortYear(const LocaleDates& locale) {
    return locale.length != kLongLength;
}

// The three pieces in the order of the layout; nothing for an unknown layout.
template <typename Append>
void AppendInOrder(DateLayout layout, std::wstring& text, const Append& year, const Append& month, const Append& day) {
    const auto append = [&text](const Append& first, const Append& second, const Append& third) {
        first(text);
        text += kDateSeparator;
        second(text);
        text += kDateSeparator;
        third(text);
    };
    switch (layout) {
    case DateLayout::MonthDayYear:
        return append(month, day, year);
    case DateLayout::DayMonthYear:
        return append(day, month, year);
    case DateLayout::YearMonthDay:
        return append(year, month, day);
    case DateLayout::Unknown:
        return;
    }
}

struct TwoDigits {
    std::int64_t value;

    void operator()(std::wstring& text) const { AppendTwoDigits(text, value); }
};

struct Letters {
    const wchar_t* letters;

    void operator()(std::wstring& text) const { text += letters; }
};

} // namespace

void GetFormatInformation(DateLayout* layout, std::int32_t* length) {
    const LocaleDates& locale = UserLocaleDates();
    if (layout != nullptr) {
        *layout = locale.layout;
    }
    if (length != nullptr) {
        *length = locale.length;
    }
}

std::wstring KSDLL_GetTimeFormatT() {
    const LocaleDates& locale = UserLocaleDates();
    std::wstring pattern;
    AppendInOrder(locale.layout, pattern, Letters{HasShortYear(locale) ? L"YY" : L"YYYY"}, Letters{L"MM"},
                  Letters{L"DD"});
    return pattern;
}

void KSDLL_GetTimeFormat(wchar_t* text) {
    CopyOut(KSDLL_GetTimeFormatT(), text);
}

std::wstring KSDLL_TStringFromOADate(double value, bool include_seconds, bool short_year) {
    constexpr std::int64_t kRounding = 499;
    const LocaleDates& locale = UserLocaleDates();
    const auto time = OADateToTime(value) + boost::posix_time::milliseconds(kRounding);
    const auto date = time.date().year_month_day();
    const auto time_of_day = time.time_of_day();

    std::wstring text;
    text.reserve(32);
    AppendInOrder(locale.layout, text, TwoDigits{short_year ? date.year % 100 : +date.year}, TwoDigits{date.month},
                  TwoDigits{date.day});
    text += L' ';
    AppendTwoDigits(text, time_of_day.hours());
    text += locale.time_separator;
    AppendTwoDigits(text, time_of_day.minutes());
    if (include_seconds) {
        text += locale.time_separator;
        AppendTwoDigits(text, time_of_day.seconds());
    }
    return text;
}

void KSDLL_StringFromOADate(double value, wchar_t* text) {
    CopyOut(KSDLL_TStringFromOADate(value, IncludeSecondsGlobally(), HasShortYear(UserLocaleDates())), text);
}

std::wstring KSDLL_OADateToTString(double value, bool include_seconds) {
    if (value == kUnsetDate || std::isnan(value)) {
        return MessageManager::getInstance()->GetMessage(Kestrona::Text::kUnsetWord);
    }
    return KSDLL_TStringFromOADate(value, include_seconds, HasShortYear(UserLocaleDates()));
}

void KSDLL_OADateToString(double value, wchar_t* text, bool include_seconds) {
    CopyOut(KSDLL_OADateToTString(value, include_seconds), text);
}
