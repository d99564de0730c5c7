#include "platform/locale_dates.h"

#include <gtest/gtest.h>

#include <cstdlib>

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
    class Variable {
    public:
        Variable(const char* name, const char* value)
            : name_(name),
              before_(std::getenv(name) ? std::getenv(name) : "") {
            setenv(name, value, 1);
        }

        ~Variable() { before_.empty() ? unsetenv(name_) : setenv(name_, before_.c_str(), 1); }

    private:
        const char* name_;
        std::string before_;
    };

    const Variable all("LC_ALL", "");
    const Variable language("LANG", "fi_FI.UTF-8");
    ForgetLocaleDates();
    {
        const Variable time("LC_TIME", "sv_SE.UTF-8");
        EXPECT_EQ(UserLocaleDates().layout, DateLayout::YearMonthDay);
    }
    EXPECT_EQ(UserLocaleDates().layout, DateLayout::YearMonthDay);
    ForgetLocaleDates();
    const Variable time("LC_TIME", "");
    EXPECT_EQ(UserLocaleDates().time_separator, L".");
    OverrideLocaleDates({DateLayout::MonthDayYear, 8, L"a very long one"});
    EXPECT_EQ(UserLocaleDates().time_separator, L"a very l");
    ForgetLocaleDates();
}

} // namespace
} // namespace Kestrona::Platform
