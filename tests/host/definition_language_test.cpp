#include <kestrona/host/definition.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

// What the language accepts and what it means.

namespace Kestrona::Host {
namespace {

std::optional<std::string> NoFile(const std::string&) {
    return std::nullopt;
}

Definition ParseGood(std::string_view text) {
    const ParseResult result = ParseDefinition(text, "main.ksdef", NoFile);
    for (const Diagnostic& diagnostic : result.diagnostics) {
        ADD_FAILURE() << diagnostic.ToString();
    }
    return result.definition;
}

FieldDefinition ParseField(const std::string& entry) {
    const Definition definition =
        ParseGood("define Eight = 8\nformat A {\nkey K\nfield K : INTEGER | UNIQUE\n" + entry + "\n}\n");
    return definition.formats.empty() ? FieldDefinition{} : definition.formats[0].fields.back();
}

// Without a default a field starts unset where its type knows that, and keys count up.
TEST(DefinitionLanguage, DefaultsAreNumbersDatesDurationsAndConstants) {
    const struct {
        const char* entry;
        double value;
    } kCases[] = {
        {"= -1.5e3 : REAL", -1500.0},
        {"= .5 : REAL", 0.5},
        {"= 0xff0000 : REAL", 16711680.0},
        {"= EIGHT : REAL", 8.0},
        {"= 1.5d : REAL", 1.5},
        {"= 6h : REAL", 0.25},
        {"= -90min : REAL", -0.0625},
        {"= 10800s : REAL", 0.125},
        {"= 1900-01-01 : REAL", 2.0},
        {"= 2000-02-29 : REAL", 36585.0},
        {"= \"2026-01-31 18:00\" : REAL", 46053.75},
        {"= \"2026-01-31T00:00:27\" : REAL", 46053.0 + 27.0 / 86400.0},
        {": INTEGER", 0.0},
        {": DATE AND TIME", -1.0},
        {": DURATION", -1.0},
        {": REFERENCE | FREE FORMAT", 0.0},
        {": REFERENCE", -1.0},
        {": TEXT", 0.0},
        {": MATRIX | REFERENCE | AUTO LIST(A(K))", -1.0},
    };

    for (const auto& test : kCases) {
        EXPECT_EQ(ParseField(std::string("field B ") + test.entry).default_value, test.value) << test.entry;
    }
    EXPECT_EQ(ParseGood("format A {\nkey K\nfield K : INTEGER\n}\n").formats.at(0).fields.at(0).default_value, 1.0);
}

// The readers of classification strings are strict about blanks around brackets and quotes.
TEST(DefinitionLanguage, WordsAreStoredAsTheReadersWantThem) {
    const struct {
        const char* raw;
        const wchar_t* stored;
    } kCases[] = {
        {"  INTEGER|UNIQUE\t| HIDDEN  ", L"INTEGER | UNIQUE | HIDDEN"},
        {"REFERENCE | DATABASE ( A ( K ) )", L"REFERENCE | DATABASE(A(K))"},
        {"REFERENCE | DATABASE(FIND CLASSIFICATION STRING(INTEGER))",
         L"REFERENCE | DATABASE(FIND CLASSIFICATION STRING(INTEGER))"},
        {"REFERENCE | DATABASE [ SYSTEMDB ]", L"REFERENCE | DATABASE[SYSTEMDB]"},
        {"REFERENCE | FAMILY( B )", L"REFERENCE | FAMILY(B)"},
        {"REAL | OVERRIDE(B: later)", L"REAL | OVERRIDE(B: later)"},
        {"MATRIX | REAL | AUTO DIMENSION ( The x , A ( K ) , Y ,A(K) )",
         L"MATRIX | REAL | AUTO DIMENSION(The x,A(K),Y,A(K))"},
        {"REAL | EVALUATE\"{#B} # | ( 2\" # comment", L"REAL | EVALUATE \"{#B} # | ( 2\""},
        {"TEXT | FF_STRING_DEF   \" none \"", L"TEXT | FF_STRING_DEF \" none \""},
        {"INTEGER | SUBSTITUTE ( -3.50 -> \"Red (dark)\" )", L"INTEGER | SUBSTITUTE(-3.50->\"Red (dark)\")"},
        {"INTEGER | REMOTE_DEF \" A ( K ) \"", L"INTEGER | REMOTE_DEF \"A(K)\""},
        {"REAL | FORMAT( MAX   0.3 )", L"REAL | FORMAT(MAX 0.3)"},
        {"REAL | TIP DISPLAY | BUTTON TEXT ( Go on )", L"REAL | TIP DISPLAY | BUTTON TEXT(Go on)"},
    };

    for (const auto& test : kCases) {
        EXPECT_EQ(ParseField("field B : " + std::string(test.raw)).classification, test.stored) << test.raw;
    }
}

TEST(DefinitionLanguage, BitsAndExactTextsOverrideTheWords) {
    const FieldDefinition field =
        ParseField("field B type 0x09 clear 0 0x4 set 0 0x6 set 11 0x80000000 clear 0 0x2 : REAL | HIDDEN | READ ONLY");
    EXPECT_EQ(field.type, 9U);
    EXPECT_EQ(field.classes[0], 0xcU);
    EXPECT_EQ(field.classes[11], 0x80000000U);

    const FieldDefinition exact = ParseField("field B classification \"REAL|HIDDEN WORD (\\n\\u{d800}\"");
    EXPECT_EQ(exact.classification, std::wstring(L"REAL|HIDDEN WORD (\n") + static_cast<wchar_t>(0xd800));
    EXPECT_EQ(exact.type, 4U);
    EXPECT_EQ(ParseField("field B type 8 classification \"\"").type, 8U);
}

// A word that nobody knows may be meant for a host, so it stays.
TEST(DefinitionLanguage, UnknownWordsStayInTheText) {
    const ParseResult result =
        ParseDefinition("format A {\nkey K\nfield K : INTEGER | FROBNICATE (3)  | UNIQUE\n}\n", "main.ksdef", NoFile);
    EXPECT_FALSE(result.HasErrors());
    ASSERT_EQ(result.diagnostics.size(), 1U);
    EXPECT_EQ(result.diagnostics[0].ToString(),
              "main.ksdef:3:21: warning: unknown word; found 'FROBNICATE'; expected a word of classifications");
    EXPECT_EQ(result.definition.formats.at(0).fields.at(0).classification, L"INTEGER | FROBNICATE (3) | UNIQUE");
}

} // namespace
} // namespace Kestrona::Host
