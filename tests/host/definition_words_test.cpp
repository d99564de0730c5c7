#include "definition/arguments.h"
#include "definition/classification.h"
#include "definition/suggestion.h"
#include "definition/values.h"
#include "definition/words.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The table of words as a whole, and the small pieces beside it.

namespace Kestrona::Host::Language {
namespace {

std::wstring Example(const Word& word) {
    return std::wstring(word.text) + std::wstring(ExampleArguments(word.shape));
}

// What the readers of classification strings look for, with the start of the arguments where they ask for it, and the
// words that it belongs to.
const std::map<std::wstring_view, std::set<std::wstring_view>> kSearched{
    {L"DATABASE(", {L"DATABASE"}},
    {L"SOURCE(", {L"SOURCE", L"LOOKUP SOURCE"}},
    {L"LOOKUP SOURCE", {L"LOOKUP SOURCE"}},
    {L"LOOKUP UPDATE", {L"LOOKUP UPDATE"}},
    {L"STRING STORAGE", {L"STRING STORAGE"}},
    {L"ADDITIONAL REFERENCE", {L"ADDITIONAL REFERENCE"}},
    {L"UPDATE REFERENCE", {L"UPDATE REFERENCE"}},
    {L"OVERRIDE(", {L"OVERRIDE"}},
    {L"FAMILY(", {L"FAMILY"}},
    {L"RELATED FIELD", {L"RELATED FIELD"}},
    {L"REMOTE(", {L"REMOTE"}},
    {L"REMOTE_DEF", {L"REMOTE_DEF"}},
    {L"SWITCH", {L"SWITCH", L"SWITCH ON", L"SWITCH OFF"}},
    {L"SWITCH ON", {L"SWITCH ON"}},
    {L"SWITCH OFF", {L"SWITCH OFF"}},
    {L"AUTO SPLIT", {L"AUTO SPLIT"}},
    {L"LOCAL ASSIGNMENT", {L"LOCAL ASSIGNMENT"}},
    {L"MATCH FIELD", {L"MATCH FIELD"}},
    {L"MATCH DURATION FIELD", {L"MATCH DURATION FIELD"}},
    {L"MATCH END DURATION FIELD", {L"MATCH END DURATION FIELD"}},
    {L"SETUP OVERRIDE MATCH", {L"SETUP OVERRIDE MATCH"}},
    {L"SOURCE ORDER", {L"SOURCE ORDER"}},
    {L"ORDER MATCH", {L"ORDER MATCH"}},
    {L"EXPAND MATCH", {L"EXPAND MATCH"}},
    {L"EXPAND REFERENCE", {L"EXPAND REFERENCE"}},
    {L"AUTO LIST(", {L"AUTO LIST"}},
    {L"DATA LIST", {L"DATA LIST"}},
    {L"RELATED LIST", {L"RELATED LIST"}},
    {L"ASSOCIATE(", {L"ASSOCIATE"}},
    {L"AUTO RESTRICT", {L"AUTO RESTRICT"}},
    {L"AUTO DIMENSION", {L"AUTO DIMENSION"}},
    {L"MATRIX DEFAULT", {L"MATRIX DEFAULT"}},
    {L"MATRIX MINIMUM", {L"MATRIX MINIMUM"}},
    {L"COMMON MATRIX", {L"COMMON MATRIX"}},
    {L"3DMATRIX", {L"3DMATRIX"}},
    {L"EVALUATE \"", {L"EVALUATE"}},
    {L"HIDDEN IF \"", {L"HIDDEN IF"}},
    {L"EXCLUDE \"", {L"EXCLUDE"}},
    {L"EXCLUDE FROM DB", {L"EXCLUDE FROM DB"}},
    {L"SUBSTITUTE(", {L"SUBSTITUTE"}},
    {L"SUBSTITUTX(", {L"SUBSTITUTX"}},
    {L"STRING_DEF", {L"STRING_DEF", L"FF_STRING_DEF"}}, // meant so: the longer word has the effect of both
    {L"FF_STRING_DEF", {L"FF_STRING_DEF"}},
    {L"TABLE(", {L"TABLE"}},
    {L"FORMAT(", {L"FORMAT"}},
    {L"TRANSLATABLE", {L"TRANSLATABLE"}},
    {L"BUTTON TEXT", {L"BUTTON TEXT"}},
    {L"DIALOG FIELD NAME", {L"DIALOG FIELD NAME"}},
    {L"TIP FIELD NAME", {L"TIP FIELD NAME"}},
    {L"EDITOR FIELD NAME", {L"EDITOR FIELD NAME"}},
    {L"TIP DISPLAY", {L"TIP DISPLAY"}},
    {L"HELPID", {L"HELPID"}},
    {L"HELPPOPUPID(", {L"HELPPOPUPID"}},
    {L"HELP TEXT", {L"HELP TEXT"}},
    {L"HELP FILE", {L"HELP FILE"}},
    {L"SYSTEMDB", {L"SYSTEMDB"}},
    {L"AUTO CALCULATE", {L"AUTO CALCULATE"}},
    {L"BY CLASSIFICATION", {}},
    {L"DATABASE[", {}},
    {L"FIND CLASSIFICATION STRING", {}},
};

TEST(DefinitionWords, NoReaderMistakesAWordForAnother) {
    for (const Word& word : AllWords()) {
        for (const auto& [text, owners] : kSearched) {
            EXPECT_EQ(Example(word).find(text) != std::wstring::npos, owners.contains(word.text))
                << ToUtf8(word.text) << " and " << ToUtf8(text);
        }
    }
}

TEST(DefinitionWords, NoReaderFindsAWordAcrossTwoOthers) {
    for (const Word& first : AllWords()) {
        for (const Word& second : AllWords()) {
            const std::wstring both = Example(first) + std::wstring(kWordSeparator) + Example(second);
            for (const auto& [text, owners] : kSearched) {
                ASSERT_EQ(both.find(text) != std::wstring::npos,
                          owners.contains(first.text) || owners.contains(second.text))
                    << ToUtf8(both) << " and " << ToUtf8(text);
            }
        }
    }
}

// Bits that whoever fills a store has to set, by class word.
TEST(DefinitionWords, EveryBitOfADefinitionHasAWord) {
    const std::map<std::int32_t, std::uint32_t> kDefinitionBits{
        {0, 0x4 | 0x8 | 0x10 | 0x20 | 0x40 | 0x80 | 0x8000 | 0x100000 | 0x800000 | 0x8000000 | 0x40000000},
        {1, 0x40 | 0x1000 | 0x800000 | 0x80000000},
        {2, 0x1 | 0x2 | 0x10 | 0x100 | 0x10000 | 0x100000},
        {3, 0x20 | 0x2000 | 0x10000000},
        {4, 0x100 | 0x800000 | 0x4000000},
        {5, 0x80},
        {6, 0x10 | 0x40 | 0x400 | 0x8000000},
        {7, 0x40},
        {8, 0x80 | 0x100 | 0x20000000},
        {9, 0x20 | 0x400 | 0x4000000 | 0x8000000 | 0x10000000},
        {10, 0x40 | 0x200000},
        {11, 0},
    };
    std::uint32_t types = 0;
    std::map<std::int32_t, std::uint32_t> bits;
    for (const Word& word : AllWords()) {
        types |= word.type;
        bits[word.sets.word] |= word.sets.mask;
    }
    EXPECT_EQ(types, 0xffU);
    for (std::int32_t i = 0; i < kClassWords; ++i) {
        EXPECT_EQ(bits[i], kDefinitionBits.at(i)) << "class word " << i;
        EXPECT_EQ(bits[i] & ResolutionBits(i), 0U) << "class word " << i;
    }
}

TEST(DefinitionWords, ExamplesOfAllWordsAreCanonical) {
    for (const Word& word : AllWords()) {
        const KnownClassification known = UnderstandClassification(Example(word));
        EXPECT_TRUE(known.is_canonical) << ToUtf8(Example(word));
        EXPECT_EQ(known.classification.type, word.type);
        const auto set = static_cast<std::size_t>(word.sets.word);
        EXPECT_EQ(known.classification.classes[set], word.sets.mask) << ToUtf8(word.text);
    }
}

TEST(DefinitionWords, TheManualTellsEveryWord) {
    std::ifstream file(KESTRONA_SOURCE_DIR "/docs/definition-language.md", std::ios::binary);
    const std::string manual{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    for (const Word& word : AllWords()) {
        const std::string start = "\n| `" + ToUtf8(word.text);
        const std::size_t at = manual.find(start);
        ASSERT_NE(at, std::string::npos) << ToUtf8(word.text);
    }
}

TEST(DefinitionWords, NamesAreFoundInArguments) {
    const auto target = FindTargetNames(L"( A b ( C ) )");
    ASSERT_TRUE(target);
    EXPECT_EQ(target->format, L"A b");
    EXPECT_EQ(target->field, L"C");
    ASSERT_TRUE(FindTargetNames(L" \"A(B)\""));
    for (const wchar_t* broken : {L"", L"(", L"(A)", L"(A(B)", L"[A(B)]", L"(A(B)))", L"(A()))"}) {
        EXPECT_FALSE(FindTargetNames(broken)) << ToUtf8(broken);
    }
    EXPECT_EQ(FindFieldName(L"( A: 3 )", true), L"A");
    EXPECT_EQ(FindFieldName(L"(A: 3)", false), L"A: 3");
    const auto axes = FindAxisNames(L"(x,A(B),y,C(D))");
    ASSERT_TRUE(axes);
    EXPECT_EQ(axes->y.format, L"C");
}

TEST(DefinitionValues, TextsThatAreNoValueGiveNone) {
    for (const wchar_t* text : {L"",
                                L" 1",
                                L"1 ",
                                L"1,5",
                                L"--1",
                                L"+-1",
                                L"0x",
                                L"0x100000000",
                                L"1e999",
                                L"1.5x",
                                L"min",
                                L"1e999h",
                                L"2026-13-01",
                                L"2026-02-29",
                                L"1899-12-31",
                                L"2026-1-1",
                                L"2026-01-01 24:00",
                                L"2026-01-01 1:00",
                                L"2026-01-01x01:00",
                                L"\u0661"}) {
        EXPECT_FALSE(ParseValue(text)) << ToUtf8(text);
    }
    EXPECT_FALSE(ParseWhole(L"12", 13, 20));
    EXPECT_FALSE(ParseWhole(L"99999999999", 0, INT32_MAX));
    EXPECT_FALSE(ParseBits(L"-1"));
}

TEST(DefinitionValues, PrintedNumbersReadBackBitForBit) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (value == value) {
            const std::string text = PrintValue(value);
            const auto read = ParseValue(std::wstring(text.begin(), text.end()));
            ASSERT_TRUE(read) << text;
            ASSERT_EQ(std::bit_cast<std::uint64_t>(*read), std::bit_cast<std::uint64_t>(value)) << text;
        }
    }
}

// All texts that one change makes of a text.
std::set<std::wstring> Neighbours(const std::wstring& text, std::wstring_view alphabet) {
    std::set<std::wstring> all;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        for (const wchar_t c : alphabet) {
            all.insert(text.substr(0, i) + c + text.substr(i));
            if (i < text.size()) {
                all.insert(text.substr(0, i) + c + text.substr(i + 1));
            }
        }
        if (i < text.size()) {
            all.insert(text.substr(0, i) + text.substr(i + 1));
        }
        if (i + 1 < text.size()) {
            std::wstring swapped = text;
            std::swap(swapped[i], swapped[i + 1]);
            all.insert(swapped);
        }
    }
    return all;
}

