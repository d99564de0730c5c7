// Dates that the machine gives, and whether times show their seconds.
#include "date_words.h"

#include <kestrona/dates.h>
#include <kestrona/process.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>

namespace Kestrona {

namespace {

using Testing::DatesOf;
using TimeNow = Testing::DateWords;

// India has one offset all the year.
class IndianTime {
public:
    IndianTime() {
        setenv("TZ", "IST-5:30", 1);
        tzset();
    }

    IndianTime(const IndianTime&) = delete;
    IndianTime& operator=(const IndianTime&) = delete;

    ~IndianTime() {
        unsetenv("TZ");
        tzset();
    }
};

TEST_F(TimeNow, RunsInLocalTimeAndCanBeShiftedAndFixed) {
    const IndianTime india;
    const auto expected = [] {
        return 25569.0 + (static_cast<double>(std::time(nullptr)) + 5.5 * 3600) / 86400;
    };
    KSDLL_SetDoubleSv(kSvTimeShift, 2.0);
    const double before = expected() + 2.0;
    const double now = KSDLL_KestronaTime();
    EXPECT_GE(now, before - 1e-8);
    EXPECT_LE(now, expected() + 2.0 + 1.0 / 86400 + 1e-8);
    KSDLL_SetDoubleSv(kSvFixedNow, 44197.5);
    EXPECT_EQ(KSDLL_KestronaTime(), 44197.5);
}

TEST_F(TimeNow, FilesTellWhenTheyWereWritten) {
    namespace fs = std::filesystem;
    const IndianTime india;
    const DatesOf swedish(DateLayout::YearMonthDay);
    const fs::path path = fs::path(testing::TempDir()) / "written_\xc3\xa4.txt";
    std::ofstream(path) << "text";
    const std::wstring wide_path = FromUtf8(path.string());
    constexpr std::chrono::sys_seconds kWritten{std::chrono::seconds(1640981707)}; // 2021-12-31 20:15:07 UTC
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
