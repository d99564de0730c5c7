#include "definition/arguments.h"
#include "definition/classification.h"
#include "definition/suggestion.h"
#include "definition/values.h"
#include "definition/words.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <algorithm>
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

// What the readers of classification strings look for, with the start of the arguments where they ask for it. Each
// belongs to the word of that name, if there is one.
constexpr std::wstring_view kSearched =
    L"DATABASE(,SOURCE(,LOOKUP SOURCE,LOOKUP UPDATE,STRING STORAGE,ADDITIONAL REFERENCE,UPDATE REFERENCE,OVERRIDE(,"
    L"FAMILY(,RELATED FIELD,REMOTE(,REMOTE_DEF,SWITCH,SWITCH ON,SWITCH OFF,AUTO SPLIT,LOCAL ASSIGNMENT,MATCH FIELD,"
    L"MATCH DURATION FIELD,MATCH END DURATION FIELD,SETUP OVERRIDE MATCH,SOURCE ORDER,ORDER MATCH,EXPAND MATCH,"
    L"EXPAND REFERENCE,AUTO LIST(,DATA LIST,RELATED LIST,ASSOCIATE(,AUTO RESTRICT,AUTO DIMENSION,MATRIX DEFAULT,"
    L"MATRIX MINIMUM,COMMON MATRIX,3DMATRIX,EVALUATE \",HIDDEN IF \",EXCLUDE \",EXCLUDE FROM DB,SUBSTITUTE(,"
    L"SUBSTITUTX(,STRING_DEF,FF_STRING_DEF,TABLE(,FORMAT(,TRANSLATABLE,BUTTON TEXT,DIALOG FIELD NAME,TIP FIELD NAME,"
    L"EDITOR FIELD NAME,TIP DISPLAY,HELPID,HELPPOPUPID(,HELP TEXT,HELP FILE,SYSTEMDB,AUTO CALCULATE,"
    L"BY CLASSIFICATION,DATABASE[,FIND CLASSIFICATION STRING";

std::vector<std::wstring_view> SearchedTexts() {
    std::vector<std::wstring_view> texts;
    for (std::size_t at = 0, end = 0; at < kSearched.size(); at = end + 1) {
        end = std::min(kSearched.find(L',', at), kSearched.size());
        texts.push_back(kSearched.substr(at, end - at));
    }
    return texts;
}

// Longer words that a search for a shorter one is meant to find.
const std::set<std::pair<std::wstring_view, std::wstring_view>> kMeantToo{{L"SOURCE(", L"LOOKUP SOURCE"},
                                                                          {L"SWITCH", L"SWITCH ON"},
                                                                          {L"SWITCH", L"SWITCH OFF"},
                                                                          {L"STRING_DEF", L"FF_STRING_DEF"}};

bool IsOwner(std::wstring_view searched, std::wstring_view word) {
    const std::size_t end = searched.find_last_not_of(L"( \"");
    return searched.substr(0, end + 1) == word || kMeantToo.contains({searched, word});
}

TEST(DefinitionWords, NoReaderMistakesAWordForAnotherNorFindsOneAcrossTwo) {
    const std::vector<std::wstring_view> searched = SearchedTexts();
    for (const Word& first : AllWords()) {
        for (const Word& second : AllWords()) {
            const std::wstring both = Example(first) + std::wstring(kWordSeparator) + Example(second);
            for (const std::wstring_view text : searched) {
                ASSERT_EQ(both.find(text) != std::wstring::npos,
                          IsOwner(text, first.text) || IsOwner(text, second.text))
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
        EXPECT_NE(manual.find("\n| `" + ToUtf8(word.text)), std::string::npos) << ToUtf8(word.text);
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
}

TEST(DefinitionValues, TextsThatAreNoValueGiveNone) {
    for (const wchar_t* text :
         {L"", L" 1", L"1 ", L"1,5", L"--1", L"0x", L"0x100000000", L"1e999", L"1.5x", L"min", L"2026-13-01",
          L"2026-02-29", L"1899-12-31", L"2026-1-1", L"2026-01-01 24:00", L"2026-01-01x01:00", L"\u0661"}) {
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

// The number of changes between two texts, told plainly.
std::size_t Changes(std::wstring_view left, std::wstring_view right) {
    if (left.empty() || right.empty()) {
        return left.size() + right.size();
    }
    const std::size_t replaced = Changes(left.substr(1), right.substr(1)) + (left[0] == right[0] ? 0 : 1);
    const std::size_t moved = 1 + std::min(Changes(left.substr(1), right), Changes(left, right.substr(1)));
    const bool is_swap = left.size() > 1 && right.size() > 1 && left[0] == right[1] && left[1] == right[0];
    return std::min({replaced, moved, is_swap ? 1 + Changes(left.substr(2), right.substr(2)) : moved});
}

TEST(DefinitionSuggestions, ADistanceIsTheNumberOfChanges) {
    std::vector<std::wstring> texts{L""};
    for (std::size_t i = 0; texts[i].size() < 4; ++i) {
        texts.push_back(texts[i] + L'a');
        texts.push_back(texts[i] + L'b');
    }
    for (const std::wstring& left : texts) {
        for (const std::wstring& right : texts) {
            for (const std::size_t limit : {1U, 3U}) {
                ASSERT_EQ(EditDistance(left, right, limit), std::min(Changes(left, right), limit + 1))
                    << ToUtf8(left) << " " << ToUtf8(right);
            }
        }
    }
}

} // namespace
} // namespace Kestrona::Host::Language
