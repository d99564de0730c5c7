// Durations as texts, and back.
#include "date_words.h"
#include "platform/foreign_locale.h"

#include <kestrona/dates.h>
#include <kestrona/durations.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <optional>

namespace Kestrona {

namespace {

using Duration = Testing::DateWords;
using Reading = DurationConversionMode;

constexpr double kUntouched = 4711.0;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::wstring Shown(double value, std::int16_t mode = DurationMode::kDays, const NumberFormat& format = {}) {
    return KSDLL_DurationToTString(value, mode, format);
}

std::optional<double> Read(const wchar_t* text, Reading mode = Reading::Days) {
    double value = kUntouched;
    const std::int32_t result = KSDLL_StringToDuration(&value, text, mode, true);
    EXPECT_EQ(result, value == kUntouched ? -1 : 0) << ::testing::PrintToString(text);
    return result == 0 ? std::optional(value) : std::nullopt;
}

// Whole minutes in each mode, told without floating point.
std::wstring Expected(std::int32_t days, std::int32_t minute, std::int16_t mode) {
    const std::wstring two = std::to_wstring(100 + minute % 60).substr(1);
    const std::wstring clock = std::to_wstring(minute / 60) + L":" + two;
    if (mode == DurationMode::kHours || (mode == DurationMode::kDays && days == 0)) {
        return std::to_wstring(days * 24 + minute / 60) + L" Stunden " + two + L" Minuten";
    }
    return mode == DurationMode::kDayNumber ? L"Tag " + std::to_wstring(days + 1) + L" " + clock
           : mode == DurationMode::kWeekday ? (days < 7 ? Testing::kGermanDays[days] : L"") + (L" " + clock)
                                            : std::to_wstring(days) + (days == 1 ? L" Tag " : L" Tage ") + clock;
}

TEST_F(Duration, EveryMinuteIsShownAndReadBack) {
    const std::map<std::int16_t, Reading> readers{{DurationMode::kDays, Reading::Days},
                                                  {DurationMode::kDayNumber, Reading::DayNumber},
                                                  {DurationMode::kHours, Reading::Days},
                                                  {DurationMode::kWeekday, Reading::Weekday}};
    for (const auto& [mode, reader] : readers) {
        for (const std::int32_t days : {0, 1, 2, 5, 40}) {
            for (std::int32_t minute = 0; minute < 1440; ++minute) {
                const double value = days + minute / 1440.0;
                const std::wstring text = Shown(value, mode);
                ASSERT_EQ(text, Expected(days, minute, mode));
                if (days == 40 && mode == DurationMode::kWeekday) {
                    ASSERT_EQ(Read(text.c_str(), reader), std::nullopt); // no weekday has that number
                } else {
                    ASSERT_NEAR(Read(text.c_str(), reader).value_or(kNan), value, 1e-9);
                }
            }
        }
    }
}

TEST_F(Duration, ShowsWhatTheFormatTells) {
    struct Case {
        double value;
        std::int16_t mode;
        NumberFormat format;
        const wchar_t* text;
    };

    const NumberFormat none;
    const NumberFormat two{true, L".2", false};
    const double half_minute = 30.5 / 1440.0;
    for (const Case& c : {
             Case{2 + half_minute, 2, two, L"48 Stunden 30.50 Minuten"},
             Case{2 + half_minute, 3, {true, L"12.3", false}, L"Dienstag 0:30.500"},
             Case{half_minute, 0, {true, L"0.3", true}, L"0 Stunden 30.500 Minuten"},
             Case{half_minute, 0, {true, L".0", false}, L"0 Stunden 30 Minuten"},
             // Formats that show no number, or another one, count as two decimals or as no rounding at all.
             Case{half_minute, 0, {true, L".2l", false}, L"0 Stunden 30.50 Minuten"},
             Case{half_minute, 0, {true, L"99999999.1", false}, L"0 Stunden 30.50 Minuten"},
             // Rounded minutes fill the hour, the day, the week.
             Case{0.04166666, 0, two, L"1 Stunden 00 Minuten"},
             Case{0.9999999, 0, two, L"1 Tag 0:00"},
             Case{0.9999999, 2, two, L"24 Stunden 00 Minuten"},
             Case{1.9999999, 1, two, L"Tag 3 0:00"},
             Case{6.9999999, 3, two, L"Samstag 24:00"},
             Case{8.0, 3, none, L" 0:00"},
             // Ends.
             Case{1e9, 2, none, L"2100000000 Stunden 00 Minuten"},
             Case{kInfinity, 0, none, L"2100000000 Tage 0:00"},
             Case{-1e-9, 0, none, L"Unbestimmt"},
             Case{kNan, 4, none, L"Unbestimmt"},
             Case{1.5, 9, none, L"1 Tag 12:00"},
         }) {
        EXPECT_EQ(Shown(c.value, c.mode, c.format), c.text) << c.value << " in mode " << c.mode;
    }
}

TEST_F(Duration, ThePreciseModeShowsHundredthsOfSeconds) {
    constexpr double kSecond = 1.0 / 86400.0;
    for (const auto& [value, text] :
         {std::pair{0.0, L" 00.00 Sec"},
          {5.25 * kSecond, L" 05.25 Sec"},
          {65.5 * kSecond, L"01 Minuten  05.50 Sec"},
          {0.5 + 30.25 * kSecond, L"12 Stunden 00 Minuten  30.25 Sec"},
          {1.5 + 5 * kSecond, L"1 Tag 12h 00m 05.00s"},
          {40.25, L"40 Tage 06h 00m 00.00s"},
          // Nothing is rounded before the minutes are cut, so the lost part of a minute shows as sixty seconds.
          {1620 * kSecond, L"26 Minuten  60.00 Sec"}}) {
        EXPECT_EQ(Shown(value, DurationMode::kPrecise), text);
    }
}

TEST_F(Duration, DecimalPointsStayPointsInEveryLocale) {
    const Testing::ForeignLocale foreign;
    const Testing::DatesOf american(DateLayout::MonthDayYear);
    EXPECT_EQ(Shown(1000 + 30.5 / 1440, DurationMode::kDays, {true, L".2", false}), L"1000 Tage 0:30.50");
    EXPECT_EQ(Shown(1000.0, DurationMode::kPrecise), L"1000 Tage 00h 00m 00.00s");
    EXPECT_EQ(Read(L"1.5"), 1.5);
    EXPECT_EQ(KSDLL_TStringFromOADate(0.0, false, false), L"12-30-1899 00:00");
    std::array<wchar_t, 64> buffer{};
    KSDLL_DurationToString(2.5, buffer.data(), DurationMode::kDays, {});
    EXPECT_EQ(std::wstring(buffer.data()), L"2 Tage 12:00");
}

TEST_F(Duration, ReadsWhatUsersType) {
    struct Case {
        const wchar_t* text;
        std::optional<double> value;
        Reading mode = Reading::Days;
    };

    const std::wstring long_word = L"2" + std::wstring(1000000, L'x') + L"12:00";
    const std::wstring long_number(1000000, L'9');
    for (const Case& c : {Case{L"90", 90.0},
                          Case{L"90:30", 90.5 / 24},
                          Case{L"1.5", 1.5},
                          Case{L"6stunden30", 6.5 / 24},
                          Case{L"2 Tage 12", 2.5},
                          Case{L"2 Tage 12 x 30", 2.0 + 12.5 / 24},
                          Case{L"unbestimmt", -1.0},
                          Case{L"", {}},
                          Case{L"Tage 2", {}},
                          Case{L"nan", {}},
                          Case{L"inf Tage", {}},
                          Case{L"2 Tage 12 x 1e999", {}},
                          Case{long_word.c_str(), 2.5},
                          Case{long_number.c_str(), {}},
                          Case{nullptr, {}},
                          Case{L"Tag 3 12:00", 2.5, Reading::DayNumber},
                          Case{L"egal3", 2.0, Reading::DayNumber},
                          Case{L"3 12:00", {}, Reading::DayNumber},
                          Case{L"Tag 1e999", {}, Reading::DayNumber},
                          Case{L"am DIENSTAG um 12 Uhr 30", 2.0 + 12.5 / 24, Reading::Weekday},
                          Case{L"Montag 168:00", 1.0, Reading::Weekday},
                          Case{L"Samstag 24:00", 7.0, Reading::Weekday},
                          Case{L"Montag 1e300:00", std::fmod(1e300 / 24.0 + 1.0, 7.0), Reading::Weekday},
                          Case{L"Unbest 8:00", {}, Reading::Weekday}}) {
        const std::optional<double> value = Read(c.text, c.mode);
        EXPECT_EQ(value.has_value(), c.value.has_value()) << ::testing::PrintToString(c.text);
        EXPECT_NEAR(value.value_or(0.0), c.value.value_or(0.0), 1e-9) << ::testing::PrintToString(c.text);
    }
}

TEST_F(Duration, TheCallersWordsCountWhenThereAreAny) {
    class French : public ITranslationSource {
    public:
        void GetText(std::wstring& out, std::int32_t id) override {
            out = id == 0x69a1 ? L"heures" : id == 0x699b ? L"mardi" : id == 0x698a ? L"inconnu" : L"";
        }
    };

    French french;
    const auto read = [&](const wchar_t* text, Reading mode, bool allow_unspecified) {
        double value = kUntouched;
        KSDLL_StringToDuration(&french, &value, text, mode, allow_unspecified);
        return value;
    };
    EXPECT_EQ(read(L"6 Heures", Reading::Days, true), 0.25);
    EXPECT_EQ(read(L"6 Stunden", Reading::Days, true), 6.0);
    EXPECT_EQ(read(L"MARDI 6:00", Reading::Weekday, true), 2.25);
    EXPECT_EQ(read(L"Sonntag 6:00", Reading::Weekday, true), kUntouched);
    EXPECT_EQ(read(L"Inconnu", Reading::Days, true), -1.0);
    EXPECT_EQ(read(L"Inconnu", Reading::Days, false), kUntouched);

    messages.texts.clear(); // a host without words
    EXPECT_EQ(Read(L"Dienstag 6:00", Reading::Weekday), std::nullopt);
    EXPECT_EQ(Read(L"6 Stunden"), 6.0);
}

} // namespace

} // namespace Kestrona
