#include <kestrona/host/expression_excerpt.h>

#include <gtest/gtest.h>

#include <string>

namespace Kestrona::Host {
namespace {

TEST(ExpressionExcerpt, PutsTheCaretUnderThePlace) {
    struct Case {
        const wchar_t* message;
        const wchar_t* expression;
        std::int64_t position;
        const char* expected;
    };

    const Case cases[] = {
        {L"Unexpected symbol 'x' ", L"1 x", 3, "Unexpected symbol 'x'\n  1 x\n    ^"},
        {L"')' Missing", L"(1", 99, "')' Missing\n  (1\n    ^"},
        {L"Unknown Error", L"1", -1, "Unknown Error"},
        // Characters of two columns and of none, control characters, tabs.
        {L"a", L"\u500b\u6570x", 3, "a\n  \u500b\u6570x\n      ^"},
        {L"a", L"e\u0301x", 3, "a\n  e\u0301x\n   ^"},
        {L"a", L"\n\x1bx", 3, "a\n  \\n\\x1bx\n        ^"},
        {L"a", L"1\tx", 3, "a\n  1\tx\n   \t^"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ExplainFailure(c.message, c.expression, c.position, "  "), c.expected);
    }
}

// Wherever the place is, the caret stands under its character and no line is long.
TEST(ExpressionExcerpt, ShowsTheSurroundingsInALongExpression) {
    for (std::size_t place = 0; place < 2000; place += 7) {
        std::wstring expression(2000, L'1');
        expression[place] = L'x';
        const std::string text = ExplainFailure(L"a", expression, static_cast<std::int64_t>(place) + 1, "");
        const std::size_t line = text.find('\n') + 1;
        const std::size_t caret_line = text.find('\n', line) + 1;
        EXPECT_LT(caret_line - line, 110U);
        const std::size_t dots = text[line] == '\xE2' ? 2 : 0; // an ellipsis is three bytes in one column
        EXPECT_EQ(text.find('x') - line - dots, text.find('^') - caret_line) << place;
    }
}

TEST(ExpressionExcerpt, ExplainsBoxesAndLeavesOtherTextsAlone) {
    struct Case {
        const wchar_t* text;
        const char* expected;
    };

    const Case cases[] = {
        {L"Parsing failed within format 'A':\nUnexpected symbol ' ' \nAt Position 5\nIn Expression \"1 + \"2\"",
         "Parsing failed within format 'A':\n  Unexpected symbol ' ' \n  At Position 5\n  In Expression \"1 + \"2\"\n"
         "                     ^"},
        {L"a\nAt Position x\nIn Expression \"1\"", "a\n  At Position x\n  In Expression \"1\""},
        {L"a\nAt Position 99999999999999999999\nIn Expression \"1\"",
         "a\n  At Position 99999999999999999999\n  In Expression \"1\""},
        {L"", ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ExplainParseBox(c.text, "  "), c.expected);
    }
}

} // namespace
} // namespace Kestrona::Host
