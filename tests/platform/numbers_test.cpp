#include "platform/numbers.h"

#include "platform/foreign_locale.h"
#include "platform/random_text.h"

#include <boost/lexical_cast/try_lexical_convert.hpp>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace Kestrona::Platform {
namespace {

using Testing::RandomSource;
using Testing::WidenAscii;

const std::vector<std::string> kNumberPieces{"0",    "1",     "25",    "9",   ".",  "+",   "-",        "e",
                                             "E",    "x",     "0x",    "p",   "a",  "F",   "inf",      "INFINITY",
                                             "nan",  "NaN(",  ")",     "_",   " ",  "\t",  ",",        "e5",
                                             "e+30", "E-400", "e309",  "0.1", "12", "p-3", "99999999", "1e308",
                                             "4.9",  "e-324", "00000", "i",   "\v", "(q)", "0X1.8",    "123456789.5"};

std::uint64_t Bits(double value) {
    return std::isnan(value) ? 1 : std::bit_cast<std::uint64_t>(value);
}

TEST(ParseDouble, ReadsWhatStrtodReads) {
    RandomSource random(11);
    for (int round = 0; round < 100000; ++round) {
        const std::string text = random.Join(kNumberPieces, 6);
        char* end = nullptr;
        const double expected = std::strtod(text.c_str(), &end);
        std::size_t used = 99;
        const double value = ParseDouble(WidenAscii(text), &used);
        ASSERT_EQ(Bits(value), Bits(expected)) << text;
        ASSERT_EQ(used, static_cast<std::size_t>(end - text.c_str())) << text;
    }
}

TEST(ParseInt32, ReadsWhatStrtollReadsAndClamps) {
    RandomSource random(12);
    const std::vector<std::string> pieces{"0", "7", "12", "2147483647", "2147483648", "-", "+", " ", "\n", "x", "."};
    for (int round = 0; round < 50000; ++round) {
        const std::string text = random.Join(pieces, 4);
        char* end = nullptr;
        const long long expected = std::clamp<long long>(std::strtoll(text.c_str(), &end, 10), INT32_MIN, INT32_MAX);
        std::size_t used = 99;
        ASSERT_EQ(ParseInt32(WidenAscii(text), &used), expected) << text;
        ASSERT_EQ(used, static_cast<std::size_t>(end - text.c_str())) << text;
    }
}

TEST(ParseNumbers, OtherDigitsAndEmbeddedZeroEndTheNumber) {
    std::size_t used = 99;
    EXPECT_EQ(ParseInt32(std::wstring_view(L"1\0"
                                           L"2",
                                           3),
                         &used),
              1);
    EXPECT_EQ(used, 1U);
    EXPECT_EQ(ParseDouble(L"\x0664.5", &used), 0.0);
    EXPECT_EQ(used, 0U);
    EXPECT_EQ(ParseDouble(L"\x2003"
                          L"1"),
              0.0);
    EXPECT_EQ(ParseDouble(std::wstring(100000, L'0') + L"7.5", &used), 7.5);
    EXPECT_EQ(used, 100003U);
}

TEST(TextToDouble, AcceptsWhatAnExactConversionAccepts) {
    for (const wchar_t* good : {L"12.5", L"+5", L".5", L"5.", L"1e5", L"-inf", L"Infinity", L"NaN", L"-0"}) {
        EXPECT_TRUE(TextToDouble(good)) << ::testing::PrintToString(good);
    }
    for (const wchar_t* bad :
         {L" 12.5", L"12.5 ", L"", L"0x10", L"1,5", L"1e400", L"-", L".", L"1e", L"--1", L"infin"}) {
        EXPECT_FALSE(TextToDouble(bad)) << ::testing::PrintToString(bad);
    }
    RandomSource random(13);
    for (int round = 0; round < 100000; ++round) {
        const std::wstring text = WidenAscii(random.Join(kNumberPieces, 5));
        double expected = 0.0;
        const bool accepted = boost::conversion::try_lexical_convert(text, expected);
        const auto value = TextToDouble(text);
        ASSERT_EQ(value.has_value(), accepted) << ::testing::PrintToString(text);
        ASSERT_TRUE(!accepted || Bits(*value) == Bits(expected)) << ::testing::PrintToString(text);
    }
}

TEST(DoubleToText17, PrintsAsPrintfAndComesBack) {
    std::vector<double> values{0.0, -0.0, 5.0, 0.1, 1e21, -1e-300, 123456.789, INFINITY, -INFINITY, NAN, -NAN};
    std::mt19937_64 bits(14);
    for (int i = 0; i < 20000; ++i) {
        values.push_back(std::bit_cast<double>(bits()));
    }
    for (const double value : values) {
        std::array<char, 64> expected{};
        std::snprintf(expected.data(), expected.size(), "%.17g", value);
        ASSERT_EQ(DoubleToText17(value), WidenAscii(expected.data()));
        ASSERT_EQ(Bits(TextToDouble(DoubleToText17(value)).value()), Bits(value));
    }
}

TEST(Numbers, DoNotFollowTheLocaleOfTheProcess) {
    const Testing::ForeignLocale foreign;
    EXPECT_EQ(ParseDouble(L"1234.5"), 1234.5);
    EXPECT_EQ(TextToDouble(L"1234.5"), 1234.5);
    EXPECT_EQ(TextToDouble(L"1.234,5"), std::nullopt);
    EXPECT_EQ(DoubleToText17(1234.5), L"1234.5");
}

TEST(TruncateToInt32, MarksWhatDoesNotFit) {
    struct Case {
        double value;
        std::int32_t expected;
    };

    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr std::array kCases{
        Case{0.0, 0},
        Case{2.9, 2},
        Case{-2.9, -2},
        Case{2147483647.0, INT32_MAX},
        Case{2147483647.9, INT32_MAX},
        Case{2147483648.0, INT32_MIN},
        Case{-2147483648.9, INT32_MIN},
        Case{-2147483649.0, INT32_MIN},
        Case{1e300, INT32_MIN},
        Case{kInfinity, INT32_MIN},
        Case{-kInfinity, INT32_MIN},
        Case{std::numeric_limits<double>::quiet_NaN(), INT32_MIN},
    };
    for (const Case& c : kCases) {
        EXPECT_EQ(TruncateToInt32(c.value), c.expected) << c.value;
    }
}

} // namespace
} // namespace Kestrona::Platform
