#include "data/cell_text.h"

#include "data/exact_cell.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <random>
#include <string>

namespace Kestrona::Tool {
namespace {

/// Days from 30 December 1899 to 1 January 1970.
constexpr double kUnixEpoch = 25569.0;

TEST(CellText, DatesAgreeWithTheCLibraryAndComeBack) {
    for (std::time_t second = -2208000000; second < 4102000000; second += 100003) {
        std::tm parts{};
        gmtime_r(&second, &parts);
        char text[32];
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
        const std::optional<double> days = ParseIsoDate(text);
        ASSERT_TRUE(days) << text;
        const double expected = kUnixEpoch + static_cast<double>(second) / 86400.0;
        if (expected >= 0.0) {
            ASSERT_NEAR(*days, expected, 1e-9) << text;
        }
        std::string shown = text;
        if (shown.ends_with(" 00:00:00")) {
            shown.resize(10);
        }
        ASSERT_EQ(IsoDate(*days), shown);
    }
    for (int day = -693592; day < 2958465; day += 13) {
        ASSERT_EQ(ParseIsoDate(IsoDate(day)), day);
    }
}

TEST(CellText, ExactOnesTellNeighbouringTimesApart) {
    std::mt19937_64 random(4);
    for (int i = 0; i < 20000; ++i) {
        const double days = std::uniform_real_distribution(-300000.0, 300000.0)(random) / (i % 4 == 0 ? 1000.0 : 1.0);
        for (const double value : {days, std::nextafter(days, 1.0e9), std::trunc(days) + 0.9999999999}) {
            std::string problem;
            ASSERT_EQ(ParseCell(ValueText(value, ValueForm::Date), ValueForm::Date, problem), value)
                << ValueText(value, ValueForm::Date) << problem;
        }
    }
    EXPECT_EQ(ValueText(46083.25, ValueForm::Date), "2026-03-02 06:00:00");
    EXPECT_EQ(ValueText(46083.0 + 0.5 / 86400.0, ValueForm::Date), "2026-03-02 00:00:00.5");
    EXPECT_EQ(ValueText(-1.0, ValueForm::Date), "");
}

TEST(CellText, TakesOnlyWhatFitsTheForm) {
    struct Case {
        std::string_view text;
        ValueForm form;
        std::optional<double> expected;
    };

    const Case cases[] = {
        {"12.5", ValueForm::Number, 12.5},
        {" +7 ", ValueForm::Number, 7.0},
        {"1,5", ValueForm::Number, std::nullopt},
        {"nan", ValueForm::Number, std::nullopt},
        {"1e400", ValueForm::Number, std::nullopt},
        {"12", ValueForm::Integer, 12.0},
        {"-2147483648", ValueForm::Integer, -2147483648.0},
        {"2147483648", ValueForm::Integer, std::nullopt},
        {"1.5", ValueForm::Integer, std::nullopt},
        {"yes", ValueForm::Toggle, 1.0},
        {"2", ValueForm::Toggle, std::nullopt},
        {"", ValueForm::Date, -1.0},
        {"2024-02-29", ValueForm::Date, 45351.0},
        {"1899-12-30", ValueForm::Date, 0.0},
        {"1899-12-29T12:00", ValueForm::Date, -1.5},
        {"2026-01-01 24:00", ValueForm::Date, std::nullopt},
        {"2026-01-01 10:0", ValueForm::Date, std::nullopt},
        {"2026-1-1", ValueForm::Date, std::nullopt},
        {"46023.25", ValueForm::Date, 46023.25},
        {"", ValueForm::Reference, -1.0},
    };
    for (const Case& c : cases) {
        std::string problem;
        const std::optional<double> value = ParseCell(c.text, c.form, problem);
        EXPECT_EQ(value, c.expected) << c.text;
        EXPECT_EQ(problem.empty(), c.expected.has_value()) << c.text << ": " << problem;
    }
}

} // namespace
} // namespace Kestrona::Tool
