#include "fuzz.h"

#include <kestrona/durations.h>

#include <array>
#include <cmath>

// The reader of typed durations. The first byte chooses the kind of duration and the format of its minutes; the rest is
// the text in UTF-8. What was read is shown and read again.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;

constexpr double kUntouched = 4711.25;
constexpr double kUnset = -1.0;
constexpr double kMinute = 1.0 / 1440.0;

// How a duration is shown, and how such a text is read.
struct Form {
    std::int16_t shown;
    DurationConversionMode read;
    double longest; // longer ones are shown as this one
};

constexpr std::array kForms{Form{DurationMode::kDays, DurationConversionMode::Days, 2100000000.0},
                            Form{DurationMode::kDayNumber, DurationConversionMode::DayNumber, 2100000000.0},
                            Form{DurationMode::kHours, DurationConversionMode::Days, 87500000.0},
                            Form{DurationMode::kWeekday, DurationConversionMode::Weekday, 7.0}};

// A format of the minutes, and how far the minutes that it shows may stand from the true ones.
struct Minutes {
    NumberFormat format;
    double rounding;
};

const Minutes& ChooseMinutes(std::uint8_t choice) {
    static const std::array<Minutes, 4> formats{Minutes{{}, 0.005}, Minutes{{true, L".0", false}, 0.5},
                                                Minutes{{true, L"8.3", false}, 0.0005},
                                                Minutes{{true, L"0.1", true}, 0.05}};
    return formats[choice & 3U];
}

void CheckShown(double value, const Form& form, const Minutes& minutes) {
    constexpr double kExact = 1e-6;           // what the largest durations can tell
    constexpr double kFineDuration = 10000.0; // up to here the decimals of minutes are told exactly
    const std::wstring shown = KSDLL_DurationToTString(value, form.shown, minutes.format);
    double again = kUntouched;
    Require(KSDLL_StringToDuration(&again, shown.c_str(), form.read, true) == 0);
    if (value < 0.0) {
        Require(again == kUnset);
        return;
    }
    Require(std::fabs(again - std::fmin(value, form.longest)) <= minutes.rounding * kMinute + kExact);
    if (value < kFineDuration) {
        Require(KSDLL_DurationToTString(again, form.shown, minutes.format) == shown);
    }
}

void CheckText(const std::wstring& text, const Form& form, const Minutes& minutes) {
    double value = kUntouched;
    const std::int32_t result = KSDLL_StringToDuration(&value, text.c_str(), form.read, true);
    Require(result == 0 || (result == -1 && value == kUntouched));
    if (result != 0) {
        return;
    }
    Require(std::isfinite(value) && (form.shown != DurationMode::kWeekday || value <= form.longest));
    CheckShown(value, form, minutes);
    // The precise form is for the eye only.
    Require(!KSDLL_DurationToTString(value, DurationMode::kPrecise, minutes.format).empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool installed = Words::Install();
    Require(installed);
    if (size == 0) {
        return 0;
    }
    const std::wstring text = TextOf(data + 1, size - 1);
    CheckText(text, kForms[data[0] & 3U], ChooseMinutes(data[0] >> 2U & 3U));
    return 0;
}
