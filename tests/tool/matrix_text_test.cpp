#include "data/matrix_text.h"

#include <gtest/gtest.h>

namespace Kestrona::Tool {
namespace {

ElementReader ReaderOf(ValueForm form) {
    return [form](std::string_view text, std::string& problem) {
        return ParseCell(text, form, problem);
    };
}

constexpr MatrixSize kList{};
constexpr MatrixSize kRowOfThree{MatrixShape::Row, 1, 3};
constexpr MatrixSize kTwoByThree{MatrixShape::Square, 2, 3};

TEST(MatrixText, ReadsRowAfterRow) {
    struct Case {
        const char* text;
        MatrixSize size;
        ValueForm form;
        std::vector<double> values;
    };

    const Case cases[] = {
        {"4;7;-1;7", kList, ValueForm::Reference, {4, 7, -1, 7}},
        {" 4 ; ;7", kList, ValueForm::Reference, {4, -1, 7}},
        {"2026-01-01;-1", kList, ValueForm::Date, {46023, -1}},
        {"-1", kList, ValueForm::Duration, {-1}},
        {"0.5;1e3;-2", kRowOfThree, ValueForm::Number, {0.5, 1000, -2}},
        {"1;2;3|4;5;6\r", kTwoByThree, ValueForm::Integer, {1, 2, 3, 4, 5, 6}},
    };
    for (const Case& c : cases) {
        std::string problem;
        const auto values = ParseMatrix(c.text, c.size, ReaderOf(c.form), problem);
        ASSERT_TRUE(values) << c.text << ": " << problem;
        EXPECT_EQ(*values, c.values) << c.text;
    }
}

TEST(MatrixText, TellsWhatDoesNotFit) {
    struct Case {
        const char* text;
        MatrixSize size;
        const char* problem;
    };

    const Case cases[] = {
        {"1;x;3", kRowOfThree, "value 2 'x' is no number"},
        {"1;;3", kRowOfThree, "value 2 '' is no number"},
        {"1;2", kRowOfThree, "row 1 has 2 values and not 3"},
        {"1;2;3;4", kRowOfThree, "row 1 has 4 values and not 3"},
        {"1;2;3", kTwoByThree, "has 1 rows and not 2"},
        {"1;2;3|4;5", kTwoByThree, "row 2 has 2 values and not 3"},
        {"1;2|3", kList, "has 2 rows and not 1"},
    };
    for (const Case& c : cases) {
        std::string problem;
        EXPECT_FALSE(ParseMatrix(c.text, c.size, ReaderOf(ValueForm::Number), problem)) << c.text;
        EXPECT_EQ(problem, c.problem) << c.text;
    }
}

} // namespace
} // namespace Kestrona::Tool
