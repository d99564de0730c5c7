#include <kestrona/host/definition.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <regex>
#include <span>
#include <string>
#include <string_view>

// Malformed definitions, each with all that is said about it.

namespace Kestrona::Host {
namespace {

struct Case {
    std::string_view text;
    std::string_view diagnostics;
};

std::optional<std::string> NoFile(const std::string&) {
    return std::nullopt;
}

// A line for each, without what is expected in the place of what was found.
std::string Shown(const ParseResult& result) {
    std::string all;
    for (const Diagnostic& diagnostic : result.diagnostics) {
        std::string line = diagnostic.ToString();
        const std::size_t expected = line.find("; expected ");
        EXPECT_NE(expected, std::string::npos) << line;
        line.erase(expected, std::min(line.find("; did you mean"), line.size()) - expected);
        all += (all.empty() ? "" : "\n") + line;
    }
    return all;
}

ParseResult Parse(std::string_view text) {
    return ParseDefinition(text, "main.ksdef", NoFile);
}

// Without the name of the file.
std::string Diagnose(std::string_view text) {
    return std::regex_replace(Shown(Parse(text)), std::regex("main.ksdef:([0-9])"), "$1");
}

// The beginning of a format, before its key and its field A.
constexpr Case kHeads[] = {
    {"format {\n", "1:8: error: unexpected text; found '{'"},
    {"format \"\" {\n", "1:8: error: wrong name; found ''"},
    {"format \"A(B)\" {\n", "1:8: error: wrong name; found 'A(B)'"},
    {"format A\n", "2:1: error: unexpected text; found 'key'"},
};

// The third line of a format, between its key and its field A.
constexpr Case kProperties[] = {
    {"keys A", "3:1: error: unknown property; found 'keys'; did you mean 'key'?"},
    {"key A", "3:1: error: given twice; found 'key'"},
    {"maxrecords 0", "3:12: error: wrong number; found '0'"},
    {"associated Aa", "3:12: error: unknown associated table; found 'Aa'; did you mean 'A'?"},
    {"associated A", "3:12: error: format is associated with itself; found 'A'"},
    {"associated \"BY CLASSIFICATION()\"",
     "3:12: error: wrong arguments of BY CLASSIFICATION; found 'BY CLASSIFICATION()'"},
};

constexpr Case kStatements[] = {
    {"formt A { }\n", "1:1: error: unknown statement; found 'formt'; did you mean 'format'?"},
    {"format A {\nkey A\nfield A : INTEGER\n", "4:1: error: format 'A' has no end; found the end of the file"},
    {"format A {\nkey A\nfield A : INTEGER\nformat B {\nkey A\nfield A : INTEGER\n}\n",
     "4:1: error: format 'A' has no end; found 'format'"},
    {"format A {\n}\n",
     "1:8: error: format without fields; found 'A'\n1:8: warning: format 'A' has no key; found no key line"},
    {"format A {\nfield A : INTEGER\n}\nformat A {\nkey A\nfield A : INTEGER\n}\n",
     "1:8: warning: format 'A' has no key; found no key line\n4:8: error: format is defined twice; found 'A'"},
    {"format A {\nkey B\nfield A : INTEGER\n}\n", "2:5: error: key is no field of format 'A'; found 'B'"},
    {"format A {\nkey A\nassociated B\nextension abc\nfield A : INTEGER\n}\nformat B {\nkey A\nfield A : INTEGER\n}\n",
     "4:11: error: extension on a child of 'B', which has none; found 'abc'"},
    {"define 3 = 3\n", "1:8: error: wrong name; found '3'"},
    {"define A = 3\ndefine a = 4\n", "2:8: warning: constant is defined twice, the first one stays; found 'a'"},
    {"help \"text\"\n", "1:6: error: wrong number; found 'text'"},
    {"help 3 \"text\n", "1:8: error: text without an end; found the end of the line"},
    {"help 3 \"a\\qb\"\n", "1:10: error: unknown escape; found '\\q'"},
    {"help 3 \"a\\u{110000}b\"\n", "1:10: error: wrong code point; found '\\u{110000}'"},
    {"help 3 \"a\"\nhelp 3 \"b\"\n", "2:6: warning: help text is defined twice, the first one counts; found 3"},
    {"table T { a = 1\n\"b\" = 2 }\n", "1:11: error: unexpected text; found 'a'"},
    {"table T { \"a\" = 1\n", "2:1: error: table 'T' has no end; found the end of the file"},
    {"table \"#define_Table\" { }\n", "1:7: error: reserved name of a table; found '#define_Table'"},
    {"table T { }\ntable T { }\n", "2:7: error: table is defined twice; found 'T'"},
    {"substitute \"\" -> \"b\"\n", "1:12: error: empty text to replace; found '\"\"'"},
    {"include\n", "1:8: error: unfinished statement; found the end of the line"},
    {"include \"missing.ksdef\"\n", "1:9: error: include cannot be read; found 'missing.ksdef'"},
    {"include \"main.ksdef\"\n", "1:9: error: include leads back to itself; found 'main.ksdef'"},
    {"}\n", "1:1: error: unknown statement; found '}'"},
    {"help 1 \"caf\xe9\"\nhelp 2 \"\xc3\xa9\xff\"\n",
     "1:12: error: no UTF-8; found byte 0xe9\n2:10: error: no UTF-8; found byte 0xff"},
    {std::string_view("define A\0 = 3\n", 14), "1:9: error: control character; found '\\u{0}'"},
    {"define A = B\ndefine B = 3\ndefine C = A\n",
     "1:12: error: unknown constant; found 'B'\n3:12: error: unknown constant; found 'A'"},
};

// The fourth line of a format with a field A.
constexpr Case kFields[] = {
    {"field A : REAL", "4:7: error: field is defined twice; found 'A'"},
    {"field", "4:6: error: unfinished statement; found the end of the line"},
    {"field \"a|b\" : REAL", "4:7: error: wrong name; found 'a|b'"},
    {"field \" a\" : REAL", "4:7: error: wrong name; found ' a'"},
    {"field \"a\\u{7}\" : REAL", "4:7: error: wrong name; found 'a\\u{7}'"},
    {"field B", "5:1: error: field 'B' has no classification here; found '}'"},
    {"field B = 1e999 : REAL", "4:11: error: wrong value; found '1e999'"},
    {"field B level 40000 : REAL", "4:15: error: wrong number; found '40000'"},
    {"field B length 0 : REAL", "4:16: error: wrong number; found '0'"},
    {"field B readonly 256 : REAL", "4:18: error: wrong number; found '256'"},
    {"field B set 12 0x1 : REAL", "4:13: error: wrong number; found '12'"},
    {"field B type 0x1ffffffff : REAL", "4:14: error: wrong number; found '0x1ffffffff'"},
    {"field B levl 3 : REAL", "4:9: error: field 'B' has no classification here; found 'levl'; did you mean 'level'?"},
    {"field B = 1.5 : INTEGER", "4:7: warning: default of field 'B' is cut; found 1.5"},
    {"field B = 2 : TOGGLE", "4:7: warning: default of field 'B' is no toggle; found 2"},
    {"field B :", "4:10: error: empty word; found the end of the line"},
    {"field B : UNIQUE", "4:11: error: field 'B' has no type; found 'UNIQUE'"},
    {"field B : INTEGER | REAL", "4:11: error: field 'B' has several types; found 'INTEGER | REAL'"},
    {"field B : INTEGER | UNIQE", "4:21: warning: unknown word; found 'UNIQE'; did you mean 'UNIQUE'?"},
    {"field B : INTEGER UNIQUE", "4:11: error: field 'B' has no type; found 'INTEGER UNIQUE'\n4:18: warning: no '|' "
                                 "behind INTEGER; found 'UNIQUE'"},
    {"field B : INTEGER || UNIQUE", "4:20: error: empty word; found '|'"},
    {"field B : INTEGER | DATABASE(A(A)", "4:29: error: bracket without an end; found the end of the line"},
    {"field B : INTEGER | DATABASE A(A))", "4:34: error: bracket without a beginning; found ')'"},
    {"field B : INTEGER | DATABASE(A(A)) UNIQUE", "4:36: error: wrong arguments of DATABASE; found 'UNIQUE'"},
    {"field B : INTEGER | DATABASE(B(A))", "4:21: error: unknown format in DATABASE; found 'B'"},
    {"field B : INTEGER | DATABASE(A(Aa))", "4:21: error: unknown field in DATABASE; found 'Aa'; did you mean 'A'?"},
    {"field B : INTEGER | FAMILY()", "4:28: error: wrong arguments of FAMILY; found ')'"},
    {"field B : REAL | EVALUATE \"1 + 2", "4:27: error: quote without an end; found the end of the line"},
    {"field B : REAL | EVALUATE \" \"", "4:27: error: wrong arguments of EVALUATE; found '\" \"'"},
    {"field B : REAL | EVALUATE 1 + 2", "4:26: warning: no arguments of EVALUATE; found '1 + 2'"},
    {"field B : REAL | SUBSTITUTE(x->\"y\")", "4:29: error: wrong arguments of SUBSTITUTE; found 'x->\"y\")'"},
    {"field B : REAL | FORMAT()", "4:25: error: wrong arguments of FORMAT; found ')'"},
    {"field B : REAL | TIP DISPLAY(x)", "4:30: error: wrong arguments of TIP DISPLAY; found 'x)'"},
    {"field B : REAL | FORMAT(MIN 2)", "4:26: error: wrong arguments of FORMAT; found 'IN 2)'"},
    {"field B : REAL | HELPID(3000000000)", "4:35: error: wrong arguments of HELPID; found ')'"},
    {"field B : MATRIX | REAL | AUTO DIMENSION(X,A(A),Y)", "4:50: error: wrong arguments of AUTO DIMENSION; found ')'"},
    {"field B : MATRIX | REAL", "4:11: warning: matrix 'B' has no dimensions; found 'MATRIX | REAL'"},
    {"field B : REAL | REMOTE_DEF \"A\"", "4:31: error: wrong arguments of REMOTE_DEF; found '\"'"},
    {"field B : REAL | BUTTON TEXT \"SWITCH it\"",
     "4:18: warning: the arguments of BUTTON TEXT hold a keyword, which takes effect; found 'SWITCH'"},
    {"field B : REAL }", "4:16: error: brace in a classification; found '}'"},
    {"field B } : REAL", "4:9: error: field 'B' has no classification here; found '}'\n4:11: error: unknown statement; "
                         "found ':'\n5:1: error: unknown statement; found '}'"},
    {"field B classification REAL", "4:24: error: unexpected text; found 'REAL'"},
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

// Each line is wrong by itself; none may hide another one. A diagnostic has all that is needed to mend it.
TEST(DefinitionErrors, ManyErrorsAreFoundInOneRun) {
    const std::string text = "defin A = 1\n"
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
                             "help x \"y\"\n";
    EXPECT_EQ(Diagnose(text), "1:1: error: unknown statement; found 'defin'; did you mean 'define'?\n"
                              "2:8: warning: format 'A' has no key; found no key line\n"
                              "3:6: error: unfinished statement; found the end of the line\n"
                              "4:13: error: wrong number; found 'many'\n"
                              "5:13: error: unknown constant; found 'oops'\n"
                              "7:28: error: wrong arguments of TABLE; found the end of the word\n"
                              "8:14: error: wrong arguments of FORMAT; found 'x)'\n"
                              "9:3: error: unknown property; found 'feld'; did you mean 'field'?\n"
                              "11:12: warning: unknown word; found ': REAL'; did you mean 'REAL'?\n"
                              "11:12: error: field 'E' has no type; found ': REAL'\n"
                              "14:6: error: wrong number; found 'x'");
    EXPECT_EQ(Parse(text).diagnostics.at(7).ToString(),
              "main.ksdef:9:3: error: unknown property; found 'feld'; expected field, key, extension, dataset, "
              "associated, minlength, maxrecords or '}'; did you mean 'field'?");
}

std::string Repeated(const std::string& before, const std::string& line, const std::string& behind, int count) {
    std::string text = before;
    for (int i = 0; i < count; ++i) {
        text += std::regex_replace(line, std::regex("@"), std::to_string(i));
    }
    return text + behind;
}

TEST(DefinitionErrors, LimitsAreErrorsWhereTheyArePassed) {
    const ParseResult result = Parse(Repeated("", "define = 1\n", "", 1000));
    ASSERT_EQ(result.diagnostics.size(), 101U) << "a hundred errors are enough";
    EXPECT_EQ(result.diagnostics[99].line, 100);
    EXPECT_EQ(result.diagnostics[100].text.find("too many errors, the rest was not examined"), 0U);
    EXPECT_EQ(Diagnose(Repeated("", "format F@ {\nkey A\nfield A : INTEGER\n}\n", "", kMaxFormats + 1)),
              "4001:8: error: too many formats; found 1001");
    EXPECT_EQ(Diagnose(Repeated("format F {\nkey F0\n", "field F@ : INTEGER\n", "}\n", 10002)),
              "10003:7: error: too many fields; found 'F10000'");
    EXPECT_EQ(Diagnose(Repeated("table T {\n", "\"@\" = 1\n", "}\n", kMaxStringTableEntries + 1)),
              "1:7: error: too many entries in table 'T'; found 10001");
    EXPECT_EQ(Diagnose("format F {\ndataset \"" + std::string(512, 'x') + "\"\nkey A\nfield A : INTEGER\n}\n"),
              "2:9: error: long name of a dataset; found '" + std::string(40, 'x') + "...'");
}

std::string DiagnoseFiles(const std::string& main, const std::map<std::string, std::string>& files, bool unreadable) {
    const ParseResult result = ParseDefinitionFile(main, [&](const std::string& path) {
        const auto found = files.find(path);
        return found == files.end() ? std::nullopt : std::optional(found->second);
    });
    EXPECT_EQ(result.unreadable, unreadable);
    return Shown(result);
}

TEST(DefinitionErrors, IncludedFilesHavePlacesOfTheirOwn) {
    EXPECT_EQ(DiagnoseFiles("dir/main",
                            {{"dir/main", "include \"sub/a\"\ninclude \"sub/gone\"\ndefine\n"},
                             {"dir/sub/a", "define A = 1\nwhat\ninclude \"../b\"\n"},
                             {"dir/b", "define a = 2\n"}},
                            true),
              "dir/main:2:9: error: include cannot be read; found 'sub/gone'\n"
              "dir/main:3:7: error: unfinished statement; found the end of the line\n"
              "dir/sub/a:2:1: error: unknown statement; found 'what'\n"
              "dir/b:1:8: warning: constant is defined twice, the first one stays; found 'a'");
    EXPECT_EQ(DiagnoseFiles("gone", {}, true), "gone:1:1: error: definition cannot be read; found 'gone'");
    // Those that lead back are errors, repeated ones are not.
    EXPECT_EQ(
        DiagnoseFiles("./a",
                      {{"./a", "include \"b\"\ninclude \"c\"\n"}, {"b", "include c\n"}, {"c", "include \"x/../a\"\n"}},
                      false),
        "c:1:9: error: include leads back to itself; found 'x/../a'");
    int asked = 0;
    const FileReader endless = [&](const std::string&) {
        ++asked;
        return std::optional("include \"f" + std::to_string(asked) + "\"\n");
    };
    EXPECT_EQ(Shown(ParseDefinitionFile("f", endless)), "f31:1:9: error: include too deep; found 'f32'");
    EXPECT_EQ(asked, 32);
}

} // namespace
} // namespace Kestrona::Host
