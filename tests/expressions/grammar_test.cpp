// Texts and the trees or failures that they give.
#include "expressions/parse_names.h"
#include "expressions/tree_dump.h"
#include "fixtures/store_test.h"

#include <kestrona/expression_parsing.h>

namespace Kestrona::Expressions {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

Field MatrixField(const std::wstring& name, std::int32_t group) {
    Field field{.name = name, .type = TypeBit::kReal | TypeBit::kMatrix};
    if (group >= 0) {
        field.classes = {Classes::kAssociate};
        field.max_text = group; // the slot of the group
    }
    return field;
}

struct Case {
    std::wstring text;
    std::wstring result; // a tree, or "message @position"
};

class Grammar : public StoreTest {
protected:
    Grammar() {
        plant = AddFormat(*store, L"Plant",
                          {Number(L"Key"), Number(L"A"), Number(L"B"), Number(L"A B"), Text(L"Name"), Number(L"A"),
                           MatrixField(L"Hours", 2), MatrixField(L"Rates", 2), MatrixField(L"Other", 3),
                           MatrixField(L"Loose", -1), Number(L"")});
        script = AddFormat(*store, L"KSEP Script Variables",
                           {Number(L"Key"), Text(L"String Value"), Text(L"Name"), Number(L"Numeric Value")});
        store->SetDbDisplayName(plant, L"The Plant");
    }

    std::wstring Parse(const std::wstring& text, bool is_string = false, std::int32_t field = -1) {
        last = {};
        const std::unique_ptr<INativeExpression> expression(KSDLL_CreateFieldExpression(
            *store, plant, field, text, is_string, [](auto&, ExpressionErrorInfo* info) { last = *info; }));
        if (expression == nullptr) {
            EXPECT_EQ(last.Expression, is_string ? L"~" + text + L"~" : text);
            EXPECT_EQ(last.Format, plant);
            EXPECT_EQ(last.Field, field);
            EXPECT_FALSE(last.Success);
            return last.Message + L" @" + std::to_wstring(last.Position);
        }
        return TreeDump::Of(dynamic_cast<Expression&>(*expression));
    }

    void Check(const std::vector<Case>& cases, bool is_string = false, std::int32_t field = -1) {
        for (const Case& c : cases) {
            EXPECT_EQ(Parse(c.text, is_string, field), c.result) << "for: " << testing::PrintToString(c.text);
        }
    }

