// Texts and the values or failures that they give.
#include "expressions/expression_test.h"
#include "expressions/operator_tables.h"
#include "expressions/parse_names.h"

#include <kestrona/expression_tree.h>

#include <sstream>

namespace Kestrona::Expressions {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

struct Case {
    std::wstring text;
    std::wstring result; // a value, a text in quotes, or "message @position"
};

class Grammar : public ExpressionTest {
protected:
    Grammar() {
        const auto matrix = [](const wchar_t* name, std::int32_t group) -> Field {
            return {.name = name,
                    .type = TypeBit::kReal | TypeBit::kMatrix,
                    .classes = group < 0 ? std::vector<Class>() : std::vector{Classes::kAssociate},
                    .max_text = group}; // the slot of the group
        };
        plant =
            AddTable(*store, L"Plant",
                     {Number(L"Key"), Number(L"A"), Number(L"B"), Number(L"A B"), Text(L"Name"), Number(L"A"),
                      matrix(L"Hours", 2), matrix(L"Rates", 2), matrix(L"Other", 3), matrix(L"Loose", -1), Number(L"")},
                     1);
        store->SetDbDisplayName(plant, L"The Plant");
        for (const auto& [field, value] : {std::pair{1, 2.0}, {2, 3.0}, {3, 5.0}, {5, 7.0}}) {
            store->SetDbValue(plant, field, 0, value);
        }
        store->SetDbString(plant, 4, 0, L"12.5");
        Fill(plant, 6, 0, {10});
        Fill(plant, 7, 0, {100});
        script = AddTable(*store, L"KSEP Script Variables",
                          {Number(L"Key"), Text(L"String Value"), Text(L"Name"), Number(L"Numeric Value")}, 5);
        const wchar_t* const names[] = {L"", L"X", L"X", L" a b ", L"N"};
        const wchar_t* const texts[] = {L"", L"2.5", L"no", L"", L"n"};
        for (std::int32_t row = 0; row < 5; ++row) {
            store->SetDbString(script, 2, row, names[row]);
            store->SetDbString(script, 1, row, texts[row]);
            store->SetDbValue(script, 3, row, 40.0 + row);
        }
    }

    std::wstring Result(const std::wstring& text, bool is_string = false, std::int32_t field = -1) {
        last = {};
        const Compiled expression(KSDLL_CreateFieldExpression(*store, plant, field, text, is_string,
                                                              [](auto&, ExpressionErrorInfo* info) { last = *info; }));
        if (expression == nullptr) {
            EXPECT_EQ(last.Expression, is_string ? L"~" + text + L"~" : text);
            EXPECT_TRUE(last.Format == plant && last.Field == field && !last.Success);
            return last.Message + L" @" + std::to_wstring(last.Position);
        }
        std::wstring shown = L"number";
        std::wostringstream value;
        value << KSDLL_MatrixEvaluateExpression(*store, 0, 0, expression.get(), &shown);
        return shown == L"number" ? value.str() : L'"' + shown + L'"';
    }

    void Check(const std::vector<Case>& cases, bool is_string = false, std::int32_t field = -1) {
        for (const Case& c : cases) {
            EXPECT_EQ(Result(c.text, is_string, field), c.result) << "for: " << testing::PrintToString(c.text);
        }
    }

