// Dates as numbers and as texts.
#include "date_words.h"
#include "fixtures/program_output.h"
#include "text/weekday_names.h"

#include <kestrona/dates.h>
#include <kestrona/translation_source.h>

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <sstream>
#include <string>

namespace Kestrona {

namespace {

using Testing::DatesOf;
using Date = Testing::DateWords;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr std::array kLayouts{DateLayout::MonthDayYear, DateLayout::DayMonthYear, DateLayout::YearMonthDay};

// One line of date_oracle.py.
struct OracleDay {
    int days;
    int seconds;
    int weekday;
    int week;
    int months;
    int days_after;
    std::array<char, 16> date;  // YYYY-MM-DD
    std::array<char, 16> clock; // HH:MM:SS

    double Value() const { return days + seconds / 86400.0; }

    std::wstring Text(DateLayout layout, bool short_year, bool with_seconds) const {
        const std::string all(date.data());
        const std::string year = all.substr(short_year ? 2 : 0, short_year ? 2 : 4);
        const std::string month = all.substr(5, 2);
        const std::string day = all.substr(8, 2);
        const std::string text = layout == DateLayout::MonthDayYear   ? month + '-' + day + '-' + year
                                 : layout == DateLayout::DayMonthYear ? day + '-' + month + '-' + year
                                                                      : year + '-' + month + '-' + day;
        const std::string whole = text + ' ' + std::string(clock.data(), with_seconds ? 8 : 5);
        return {whole.begin(), whole.end()};
    }
};

void CheckOracleDay(const OracleDay& day, DateLayout layout, bool short_year) {
    const DatesOf user(layout, short_year ? 8 : 10);
    const double value = day.Value();
    ASSERT_EQ(KSDLL_OADateToDow(value), day.weekday);
    ASSERT_EQ(KSDLL_OADateToWoy(value), day.week);
    ASSERT_NEAR(KSDLL_IncrementDateByMonths(value, day.months), day.days_after + day.seconds / 86400.0, 1e-9);
    ASSERT_EQ(KSDLL_TStringFromOADate(value, true, short_year), day.Text(layout, short_year, true));
    ASSERT_NEAR(TimeToOADate(OADateToTime(value)), value, 1e-10);
    if (day.days == -1 && day.seconds < 60) {
        return; // the minute whose beginning is the value that stands for no date
    }

    const std::wstring text = KSDLL_OADateToTString(value, false);
    ASSERT_EQ(text, day.Text(layout, short_year, false));
    // A year of two digits means 1969 to 2068, so texts of other years come back as another one, but as good a date.
    double read = kNan;
    ASSERT_EQ(KSDLL_StringToOADate(&read, text), 0) << ::testing::PrintToString(text);
    const bool readable = !short_year || (value >= 25204.0 && value < 61729.0);
    ASSERT_EQ(std::abs(read - value) < 60.0 / 86400.0, readable) << ::testing::PrintToString(text);
}

TEST_F(Date, EveryDayIsWhatAnotherCalendarSays) {
    std::istringstream lines(Fixtures::OutputOf("python3 '" KESTRONA_SOURCE_DIR "/tests/text/date_oracle.py' 2>&-"));
    std::size_t count = 0;
    OracleDay day{};
    for (std::string line; std::getline(lines, line); ++count) {
        ASSERT_EQ(std::sscanf(line.c_str(), "%d %d %d %d %d %d %15s %15s", &day.days, &day.seconds, &day.weekday,
                              &day.week, &day.months, &day.days_after, day.date.data(), day.clock.data()),
                  8);
        ASSERT_NO_FATAL_FAILURE(CheckOracleDay(day, kLayouts[count % 3], count / 3 % 2 == 0)) << line;
    }
    EXPECT_EQ(count, 292560U) << "python3 gives the days to compare with; scripts/bootstrap installs it";
}

TEST_F(Date, EndsOfTheCalendarHold) {
    struct Case {
        double value;
        const wchar_t* text;
        std::int32_t weekday;
        std::int32_t week;
    };

    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const DatesOf american(DateLayout::MonthDayYear);
    for (const Case& c : {Case{-182619.0, L"01-01-1400 00:00:00", 3, 1}, Case{-kInfinity, L"01-01-1400 00:00:00", 3, 1},
                          Case{0.0, L"12-30-1899 00:00:00", 6, 52}, Case{-1.5, L"12-28-1899 12:00:00", 4, 52},
                          Case{kNan, L"12-30-1899 00:00:00", 6, 52}, Case{2958465.0, L"12-31-9999 00:00:00", 5, 52},
                          Case{1e300, L"12-31-9999 23:59:59", 5, 52}}) {
        EXPECT_EQ(KSDLL_TStringFromOADate(c.value, true, false), c.text) << c.value;
        EXPECT_EQ(KSDLL_OADateToDow(c.value), c.weekday) << c.value;
        EXPECT_EQ(KSDLL_OADateToWoy(c.value), c.week) << c.value;
    }
    EXPECT_EQ(TimeToOADate(boost::posix_time::ptime(boost::posix_time::pos_infin)), -1.0);
    EXPECT_EQ(TimeToOADate(boost::posix_time::ptime()), -1.0);
}

TEST_F(Date, MoreThanHalfASecondCountsAsTheNextOne) {
    const DatesOf german(DateLayout::DayMonthYear, 8, L".");
    const auto shown = [](std::int32_t milliseconds) {
        return KSDLL_TStringFromOADate(44197.0 + milliseconds / 86400000.0, true, true);
    };
    EXPECT_EQ(shown(500), L"01-01-21 00.00.00");
    EXPECT_EQ(shown(501), L"01-01-21 00.00.01");
    EXPECT_EQ(shown(86399501), L"02-01-21 00.00.00");
}

TEST_F(Date, StepsStopAtTheEndsOfTheCalendar) {
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(KSDLL_IncrementDateByMonths(44255.25, 1), 44286.25); // 28 February to 31 March 2021
    EXPECT_EQ(KSDLL_IncrementDateByYears(44255.25, 3), 45351.25);  // to 29 February 2024
    EXPECT_EQ(KSDLL_IncrementDateByYears(45351.0, 1), 45716.0);    // and from there to 28 February 2025
    EXPECT_EQ(KSDLL_IncrementDateByMonths(-182588.0, -1), -182619.0);
    for (const double value : {-182619.0, 0.0, 44255.25, 2958465.5}) {
        for (const std::int32_t step : {kMost, kLeast, 200000, -200000}) {
            EXPECT_EQ(KSDLL_IncrementDateByMonths(value, step), value);
            EXPECT_EQ(KSDLL_IncrementDateByYears(value, step), value);
        }
    }
    EXPECT_EQ(KSDLL_IncrementDateByMonths(-182619.0, -1), -182619.0);
    EXPECT_EQ(KSDLL_IncrementDateByMonths(2958465.0, 1), 2958465.0);
}

TEST_F(Date, PiecesOutOfRangeCarry) {
    struct Case {
        SimpleDateTime pieces;
        SimpleDateTime normal;
    };

    for (const Case& c :
         {Case{{2021, 2, 31, 0, 0, 0}, {2021, 3, 3, 0, 0, 0}}, Case{{2020, 12, 31, 23, 59, 60}, {2021, 1, 1, 0, 0, 0}},
          Case{{1399, 12, 32, 0, 0, 0}, {1400, 1, 1, 0, 0, 0}}, Case{{2021, 1, 1, 24, 60, 3600}, {2021, 1, 2, 2, 0, 0}},
          Case{{1900, 3, 1, 0, 0, -1}, {1900, 2, 28, 23, 59, 59}},
          Case{{1500, 65535, 65535, 0, 0, 0}, {7140, 8, 4, 0, 0, 0}}}) {
        SimpleDateTime pieces = c.pieces;
        SimpleDateTime normal = c.normal;
        EXPECT_EQ(SimpleDateTimeToOADate(&pieces), SimpleDateTimeToOADate(&normal));
        const auto members = [](const SimpleDateTime& p) {
            return std::array<std::int32_t, 6>{p.year, p.month, p.day, p.hour, p.minute, p.second};
        };
        EXPECT_EQ(members(pieces), members(c.normal));
        EXPECT_EQ(members(normal), members(c.normal));
    }
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    for (SimpleDateTime none :
         {SimpleDateTime{2021, 0, 1, 0, 0, 0}, SimpleDateTime{2021, 1, 0, 24, 0, 0},
          SimpleDateTime{1399, 12, 31, 0, 0, 0}, SimpleDateTime{9999, 12, 31, 24, 0, 0},
          SimpleDateTime{65535, 65535, 65535, kMost, kMost, kMost}, SimpleDateTime{9000, 1, 1, kMost, kMost, kMost},
          SimpleDateTime{1400, 1, 1, -kMost - 1, -kMost - 1, -kMost - 1}}) {
        const std::int32_t hour = none.hour;
        EXPECT_EQ(SimpleDateTimeToOADate(&none), -1.0);
        EXPECT_EQ(none.hour, hour);
    }
}

TEST_F(Date, PatternsAndTextsFollowTheLocale) {
    struct Case {
        DateLayout layout;
        std::int32_t length;
        const wchar_t* pattern;
        const wchar_t* text;
    };

    for (const Case& c :
         {Case{DateLayout::MonthDayYear, 10, L"MM-DD-YYYY", L"02-01-2019 13 h 05"},
          Case{DateLayout::DayMonthYear, 8, L"DD-MM-YY", L"01-02-19 13 h 05"},
          Case{DateLayout::YearMonthDay, 8, L"YY-MM-DD", L"19-02-01 13 h 05"},
          Case{DateLayout::Unknown, 10, L"", L" 13 h 05"}, Case{static_cast<DateLayout>(3), 8, L"", L" 13 h 05"}}) {
        const DatesOf user(c.layout, c.length, L" h ");
        const double value = 43497.0 + 785 / 1440.0;
        std::array<wchar_t, 64> buffer{};
        KSDLL_GetTimeFormat(buffer.data());
        EXPECT_EQ(std::wstring(buffer.data()), c.pattern);
        EXPECT_EQ(KSDLL_OADateToTString(value, false), c.text);
        KSDLL_StringFromOADate(value, buffer.data());
        EXPECT_EQ(std::wstring(buffer.data()), c.text);
        DateLayout layout{};
        std::int32_t length = 0;
        GetFormatInformation(&layout, nullptr);
        GetFormatInformation(nullptr, &length);
        EXPECT_EQ(layout, c.layout);
        EXPECT_EQ(length, c.length);
    }
}

TEST_F(Date, TheWordForUnsetStandsForMinusOne) {
    const DatesOf german(DateLayout::DayMonthYear);
    std::array<wchar_t, 64> buffer{};
    KSDLL_OADateToString(-1.0, buffer.data(), true);
    EXPECT_EQ(std::wstring(buffer.data()), L"Unbestimmt");
    EXPECT_EQ(KSDLL_OADateToTString(kNan, false), L"Unbestimmt");
    EXPECT_EQ(KSDLL_TStringFromOADate(-1.0, false, false), L"29-12-1899 00:00");
    KSDLL_StringFromOADate(-1.0, buffer.data());
    EXPECT_EQ(std::wstring(buffer.data()), L"29-12-1899 00:00");

    EXPECT_TRUE(IsUnspecifiedText(L"unBESTIMMT", true));
    EXPECT_FALSE(IsUnspecifiedText(L"unBESTIMMT", false));
    EXPECT_TRUE(IsUnspecifiedText(L"Unbestimmt", false));
    EXPECT_FALSE(IsUnspecifiedText(L"U", true));
    EXPECT_FALSE(IsUnspecifiedText(L"", true));
    messages.texts.erase(0x698a);
    EXPECT_FALSE(IsUnspecifiedText(L"", true));
    EXPECT_FALSE(IsUnspecifiedText(L"Unbestimmt", true));
}

TEST_F(Date, WeekdaysHaveNamesOfFourKinds) {
    using Text::WeekdayKind;
    using Text::WeekdayName;
    constexpr double kWednesday = 43586.75;
    std::array<wchar_t, 64> buffer{};
    EXPECT_EQ(KSDLL_OADateToDayOfWeekString(kWednesday), L"am Mittwoch");
    KSDLL_OADateToTdow(kWednesday, buffer.data());
    EXPECT_EQ(std::wstring(buffer.data()), L"Mi");
    EXPECT_EQ(WeekdayName(6, WeekdayKind::Duration), L"Samstag");
    EXPECT_EQ(WeekdayName(3, WeekdayKind::Fixed), L"Wedday");
    EXPECT_EQ(WeekdayName(7, WeekdayKind::Fixed), L"");
    EXPECT_EQ(WeekdayName(-1, WeekdayKind::Duration), L"");
    EXPECT_EQ(WeekdayName(0, static_cast<WeekdayKind>(4)), L"");
}

} // namespace

} // namespace Kestrona
