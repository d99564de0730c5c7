// Dates as numbers and as texts, and those that the machine gives.
#include "date_words.h"
#include "fixtures/scratch_files.h"
#include "text/weekday_names.h"

#include <kestrona/dates.h>
#include <kestrona/durations.h>
#include <kestrona/process.h>
#include <kestrona/translation_source.h>
#include <kestrona/unicode.h>

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <limits>
#include <optional>
#include <random>
#include <string>

namespace Kestrona {

namespace {

using Testing::DatesOf;
using Date = Testing::DateWords;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr std::array kLayouts{DateLayout::MonthDayYear, DateLayout::DayMonthYear, DateLayout::YearMonthDay};

using namespace std::chrono;

// A day of the standard library's calendar.
struct Day {
    sys_days day;
    int seconds;

    [[nodiscard]] double Value() const { return OaDays(day) + seconds / 86400.0; }

    static int OaDays(sys_days any) { return static_cast<int>((any - sys_days(year(1899) / 12 / 30)).count()); }

    // That of the week's Thursday.
    [[nodiscard]] std::int32_t Week() const {
        const sys_days thursday = day - (weekday(day) - Monday) + days(3);
        return static_cast<std::int32_t>((thursday - sys_days(year_month_day(thursday).year() / 1 / 1)).count() / 7) +
               1;
    }

    // The last day of a month stays the last day.
    [[nodiscard]] sys_days After(months step) const {
        const year_month_day from(day);
        const auto end = (from.year() / from.month() + step) / last;
        const bool is_last = from.day() == (from.year() / from.month() / last).day();
        return is_last || from.day() > end.day() ? sys_days(end) : sys_days(end.year() / end.month() / from.day());
    }

