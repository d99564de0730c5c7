#include "fuzz.h"
#include "platform/locale_dates.h"

#include <kestrona/dates.h>
#include <kestrona/durations.h>

#include <array>

// The readers of typed dates and times of day. The first byte chooses the user's locale; the rest is the text in UTF-8.
// What was read is shown and read again.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;

constexpr double kUntouched = 4711.25;
constexpr double kUnset = -1.0;
constexpr std::int32_t kGood = 0;

void ChooseLocale(std::uint8_t choice) {
    constexpr std::array kLayouts{DateLayout::MonthDayYear, DateLayout::DayMonthYear, DateLayout::YearMonthDay,
                                  DateLayout::Unknown};
    const std::array<const wchar_t*, 4> separators{L":", L".", L" h ", L"-"};
    Platform::OverrideLocaleDates({kLayouts[choice & 3U], (choice & 4U) != 0 ? 8 : 10, separators[choice >> 3U & 3U]});
}

// A year of two digits means 1969 to 2068, so only dates of these years come back as themselves. The others come back
// as a date with the same text.
bool ComesBack(double value) {
    constexpr double kBeginningOf1969 = 25204.0;
    constexpr double kBeginningOf2069 = 61729.0;
    return Platform::UserLocaleDates().length == 10 || value == kUnset ||
           (value >= kBeginningOf1969 && value < kBeginningOf2069);
}

void CheckDate(const std::wstring& text) {
    double value = kUntouched;
    const std::int32_t result = KSDLL_StringToOADate(&value, text);
    if (result == -1) {
        Require(value == kUntouched);
        return;
    }
    Require(result == kGood || result == 1);
    Require(value >= -182619.0 && value < 2958466.0);

    const std::wstring shown = KSDLL_OADateToTString(value, true);
    double again = kUntouched;
    Require(KSDLL_StringToOADate(&again, shown) == kGood);
    Require(KSDLL_OADateToTString(again, true) == shown);
    Require((again == value) || !ComesBack(value));
}

void CheckTime(const std::wstring& text) {
    double value = kUntouched;
    const std::int32_t result = KSDLL_StringToTime(&value, text.c_str());
    Require(result == kGood || (result == 1 && value == kUntouched));
    if (result != kGood) {
        return;
    }
    Require(value == kUnset || (value >= 0.0 && value <= 1.0));
    double again = kUntouched;
    Require(KSDLL_StringToTime(&again, KSDLL_TimeToTString(value).c_str()) == kGood);
    Require(again == (value == 1.0 ? 0.0 : value)); // the end of a day shows as the beginning of the next
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool installed = Words::Install();
    Require(installed);
    if (size == 0) {
        return 0;
    }
    ChooseLocale(data[0]);
    const std::wstring text = TextOf(data + 1, size - 1);
    CheckDate(text);
    CheckTime(text);
    return 0;
}
