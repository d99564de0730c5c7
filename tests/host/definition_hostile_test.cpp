#include "definition/classification.h"

#include <kestrona/host/definition.h>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

// Texts that nobody writes by hand. A parser that recursed on them, or whose cost grew faster than they do, would not
// come back.

namespace Kestrona::Host {
namespace {

constexpr std::size_t kLong = 300000;
constexpr std::size_t kMostDiagnostics = 202;

std::optional<std::string> NoFile(const std::string&) {
    return std::nullopt;
}

std::string Repeat(std::string_view piece, std::size_t length) {
    std::string text;
    while (text.size() < length) {
        text += piece;
    }
    return text;
}

ParseResult ParseAny(const std::string& text) {
    ParseResult result = ParseDefinition(text, "main.ksdef", NoFile);
    EXPECT_LE(result.diagnostics.size(), kMostDiagnostics);
    return result;
}

constexpr std::string_view kPieces[] = {
    "(",
    ")",
    "\"",
    "|",
    "||",
    "#",
    " # ",
    "}",
    "{",
    "\\",
    "\n",
    "\n|",
    "\n:",
    "->",
    "=",
    "DATABASE(",
    "A(B",
    "DATABASE(A(A)) | ",
    "SUBSTITUTE(1->\"x\") | ",
    "SWITCH ON(A) | ",
    "UNIQUEX | ",
    "REMOTE(",
    "EVALUATE \"",
    "[",
    "DATABASE[",
    "AUTO DIMENSION(a,A(A),",
    "\\u{",
    "\xc3",
    "\xf0\x9f",
    "\t",
    ".*+?^$",
    "INTEGER ",
    "FIND CLASSIFICATION STRING(",
    "-",
    "9",
    "x",
};

TEST(DefinitionHostile, LongRepeatedTextsEndInEveryPosition) {
    for (const std::string_view piece : kPieces) {
        const std::string text = Repeat(piece, kLong);
        ParseAny(text);
        ParseAny("format A {\nkey A\nfield A : INTEGER | " + text + "\n}\n");
        ParseAny("format A {\nkey A\nfield A : INTEGER | HELP TEXT(" + text + ")\n}\n");
        ParseAny("format A {\nkey A\nfield A : INTEGER | BUTTON TEXT \"" + text + "\"\n}\n");
        ParseAny("format A {\nkey A\n" + text + "\n}\n");
        ParseAny("table \"" + text + "\" { " + text + " }\n");
        ParseAny("define A = " + text + "\n");
    }
}

TEST(DefinitionHostile, ManyLinesOfEachStatementEnd) {
    std::string lines;
    for (std::size_t i = 0; i < 20000; ++i) {
        lines += "define C" + std::to_string(i) + " = c" + std::to_string(i > 0 ? i - 1 : 0) + "\n";
    }
    EXPECT_TRUE(ParseAny(lines).HasErrors());
    ParseAny(Repeat("format A { field A : INTEGER\n}\n", kLong));
    ParseAny(Repeat("format \"\\\" { field A : INTEGER\n}\n", kLong));
    ParseAny("format A {\n" + Repeat("field A : INTEGER | DATABASE(B(C))\n", kLong));
    ParseAny("format A {\n" + Repeat("field A : INTEGER\n", kLong) + "}\n");
}

// A classification of this length is an ordinary, if big, one: nothing of it may get lost.
TEST(DefinitionHostile, ALongClassificationIsKeptWhole) {
    std::string words = "INTEGER";
    for (std::size_t i = 0; words.size() < kLong; ++i) {
        words += " | SUBSTITUTE(" + std::to_string(i) + "->\"text (number) | " + std::to_string(i) + "\")";
    }
    const ParseResult result = ParseAny("format A {\nkey A\nfield A : " + words + "\n}\n");
    EXPECT_TRUE(result.diagnostics.empty());
    const std::wstring& stored = result.definition.formats.at(0).fields.at(0).classification;
    EXPECT_EQ(std::string(stored.begin(), stored.end()), words);
    EXPECT_TRUE(Language::UnderstandClassification(stored).is_canonical);
}

TEST(DefinitionHostile, RandomPiecesOfTheLanguageNeverBreakTheParser) {
    const std::vector<std::string_view> tokens{"format",
                                               "field",
                                               "key",
                                               "table",
                                               "define",
                                               "help",
                                               "include",
                                               "substitute",
                                               "extension",
                                               "{",
                                               "}",
                                               "=",
                                               ":",
                                               "|",
                                               "->",
                                               "\"",
                                               "\"a\"",
                                               "A",
                                               "A(A)",
                                               "1",
                                               "-1",
                                               "0x1",
                                               "2026-01-31",
                                               "level",
                                               "hidden",
                                               "readonly",
                                               "length",
                                               "type",
                                               "set",
                                               "clear",
                                               "classification",
                                               "INTEGER",
                                               "MATRIX",
                                               "AUTO LIST(A(A))",
                                               "#",
                                               "\n",
                                               "\n",
                                               "\\",
                                               "("};
    std::mt19937 random(11);
    for (int i = 0; i < 3000; ++i) {
        std::string text;
        for (int left = static_cast<int>(random() % 60); left > 0; --left) {
            text += tokens[random() % tokens.size()];
            text += random() % 4 == 0 ? "" : " ";
        }
        ParseAny(text);
    }
}

} // namespace
} // namespace Kestrona::Host
