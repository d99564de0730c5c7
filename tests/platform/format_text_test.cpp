#include "platform/format_text.h"

#include "platform/foreign_locale.h"
#include "platform/random_text.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <limits>
#include <random>

namespace Kestrona::Platform {
namespace {

using Testing::RandomSource;
using Testing::WidenAscii;

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
    for (const wchar_t* unparsable :
         {L"50%", L"%", L"%1$s %s", L"%1000000000s", L"%9999999999$s", L"%.5000lf", L"%-_08lf", L"%T%%s %s"}) {
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

TEST(FormatText, SurvivesRandomFormats) {
    const std::vector<std::wstring> pieces{L"%",  L"%",   L"s", L"d",  L"li", L"lf", L"c", L"x",   L"1$",
                                           L"2$", L"9$",  L"1", L"99", L"0",  L".",  L"*", L"-",   L"+",
                                           L" ",  L"|",   L"#", L"'",  L"n",  L"t",  L"T", L"20t", L"h",
                                           L"e",  L"%1%", L"_", L"=",  L"q",  L"<",  L"(", L"L",   L"\x1d11e"};
    RandomSource random(32);
    for (int round = 0; round < 30000; ++round) {
        const std::wstring format = random.Join(pieces, 10);
        const std::wstring text = FormatText(format, L"text", std::int32_t{-7}, 2.5, L'c', UINT64_MAX);
        ASSERT_LE(text.size(), 10000U) << ::testing::PrintToString(format);
        if (format.find(L'%') == std::wstring::npos) {
            ASSERT_EQ(text, format);
        }
    }
}

} // namespace
} // namespace Kestrona::Platform
