// The parsers: their search by keyword and outline against the pattern alone, and against texts made to be slow.
#include "configuration/parsers/direct_pattern.h"
#include "configuration/parsers/parser_cases.h"
#include "platform/random_text.h"

#include <kestrona/unicode.h>

#include <gtest/gtest.h>

namespace Kestrona::ParsersTest {

using namespace Configuration::Parsers;

namespace {

// What the patterns are made of, and characters that are nearly that.
const std::wstring kCharacters = L"()()[]\"\" \t\n\r\f\vaB17->.:|\u00a0\u2028\u0085\U0001F600";
const std::vector<std::wstring> kFragments = {L"(",    L")",  L"[",     L"]",         L"\"", L" ",
                                              L"-2.5", L"->", L"MAX",   L"LOOKUP ",   L"|",  L"(A(B))",
                                              L"(a",   L"))", L"\"x\"", L"(1->\"t\")"};

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
    Testing::RandomSource random(7);
    for (const ParserCase& c : ParserCases()) {
        int matches = 0;
        for (int i = 0; i < kTexts; ++i) {
            std::wstring text; // the sample, whole and damaged, among other fragments
            for (std::size_t pieces = random.Below(3) + 1; pieces > 0; --pieces) {
                text += random.Join(kFragments, 3) + random.Damage(c.sample, kCharacters, 4);
            }
            text += random.Join(kFragments, 3);
            const auto start = static_cast<std::int32_t>(random.Below(3) == 0 ? random.Below(text.size() + 1) : 0);
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

TEST(Parsers, PlainKeywordsAreFoundInsideLongerWords) {
    EXPECT_EQ(Describe(ClassificationParser_SYSTEMDB().MatchFirst(L"a XSYSTEMDBY")), "3+8=11 <SYSTEMDB>");
    EXPECT_EQ(Describe(ClassificationParser_AUTO_CALCULATE().MatchFirst(L"AUTO  CALCULATE")), "none");
    EXPECT_EQ(Describe(SimpleClassificationParser(L"a.b").MatchFirst(L"axb a.b")), "4+3=7 <a.b>");
}

TEST(Parsers, KeywordsTellTheirClassAndTheirBareWords) {
    EXPECT_EQ(ClassificationParser_AUTO_LIST::get_Class(), (Class{1, 1}));
    EXPECT_EQ(ClassificationParser_UPDATE_REFERENCE::get_Class(), (Class{1, 8388608}));
    EXPECT_EQ(ClassificationParser_DATA_LIST().get_Class(), (Class{10, 2097152}));
    EXPECT_EQ(ClassificationParser_EXCLUDE_FROM_DB().get_Class(), (Class{0, 1073741824}));
    EXPECT_TRUE(ClassificationParser_UPDATE_REFERENCE::HasKeyword(L"x UPDATE REFERENCE x"));
    EXPECT_FALSE(ClassificationParser_UPDATE_REFERENCE::HasKeyword(L"ADDITIONAL REFERENCE"));
    EXPECT_TRUE(ClassificationParser_ADDITIONAL_REFERENCE::HasKeyword(L"ADDITIONAL REFERENCE"));
}

TEST(Parsers, PositionsCountFromTheBeginningOfTheText) {
    const ClassificationParser_SOURCE source;
    const std::wstring text = L"\U0001F600 LOOKUP SOURCE(A(B))";
    EXPECT_EQ(Describe(source.MatchFrom(text, 2)), "none");
    EXPECT_EQ(Describe(source.MatchFrom(text, 3)), "9+10=19 <SOURCE(A(B> FIELD:<B> TABLE:<A>");
    EXPECT_EQ(Describe(source.MatchFrom(text, 10)), "none");
    for (const std::int32_t outside : {-1, 22, 2147483647}) {
        EXPECT_FALSE(source.MatchFrom(text, outside).Matched) << outside;
        EXPECT_FALSE(ClassificationParser_SYSTEMDB().MatchFrom(L"SYSTEMDB", outside).Matched) << outside;
    }
}

TEST(Parsers, MatchAllWalksThroughTheTextOnce) {
    const ClassificationParser_SUBSTITUTE parser;
    const auto matches = parser.MatchAll(L"SUBSTITUTE(1->\"a\")SUBSTITUTE(2->\"b\") x");
    ASSERT_EQ(matches.size(), 2U);
    EXPECT_EQ(Describe(matches[1]), "18+18=36 <SUBSTITUTE(2->\"b\")> TEXT:<b> VALUE:<2>");
    EXPECT_TRUE(parser.MatchAll(L"").empty());
    // An expression that is blank ends the walk.
    EXPECT_EQ(ClassificationParser_EVALUATE().MatchAll(L"EVALUATE \"1\" EVALUATE \" \" EVALUATE \"2\"").size(), 1U);
}

TEST(Parsers, MatchAllEndsWhereAMatchDoesNotLeadOn) {
    EXPECT_TRUE(SimpleClassificationParser(L"").MatchAll(L"abc").empty());
}

TEST(Parsers, CallersKeywordsThatAreBrokenPatternsMatchNothing) {
    const std::wstring text = L"( FIELD NAME \"a\" (1->\"b\") \"c\"";
    EXPECT_FALSE(ClassificationParserBase_FIELD_NAME(L"(").MatchFirst(text).Matched);
    EXPECT_TRUE(SubstituteClassificationParserBase(L"(").MatchAll(text).empty());
    EXPECT_TRUE(ExpressionClassificationParser(L"(").MatchAll(text).empty());
}

TEST(Parsers, ReadWhatTheyBuild) {
    EXPECT_EQ(ClassificationParser_DATABASE::BuildClassification(L"T", L"F"), L"DATABASE(T(F))");
    EXPECT_EQ(ClassificationParser_OVERRIDE::BuildClassification(L"F"), L"OVERRIDE(F)");
    const ClassificationParser_SUBSTITUTX parser;
    for (const std::int32_t value : {0, 3, -2147483647 - 1}) {
        for (const std::wstring text : {L"Red", L"", L"100 %s (%)"}) {
            const std::wstring entry = parser.BuildClassification(value, text);
            EXPECT_EQ(entry, L"SUBSTITUTX(" + std::to_wstring(value) + L"->\"" + text + L"\")");
            EXPECT_EQ(parser.MatchFirst(entry).Values.at(L"TEXT"), text);
        }
    }
}

} // namespace Kestrona::ParsersTest
