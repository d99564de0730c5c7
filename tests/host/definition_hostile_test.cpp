#include "definition/classification.h"

#include <kestrona/host/definition.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

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

TEST(DefinitionHostile, LongRepeatedTextsEndInEveryPosition) {
    for (const char* piece : {"(", ")", "\"", "|", "}", "\\", "\n|", "->", "DATABASE(A(A)) | ", "SWITCH ON(A) | ",
                              "EVALUATE \"", "DATABASE[", "AUTO DIMENSION(a,A(A),", "\\u{", "\xc3", "9"}) {
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

// Slices of a definition that uses most of the language, taken out and put in elsewhere.
TEST(DefinitionHostile, DamagedSamplesNeverBreakTheParser) {
    std::ifstream file(KESTRONA_SOURCE_DIR "/examples/plant/plant.ksdef", std::ios::binary);
    const std::string sample(std::istreambuf_iterator<char>(file), {});
    ASSERT_GT(sample.size(), 1000U);
    std::mt19937 random(11);
    for (int i = 0; i < 300; ++i) {
        std::string text = sample;
        for (auto changes = 1 + random() % 20; changes > 0; --changes) {
            text.erase(random() % text.size(), random() % 40);
            text.insert(random() % text.size(), sample, random() % sample.size(), random() % 40);
        }
        ParseAny(text);
    }
}

} // namespace
} // namespace Kestrona::Host
