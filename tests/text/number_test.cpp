// Numbers as texts.
#include "platform/foreign_locale.h"
#include "text/number_format.h"

#include <kestrona/classification_readers.h>
#include <kestrona/unicode.h>
#include <kestrona/value_text.h>

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace Kestrona {

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::wstring Shown(const std::wstring& classification, double value) {
    return Text::FormatNumber(MatchFormat(classification), value);
}

// As the C library shows it.
std::wstring Expected(const std::string& format, double value) {
    const bool is_maximum = format.starts_with("MAX");
    std::string text = format == "MAX" ? ".2" : format.substr(is_maximum ? 4 : 0);
    const bool is_whole = value >= -0x1p31 && value < 0x1p31 && value == std::trunc(value);
    if (const std::size_t point = text.find('.'); is_maximum && is_whole && point != std::string::npos) {
        text.replace(point, std::string::npos, ".0");
    }
    std::array<char, 1000> shown{};
    std::snprintf(shown.data(), shown.size(), ("%" + text + "f").c_str(), value);
    return FromUtf8(shown.data());
}

TEST(Number, EveryFormatShowsWhatTheCLibraryShows) {
    const Testing::ForeignLocale foreign;
    std::vector<double> values{0.0,
                               -0.0,
                               0.5,
                               1.5,
                               -2.5,
                               0.125,
                               0.375,
                               1e15,
                               -1e22,
                               2147483647.0,
                               -2147483648.,
                               0x1p31,
                               1e-300,
                               5e-324,
                               0.995,
                               9.995,
                               std::numeric_limits<double>::max(),
                               99.995,
                               0x1p53 + 2};
    std::mt19937_64 random(6);
    for (int i = 0; i < 500; ++i) {
        const auto number = static_cast<double>(static_cast<std::int32_t>(random()));
        values.insert(values.end(), {number, number / 100, number / 4096 / 8, std::bit_cast<double>(random())});
    }
    std::erase_if(values, [](double value) { return !std::isfinite(value); });
    for (const char* const format :
         {"8.2", ".2",   "0.3",   "08.3", "-9.1",    "+.2",     "+08.2",  "#.0",     "12",       "0",     "5.",
          "010", "10.0", "30.25", ".17",  "512.500", "MAX 0.3", "MAX .4", "MAX 8.2", "MAX 07.1", "MAX 3", "MAX"}) {
        const std::wstring classification = L"FORMAT(" + FromUtf8(format) + L")";
        for (const double value : values) {
            ASSERT_EQ(Shown(classification, value), Expected(format, value)) << format << ' ' << value;
            ASSERT_EQ(Shown(L"", value), Expected(".2", value)) << value;
        }
    }
}

// Any text as a format is a matter of its fuzz target.
TEST(Number, FormatsThatAreNoneShowTwoDecimalsAndLettersAreHonoured) {
    struct Case {
        const wchar_t* classification;
        double value;
        const wchar_t* text;
    };

    for (const Case& c :
         {Case{L"FORMAT(.2l)", 2.5, L"2.50"}, Case{L"FORMAT(%)", 2.5, L"2.50"}, Case{L"FORMAT(8.2%)", 2.5, L"2.50"},
          Case{L"FORMAT(2$.3)", 2.5, L"2.50"}, Case{L"FORMAT(.513)", 2.5, L"2.50"},
          Case{L"FORMAT(MAX 513.1)", 2.5, L"2.50"}, Case{L"FORMAT(99999999999999999999)", 2.5, L"2.50"},
          Case{L"FORMAT(8.2", 2.5, L"2.50"}, Case{L"FORMAT", 2.5, L"2.50"}, Case{L"FORMAT(8.2lf)", 2.5, L"    2.50"},
          Case{L"FORMAT(8.2lf)", 2.0, L"    2.00lf"}, Case{L"FORMAT(.2l)", 2.0, L"2.00"},
          Case{L"FORMAT(.3le)", 2.5, L"2.500e+00"}, Case{L"FORMAT(.1lf%%)", 2.5, L"2.5%"},
          Case{L"FORMAT(8lf)", 2.0, L"2.000000"}, Case{L"FORMAT(06.2)", kNan, L"   nan"},
          Case{L"FORMAT(MAX 06.2)", -kInfinity, L"  -inf"}, Case{L"", kInfinity, L"inf"}}) {
        EXPECT_EQ(Shown(c.classification, c.value), c.text) << ::testing::PrintToString(c.classification);
    }
}

TEST(Number, ExpressionsWriteAsManyDecimalsAsThereAre) {
    const Testing::ForeignLocale foreign;
    for (int decimals = 1; decimals <= 4; ++decimals) {
        for (int digits = -9000; digits <= 9000; ++digits) {
            const double value = digits / std::pow(10.0, decimals);
            std::wstring expected = Expected("." + std::to_string(decimals), value);
            expected.erase(expected.find_last_not_of(L'0') + 1);
            if (digits % 10 != 0) { // without a whole number, which has no point
                ASSERT_EQ(KSDLL_ParseWriteDoubleT(value), expected);
            }
        }
    }
}

TEST(Number, ExpressionsWriteExtremesBounded) {
    struct Case {
        double value;
        const wchar_t* text;
    };

    for (const Case& c :
         {Case{0.0, L"0"}, Case{2147483648.0, L"2147483648"}, Case{1.0 / 3.0, L"3.33333333333333e-01"},
          Case{3e-10, L"0.0000000003"}, Case{123456789012.5, L"123456789012.5"},
          Case{1e14 + 1.0 / 3.0, L"1.00000000000000e+14"}, Case{kNan, L"nan"}, Case{-kInfinity, L"-inf"}}) {
        EXPECT_EQ(KSDLL_ParseWriteDoubleT(c.value), c.text) << c.value;
    }
    std::array<wchar_t, 320> buffer{};
    KSDLL_ParseWriteDouble(buffer.data(), -std::numeric_limits<double>::max());
    EXPECT_EQ(std::wstring(buffer.data()).size(), 310U);
}

} // namespace

} // namespace Kestrona
