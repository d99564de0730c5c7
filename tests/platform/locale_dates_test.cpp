#include "platform/locale_dates.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>

namespace Kestrona::Platform {
namespace {

TEST(LocaleDates, FollowTheLocaleByItsName) {
    struct Case {
        const char* name;
        DateLayout layout;
        const wchar_t* separator;
    };

    for (const Case& c :
         {Case{"en_US.UTF-8", DateLayout::MonthDayYear, L":"}, Case{"en_GB.UTF-8", DateLayout::DayMonthYear, L":"},
          Case{"de_DE.UTF-8@euro", DateLayout::DayMonthYear, L":"}, Case{"it_IT", DateLayout::DayMonthYear, L":"},
          Case{"sv_SE", DateLayout::YearMonthDay, L":"}, Case{"ja_JP", DateLayout::YearMonthDay, L":"},
          Case{"hu-HU", DateLayout::YearMonthDay, L":"}, Case{"fi_FI", DateLayout::DayMonthYear, L"."},
          Case{"fr_CA", DateLayout::YearMonthDay, L" h "}, Case{"ar_EG", DateLayout::DayMonthYear, L":"},
          Case{"th_TH", DateLayout::DayMonthYear, L":"}, Case{"fa_IR", DateLayout::YearMonthDay, L":"},
          Case{"C.UTF-8", DateLayout::MonthDayYear, L":"}, Case{"POSIX", DateLayout::MonthDayYear, L":"},
          Case{"", DateLayout::MonthDayYear, L":"}}) {
        const LocaleDates dates = ReadLocaleDates(c.name);
        EXPECT_EQ(dates.layout, c.layout) << c.name;
        EXPECT_EQ(dates.length, 10) << c.name;
        EXPECT_EQ(dates.time_separator, c.separator) << c.name;
    }
}

TEST(LocaleDates, AnyNameGivesWholeFacts) {
    for (const std::string& name : {std::string(5000, 'x'), std::string("\xff\xfe_@=;"),
                                    std::string("en_US@calendar=x"), std::string("@@@"), std::string("de_DE\0fi", 8)}) {
        const LocaleDates dates = ReadLocaleDates(name);
        EXPECT_NE(dates.layout, DateLayout::Unknown) << name;
        EXPECT_FALSE(dates.time_separator.empty()) << name;
    }
}

TEST(LocaleDates, AreReadOnceFromTheEnvironment) {
    const char* const names[] = {"LC_ALL", "LANG", "LC_TIME"};
    std::map<std::string, std::string> before;
    for (const char* const name : names) {
        before[name] = std::getenv(name) != nullptr ? std::getenv(name) : "";
    }
    setenv("LC_ALL", "", 1);
    setenv("LANG", "fi_FI.UTF-8", 1);
    setenv("LC_TIME", "sv_SE.UTF-8", 1);
    ForgetLocaleDates();
    EXPECT_EQ(UserLocaleDates().layout, DateLayout::YearMonthDay);
    setenv("LC_TIME", "", 1);
    EXPECT_EQ(UserLocaleDates().layout, DateLayout::YearMonthDay);
    ForgetLocaleDates();
    EXPECT_EQ(UserLocaleDates().time_separator, L".");
    OverrideLocaleDates({DateLayout::MonthDayYear, 8, L"a very long one"});
    EXPECT_EQ(UserLocaleDates().time_separator, L"a very l");
    ForgetLocaleDates();
    for (const auto& [name, value] : before) {
        value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
    }
}

} // namespace
} // namespace Kestrona::Platform
