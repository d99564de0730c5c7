#include <kestrona/host/definition.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
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

TEST(DefinitionLanguage, EntriesOfAFormatMeanWhatTheySay) {
    const Definition definition = ParseGood("\xef\xbb\xbf# a comment\r\n"
                                            "format \"A b\" \"Shown \\\"so\\\" \\u{1f56f}\"\r\n"
                                            "{ extension abc # another\r\n"
                                            "  dataset \"\"\r\n"
                                            "  minlength 3 maxrecords 7\r\n"
                                            "  key Nr.1#\r\n"
                                            "  field Nr.1#: INTEGER|UNIQUE\r\n"
                                            "}\r\n"
                                            "format B { associated \"A b\" common key \xc3\x9c\r\n"
                                            "  field \xc3\x9c readonly 2 level -3 = 1\r\n"
                                            "    : INTEGER # the words go on\r\n"
                                            "\r\n"
                                            "    # below this line\r\n"
                                            "    |HIDDEN | UNIQUE\r\n"
                                            "  field key level hidden length 5 readonly : TEXT\r\n"
                                            "}");
    ASSERT_EQ(definition.formats.size(), 2U);
    const FormatDefinition& a = definition.formats[0];
    EXPECT_EQ(a.name, L"A b");
    EXPECT_EQ(a.display_name, L"Shown \"so\" \U0001f56f");
    EXPECT_EQ(a.extension, L"abc");
    EXPECT_EQ(a.dataset, L"");
    EXPECT_EQ(a.minimum_length, 3);
    EXPECT_EQ(a.maximum_records, 7);
    EXPECT_EQ(a.key, 0);
    EXPECT_EQ(a.fields.at(0).name, L"Nr.1#");
    EXPECT_EQ(a.fields.at(0).classification, L"INTEGER | UNIQUE");

    const FormatDefinition& b = definition.formats[1];
    EXPECT_EQ(b.display_name, L"B");
    EXPECT_EQ(b.extension, std::nullopt);
    EXPECT_EQ(b.dataset, std::nullopt);
    EXPECT_EQ(b.associated_table, L"A b");
    EXPECT_TRUE(b.eligible_for_common_dataset);
    EXPECT_EQ(b.maximum_records, 0);
    const FieldDefinition& first = b.fields.at(0);
    EXPECT_EQ(first.name, L"\u00dc");
    EXPECT_EQ(first.read_only, ReadOnlyType{2});
    EXPECT_EQ(first.dialog_level, -3);
    EXPECT_EQ(first.classification, L"INTEGER | HIDDEN | UNIQUE");
    EXPECT_EQ(first.words.at(1).place.line, 14);
    EXPECT_EQ(first.words.at(1).place.column, 6);
    const FieldDefinition& second = b.fields.at(1);
    EXPECT_EQ(second.name, L"key");
    EXPECT_EQ(second.read_only, ReadOnlyType{1});
    EXPECT_EQ(second.dialog_level, kHiddenDialogLevel);
    EXPECT_EQ(second.max_text_length, 5);
}

TEST(DefinitionLanguage, OtherStatementsMeanWhatTheySay) {
    const Definition definition = ParseGood("define Eight = 8 define \"Two words\" = EIGHT\n"
                                            "help -17 \"first \"\n   \"second\\n\" help 0 \"\"\n"
                                            "table \"My colours\" { \"Red\" = 1  \"Blue\" = 1.5\n\"\" = eight }\n"
                                            "substitute \"a\\\\b\" -> \"\\t\"\n");
    ASSERT_EQ(definition.constants.size(), 2U);
    EXPECT_EQ(definition.constants[1].name, L"Two words");
    EXPECT_EQ(definition.constants[1].value, 8.0);
    ASSERT_EQ(definition.help.size(), 2U);
    EXPECT_EQ(definition.help[0].id, -17);
    EXPECT_EQ(definition.help[0].text, L"first second\n");
    ASSERT_EQ(definition.tables.size(), 1U);
    ASSERT_EQ(definition.tables[0].entries.size(), 3U);
    EXPECT_EQ(definition.tables[0].entries[1].value, 1.5);
    EXPECT_EQ(definition.tables[0].entries[2].text, L"");
    ASSERT_EQ(definition.substitutions.size(), 1U);
    EXPECT_EQ(definition.substitutions[0].from, L"a\\b");
    EXPECT_EQ(definition.substitutions[0].to, L"\t");
}

TEST(DefinitionLanguage, DefaultsAreNumbersDatesDurationsAndConstants) {
    const struct {
        const char* text;
        double value;
    } kCases[] = {
        {"12", 12.0},
        {"-1.5e3", -1500.0},
        {".5", 0.5},
        {"+4", 4.0},
        {"0xff0000", 16711680.0},
        {"EIGHT", 8.0},
        {"1.5d", 1.5},
        {"6h", 0.25},
        {"-90min", -0.0625},
        {"10800s", 0.125},
        {"1900-01-01", 2.0},
        {"2000-02-29", 36585.0},
        {"2026-01-31", 46053.0},
        {"\"2026-01-31 18:00\"", 46053.75},
        {"\"2026-01-31T00:00:27\"", 46053.0 + 27.0 / 86400.0},
    };

    for (const auto& test : kCases) {
        EXPECT_EQ(ParseField("field B = " + std::string(test.text) + " : REAL").default_value, test.value) << test.text;
    }
}