TEST(DefinitionSuggestions, ADistanceOfOneIsOneChange) {
    constexpr std::wstring_view kAlphabet = L"ab";
    std::vector<std::wstring> texts{L""};
    for (std::size_t i = 0; texts[i].size() < 5; ++i) {
        for (const wchar_t c : kAlphabet) {
            texts.push_back(texts[i] + c);
        }
    }
    for (const std::wstring& left : texts) {
        const std::set<std::wstring> near = Neighbours(left, kAlphabet);
        for (const std::wstring& right : texts) {
            const std::size_t expected = left == right ? 0 : near.contains(right) ? 1 : 2;
            ASSERT_EQ(EditDistance(left, right, 1), expected) << ToUtf8(left) << " " << ToUtf8(right);
        }
    }
}

TEST(DefinitionSuggestions, TheNearestWordIsMeant) {
    const auto suggest = [](std::wstring_view word) {
        Suggestion suggestion(word);
        for (const Word& candidate : AllWords()) {
            suggestion.Offer(candidate.text);
        }
        return suggestion.Best();
    };
    EXPECT_EQ(suggest(L"unique"), "UNIQUE");
    EXPECT_EQ(suggest(L"UNQIUE"), "UNIQUE");
    EXPECT_EQ(suggest(L"AUTO LISTS"), "AUTO LIST");
    EXPECT_EQ(suggest(L"DATE & TIME"), "DATE AND TIME");
    EXPECT_EQ(suggest(L"SUBSTITUT"), "SUBSTITUTE");
    EXPECT_EQ(suggest(L"X"), "");
    EXPECT_EQ(suggest(L"SOMETHING ELSE"), "");
    EXPECT_EQ(suggest(std::wstring(1000, L'A')), "");
}

} // namespace
} // namespace Kestrona::Host::Language