    [[nodiscard]] std::wstring Text(DateLayout layout, bool short_year, bool with_seconds) const {
        const char* const pattern = layout == DateLayout::MonthDayYear   ? "%2$02u-%3$02u-%1$02d %4$02d:%5$02d:%6$02d"
                                    : layout == DateLayout::DayMonthYear ? "%3$02u-%2$02u-%1$02d %4$02d:%5$02d:%6$02d"
                                                                         : "%1$02d-%2$02u-%3$02u %4$02d:%5$02d:%6$02d";
        const year_month_day date(day);
        std::array<char, 32> text{};
        const int size =
            std::snprintf(text.data(), text.size(), pattern, static_cast<int>(date.year()) % (short_year ? 100 : 10000),
                          static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), seconds / 3600,
                          seconds / 60 % 60, seconds % 60);
        return FromUtf8({text.data(), static_cast<std::size_t>(size - (with_seconds ? 0 : 3))});
    }
};

void CheckDay(const Day& day, months step, DateLayout layout, bool short_year) {
    const DatesOf user(layout, short_year ? 8 : 10);
    const double value = day.Value();
    ASSERT_EQ(KSDLL_OADateToDow(value), static_cast<std::int32_t>(weekday(day.day).c_encoding()));
    ASSERT_EQ(KSDLL_OADateToWoy(value), day.Week());
    ASSERT_NEAR(KSDLL_IncrementDateByMonths(value, static_cast<int>(step.count())),
                Day::OaDays(day.After(step)) + day.seconds / 86400.0, 1e-9);
    ASSERT_EQ(KSDLL_TStringFromOADate(value, true, short_year), day.Text(layout, short_year, true));
    ASSERT_NEAR(TimeToOADate(OADateToTime(value)), value, 1e-10);
    if (Day::OaDays(day.day) == -1 && day.seconds < 60) {
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
    std::mt19937 random(6);
    std::size_t count = 0;
    for (sys_days day = year(1600) / 1 / 1; day <= sys_days(year(2400) / 12 / 31); day += days(1), ++count) {
        const Day each{day, static_cast<int>(random() % 86400)};
        const months step(static_cast<int>(random() % 2000) - 1000);
        ASSERT_NO_FATAL_FAILURE(CheckDay(each, step, kLayouts[count % 3], count / 3 % 2 == 0)) << each.Value();
    }
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
    EXPECT_EQ(KSDLL_IncrementDateByYears(44255.25, 3), 45351.25); // from 28 February 2021 to 29 February 2024
    EXPECT_EQ(KSDLL_IncrementDateByYears(45351.0, 1), 45716.0);   // and from there to 28 February 2025
    EXPECT_EQ(KSDLL_IncrementDateByMonths(-182588.0, -1), -182619.0);
    for (const double value : {-182619.0, 0.0, 44255.25, 2958465.5}) {
        for (const std::int32_t step : {kMost, -kMost - 1, 200000, -200000}) {
            EXPECT_EQ(KSDLL_IncrementDateByMonths(value, step), value);
            EXPECT_EQ(KSDLL_IncrementDateByYears(value, step), value);
        }
    }
    EXPECT_EQ(KSDLL_IncrementDateByMonths(-182619.0, -1), -182619.0);
    EXPECT_EQ(KSDLL_IncrementDateByMonths(2958465.0, 1), 2958465.0);
}

TEST_F(Date, PiecesOutOfRangeCarry) {
    const auto members = [](const SimpleDateTime& p) {
        return std::array<std::int32_t, 6>{p.year, p.month, p.day, p.hour, p.minute, p.second};
    };
    for (auto [pieces, normal] : std::initializer_list<std::pair<SimpleDateTime, SimpleDateTime>>{
             {{2021, 2, 31, 0, 0, 0}, {2021, 3, 3, 0, 0, 0}},
             {{2020, 12, 31, 23, 59, 60}, {2021, 1, 1, 0, 0, 0}},
             {{1399, 12, 32, 0, 0, 0}, {1400, 1, 1, 0, 0, 0}},
             {{2021, 1, 1, 24, 60, 3600}, {2021, 1, 2, 2, 0, 0}},
             {{1900, 3, 1, 0, 0, -1}, {1900, 2, 28, 23, 59, 59}},
             {{1500, 65535, 65535, 0, 0, 0}, {7140, 8, 4, 0, 0, 0}}}) {
        const auto expected = members(normal);
        EXPECT_EQ(SimpleDateTimeToOADate(&pieces), SimpleDateTimeToOADate(&normal));
        EXPECT_EQ(members(pieces), expected);
        EXPECT_EQ(members(normal), expected);
    }
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    for (SimpleDateTime none :
         {SimpleDateTime{2021, 0, 1, 0, 0, 0}, SimpleDateTime{2021, 1, 0, 24, 0, 0},
          SimpleDateTime{1399, 12, 31, 0, 0, 0}, SimpleDateTime{9999, 12, 31, 24, 0, 0},
          SimpleDateTime{65535, 65535, 65535, kMost, kMost, kMost}, SimpleDateTime{9000, 1, 1, kMost, kMost, kMost},
          SimpleDateTime{1400, 1, 1, -kMost - 1, -kMost - 1, -kMost - 1}}) {
        const auto before = members(none);
        EXPECT_EQ(SimpleDateTimeToOADate(&none), -1.0);
        EXPECT_EQ(members(none), before);
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
        std::array<wchar_t, 64> buffer{};
        KSDLL_GetTimeFormat(buffer.data());
        EXPECT_EQ(std::wstring(buffer.data()), c.pattern);
        KSDLL_StringFromOADate(43497.0 + 785 / 1440.0, buffer.data());
        EXPECT_EQ(std::wstring(buffer.data()), c.text);
        DateLayout layout{};
        std::int32_t length = 0;
        GetFormatInformation(&layout, nullptr);
        GetFormatInformation(nullptr, &length);
        EXPECT_TRUE(layout == c.layout && length == c.length);
    }
}

TEST_F(Date, TheWordForUnsetStandsForMinusOne) {
    const DatesOf german(DateLayout::DayMonthYear);
    std::array<wchar_t, 64> buffer{};
    KSDLL_OADateToString(-1.0, buffer.data(), true);
    EXPECT_EQ(buffer.data() + KSDLL_OADateToTString(kNan, false), L"UnbestimmtUnbestimmt");
    EXPECT_EQ(KSDLL_TStringFromOADate(-1.0, false, false), L"29-12-1899 00:00");
    EXPECT_TRUE(IsUnspecifiedText(L"unBESTIMMT", true) && IsUnspecifiedText(L"Unbestimmt", false));
    EXPECT_FALSE(IsUnspecifiedText(L"unBESTIMMT", false) || IsUnspecifiedText(L"U", true));
    messages.texts.erase(0x698a);
    EXPECT_FALSE(IsUnspecifiedText(L"", true) || IsUnspecifiedText(L"Unbestimmt", true));
}

TEST_F(Date, WeekdaysHaveNamesOfFourKinds) {
    using Text::WeekdayKind;
    using Text::WeekdayName;
    std::array<wchar_t, 64> buffer{};
    KSDLL_OADateToTdow(43586.75, buffer.data());
    EXPECT_EQ(KSDLL_OADateToDayOfWeekString(43586.75) + buffer.data(), L"am MittwochMi");
    EXPECT_EQ(WeekdayName(6, WeekdayKind::Duration) + WeekdayName(3, WeekdayKind::Fixed), L"SamstagWedday");
    EXPECT_EQ(WeekdayName(7, WeekdayKind::Fixed) + WeekdayName(-1, WeekdayKind::Duration) +
                  WeekdayName(0, static_cast<WeekdayKind>(4)),
              L"");
}

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

TEST_F(Date, TakesTheOrderOfTheLocaleAndAnySeparator) {
    constexpr double kDay = 44532.0;
    for (const Typed& typed :
         {Typed{kMdy, L"12-02-2021", 0, kDay}, Typed{kDmy, L"02-12-2021", 0, kDay}, Typed{kYmd, L"2021-12-02", 0, kDay},
          Typed{kYmd, L"21-12-2", 0, kDay}, Typed{kDmy, L"2 - 12 x 2021", 0, kDay},
          Typed{kDmy, L"2-12-2021 6:00", 0, kDay + 0.25}, Typed{kDmy, L"2-12-2021 6 h 00 and more", 0, kDay + 0.25},
          Typed{kDmy, L"2-12-2021 6.00.36", 0, kDay + 0.25 + 36 / 86400.0},
          Typed{kDmy, L"2-12-2021 18", 0, kDay + 0.75},
          // Years of two digits mean the years around 2000.
          Typed{kDmy, L"01-01-68", 0, 61363.0}, Typed{kDmy, L"01-01-69", 0, 25204.0},
          Typed{kDmy, L"01-01-00", 0, 36526.0},
          // Dates that do not exist come down to one that does.
          Typed{kDmy, L"31-02-2021", 1, 44258.0}, Typed{kDmy, L"01-12-2021 24:00", 1, 44532.0},
          Typed{kDmy, L"01-12-2021 23:59:60", 1, 44532.0}, Typed{kDmy, L"12-2021", 1, 98019.0},
          Typed{kDmy, L"29-12-1899", 1, -1.0}, Typed{kDmy, L"29-12-1899 12:00", 0, -0.5}}) {
        Check(typed);
    }
    // With two digits a year beyond them would be shown as another one.
    Check({kDmy, L"01-01-2068", 0, 61363.0}, 8);
    Check({kDmy, L"01-01-2069", 1, 61729.0}, 8);
    Check({kDmy, L"01-01-1968", 1, 24838.0}, 8);
}

TEST_F(Date, TextsThatAreNoDateChangeNothing) {
    const std::wstring digits(1000000, L'9');
    const std::wstring blanks(1000000, L' ');
    for (const wchar_t* text : {L"", L"5", L"00-02-2021", L"01-00-2021", L"01-01-1399", L"01-01-10000", L"01.12.2021",
                                L"01-12.2021", L"31--02-2021", L"-1-02-2021", L"01-70000-2021", L"01-12-2021 -5:00",
                                L"01-12-2021 5 30", L"01-12-2021 70000:00", L"31-12-9999 24:00", L"\xd800-01-2021",
                                L"Unbestimm", digits.c_str(), blanks.c_str()}) {
        Check({kDmy, text, -1});
    }
    Check({DateLayout::Unknown, L"01-12-2021", -1});
    Check({kDmy, L"unbestimmt", 0, -1.0});

    const DatesOf german(kDmy);
    double value = kUntouched;
    EXPECT_EQ(KSDLL_StringToOADate(&value, std::wstring{L'0', L'1', L'\0', L'1', L'2', L'\0', L'2', L'1'}), 0);
    EXPECT_EQ(value, 44531.0);
}

TEST_F(Date, EveryMinuteOfADayIsShownAndReadBack) {
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

TEST_F(Date, ReadsHoursAndMinutesOfOneDay) {
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

// In India, which has one offset all the year.
class TimeNow : public Date {
protected:
    TimeNow() {
        setenv("TZ", "IST-5:30", 1);
        tzset();
    }

    ~TimeNow() override {
        unsetenv("TZ");
        tzset();
    }
};

TEST_F(TimeNow, RunsInLocalTimeAndCanBeShiftedAndFixed) {
    const auto expected = [] {
        return 25569.0 + (static_cast<double>(std::time(nullptr)) + 5.5 * 3600) / 86400;
    };
    KSDLL_SetDoubleSv(kSvTimeShift, 2.0);
    const double before = expected();
    const double now = KSDLL_KestronaTime() - 2.0;
    EXPECT_GE(now, before - 1e-8);
    EXPECT_LE(now, expected() + 2.0 / 86400); // whole seconds of a clock that may lag behind
    KSDLL_SetDoubleSv(kSvFixedNow, 44197.5);
    EXPECT_EQ(KSDLL_KestronaTime(), 44197.5);
}

TEST_F(TimeNow, FilesTellWhenTheyWereWritten) {
    namespace fs = std::filesystem;
    const DatesOf swedish(DateLayout::YearMonthDay);
    const Testing::ScratchFolder folder;
    const std::string name = "written_\xc3\xa4.txt";
    folder.Write(name, "text");
    const fs::path path(folder.Path(name));
    const std::wstring wide_path = folder.WidePath(name);
    constexpr sys_seconds kWritten{std::chrono::seconds(1640981707)}; // 2021-12-31 20:15:07 UTC
    fs::last_write_time(path, fs::file_time_type::clock::from_sys(kWritten));
    std::array<wchar_t, 64> text{};
    KSDLL_GetFileTime(wide_path.c_str(), text.data());
    EXPECT_EQ(std::wstring(text.data()), L"2022-01-01 01:45");
    EnableIncludeSecondsGlobally();
    KSDLL_GetFileTime(wide_path.c_str(), text.data());
    EXPECT_EQ(std::wstring(text.data()), L"2022-01-01 01:45:07");
    fs::remove(path);
    for (const wchar_t* none : {wide_path.c_str(), L"", L"/", static_cast<const wchar_t*>(nullptr)}) {
        text.fill(L'x');
        KSDLL_GetFileTime(none, text.data());
        EXPECT_EQ(text[0], L'\0');
    }
}

} // namespace

} // namespace Kestrona
