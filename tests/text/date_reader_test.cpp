// Typed dates and times of day.
#include "date_words.h"

#include <kestrona/dates.h>
#include <kestrona/durations.h>

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

namespace Kestrona {

namespace {

using Testing::DatesOf;
using DateReader = Testing::DateWords;
using TimeOfDay = Testing::DateWords;

constexpr auto kMdy = DateLayout::MonthDayYear;
constexpr auto kDmy = DateLayout::DayMonthYear;
constexpr auto kYmd = DateLayout::YearMonthDay;
constexpr double kUntouched = 4711.0;

struct Typed {
    DateLayout layout;
    const wchar_t* text;
    std::int32_t result;
    double value = kUntouched;
};

void Check(const Typed& typed, std::int32_t length = 10) {
    const DatesOf user(typed.layout, length);
    double value = kUntouched;
    EXPECT_EQ(KSDLL_StringToOADate(&value, typed.text), typed.result) << ::testing::PrintToString(typed.text);
    EXPECT_DOUBLE_EQ(value, typed.value) << ::testing::PrintToString(typed.text);
}

TEST_F(DateReader, TakesTheOrderOfTheLocaleAndAnySeparator) {
    constexpr double kSecondOfDecember = 44532.0;
    for (const Typed& typed :
         {Typed{kMdy, L"12-02-2021", 0, kSecondOfDecember}, Typed{kDmy, L"02-12-2021", 0, kSecondOfDecember},
          Typed{kYmd, L"2021-12-02", 0, kSecondOfDecember}, Typed{kYmd, L"21-12-2", 0, kSecondOfDecember},
          Typed{kDmy, L"2 - 12 x 2021", 0, kSecondOfDecember},
          Typed{kDmy, L"2-12-2021 6:00", 0, kSecondOfDecember + 0.25},
          Typed{kDmy, L"2-12-2021 6 h 00 and more", 0, kSecondOfDecember + 0.25},
          Typed{kDmy, L"2-12-2021 6.00.36", 0, kSecondOfDecember + 0.25 + 36 / 86400.0},
          Typed{kDmy, L"2-12-2021 18", 0, kSecondOfDecember + 0.75}}) {
        Check(typed);
    }
}

TEST_F(DateReader, YearsOfTwoDigitsMeanTheYearsAround2000) {
    Check({kDmy, L"01-01-68", 0, 61363.0});
    Check({kDmy, L"01-01-69", 0, 25204.0});
    Check({kDmy, L"01-01-00", 0, 36526.0});
    Check({kDmy, L"01-01-99", 0, 36161.0});
    // With two digits a year beyond them would be shown as another one.
    Check({kDmy, L"01-01-2068", 0, 61363.0}, 8);
    Check({kDmy, L"01-01-2069", 1, 61729.0}, 8);
    Check({kDmy, L"01-01-1968", 1, 24838.0}, 8);
}

TEST_F(DateReader, DatesThatDoNotExistComeDownToOneThatDoes) {
    for (const Typed& typed : {Typed{kDmy, L"31-02-2021", 1, 44258.0}, Typed{kDmy, L"01-12-2021 24:00", 1, 44532.0},
                               Typed{kDmy, L"01-12-2021 23:59:60", 1, 44532.0}, Typed{kDmy, L"12-2021", 1, 98019.0},
                               Typed{kDmy, L"29-12-1899", 1, -1.0}, Typed{kDmy, L"29-12-1899 12:00", 0, -0.5}}) {
        Check(typed);
    }
}

TEST_F(DateReader, TextsThatAreNoDateChangeNothing) {
    const std::wstring digits(1000000, L'9');
    const std::wstring blanks(1000000, L' ');
    for (const wchar_t* text : {L"", L"5", L"00-02-2021", L"01-00-2021", L"01-01-1399", L"01-01-10000", L"01.12.2021",
                                L"01-12.2021", L"31--02-2021", L"-1-02-2021", L"01-70000-2021", L"01-12-2021 -5:00",
                                L"01-12-2021 5 30", L"01-12-2021 70000:00", L"31-12-9999 24:00", L"\xd800-01-2021",
                                L"Unbestimm", digits.c_str(), blanks.c_str()}) {
        Check({kDmy, text, -1});
    }
    for (const wchar_t* text : {L"01-12-2021", L"2021-12-01"}) {
        Check({DateLayout::Unknown, text, -1});
    }
    Check({kDmy, L"unbestimmt", 0, -1.0});

    const DatesOf german(kDmy);
    double value = kUntouched;
    EXPECT_EQ(KSDLL_StringToOADate(&value, std::wstring(L"01\0"
                                                        L"12\0"
                                                        L"2021",
                                                        10)),
              0);
    EXPECT_EQ(value, 44531.0);
}

TEST_F(TimeOfDay, EveryMinuteIsShownAndReadBack) {
    for (std::int32_t minute = 0; minute < 1440; ++minute) {
        const std::wstring tail = std::to_wstring(100 + minute % 60).substr(1);
        const std::wstring expected = std::to_wstring(minute / 60) + L":" + tail;
        for (const std::int32_t day : {0, 1, 44197}) {
            ASSERT_EQ(KSDLL_TimeToTString(day + minute / 1440.0), expected);
        }
        double value = kUntouched;
        ASSERT_EQ(KSDLL_StringToTime(&value, expected.c_str()), 0);
        ASSERT_DOUBLE_EQ(value, minute / 1440.0);
    }
    EXPECT_EQ(KSDLL_TimeToTString(-1.0), L"Unbestimmt");
    EXPECT_EQ(KSDLL_TimeToTString(std::nan("")), L"Unbestimmt");
    EXPECT_EQ(KSDLL_TimeToTString(1e300), L"23:59");
}

TEST_F(TimeOfDay, ReadsHoursAndMinutesOfOneDay) {
    struct Case {
        const wchar_t* text;
        std::optional<double> value;
    };

    const std::wstring long_separator = L"6" + std::wstring(1000000, L'x') + L"30";
    for (const Case& c : {Case{L"24:00", 1.0}, Case{L"24:01", {}}, Case{L"23:60", {}}, Case{L"6", 0.25},
                          Case{L" 6 Uhr 30", 6.5 / 24}, Case{L"6--30", 6.5 / 24}, Case{L"-6:30", {}}, Case{L"abc", {}},
                          Case{L"", {}}, Case{L":30", {}}, Case{L"4294967302:00", {}}, Case{L"UNBESTIMMT", -1.0},
                          Case{long_separator.c_str(), 6.5 / 24}, Case{nullptr, {}}}) {
        double value = kUntouched;
        EXPECT_EQ(KSDLL_StringToTime(&value, c.text), c.value ? 0 : 1) << ::testing::PrintToString(c.text);
        EXPECT_DOUBLE_EQ(value, c.value.value_or(kUntouched)) << ::testing::PrintToString(c.text);
    }
}

} // namespace

} // namespace Kestrona
