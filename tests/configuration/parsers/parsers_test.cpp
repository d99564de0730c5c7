#include "configuration/parsers/parser_cases.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

namespace Kestrona::ParsersTest {

using namespace Configuration::Parsers;

namespace {

std::string First(const IClassificationParser& parser, const std::wstring& text) {
    return Describe(parser.MatchFirst(text));
}

// Only the values, "none" without a match.
std::string ValuesOf(const IClassificationParser& parser, const std::wstring& text) {
    const ClassificationMatch match = parser.MatchFirst(text);
    std::string values = match.Matched ? "" : "none";
    for (const auto& [key, value] : match.Values) {
        values += ToUtf8(key) + "=" + ToUtf8(value) + ";";
    }
    return values;
}

} // namespace

TEST(Parsers, PlainKeywordsAreFoundInsideLongerWords) {
    EXPECT_EQ(First(ClassificationParser_SYSTEMDB(), L"a XSYSTEMDBY"), "3+8=11 <SYSTEMDB>");
    EXPECT_EQ(First(ClassificationParser_AUTO_CALCULATE(), L"AUTO  CALCULATE"), "none");
    EXPECT_EQ(First(ClassificationParser_EXCLUDE_FROM_DB(), L"EXCLUDE FROM DB"), "0+15=15 <EXCLUDE FROM DB>");
    EXPECT_EQ(First(ClassificationParser_DATA_LIST(), L"DATA LISTS"), "0+9=9 <DATA LIST>");
    EXPECT_EQ(First(SimpleClassificationParser(L"a.b"), L"axb a.b"), "4+3=7 <a.b>");
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

// Finds nothing of no length, everywhere.
class StandingStill : public IClassificationParser {
public:
    ClassificationMatch MatchFrom(const std::wstring& /*text*/, std::int32_t start) const override {
        ClassificationMatch match;
        match.Matched = true;
        match.Start = match.End = start;
        return match;
    }
};

TEST(Parsers, MatchAllEndsWhereAMatchDoesNotLeadOn) {
    EXPECT_TRUE(StandingStill().MatchAll(L"abc").empty());
    EXPECT_TRUE(SimpleClassificationParser(L"").MatchAll(L"abc").empty());
}

TEST(Parsers, CallersKeywordsThatAreBrokenPatternsMatchNothing) {
    for (const wchar_t* const keyword : {L"(", L"[", L"*", L"(?<", L")"}) {
        const std::wstring text = std::wstring(keyword) + L" FIELD NAME \"a\" (1->\"b\") \"c\"";
        EXPECT_FALSE(ClassificationParserBase_FIELD_NAME(keyword).MatchFirst(text).Matched) << ToUtf8(keyword);
        EXPECT_NO_THROW((void)SubstituteClassificationParserBase(keyword).MatchAll(text));
        EXPECT_NO_THROW((void)ExpressionClassificationParser(keyword).MatchAll(text));
    }
}

TEST(Parsers, ReadWhatTheyBuild) {
    EXPECT_EQ(ValuesOf(ClassificationParser_DATABASE(), ClassificationParser_DATABASE::BuildClassification(L"T", L"F")),
              "FIELD=F;TABLE=T;");
    EXPECT_EQ(ClassificationParser_OVERRIDE::BuildClassification(L"F"), L"OVERRIDE(F)");
    const ClassificationParser_SUBSTITUTX parser;
    for (const std::int32_t value : {0, 3, -2147483647 - 1}) {
        for (const wchar_t* const text : {L"Red", L"", L"100 %s (%)"}) {
            const std::wstring entry = parser.BuildClassification(value, text);
            EXPECT_EQ(entry, L"SUBSTITUTX(" + std::to_wstring(value) + L"->\"" + text + L"\")");
            EXPECT_EQ(ValuesOf(parser, entry),
                      "TEXT=" + ToUtf8(text) + ";VALUE=" + ToUtf8(std::to_wstring(value)) + ";");
        }
    }
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

} // namespace Kestrona::ParsersTest
