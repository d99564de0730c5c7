// Numbers as texts.
#include "fixtures/program_output.h"
#include "platform/foreign_locale.h"
#include "text/number_format.h"

#include <kestrona/classification_readers.h>
#include <kestrona/value_text.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <string_view>

namespace Kestrona {

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::wstring Shown(const std::wstring& classification, double value) {
    return Text::FormatNumber(MatchFormat(classification), value);
}

// One line of number_oracle.py.
void CheckOracleLine(const std::string& line) {
    const std::size_t value = line.find('\t') + 1;
    const std::size_t text = line.find('[', value) + 1;
    const std::size_t end = line.rfind(']');
    ASSERT_TRUE(value != 0 && text != 0 && end != std::string::npos) << line;
    const std::wstring classification(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(value) - 1);
    const std::wstring expected(line.begin() + static_cast<std::ptrdiff_t>(text),
                                line.begin() + static_cast<std::ptrdiff_t>(end));
    ASSERT_EQ(Shown(classification, std::strtod(line.c_str() + value, nullptr)), expected) << line;
}

TEST(Number, EveryFormatShowsWhatAnotherFormatterShows) {
    const Testing::ForeignLocale foreign;
    std::istringstream lines(Fixtures::OutputOf("python3 '" KESTRONA_SOURCE_DIR "/tests/text/number_oracle.py' 2>&-"));
    std::size_t count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        ASSERT_NO_FATAL_FAILURE(CheckOracleLine(line));
    }
    EXPECT_GT(count, 40000U) << "python3 gives the texts to compare with; scripts/bootstrap installs it";
}

TEST(Number, FormatsThatAreNoneShowTwoDecimals) {
    for (const wchar_t* text : {L"FORMAT(.2l)", L"FORMAT(%)", L"FORMAT(8.2%)", L"FORMAT(2$.3)", L"FORMAT(.513)",
                                L"FORMAT(MAX 513.1)", L"FORMAT(99999999999999999999)", L"FORMAT(8.2", L"FORMAT"}) {
        EXPECT_EQ(Shown(text, 2.5), L"2.50") << ::testing::PrintToString(text);
    }
}

TEST(Number, LettersOfAFormatAreHonoured) {
    struct Case {
        const wchar_t* classification;
        double value;
        const wchar_t* text;
    };

    for (const Case& c : {Case{L"FORMAT(8.2lf)", 2.5, L"    2.50"}, Case{L"FORMAT(8.2lf)", 2.0, L"    2.00lf"},
                          Case{L"FORMAT(.2l)", 2.0, L"2.00"}, Case{L"FORMAT(.3le)", 2.5, L"2.500e+00"},
                          Case{L"FORMAT(.1lf%%)", 2.5, L"2.5%"}, Case{L"FORMAT(8lf)", 2.0, L"2.000000"}}) {
        EXPECT_EQ(Shown(c.classification, c.value), c.text) << ::testing::PrintToString(c.classification);
    }
}

// Most of these are no formats. Whatever they are, a text of bounded length comes back.
TEST(Number, HostileFormatsShowSomething) {
    constexpr std::wstring_view kLetters = L"0123456789..lfeEgaAdiuxXsScCpn%$*+-# '|_=<>hLtT";
    std::mt19937 generator(13);
    for (int round = 0; round < 50000; ++round) {
        NumberFormat format{true, L"", round % 2 == 0};
        for (auto length = generator() % 9; length > 0; --length) {
            format.Format += kLetters[generator() % kLetters.size()];
        }
        for (const double value : {2.0, -2.5, 1e308, kNan}) {
            ASSERT_LE(Text::FormatNumber(format, value).size(), 2000U) << ::testing::PrintToString(format.Format);
        }
    }
}

TEST(Number, WhatIsNoNumberIsPaddedWithBlanks) {
    EXPECT_EQ(Shown(L"FORMAT(06.2)", kNan), L"   nan");
    EXPECT_EQ(Shown(L"FORMAT(MAX 06.2)", -kInfinity), L"  -inf");
    EXPECT_EQ(Shown(L"", kInfinity), L"inf");
}

// The decimals of a value told by integers.
std::wstring Decimal(std::int64_t digits, std::size_t decimals) {
    std::wstring text = std::to_wstring(std::abs(digits));
    if (text.size() <= decimals) {
        text.insert(0, decimals + 1 - text.size(), L'0');
    }
    text.insert(text.size() - decimals, L".");
    text.erase(text.find_last_not_of(L'0') + 1);
    if (text.ends_with(L'.')) {
        text.pop_back();
    }
    return digits < 0 ? L'-' + text : text;
}

TEST(Number, ExpressionsWriteAsManyDecimalsAsThereAre) {
    const Testing::ForeignLocale foreign;
    double scale = 1.0;
    for (std::size_t decimals = 1; decimals <= 4; ++decimals) {
        scale *= 10.0;
        for (std::int64_t digits = -9000; digits <= 9000; ++digits) {
            if (digits != 0) {
                ASSERT_EQ(KSDLL_ParseWriteDoubleT(static_cast<double>(digits) / scale), Decimal(digits, decimals));
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
