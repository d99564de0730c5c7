// The search by keyword and outline against the pattern alone, and against texts made to be slow.
#include "configuration/parsers/direct_pattern.h"
#include "configuration/parsers/parser_cases.h"

#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <random>

namespace Kestrona::ParsersTest {

using namespace Configuration::Parsers;

namespace {

// What the patterns are made of, and characters that are nearly that.
const std::vector<std::wstring> kFragments = {
    L"(",          L")",    L"(",      L")",       L"[",      L"]",      L"\"",        L"\"", L" ",  L" ",
    L"\t",         L"\n",   L"\r\n",   L"a",       L"B1",     L"7",      L"-",         L">",  L"->", L".",
    L":",          L"-2.5", L"MAX",    L"LOOKUP ", L"|",      L"(A(B))", L"(",         L"))", L"(a", L"\"x\"",
    L"(1->\"t\")", L"\f",   L"\u00a0", L"\u2028",  L"\u0085", L"\v",     L"\U0001F600"};

// Samples of a keyword, whole and damaged, among other fragments.
class RandomTexts {
public:
    explicit RandomTexts(const std::wstring& sample) : sample_(sample), random_(7) {}

    std::wstring Next() {
        std::wstring text;
        for (std::size_t pieces = Below(4) + 1; pieces > 0; --pieces) {
            text += Below(3) == 0 ? Fragment() : Damaged(Below(5));
        }
        return text;
    }

    std::size_t Below(std::size_t bound) { return random_() % bound; }

private:
    const std::wstring& Fragment() { return kFragments[Below(kFragments.size())]; }

    std::wstring Damaged(std::size_t times) {
        std::wstring text = sample_;
        for (; times > 0; --times) {
            // Mostly behind the keyword.
            const std::size_t at = Below(4) == 0 ? Below(text.size() + 1) : text.size() - Below(text.size() / 2 + 1);
            text.replace(at, Below(3), Below(3) == 0 ? std::wstring() : Fragment());
        }
        return text;
    }

    std::wstring sample_;
    std::mt19937 random_;
};

std::wstring Repeated(const std::wstring& unit, std::size_t count) {
    std::wstring text;
    text.reserve(unit.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        text += unit;
    }
    return text;
}

// The walk over all matches goes on and ends.
void ExpectWalkThrough(const IClassificationParser& parser, const std::wstring& text) {
    std::int32_t end = 0;
    for (const ClassificationMatch& match : parser.MatchAll(text)) {
        ASSERT_GE(match.Start, end);
        ASSERT_GT(match.End, match.Start);
        ASSERT_EQ(text.substr(static_cast<std::size_t>(match.Start), match.Text.size()), match.Text);
        end = match.End;
    }
}

std::vector<std::wstring> LongUnits(const std::wstring& keyword) {
    std::vector<std::wstring> units = {L"(", L")", L"[]", L"\"", L" ", L"\\(.*+?)^$|{2}"};
    for (const std::wstring& behind : {std::wstring(), std::wstring(L"("), std::wstring(L"["), std::wstring(L"\""),
                                       std::wstring(L"( ("), std::wstring(L"(a( "), std::wstring(L"(1->\""),
                                       L"(" + Repeated(L"1", 500) + L"x", L"(" + Repeated(L" ", 20)}) {
        units.push_back(keyword + behind);
    }
    return units;
}

} // namespace

TEST(KeywordFirst, FindsWhatThePatternAloneFinds) {
    constexpr int kTexts = 3000;
    for (const ParserCase& c : ParserCases()) {
        RandomTexts texts(c.sample);
        int matches = 0;
        for (int i = 0; i < kTexts; ++i) {
            const std::wstring text = texts.Next();
            const auto start = static_cast<std::int32_t>(texts.Below(3) == 0 ? texts.Below(text.size() + 1) : 0);
            const ClassificationMatch expected = MatchByPattern(c, text, start);
            matches += expected.Matched ? 1 : 0;
            ASSERT_EQ(Describe(c.parser->MatchFrom(text, start)), Describe(expected))
                << c.name << " from " << start << " in: " << ToUtf8(text);
        }
        EXPECT_GT(matches, kTexts / 20) << c.name;
        EXPECT_LT(matches, kTexts) << c.name;
    }
}

TEST(DirectPattern, MatchesAsTheEngineWhereItMatches) {
    for (const wchar_t* pattern : {L"(\\d+5)?5", L"(a?)?a", L"(a)?ab", L"(ab)?a*", L"(a*)b"}) {
        for (const wchar_t* text : {L"555", L"5", L"a", L"aab", L"ab", L"b"}) {
            Platform::PatternMatch direct;
            Platform::PatternMatch found;
            if (DirectPattern(pattern).MatchAt(text, 0, 0, direct)) {
                ASSERT_TRUE(Platform::WidePattern(pattern).Search(text, 0, found)) << ToUtf8(pattern);
                for (std::size_t group = 0; group < found.groups.size(); ++group) {
                    const auto& expected = found.groups[group];
                    ASSERT_EQ(direct.groups.at(group).has_value(), expected.has_value()) << ToUtf8(pattern);
                    EXPECT_TRUE(!expected || expected->length == direct.groups[group]->length) << ToUtf8(pattern);
                }
            }
        }
    }
}

// A hundred thousand characters of one thing that a backtracking search goes over again for each keyword, and behind
// them something to find. What is found is what the pattern finds behind a few of them, only further on.
TEST(KeywordFirst, MatchesBehindLongTextsThatNearlyMatch) {
    constexpr std::size_t kFew = 3;
    for (const ParserCase& c : ParserCases()) {
        const std::wstring tail = L" x) " + c.sample.substr(c.layout == Layout::Source ? c.sample.find(L'S') : 0);
        std::size_t behind = 0;
        for (const std::wstring& unit : LongUnits(c.sample.substr(0, c.sample.find_first_of(L"([\"")))) {
            const std::size_t many = 100000 / unit.size();
            ClassificationMatch expected = MatchByPattern(c, Repeated(unit, kFew) + tail, 0);
            const std::wstring text = Repeated(unit, many) + tail;
            ExpectWalkThrough(*c.parser, text);
            const ClassificationMatch found = c.parser->MatchFirst(text);
            if (expected.Matched && expected.Start < static_cast<std::int32_t>(unit.size())) {
                EXPECT_EQ(found.Start, expected.Start) << c.name; // how far it reaches depends on their number
                continue;
            }
            const auto shift = static_cast<std::int32_t>((many - kFew) * unit.size());
            expected.Start += expected.Matched ? shift : 0;
            expected.End += expected.Matched ? shift : 0;
            behind += expected.Matched ? 1U : 0U;
            EXPECT_EQ(Describe(found), Describe(expected)) << c.name << " " << ToUtf8(unit.substr(0, 20));
        }
        EXPECT_GT(behind, 5U) << c.name;
    }
}

TEST(KeywordFirst, AllOfThousandsOfEntriesAreFound) {
    const ClassificationParser_SUBSTITUTE parser;
    const std::wstring text = Repeated(L"SUBSTITUTE( SUBSTITUTE(1->\"a\") (", 3000);
    EXPECT_EQ(parser.MatchAll(text).size(), 3000U);
}

} // namespace Kestrona::ParsersTest
