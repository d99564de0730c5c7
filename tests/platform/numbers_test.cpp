// Numbers from texts and to texts.
#include "platform/numbers.h"

#include "platform/foreign_locale.h"
#include "platform/format_text.h"
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
    EXPECT_EQ(ParseInt32(std::wstring{L'1', L'\0', L'2'}, &used), 1);
    EXPECT_EQ(used, 1U);
    EXPECT_EQ(ParseDouble(L"\x0664.5", &used), 0.0);
    EXPECT_EQ(used, 0U);
    EXPECT_EQ(ParseDouble(std::wstring(100000, L'0') + L"7.5", &used), 7.5);
    EXPECT_EQ(used, 100003U);
}

TEST(TextToDouble, AcceptsWhatAnExactConversionAccepts) {
    EXPECT_FALSE(TextToDouble(L"0x10") || TextToDouble(L"1e400"));
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
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr std::pair<double, std::int32_t> kCases[] = {{0.0, 0},
                                                          {2.9, 2},
                                                          {-2.9, -2},
                                                          {2147483647.9, INT32_MAX},
                                                          {2147483648.0, INT32_MIN},
                                                          {-2147483648.9, INT32_MIN},
                                                          {-2147483649.0, INT32_MIN},
                                                          {1e300, INT32_MIN},
                                                          {kInfinity, INT32_MIN},
                                                          {-kInfinity, INT32_MIN},
                                                          {std::numeric_limits<double>::quiet_NaN(), INT32_MIN}};
    for (const auto& [value, expected] : kCases) {
        EXPECT_EQ(TruncateToInt32(value), expected) << value;
    }
}

TEST(FormatText, FillsPlaceholdersOfEveryKind) {
    const std::wstring owned = L"\x65e5\x672c";
    const wchar_t* null_text = nullptr;
    EXPECT_EQ(FormatText(L"%s(%li->\"%s\")", L"SUBSTITUTE", std::int32_t{3}, L"Red"), L"SUBSTITUTE(3->\"Red\")");
    EXPECT_EQ(FormatText(L"%3$s%1$02i%3$s%2$02i", std::int32_t{7}, std::int32_t{12}, L"/"), L"/07/12");
    EXPECT_EQ(FormatText(L"%s|%s|%c", owned, null_text, L'\x1d11e'), owned + L"||\x1d11e");
    EXPECT_EQ(FormatText(L"%lld %llu", INT64_MIN, UINT64_MAX), L"-9223372036854775808 18446744073709551615");
    EXPECT_EQ(FormatText(L"%x", std::int32_t{-1}), L"ffffffff");
    EXPECT_EQ(FormatText(L"%-5s|%5s|%.2s", L"ab", L"ab", L"abc"), L"ab   |   ab|ab");
    EXPECT_EQ(FormatText(L"100%%"), L"100%");
}

TEST(FormatText, ATextThatDoesNotFitItsArgumentsStillGivesText) {
    EXPECT_EQ(FormatText(L"", 1, 2), L"");
    EXPECT_EQ(FormatText(L"no place", L"x"), L"no place");
    EXPECT_EQ(FormatText(L"%s and %s", L"one"), L"one and ");
    EXPECT_EQ(FormatText(L"%s", L"one", L"two"), L"one");
    EXPECT_EQ(FormatText(L"%li", L"text"), L"text");
    EXPECT_EQ(FormatText(L"%s", 1.5), L"1.5");
    for (const wchar_t* unparsable : {L"50%", L"%", L"%1$s %s", L"%1000000000s", L"%9999999999$s", L"%.5000lf",
                                      L"%-_08lf", L"%T%%s %s", L"%0n%-5d"}) {
        EXPECT_EQ(FormatText(unparsable, 1.5, L"x"), unparsable);
    }
}

TEST(FormatText, PrintsNumbersAsPrintfWhateverTheLocale) {
    const Testing::ForeignLocale foreign;
    std::mt19937_64 bits(31);
    std::uniform_real_distribution<double> reals(-1e7, 1e7);
    std::array<char, 400> expected{};
    for (int round = 0; round < 2000; ++round) {
        const double real = reals(bits);
        const auto integer = static_cast<std::int32_t>(bits());
        for (const char* format : {"%lf", "%.2lf", "%05.2lf", "%.14le", "%12.3lf", "%-12.0lf", "%+.1lf"}) {
            std::snprintf(expected.data(), expected.size(), format, real);
            ASSERT_EQ(FormatText(WidenAscii(format), real), WidenAscii(expected.data())) << format;
        }
        for (const char* format : {"%i", "%02i", "%12i", "%-12d", "%+d", "%x", "%#X"}) {
            std::snprintf(expected.data(), expected.size(), format, integer);
            ASSERT_EQ(FormatText(WidenAscii(format), integer), WidenAscii(expected.data())) << format;
        }
    }
}

} // namespace
} // namespace Kestrona::Platform