    inline static ExpressionErrorInfo last;
    std::int32_t plant;
    std::int32_t script;
};

TEST_F(Grammar, ReadsConstants) {
    Check({{L"1", L"1"},
           {L" \t\n1 ", L"1"},
           {L"-1", L"-1"},
           {L"+5", L"5"},
           {L".5", L"0.5"},
           {L"5.", L"5"},
           {L"1.5e3", L"1500"},
           {L"-2E-2", L"-0.02"},
           {L"0x1F", L"31"},
           {L"0xffffffff", L"4.29497e+09"},
           {L"inf", L"inf"},
           {L"-Infinity", L"-inf"},
           {L"NaN", L"nan"},
           {L"nan(1)", L"nan"},
           {L"99999999999", L"1e+11"},
           {L"0X1F", L"Unexpected symbol 'X'  @2"},
           {L"-0x1F", L"Unexpected symbol 'x'  @3"},
           {L"- 0x1F", L"(u- 31)"},
           {L"0x", L"Unexpected symbol 'x'  @2"},
           {L"0x100000000", L"Unexpected symbol 'x'  @2"},
           {L"1.5.5", L"Unexpected symbol '.'  @4"}});
}

TEST_F(Grammar, ReadsPrefixesAndFunctions) {
    Check({{L"--1", L"(u- -1)"},
           {L"-{#A}", L"(u- #1)"},
           {L"+ {#A} * ! {#B}", L"(* (u+ #1) (u! #2))"},
           {L"- 1", L"(u- 1)"},
           {L"FUNC_ABS 3", L"(ABS 3)"},
           {L"FUNC_ ABS -3", L"(ABS -3)"},
           {L"FUNC_TRUNC({#A}/2)", L"(TRUNC (/ #1 2))"},
           {L"FUNC_MAX(({#A}+1), 2)", L"(MAX (+ #1 1) 2)"},
           {L"FUNC_MIN(-1)", L"(MIN -1)"},
           {L"FUNC_MIN ( !{#A},FUNC_ABS 2 , 3 )", L"(MIN (u! #1) (ABS 2) 3)"},
           {L"FUNC_MAX((FUNC_MIN(1,2)),3)*2", L"(* (MAX (MIN 1 2) 3) 2)"}});
    for (const auto& function : UnaryFunctions()) {
        const std::wstring name = function.name;
        EXPECT_EQ(Parse(L"FUNC_" + name + L"(1)"), L"(" + name + L" 1)");
    }
}

TEST_F(Grammar, NamesFields) {
    Check({{L"{A}", L"?1"},
           {L"{#A}", L"#1"},
           {L"{$Name}", L"$4"},
           {L" { # A B } ", L"#3"},
           {L"{#A B}", L"#3"},
           {L"{#Nope}", L"Field does not exist within current format - 'Nope' @3"},
           {L"{# Nope}", L"Field does not exist within current format - ' Nope' @4"},
           {L"{#a}", L"Field does not exist within current format - 'a' @3"},
           {L"{##A}", L"Field does not exist within current format - '#A' @3"},
           {L"{#}", L"Field does not exist within current format - '' @3"},
           {L"{", L"Field does not exist within current format - '' @2"},
           {L"{#A", L"Field does not exist within current format - 'A' @4"},
           {L"{#A B C}", L"Field does not exist within current format - 'A B C' @7"},
           {L"1 + {#Nope}", L"Field does not exist within current format - 'Nope' @7"},
           {L"{#Hours}", L"Non-Matrix fields cannot reference matrix fields - 'Hours' @3"}});
}

TEST_F(Grammar, OpensMatrixFieldsToTheirGroup) {
    const std::wstring refused = L"Field is not within Associated Group - ";
    Check({{L"{#A} * {#Hours} * {#Rates}", L"(* (* #1 #6) #7)"},
           {L"{#Other}", refused + L"'Other' @3"},
           {L"{#Loose}", refused + L"'Loose' @3"}},
          false, 6);
    Check({{L"{#A}", L"#1"}, {L"{#Hours}", refused + L"'Hours' @3"}, {L"{#Loose}", refused + L"'Loose' @3"}}, false, 9);
    Check({{L"{#Hours}", L"Non-Matrix fields cannot reference matrix fields - 'Hours' @3"}}, false, 1);
}

TEST_F(Grammar, ReadsTexts) {
    Check({{L"~a~", L"[\"a\"]"},
           {L"\"a~", L"[\"a\"]"},
           {L"(\"a\")", L"[\"a\"]"},
           {L"(\"a\")+(\"b\")", L"(+ [\"a\"] [\"b\"])"},
           {L"\"a\" == ~b~ == 1", L"(== (s== [\"a\"] [\"b\"]) 1)"},
           {L"1 + ~a~@~b~", L"(+ 1 (s@ [\"a\"] [\"b\"]))"},
           {L"~a~<=~b~", L"(s<= [\"a\"] [\"b\"])"},
           {L"~{$A} {$B}~", L"[$1 $2]"},
           {L"~x {$A}~", L"[\"x \" $1]"},
           {L"~  {$A}  x~", L"[$1 \"  x\"]"},
           {L"~})(\U0001F600~", L"[\"})(\U0001F600\"]"},
           {L"~~ != \"\"", L"(s!= [] [])"},
           {L"{$Name} == ~x~", L"Unexpected symbol ' '  @12"},
           {L"~abc", L"'~ / \"' Missing @5"},
           {L"~a{b~", L"Field does not exist within current format - 'b~' @4"}});
    Check({{L"", L"[]"},
           {L"a {$Name} b", L"[\"a \" $4 \" b\"]"},
           {L"1 +", L"[\"1 +\"]"},
           {L"a~b", L"Unexpected symbol '~'  @1"},
           {L"{$Nope}", L"Field does not exist within current format - 'Nope' @4"},
           {L"{", L"Field does not exist within current format - '~' @3"}},
          true);
    for (const auto& comparison : StringOperators()) {
        const std::wstring name = comparison.name;
        EXPECT_EQ(Parse(L"~a~ " + name + L"\"b\""), L"(s" + name + L" [\"a\"] [\"b\"])");
    }
}

TEST_F(Grammar, ReadsScriptVariables) {
    Check({{L"{#KSEP_Rate}", L"<#Rate>"},
           {L"{KSEP_ a b }", L"<? a b >"},
           {L"2 * { $ KSEP_X}", L"(* 2 <$X>)"},
           {L"~{$KSEP_N}!~ == ~x~", L"(s== [<$N> \"!\"] [\"x\"])"},
           {L"{#KSEP_}", L"Field does not exist within current format - 'KSEP_' @3"},
           {L"{#KSEP_A", L"Field does not exist within current format - 'KSEP_A' @3"}});
}

TEST_F(Grammar, TellsWhereATextFails) {
    const std::wstring rest = L"(({#Apply Efficiency to Setups?}==1)*(1/({#Efficiency %}/100)) +";
    Check({{L"", L"Empty Expression String @-1"},
           {L"   ", L"Unexpected symbol ' '  @4"},
           {L"abc", L"Unexpected symbol 'a'  @1"},
           {L"1 +", L"Expecting Valid Expression @3"},
           {L"1 + *", L"Unexpected symbol ' '  @5"},
           {L"1 +*", L"Unexpected symbol '*'  @4"},
           {L"1 == ", L"Unexpected symbol ' '  @6"},
           {L"1==", L"Expecting Valid Expression @3"},
           {L"1 = 2", L"Unexpected symbol ' '  @3"},
           {L"1=2", L"Unexpected symbol '='  @2"},
           {L"1 2", L"Unexpected symbol ' '  @3"},
           {L"---1", L"Expecting Valid Expression @1"},
           {L"!!{#A}", L"Expecting Valid Expression @1"},
           {L"2 * !", L"Expecting Valid Expression @5"},
           {L"FUNC_ABS FUNC_SIN(1)", L"Expecting Valid Expression @8"},
           {L"FUNC_FOO(1)", L"Unresolved Function Name  @1"},
           {L"1 + FUNC_FOO(1)", L"Unresolved Function Name  @5"},
           {L"FUNC_abs(1)", L"Unresolved Function Name  @1"},
           {L"FUNC_", L"Unexpected symbol 'F'  @1"},
           {L"FUNC_MAX()", L"Unresolved Function Name  @1"},
           {L"FUNC_MAX({#A}+1,2)", L"Unresolved Function Name  @1"},
           {L"FUNC_MAX 1", L"Unresolved Function Name  @1"},
           {L"1 + FUNC_MAX(2,3) + *", L"Unresolved Function Name  @5"},
           {L"(1", L"')' Missing @3"},
           {L"((1)", L"')' Missing @5"},
           {L"(1 2)", L"Unexpected symbol ' '  @4"},
           {L"(1]", L"Unexpected symbol ']'  @3"},
           {L"()", L"Unexpected symbol '('  @1"},
           {L"(", L"Mismatched Brackets / Braces @-1"},
           {L"1)", L"Mismatched Brackets / Braces @-1"},
           {L"1}", L"Mismatched Brackets / Braces @-1"},
           {L"1)(", L"Unknown Error @-1"},
           {L"1 " + rest, L"1"},
           {L"1 + 2 " + rest + L" {#Nope} (", L"(+ 1 2)"},
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
    EXPECT_EQ(Parse(repeat(L"(", 128) + L"1" + repeat(L")", 128)), L"1");
    EXPECT_EQ(Parse(repeat(L"(", 129) + L"1" + repeat(L")", 129)), unknown);
    EXPECT_EQ(Parse(repeat(L"(", 65536)), unknown);
    EXPECT_EQ(Parse(repeat(L"(~))~==~~)+", 100) + L"1").substr(0, 3), L"(+ ");
    EXPECT_EQ(Parse(repeat(L"(~))~==~~)+(", 200) + L"1" + repeat(L")", 200)), unknown) << "brackets within texts";
    EXPECT_EQ(Parse(L"1" + repeat(L" ", 65535)), L"1");
    EXPECT_EQ(Parse(L"1" + repeat(L" ", 65536)), unknown);
    EXPECT_EQ(Parse(repeat(L"1+", kMaxTreeDepth - 1) + L"1").substr(0, 3), L"(+ ");
    EXPECT_EQ(Parse(repeat(L"1+", kMaxTreeDepth) + L"1"), unknown);
    for (const wchar_t* const part : {L"(", L"FUNC_MAX((", L"~{$KSEP_A}~==~", L"{#KSEP_X}+", L"FUNC_", L"nan(", L"!",
                                      L"1+(", L"~", L"{", L"1-", L"{$A} "}) {
        const std::wstring long_text = repeat(part, 65000 / static_cast<std::int32_t>(std::wstring(part).size()));
        EXPECT_NE(Parse(long_text).find(L'@'), std::wstring::npos);
        Parse(long_text, true);
    }
}

TEST_F(Grammar, FindsTheScriptTableByItsNameOnly) {
    struct Finder final : Visitor {
        void VisitScriptVariable(KSEPVariable& variable) override { found = variable; }

        KSEPVariable found;
    };

    const auto numbers = [this] {
        Finder finder;
        const std::unique_ptr<INativeExpression> expression(
            KSDLL_CreateExpression(*store, plant, L"{#KSEP_X}", false, nullptr));
        dynamic_cast<Expression&>(*expression).Accept(finder);
        const KSEPVariable& v = finder.found;
        return std::vector{v.format, v.nameField, v.numericValueField, v.stringValueField};
    };
    EXPECT_EQ(numbers(), (std::vector<std::int32_t>{script, 2, 3, 1}));
    store->SetColumnName(script, 2, L"Title");
    EXPECT_EQ(numbers(), (std::vector<std::int32_t>{script, -1, 3, 1}));
    store->SetDbName(script, KSDLL_AddText(L"Other"));
    EXPECT_EQ(numbers(), (std::vector<std::int32_t>{-1, -1, -1, -1}));
}

TEST_F(Grammar, KeepsTheFirstMessageOfARecord) {
    ExpressionErrorInfo info;
    const std::unique_ptr<INativeExpression> good(KSDLL_ParseAndVerifyExpression(*store, plant, L"FUNC_MAX(1)", info));
    EXPECT_NE(good, nullptr);
    EXPECT_TRUE(info.Success);
    EXPECT_EQ(info.Message, L"Unresolved Function Name ") << "left by a path that was given up";
    EXPECT_EQ(info.Expression, L"FUNC_MAX(1)");
    EXPECT_EQ(KSDLL_ParseAndVerifyExpression(*store, plant, L"1 +", info), nullptr);
    EXPECT_FALSE(info.Success);
    EXPECT_EQ(info.Message, L"Unresolved Function Name ");
    EXPECT_EQ(info.Expression, L"1 +");
    EXPECT_EQ(info.Field, -1);
    EXPECT_EQ(KSDLL_CreateExpression(*store, -1, L"{#A}", false, nullptr), nullptr) << "no format, no fields";
    EXPECT_EQ(KSDLL_CreateExpression(*store, 999, L"{#A}", false, nullptr), nullptr);
}

TEST_F(Grammar, ShowsAFailureInABox) {
    RecordingMessages& messages = InstallRecordingMessages();
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
    RecordingMessages& messages = InstallRecordingMessages();
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

std::wstring RandomText(std::mt19937& random, std::size_t most) {
    std::wstring text(random() % (most + 1), L'a');
    for (wchar_t& c : text) {
        c = L"ab "[random() % 3];
    }
    return text;
}

TEST(FieldNames, FindTheLongestNameThatATextBeginsWith) {
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        const auto store = CreateMemoryResidentData();
        std::vector<Field> fields(1 + random() % 30);
        for (Field& field : fields) {
            field = Number(RandomText(random, 6));
        }
        const FieldNames names(*store, AddFormat(*store, L"T", fields), {});
        for (int i = 0; i < 50; ++i) {
            const std::wstring text = RandomText(random, 9);
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