    inline static ExpressionErrorInfo last;
    std::int32_t plant;
    std::int32_t script;
};

// What operators and functions make of ordinary numbers is shown by random expressions.
TEST_F(Grammar, ReadsConstantsPrefixesAndFunctions) {
    Check({Case{L"1", L"1"}, Case{L" \t\n1 ", L"1"}, Case{L"+5", L"5"}, Case{L".5", L"0.5"}, Case{L"5.", L"5"},
           Case{L"1.5e3", L"1500"}, Case{L"-2E-2", L"-0.02"}, Case{L"0x1F", L"31"}, Case{L"0xffffffff", L"4.29497e+09"},
           Case{L"inf", L"inf"}, Case{L"-Infinity", L"-inf"}, Case{L"NaN", L"nan"}, Case{L"nan(1)", L"nan"},
           Case{L"- NaN", L"-nan"}, Case{L"0X1F", L"Unexpected symbol 'X'  @2"},
           Case{L"-0x1F", L"Unexpected symbol 'x'  @3"}, Case{L"- 0x1F", L"-31"},
           Case{L"0x", L"Unexpected symbol 'x'  @2"}, Case{L"0x100000000", L"Unexpected symbol 'x'  @2"},
           Case{L"1.5.5", L"Unexpected symbol '.'  @4"}, Case{L"--1", L"1"}, Case{L"-{#A}", L"-2"},
           Case{L"FUNC_ ABS -3", L"3"}, Case{L"FUNC_MIN(-1)", L"-1"}, Case{L"FUNC_MIN ( !{#A},FUNC_ABS 2 , 3 )", L"0"},
           Case{L"FUNC_MAX((FUNC_MIN(1,2)),3)*2", L"6"}, Case{L"FUNC_FRAC 2147483647.5", L"0.5"},
           Case{L"FUNC_FRAC -2147483649.5", L"-1.5"}, Case{L"FUNC_ALN(0)", L"1"}, Case{L"FUNC_ALOG(3)", L"1000"},
           Case{L"FUNC_COS(0)", L"1"}, Case{L"FUNC_SIN(0.5)", L"0.479426"}, Case{L"FUNC_TAN(0.5)", L"0.546302"},
           Case{L"FUNC_ACOS(1)", L"0"}, Case{L"FUNC_ASIN(0.5)", L"0.523599"}, Case{L"FUNC_ATAN(0.5)", L"0.463648"},
           // The first value stands where the next one compares as neither.
           Case{L"FUNC_MIN(nan,1,2)", L"nan"}, Case{L"FUNC_MAX(1,nan,2)", L"2"}, Case{L"FUNC_MAX(0,-0)", L"0"}});
    for (const auto& function : UnaryFunctions()) {
        EXPECT_EQ(Result(L"FUNC_" + std::wstring(function.name) + L"(1)").find(L'@'), std::wstring::npos);
    }
}

TEST_F(Grammar, NamesFields) {
    Check({Case{L"{A}", L"2"}, Case{L"{#A}", L"2"}, Case{L"{$Name}", L"12.5"}, Case{L" { # A B } ", L"5"},
           Case{L"{#A B}", L"5"}, Case{L"{# Nope}", L"Field does not exist within current format - ' Nope' @4"},
           Case{L"{#a}", L"Field does not exist within current format - 'a' @3"},
           Case{L"{##A}", L"Field does not exist within current format - '#A' @3"},
           Case{L"{#}", L"Field does not exist within current format - '' @3"},
           Case{L"{", L"Field does not exist within current format - '' @2"},
           Case{L"{#A", L"Field does not exist within current format - 'A' @4"},
           Case{L"{#A B C}", L"Field does not exist within current format - 'A B C' @7"},
           Case{L"1 + {#Nope}", L"Field does not exist within current format - 'Nope' @7"}});
    const std::wstring refused = L"Field is not within Associated Group - ";
    const std::wstring no_matrix = L"Non-Matrix fields cannot reference matrix fields - 'Hours' @3";
    Check({{L"{#A} * {#Hours} * {#Rates}", L"2000"},
           {L"{#Other}", refused + L"'Other' @3"},
           {L"{#Loose}", refused + L"'Loose' @3"}},
          false, 6);
    Check({{L"{#A}", L"2"}, {L"{#Hours}", refused + L"'Hours' @3"}}, false, 9);
    Check({{L"{#Hours}", no_matrix}}, false, 1);
    Check({{L"{#Hours}", no_matrix}});
}

TEST_F(Grammar, ReadsTexts) {
    Check({Case{L"\"a~", L"\"a\""}, Case{L"(\"a\")", L"\"a\""},
           Case{L"(\"a\")+(\"b\")", L"\"a\""}, // the right operand comes first, and the text of the left one stays
           Case{L"FUNC_MAX((\"a\"),(\"b\"))", L"\"b\""}, Case{L"\"a\" == ~b~ == 0", L"1"}, Case{L"1 + ~a~@~ba~", L"2"},
           Case{L"~a~<=~b~", L"1"}, Case{L"~{$A} {$B}~", L"\"2.003.00\""}, Case{L"~x {$A}~", L"\"x 2.00\""},
           Case{L"~  {$A}  x~", L"\"2.00  x\""}, Case{L"~})(\U0001F600~", L"\"})(\U0001F600\""},
           Case{L"~~ != \"\"", L"0"}, Case{L"{$Name} == ~x~", L"Unexpected symbol ' '  @12"},
           Case{L"~abc", L"'~ / \"' Missing @5"},
           Case{L"~a{b~", L"Field does not exist within current format - 'b~' @4"}});
    Check({{L"", L"\"\""},
           {L"a {$Name} b", L"\"a 12.5 b\""},
           {L"1 +", L"\"1 +\""},
           {L"a~b", L"Unexpected symbol '~'  @1"},
           {L"{$Nope}", L"Field does not exist within current format - 'Nope' @4"},
           {L"{", L"Field does not exist within current format - '~' @3"}},
          true);
}

TEST_F(Grammar, ComparesTextsByUtf16CodeUnit) {
    // Texts in their order. U+FFFD stands behind U+1F600 in UTF-16.
    const std::wstring ordered[] = {L"", L"A", L"AB", L"Ab", L"B", L"a", L"\u00e4", L"\U0001f600", L"\ufffd"};
    for (const std::wstring& a : ordered) {
        for (const std::wstring& b : ordered) {
            std::wstring found;
            for (const wchar_t* const symbol : {L"==", L"!=", L"<", L"<=", L">", L">=", L"@"}) {
                found += Result(L"~" + a + L"~ " + symbol + L"~" + b + L"~");
            }
            EXPECT_EQ(found.substr(0, 6), &a < &b ? L"011100" : &a > &b ? L"010011" : L"100101");
            EXPECT_EQ(found.substr(6), b.find(a) != std::wstring::npos ? L"1" : L"0");
        }
    }
}

TEST_F(Grammar, ReadsScriptVariables) {
    Check({Case{L"{#KSEP_X}", L"41"}, Case{L"{KSEP_X}", L"41"}, Case{L"{KSEP_ a b }", L"43"},
           Case{L"2 * { $ KSEP_X}", L"5"}, Case{L"{#KSEP_x}", L"-1"}, Case{L"~{$KSEP_N}!~ == ~n!~", L"1"},
           Case{L"~{KSEP_X}{$KSEP_Y}~", L"\"41\""},
           Case{L"{#KSEP_}", L"Field does not exist within current format - 'KSEP_' @3"},
           Case{L"{#KSEP_A", L"Field does not exist within current format - 'KSEP_A' @3"}});
    EXPECT_TRUE(logger.lines.empty());
    EXPECT_EQ(Result(L"{$KSEP_N}"), L"-1");
    EXPECT_EQ(logger.lines.size(), 1U) << "no number";
    store->SetColumnName(script, 1, L"Text");
    Check({{L"{#KSEP_X}", L"41"}, {L"{$KSEP_X}", L"-1"}, {L"~{$KSEP_X}~", L"\"\""}});
    store->SetColumnName(script, 2, L"Title");
    EXPECT_EQ(Result(L"{#KSEP_X}"), L"-1");
    store->SetDbName(script, KSDLL_AddText(L"Other"));
    EXPECT_EQ(Result(L"{#KSEP_X}"), L"-1");
}

TEST_F(Grammar, TellsWhereATextFails) {
    const std::wstring rest = L"(({#Apply Efficiency to Setups?}==1)*(1/({#Efficiency %}/100)) +";
    const auto fail = [&](const std::wstring& message, const std::vector<std::pair<const wchar_t*, int>>& texts) {
        for (const auto& [text, position] : texts) {
            EXPECT_EQ(Result(text), message + L" @" + std::to_wstring(position)) << testing::PrintToString(text);
        }
    };
    fail(L"Empty Expression String", {{L"", -1}});
    fail(L"Unexpected symbol ' ' ",
         {{L"   ", 4}, {L"1 + *", 5}, {L"1 == ", 6}, {L"1 = 2", 3}, {L"1 2", 3}, {L"(1 2)", 4}});
    fail(L"Unexpected symbol 'a' ", {{L"abc", 1}});
    fail(L"Unexpected symbol '*' ", {{L"1 +*", 4}});
    fail(L"Unexpected symbol '=' ", {{L"1=2", 2}});
    fail(L"Unexpected symbol 'F' ", {{L"FUNC_", 1}});
    fail(L"Unexpected symbol ']' ", {{L"(1]", 3}});
    fail(L"Unexpected symbol '(' ", {{L"()", 1}});
    fail(L"Expecting Valid Expression",
         {{L"1 +", 3}, {L"1==", 3}, {L"---1", 1}, {L"!!{#A}", 1}, {L"2 * !", 5}, {L"FUNC_ABS FUNC_SIN(1)", 8}});
    fail(L"Unresolved Function Name ", {{L"FUNC_FOO(1)", 1},
                                        {L"1 + FUNC_FOO(1)", 5},
                                        {L"FUNC_abs(1)", 1},
                                        {L"FUNC_MAX()", 1},
                                        {L"FUNC_MAX({#A}+1,2)", 1},
                                        {L"FUNC_MAX 1", 1},
                                        {L"1 + FUNC_MAX(2,3) + *", 5}});
    fail(L"')' Missing", {{L"(1", 3}, {L"((1)", 5}});
    fail(L"Mismatched Brackets / Braces", {{L"(", -1}, {L"1)", -1}, {L"1}", -1}});
    fail(L"Unknown Error", {{L"1)(", -1}});
    // This text makes an end of what stands before it.
    Check({{L"1 " + rest, L"1"},
           {L"1 + 2 " + rest + L" {#Nope} (", L"3"},
           {L"1 " + rest.substr(0, 63), L"Unexpected symbol ' '  @3"},
           {rest, L"Field does not exist within current format - 'Apply Efficiency to Setups?' @6"}});
}

TEST_F(Grammar, BoundsWhatItTakes) {
    const auto repeat = [](const std::wstring& part, std::int32_t count) {
        std::wstring text;
        for (std::int32_t i = 0; i < count; ++i) {
            text += part;
        }
        return text;
    };
    const std::wstring unknown = L"Unknown Error @-1";
    EXPECT_EQ(Result(repeat(L"(", 128) + L"1" + repeat(L")", 128)), L"1");
    EXPECT_EQ(Result(repeat(L"(", 129) + L"1" + repeat(L")", 129)), unknown);
    EXPECT_EQ(Result(repeat(L"(", 65536)), unknown);
    EXPECT_EQ(Result(repeat(L"(~))~==~~)+", 100) + L"1"), L"1");
    EXPECT_EQ(Result(repeat(L"(~))~==~~)+(", 200) + L"1" + repeat(L")", 200)), unknown) << "brackets within texts";
    EXPECT_EQ(Result(L"1" + repeat(L" ", 65535)), L"1");
    EXPECT_EQ(Result(L"1" + repeat(L" ", 65536)), unknown);
    EXPECT_EQ(Result(repeat(L"1+", kMaxTreeDepth - 1) + L"1"), L"4096");
    EXPECT_EQ(Result(repeat(L"1+", kMaxTreeDepth) + L"1"), unknown);
    for (const wchar_t* const part : {L"(", L"FUNC_MAX((", L"~{$KSEP_A}~==~", L"{#KSEP_X}+", L"FUNC_", L"nan(", L"!",
                                      L"1+(", L"~", L"{", L"1-", L"{$A} "}) {
        const std::wstring long_text = repeat(part, 65000 / static_cast<std::int32_t>(std::wstring(part).size()));
        EXPECT_NE(Result(long_text).find(L'@'), std::wstring::npos);
        Result(long_text, true);
    }
}

TEST_F(Grammar, KeepsTheFirstMessageOfARecord) {
    ExpressionErrorInfo info;
    for (const wchar_t* const text : {L"FUNC_MAX(1)", L"1 +"}) { // a path that was given up leaves the message
        const Compiled expression(KSDLL_ParseAndVerifyExpression(*store, plant, text, info));
        EXPECT_EQ(info.Success, expression != nullptr);
        EXPECT_EQ(info.Success, text[0] == L'F');
        EXPECT_EQ(info.Message + info.Expression, std::wstring(L"Unresolved Function Name ") + text);
        EXPECT_EQ(info.Field, -1);
    }
    EXPECT_EQ(KSDLL_CreateExpression(*store, -1, L"{#A}", false, nullptr), nullptr) << "no format, no fields";
    EXPECT_EQ(KSDLL_CreateExpression(*store, 999, L"{#A}", false, nullptr), nullptr);
}

TEST_F(Grammar, ShowsAFailureInABox) {
    EXPECT_EQ(KSDLL_CreateExpression(*store, plant, L"1 + %s", false, &KSDLL_ReportParseErrorToMessageBox), nullptr);
    EXPECT_EQ(KSDLL_CreateFieldExpression(*store, plant, 1, L"(", false, &KSDLL_ReportParseErrorToMessageBox), nullptr);
    const std::vector<RecordingMessages::Box> expected{
        {L"Parsing failed within format 'The Plant':\nUnexpected symbol ' ' \nAt Position 5\nIn Expression \"1 + %s\"",
         L"Parse Error!", 16},
        {L"Parsing failed in format 'The Plant' and field 'A':\nMismatched Brackets / Braces\nIn Expression \"(\"",
         L"Parse Error!", 16}};
    EXPECT_EQ(messages.boxes, expected);
}

TEST_F(Grammar, CachesByTextFormatKindAndStore) {
    const auto cached = [](MemoryResidentData& data, std::int32_t format, const std::wstring& text, bool is_string) {
        return KSDLL_CreateExpressionFromCache(data, format, text, is_string, &KSDLL_ReportParseErrorToMessageBox);
    };
    INativeExpression* const number = cached(*store, plant, L"1", false);
    EXPECT_EQ(cached(*store, plant, L"1", false), number);
    EXPECT_NE(cached(*store, plant, L"1", true), number);
    EXPECT_NE(cached(*store, script, L"1", false), number);
    const auto other = CreateMemoryResidentData();
    EXPECT_NE(cached(*other, plant, L"1", false), number);
    EXPECT_EQ(cached(*store, plant, L"{#Later}", false), nullptr);
    EXPECT_TRUE(messages.boxes.empty());
    store->SetColumnName(plant, 2, L"Later");
    INativeExpression* const later = cached(*store, plant, L"{#Later}", false);
    ASSERT_NE(later, nullptr) << "a failure is not kept";
    EXPECT_EQ(cached(*store, plant, L"{#Later}", false), later);
    KSDLL_FreeExpressionCache();
    store->SetColumnName(plant, 2, L"Gone");
    EXPECT_EQ(cached(*store, plant, L"{#Later}", false), nullptr);
    KSDLL_FreeExpressionCache();
}

TEST(FieldNames, FindTheLongestNameThatATextBeginsWith) {
    std::mt19937 random(7);
    const auto any_text = [&](std::size_t most) {
        std::wstring text(random() % (most + 1), L'a');
        std::ranges::generate(text, [&] { return L"ab "[random() % 3]; });
        return text;
    };
    for (int round = 0; round < 200; ++round) {
        const auto store = CreateMemoryResidentData();
        std::vector<Field> fields(1 + random() % 30);
        std::ranges::generate(fields, [&] { return Number(any_text(6)); });
        const FieldNames names(*store, AddFormat(*store, L"T", fields), {});
        for (int i = 0; i < 50; ++i) {
            const std::wstring text = any_text(9);
            std::int32_t longest = -1;
            std::size_t length = 0;
            for (std::size_t field = 0; field < fields.size(); ++field) {
                if (fields[field].name.size() > length && text.starts_with(fields[field].name)) {
                    length = fields[field].name.size();
                    longest = static_cast<std::int32_t>(field);
                }
            }
            const wchar_t* place = text.data();
            EXPECT_EQ(names.FindPrefix(place, text.data() + text.size()), longest);
            EXPECT_EQ(place, text.data() + length);
        }
    }
}

} // namespace

} // namespace Kestrona::Expressions
