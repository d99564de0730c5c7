// Implements: times of day as text, and back.
#include "platform/scan_wide.h"
#include "text/date_messages.h"
#include "text/digits.h"

#include <kestrona/dates.h>
#include <kestrona/durations.h>
#include <kestrona/services.h>

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <cassert>
#include <cmath>

namespace {

constexpr double kUnset = -1.0;

bool IsTimeOfDay(std::int32_t hours, std::int32_t minutes) {
    const bool in_range = hours >= 0 && hours < 25 && minutes >= 0 && minutes < 60;
    return in_range && (hours < 24 || minutes == 0);
}

} // namespace

std::wstring KSDLL_TimeToTString(double value) {
    if (value == kUnset || std::isnan(value)) {
        return MessageManager::getInstance()->GetMessage(Kestrona::Text::kUnsetWord);
    }
    // Cutting the fraction itself would show 0:26 for 0:27: the value of most minutes lies a little below them.
    const auto time = OADateToTime(value).time_of_day();
    std::wstring text;
    Kestrona::Text::AppendNumber(text, time.hours());
    text += L':';
    Kestrona::Text::AppendTwoDigits(text, time.minutes());
    return text;
}

std::int32_t KSDLL_StringToTime(double* value, const wchar_t* text) {
    assert(value != nullptr);
    constexpr std::int32_t kGood = 0;
    constexpr std::int32_t kNoTime = 1;
    if (text == nullptr) {
        return kNoTime;
    }
    if (IsUnspecifiedText(text, true)) {
        *value = kUnset;
        return kGood;
    }
    std::int32_t hours = 0;
    std::int32_t minutes = 0;
    std::wstring separator;
    const auto scan = Kestrona::Platform::ScanWide(text, L"%ld%[^1234567890]%ld", &hours, &separator, &minutes);
    if (scan.items < 1 || !IsTimeOfDay(hours, minutes)) {
        return kNoTime;
    }
    *value = (minutes / 60.0 + hours) / 24.0;
    return kGood;
}