// Without a default a field starts unset where its type knows that, and keys count up.
TEST(DefinitionLanguage, DefaultsThatAreNotGivenFollowFromTheField) {
    const struct {
        const char* classification;
        double value;
    } kCases[] = {
        {"INTEGER", 0.0},
        {"REAL", 0.0},
        {"TOGGLE", 0.0},
        {"DATE AND TIME", -1.0},
        {"DURATION", -1.0},
        {"REFERENCE", -1.0},
        {"TEXT", 0.0},
        {"REFERENCE | FREE FORMAT", 0.0},
        {"MATRIX | REFERENCE | AUTO LIST(A(K))", -1.0},
    };

    for (const auto& test : kCases) {
        EXPECT_EQ(ParseField("field B : " + std::string(test.classification)).default_value, test.value)
            << test.classification;
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
        {"REFERENCE | DATABASE [ SYSTEMDB ]", L"REFERENCE | DATABASE[SYSTEMDB]"},
        {"REFERENCE | DATABASE(FIND CLASSIFICATION STRING(INTEGER))",
         L"REFERENCE | DATABASE(FIND CLASSIFICATION STRING(INTEGER))"},
        {"REFERENCE | FAMILY( B )", L"REFERENCE | FAMILY(B)"},
        {"REAL | OVERRIDE(B: later)", L"REAL | OVERRIDE(B: later)"},
        {"MATRIX | REAL | AUTO DIMENSION ( The x , A ( K ) , Y ,A(K) )",
         L"MATRIX | REAL | AUTO DIMENSION(The x,A(K),Y,A(K))"},
        {"REAL | EVALUATE\"{#B} # | ( 2\" # comment", L"REAL | EVALUATE \"{#B} # | ( 2\""},
        {"TEXT | FF_STRING_DEF   \" none \"", L"TEXT | FF_STRING_DEF \" none \""},
        {"INTEGER | SUBSTITUTE ( -3.50 -> \"Red (dark)\" )", L"INTEGER | SUBSTITUTE(-3.50->\"Red (dark)\")"},
        {"INTEGER | SUBSTITUTE(2.->\"\")", L"INTEGER | SUBSTITUTE(2.->\"\")"},
        {"INTEGER | REMOTE_DEF \" A ( K ) \"", L"INTEGER | REMOTE_DEF \"A(K)\""},
        {"REAL | FORMAT( MAX   0.3 )", L"REAL | FORMAT(MAX 0.3)"},
        {"REAL | FORMAT(MAX)", L"REAL | FORMAT(MAX)"},
        {"REAL | TIP DISPLAY | BUTTON TEXT ( Go on )", L"REAL | TIP DISPLAY | BUTTON TEXT(Go on)"},
        {"REAL | TIP DISPLAY( 4 ) | HELPID(-7)", L"REAL | TIP DISPLAY(4) | HELPID(-7)"},
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

TEST(DefinitionLanguage, ReferencesCanBeLeftToTheLoad) {
    const std::string text = "format A {\nkey K\nfield K : INTEGER | DATABASE(Nowhere(Nothing))\n}\n";
    EXPECT_TRUE(ParseDefinition(text, "main.ksdef", NoFile).HasErrors());
    EXPECT_FALSE(ParseDefinition(text, "main.ksdef", NoFile, {.check_references = false}).HasErrors());
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

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(DefinitionLanguage, ExamplesOfTheManualAreGood) {
    const std::string manual = ReadFile(KESTRONA_SOURCE_DIR "/docs/definition-language.md");
    constexpr std::string_view kStart = "```ksdef\n";
    int examples = 0;
    for (std::size_t at = manual.find(kStart); at != std::string::npos; at = manual.find(kStart, at)) {
        at += kStart.size();
        ParseGood(std::string_view(manual).substr(at, manual.find("```", at) - at));
        ++examples;
    }
    EXPECT_GT(examples, 0);
}

TEST(DefinitionLanguage, SamplesAreGood) {
    for (const char* path : {"/examples/plant/plant.ksdef", "/examples/adventureworks/adventureworks.ksdef"}) {
        const ParseResult result = ParseDefinitionFile(std::string(KESTRONA_SOURCE_DIR) + path);
        for (const Diagnostic& diagnostic : result.diagnostics) {
            ADD_FAILURE() << diagnostic.ToString();
        }
        EXPECT_FALSE(result.unreadable) << path;
    }
}

} // namespace
} // namespace Kestrona::Host
