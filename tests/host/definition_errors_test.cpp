#include <kestrona/host/definition.h>

#include <gtest/gtest.h>

#include <map>
#include <span>
#include <string>
#include <string_view>

// Malformed definitions, each with all that is said about it.

namespace Kestrona::Host {
namespace {

struct Case {
    std::string_view text;
    std::string_view diagnostics; // without the name of the file
};

std::optional<std::string> NoFile(const std::string&) {
    return std::nullopt;
}

std::string Diagnose(std::string_view text) {
    constexpr std::string_view kFile = "main.ksdef";
    std::string all;
    for (const Diagnostic& diagnostic : ParseDefinition(text, std::string(kFile), NoFile).diagnostics) {
        const std::string line = diagnostic.ToString();
        EXPECT_TRUE(line.starts_with(kFile)) << line;
        all += (all.empty() ? "" : "\n") + line.substr(kFile.size() + 1);
    }
    return all;
}

// The beginning of a format, before its key and its field A.
constexpr Case kHeads[] = {
    {"format {\n", "1:8: error: unexpected text; found '{'; expected the name of a format"},
    {"format \"\" {\n", "1:8: error: wrong name; found ''; expected a name that is not empty"},
    {"format \"A(B)\" {\n", "1:8: error: wrong name; found 'A(B)'; expected a name without ( ) \" |"},
    {"format A\n", "2:1: error: unexpected text; found 'key'; expected '{'"},
};

// The third line of a format, between its key and its field A.
constexpr Case kProperties[] = {
    {"keys A", "3:1: error: unknown property; found 'keys'; expected field, key, extension, dataset, associated, "
               "minlength, maxrecords or '}'; did you mean 'key'?"},
    {"key A", "3:1: error: given twice; found 'key'; expected each property once"},
    {"maxrecords 0", "3:12: error: wrong number; found '0'; expected a number of records from 1 to 999899999"},
    {"associated Aa", "3:12: error: unknown associated table; found 'Aa'; expected the name of a format; did you mean "
                      "'A'?"},
    {"associated A", "3:12: error: format is associated with itself; found 'A'; expected the name of another format"},
    {"associated \"BY CLASSIFICATION()\"", "3:12: error: wrong arguments of BY CLASSIFICATION; found 'BY "
                                           "CLASSIFICATION()'; expected BY CLASSIFICATION(text)"},
};

constexpr Case kStatements[] = {
    {"formt A { }\n", "1:1: error: unknown statement; found 'formt'; expected include, define, help, table, substitute "
                      "or format; did you mean 'format'?"},
    {"format A {\nkey A\nfield A : INTEGER\n",
     "4:1: error: format 'A' has no end; found the end of the file; expected '}'"},
    {"format A {\nkey A\nfield A : INTEGER\nformat B {\nkey A\nfield A : INTEGER\n}\n",
     "4:1: error: format 'A' has no end; found 'format'; expected '}'"},
    {"format A {\n}\n", "1:8: error: format without fields; found 'A'; expected at least one field\n"
                        "1:8: warning: format 'A' has no key; found no key line; expected key and the name of a field"},
    {"format A {\nfield A : INTEGER\n}\nformat A {\nkey A\nfield A : INTEGER\n}\n",
     "1:8: warning: format 'A' has no key; found no key line; expected key and the name of a field\n"
     "4:8: error: format is defined twice; found 'A'; expected a name other than at main.ksdef:1:8"},
    {"format A {\nkey B\nfield A : INTEGER\n}\n",
     "2:5: error: key is no field of format 'A'; found 'B'; expected the name of a field"},
    {"format A {\nkey A\nassociated B\nextension abc\nfield A : INTEGER\n}\nformat B {\nkey A\nfield A : INTEGER\n}\n",
     "4:11: error: extension on a child of 'B', which has none; found 'abc'; expected no extension line"},
    {"define 3 = 3\n", "1:8: error: wrong name; found '3'; expected a name that begins with a letter"},
    {"define A 3\n", "1:10: error: unexpected text; found '3'; expected '='"},
    {"define A = 3\ndefine a = 4\n",
     "2:8: warning: constant is defined twice, the first one stays; found 'a'; expected a new name (case does not "
     "count)"},
    {"help \"text\"\n", "1:6: error: wrong number; found 'text'; expected the number of a help text"},
    {"help 3 \"text\n", "1:8: error: text without an end; found the end of the line; expected '\"'"},
    {"help 3 \"a\\qb\"\n", "1:10: error: unknown escape; found '\\q'; expected one of \\\" \\\\ \\n \\t \\u{...}"},
    {"help 3 \"a\\u{110000}b\"\n",
     "1:10: error: wrong code point; found '\\u{110000}'; expected \\u{1} to \\u{10ffff}"},
    {"help 3 \"a\"\nhelp 3 \"b\"\n",
     "2:6: warning: help text is defined twice, the first one counts; found 3; expected a new number"},
    {"table T { a = 1\n\"b\" = 2 }\n", "1:11: error: unexpected text; found 'a'; expected a text in quotes, or '}'"},
    {"table T { \"a\" = 1\n", "2:1: error: table 'T' has no end; found the end of the file; expected '}'"},
    {"table \"#define_Table\" { }\n",
     "1:7: error: reserved name of a table; found '#define_Table'; expected another name"},
    {"table T { }\ntable T { }\n",
     "2:7: error: table is defined twice; found 'T'; expected a name other than at main.ksdef:1:7"},
    {"substitute \"a\" \"b\"\n", "1:16: error: unexpected text; found 'b'; expected '->'"},
    {"substitute \"\" -> \"b\"\n", "1:12: error: empty text to replace; found '\"\"'; expected a text"},
    {"include\n", "1:8: error: unfinished statement; found the end of the line; expected the name of a file"},
    {"include \"missing.ksdef\"\n",
     "1:9: error: include cannot be read; found 'missing.ksdef'; expected a file that can be read"},
    {"include \"main.ksdef\"\n",
     "1:9: error: include leads back to itself; found 'main.ksdef'; expected a file that does not include this one"},
    {"}\n", "1:1: error: unknown statement; found '}'; expected include, define, help, table, substitute or format"},
    {"help 1 \"caf\xe9\"\nhelp 2 \"\xc3\xa9\xff\"\n", "1:12: error: no UTF-8; found byte 0xe9; expected UTF-8 text\n"
                                                      "2:10: error: no UTF-8; found byte 0xff; expected UTF-8 text"},
    {std::string_view("define A\0 = 3\n", 14),
     "1:9: error: control character; found '\\u{0}'; expected printable text"},
    {"define A = B\ndefine B = 3\ndefine C = A\n",
     "1:12: error: unknown constant; found 'B'; expected a constant that stands in a define before\n"
     "3:12: error: unknown constant; found 'A'; expected a constant that stands in a define before"},
};

// The fourth line of a format with a field A.
constexpr Case kFields[] = {
    {"field A : REAL", "4:7: error: field is defined twice; found 'A'; expected a name other than at main.ksdef:3:7"},
    {"field", "4:6: error: unfinished statement; found the end of the line; expected the name of a field"},
    {"field \"a|b\" : REAL", "4:7: error: wrong name; found 'a|b'; expected a name without ( ) \" |"},
    {"field \" a\" : REAL", "4:7: error: wrong name; found ' a'; expected a name without blanks at its ends"},
    {"field \"a\\u{7}\" : REAL", "4:7: error: wrong name; found 'a\\u{7}'; expected a name without control characters"},
    {"field B", "5:1: error: field 'B' has no classification here; found '}'; expected '=', level, readonly, length or "
                "':' and the classification"},
    {"field B = : REAL",
     "4:11: error: unexpected text; found ':'; expected a number, a date, a duration or a constant"},
    {"field B = 1e999 : REAL",
     "4:11: error: wrong value; found '1e999'; expected a number, a date, a duration or a constant"},
    {"field B level 40000 : REAL",
     "4:15: error: wrong number; found '40000'; expected a dialog level from -32768 to 32767, or hidden"},
    {"field B length 0 : REAL", "4:16: error: wrong number; found '0'; expected a number of characters"},
    {"field B readonly 256 : REAL", "4:18: error: wrong number; found '256'; expected a number from 0 to 255"},
    {"field B set 12 0x1 : REAL", "4:13: error: wrong number; found '12'; expected a class word from 0 to 11"},
    {"field B type 0x1ffffffff : REAL",
     "4:14: error: wrong number; found '0x1ffffffff'; expected 32 bits as a number such as 0x40"},
    {"field B levl 3 : REAL", "4:9: error: field 'B' has no classification here; found 'levl'; expected '=', level, "
                              "readonly, length or ':' and the classification; did you mean 'level'?"},
    {"field B = 1.5 : INTEGER",
     "4:7: warning: default of field 'B' is cut; found 1.5; expected a whole number of 32 bits"},
    {"field B = 2 : TOGGLE", "4:7: warning: default of field 'B' is no toggle; found 2; expected 0 or 1"},
    {"field B :", "4:10: error: empty word; found the end of the line; expected a word (further lines begin with '|')"},
    {"field B : UNIQUE", "4:11: error: field 'B' has no type; found 'UNIQUE'; expected a type word: INTEGER, REAL, "
                         "DATE AND TIME, DURATION, TOGGLE, REFERENCE, TEXT, MATRIX, FREE STRING"},
    {"field B : INTEGER | REAL", "4:11: error: field 'B' has several types; found 'INTEGER | REAL'; expected one type "
                                 "word, or MATRIX and one more"},
    {"field B : INTEGER | UNIQE",
     "4:21: warning: unknown word; found 'UNIQE'; expected a word of classifications; did you mean 'UNIQUE'?"},
    {"field B : INTEGER UNIQUE",
     "4:11: error: field 'B' has no type; found 'INTEGER UNIQUE'; expected a type word: INTEGER, REAL, DATE AND TIME, "
     "DURATION, TOGGLE, REFERENCE, TEXT, MATRIX, FREE STRING\n"
     "4:18: warning: no '|' behind INTEGER; found 'UNIQUE'; expected '|' between two words"},
    {"field B : INTEGER || UNIQUE",
     "4:20: error: empty word; found '|'; expected a word (further lines begin with '|')"},
    {"field B : INTEGER | DATABASE(A(A)",
     "4:29: error: bracket without an end; found the end of the line; expected ')'"},
    {"field B : INTEGER | DATABASE A(A))", "4:34: error: bracket without a beginning; found ')'; expected '('"},
    {"field B : INTEGER | DATABASE(A(A)) UNIQUE", "4:36: error: wrong arguments of DATABASE; found 'UNIQUE'; expected "
                                                  "'|' in front of the next word, as in DATABASE(Format(Field))"},
    {"field B : INTEGER | DATABASE(B(A))",
     "4:21: error: unknown format in DATABASE; found 'B'; expected the name of a format"},
    {"field B : INTEGER | DATABASE(A(Aa))",
     "4:21: error: unknown field in DATABASE; found 'Aa'; expected the name of a field of 'A'; did you mean 'A'?"},
    {"field B : INTEGER | FAMILY()",
     "4:28: error: wrong arguments of FAMILY; found ')'; expected a field, as in FAMILY(Field)"},
    {"field B : REAL | EVALUATE \"1 + 2",
     "4:27: error: quote without an end; found the end of the line; expected '\"'"},
    {"field B : REAL | EVALUATE \" \"", "4:27: error: wrong arguments of EVALUATE; found '\" \"'; expected a text in "
                                        "quotes that is not blank, as in EVALUATE \"text\""},
    {"field B : REAL | EVALUATE 1 + 2",
     "4:26: warning: no arguments of EVALUATE; found '1 + 2'; expected EVALUATE \"text\""},
    {"field B : REAL | SUBSTITUTE(x->\"y\")",
     "4:29: error: wrong arguments of SUBSTITUTE; found 'x->\"y\")'; expected a number, as in SUBSTITUTE(3->\"text\")"},
    {"field B : REAL | FORMAT()",
     "4:25: error: wrong arguments of FORMAT; found ')'; expected a number format such as 8.2, as in FORMAT(8.2)"},
    {"field B : REAL | TIP DISPLAY(x)",
     "4:30: error: wrong arguments of TIP DISPLAY; found 'x)'; expected a whole number, as in TIP DISPLAY(7)"},
    {"field B : REAL | FORMAT(MIN 2)",
     "4:26: error: wrong arguments of FORMAT; found 'IN 2)'; expected MAX, as in FORMAT(8.2)"},
    {"field B : REAL | HELPID(3000000000)",
     "4:35: error: wrong arguments of HELPID; found ')'; expected a number of at most 2147483647, as in HELPID(7)"},
    {"field B : MATRIX | REAL | AUTO DIMENSION(X,A(A),Y)",
     "4:50: error: wrong arguments of AUTO DIMENSION; found ')'; expected ',', as in AUTO "
     "DIMENSION(label,Format(Field),label,Format(Field))"},
    {"field B : MATRIX | REAL", "4:11: warning: matrix 'B' has no dimensions; found 'MATRIX | REAL'; expected AUTO "
                                "LIST, DATA LIST, RELATED LIST, ASSOCIATE, AUTO DIMENSION or DATABASE"},
    {"field B : REAL | REMOTE_DEF \"A\"",
     "4:31: error: wrong arguments of REMOTE_DEF; found '\"'; expected '(', as in REMOTE_DEF \"Format(Field)\""},
    {"field B : REAL | BUTTON TEXT \"SWITCH it\"", "4:18: warning: the arguments of BUTTON TEXT hold a keyword, which "
                                                   "takes effect; found 'SWITCH'; expected a text without it"},
    {"field B : REAL }", "4:16: error: brace in a classification; found '}'; expected '}' on a line of its own"},
    {"field B } : REAL",
     "4:9: error: field 'B' has no classification here; found '}'; expected '=', level, readonly, length or ':' and "
     "the classification\n"
     "4:11: error: unknown statement; found ':'; expected include, define, help, table, substitute or format\n"
     "5:1: error: unknown statement; found '}'; expected include, define, help, table, substitute or format"},
    {"field B classification REAL",
     "4:24: error: unexpected text; found 'REAL'; expected the exact classification in quotes"},
};

void ExpectDiagnostics(std::span<const Case> cases, const std::string& before, const std::string& behind) {
    for (const Case& test : cases) {
        EXPECT_EQ(Diagnose(before + std::string(test.text) + behind), test.diagnostics) << test.text;
    }
}

TEST(DefinitionErrors, WhatDoesNotFitIsToldWithItsPlace) {
    ExpectDiagnostics(kHeads, "", "key A\nfield A : INTEGER\n}\n");
    ExpectDiagnostics(kProperties, "format A {\nkey A\n", "\nfield A : INTEGER\n}\n");
    ExpectDiagnostics(kFields, "format A {\nkey A\nfield A : INTEGER | UNIQUE\n", "\n}\n");
    ExpectDiagnostics(kStatements, "", "");
}

// Each line is wrong by itself; none may hide another one.
TEST(DefinitionErrors, ManyErrorsAreFoundInOneRun) {
    EXPECT_EQ(
        Diagnose("defin A = 1\n"
                 "format A {\n"
                 "  key\n"
                 "  minlength many\n"
                 "  field B = oops\n"
                 "    : INTEGER\n"
                 "  field C : INTEGER | TABLE\n"
                 "    | FORMAT(x) # two lines, two errors\n"
                 "  feld D : REAL\n"
                 "    | HIDDEN\n"
                 "  field E :: REAL\n"
                 "  field A : INTEGER\n"
                 "}\n"
                 "help x \"y\"\n"),
        "1:1: error: unknown statement; found 'defin'; expected include, define, help, table, substitute or format; "
        "did you mean 'define'?\n"
        "2:8: warning: format 'A' has no key; found no key line; expected key and the name of a field\n"
        "3:6: error: unfinished statement; found the end of the line; expected the name of a field\n"
        "4:13: error: wrong number; found 'many'; expected a number of records\n"
        "5:13: error: unknown constant; found 'oops'; expected a constant that stands in a define before\n"
        "7:28: error: wrong arguments of TABLE; found the end of the word; expected '(', as in TABLE(text)\n"
        "8:14: error: wrong arguments of FORMAT; found 'x)'; expected a number format such as 8.2, as in FORMAT(8.2)\n"
        "9:3: error: unknown property; found 'feld'; expected field, key, extension, dataset, associated, minlength, "
        "maxrecords or '}'; did you mean 'field'?\n"
        "11:12: warning: unknown word; found ': REAL'; expected a word of classifications; did you mean 'REAL'?\n"
        "11:12: error: field 'E' has no type; found ': REAL'; expected a type word: INTEGER, REAL, DATE AND TIME, "
        "DURATION, TOGGLE, REFERENCE, TEXT, MATRIX, FREE STRING\n"
        "14:6: error: wrong number; found 'x'; expected the number of a help text");
}

TEST(DefinitionErrors, AHundredErrorsAreEnough) {
    std::string text;
    for (int i = 0; i < 1000; ++i) {
        text += "define = 1\n";
    }
    const ParseResult result = ParseDefinition(text, "main.ksdef", NoFile);
    ASSERT_EQ(result.diagnostics.size(), 101U);
    EXPECT_EQ(result.diagnostics[99].line, 100);
    EXPECT_EQ(
        result.diagnostics[100].ToString(),
        "main.ksdef:100:8: error: too many errors, the rest was not examined; found 100 errors or more; expected a "
        "definition that fits this language");
}

TEST(DefinitionErrors, LimitsOfTheStoreAreErrorsWhereTheyArePassed) {
    std::string formats;
    for (int i = 0; i <= kMaxFormats; ++i) {
        formats += "format F" + std::to_string(i) + " {\nkey A\nfield A : INTEGER\n}\n";
    }
    EXPECT_EQ(Diagnose(formats), "4001:8: error: too many formats; found 1001; expected at most 1000");

    std::string fields = "format F {\nkey F0\n";
    for (int i = 0; i <= 10001; ++i) {
        fields += "field F" + std::to_string(i) + " : INTEGER\n";
    }
    EXPECT_EQ(Diagnose(fields + "}\n"),
              "10003:7: error: too many fields; found 'F10000'; expected at most 10000 in a format");

    std::string table = "table T {\n";
    for (int i = 0; i <= kMaxStringTableEntries; ++i) {
        table += "\"" + std::to_string(i) + "\" = 1\n";
    }
    EXPECT_EQ(Diagnose(table + "}\n"),
              "1:7: error: too many entries in table 'T'; found 10001; expected at most 10000");
    EXPECT_EQ(Diagnose("format F {\ndataset \"" + std::string(512, 'x') + "\"\nkey A\nfield A : INTEGER\n}\n"),
              "2:9: error: long name of a dataset; found '" + std::string(40, 'x') +
                  "...'; expected at most 511 characters");
}

// Files by name.
FileReader FilesOf(std::map<std::string, std::string> files) {
    return [files = std::move(files)](const std::string& path) {
        const auto found = files.find(path);
        return found == files.end() ? std::nullopt : std::optional(found->second);
    };
}

std::string DiagnoseFiles(const std::string& main, const FileReader& reader, bool unreadable) {
    const ParseResult result = ParseDefinitionFile(main, reader);
    EXPECT_EQ(result.unreadable, unreadable);
    std::string all;
    for (const Diagnostic& diagnostic : result.diagnostics) {
        all += diagnostic.ToString() + "\n";
    }
    return all;
}

TEST(DefinitionErrors, IncludedFilesHavePlacesOfTheirOwn) {
    EXPECT_EQ(
        DiagnoseFiles("dir/main.ksdef",
                      FilesOf({{"dir/main.ksdef", "include \"sub/a.ksdef\"\ninclude \"sub/gone.ksdef\"\ndefine\n"},
                               {"dir/sub/a.ksdef", "define A = 1\nwhat\ninclude \"../b.ksdef\"\n"},
                               {"dir/b.ksdef", "define a = 2\n"}}),
                      true),
        "dir/main.ksdef:2:9: error: include cannot be read; found 'sub/gone.ksdef'; expected a file that can be "
        "read\n"
        "dir/main.ksdef:3:7: error: unfinished statement; found the end of the line; expected the name of a constant\n"
        "dir/sub/a.ksdef:2:1: error: unknown statement; found 'what'; expected include, define, help, table, "
        "substitute or format\n"
        "dir/b.ksdef:1:8: warning: constant is defined twice, the first one stays; found 'a'; expected a new name "
        "(case does not count)\n");
    EXPECT_EQ(
        DiagnoseFiles("gone.ksdef", NoFile, true),
        "gone.ksdef:1:1: error: definition cannot be read; found 'gone.ksdef'; expected a file that can be read\n");
}

TEST(DefinitionErrors, IncludesThatLeadBackAreErrorsAndRepeatedOnesAreNot) {
    EXPECT_EQ(
        DiagnoseFiles(
            "./a",
            FilesOf({{"./a", "include \"b\"\ninclude \"c\"\n"}, {"b", "include c\n"}, {"c", "include \"x/../a\"\n"}}),
            false),
        "c:1:9: error: include leads back to itself; found 'x/../a'; expected a file that does not include this "
        "one\n");
}

TEST(DefinitionErrors, IncludesAreAtMostThirtyTwoDeep) {
    int asked = 0;
    const FileReader endless = [&](const std::string&) {
        ++asked;
        return std::optional("include \"f" + std::to_string(asked) + "\"\n");
    };
    EXPECT_EQ(DiagnoseFiles("f", endless, false),
              "f31:1:9: error: include too deep; found 'f32'; expected at most 32 files inside each other\n");
    EXPECT_EQ(asked, 32);
}

} // namespace
} // namespace Kestrona::Host
