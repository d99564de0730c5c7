#include "platform/regex_search.h"

#include "platform/foreign_locale.h"
#include "platform/random_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <regex>

namespace Kestrona::Platform {
namespace {

using Testing::RandomSource;

struct PatternCase {
    const wchar_t* pattern;
    const wchar_t* sample;
};

// Every kind of construct that classification keywords are searched with, and a text that matches.
constexpr std::array kPatterns{
    PatternCase{LR"re(ID\s*\(\s*(-?\d+)\s*\))re", L"HELP ID ( -12 )"},
    PatternCase{LR"re(TIP\s*\(\s*(\d+)\s*\)|TIP)re", L"x TIP (5)TIP"},
    PatternCase{LR"re(TABLE\s*\(\s*(.+?)\s*\))re", L"TABLE( Work orders )"},
    PatternCase{LR"re(TEXT\s*(?:"([^"]+?)"|\(([^"]+?)\)))re", L"TEXT \"Go\" TEXT (Go)"},
    PatternCase{LR"re((LOOKUP |)DB\s*\(\s*([^)(]+)\(\s*([^)]+))re", L"LOOKUP DB( A( B ))DB(C(D))"},
    PatternCase{LR"re(DEF\s*"\s*([^("]+)\s*\(\s*([^)"]+)\s*\)\s*")re", L"DEF \" A B ( C ) \""},
    PatternCase{LR"re(REF\s*\(\s*([^(]+)\s*\(\s*([^)]+)\)\s*\))re", L"REF ( A  ( B ) ) REF"},
    PatternCase{LR"re(SUB\s*\(\s*(-?\d+\.?\d*)\s*-\s*>\s*"([^"]*)"\s*\))re", L"SUB ( -3.25 - > \"Red\" )"},
    PatternCase{LR"re(FMT\s*\(\s*(MAX)?\s*([^ \)]*)\s*\))re", L"FMT( MAX .3 )"},
    PatternCase{LR"re(EVAL\s*"\s*([^"]+)"?)re", L"EVAL \" a + b\" EVAL\""},
    PatternCase{LR"re(^\s*$)re", L" \t "},
};

using Groups = std::vector<std::optional<std::pair<std::size_t, std::size_t>>>;

Groups SearchOurs(const WidePattern& pattern, const std::wstring& text, std::size_t start) {
    PatternMatch match;
    Groups groups;
    if (pattern.Search(text, start, match)) {
        for (const auto& group : match.groups) {
            groups.push_back(group ? std::optional(std::pair(group->start, group->length)) : std::nullopt);
        }
    }
    return groups;
}

Groups SearchTheirs(const std::wregex& pattern, const std::wstring& text, std::size_t start) {
    std::wsmatch match;
    Groups groups;
    if (std::regex_search(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(), match, pattern)) {
        for (const auto& group : match) {
            groups.push_back(group.matched
                                 ? std::optional(std::pair(static_cast<std::size_t>(group.first - text.begin()),
                                                           static_cast<std::size_t>(group.length())))
                                 : std::nullopt);
        }
    }
    return groups;
}

TEST(WidePattern, FindsWhatTheStandardLibraryFinds) {
    const std::wstring alphabet = L"()\"\"  :->.-1AEX\n\f\xe4\x2028\x1d11e\x22028";
    RandomSource random(41);
    for (const PatternCase& c : kPatterns) {
        const std::wregex theirs(c.pattern);
        const WidePattern ours(c.pattern);
        ASSERT_TRUE(ours.IsValid());
        std::array<int, 2> seen{};
        for (int round = 0; round < 3000; ++round) {
            const std::wstring text = random.Damage(std::wstring(c.sample), alphabet, 4);
            const std::size_t start = random.Below(std::min<std::size_t>(text.size() + 1, 3));
            const Groups expected = SearchTheirs(theirs, text, start);
            ASSERT_EQ(SearchOurs(ours, text, start), expected)
                << ::testing::PrintToString(c.pattern) << " on " << ::testing::PrintToString(text);
            ++seen[expected.empty() ? 0 : 1];
        }
        // The texts reach both outcomes.
        EXPECT_GT(*std::min_element(seen.begin(), seen.end()), 50) << ::testing::PrintToString(c.pattern);
    }
}

TEST(WidePattern, BlanksAndDigitsAreThoseOfTheClassicLocale) {
    const Testing::ForeignLocale foreign;
    PatternMatch match;
    EXPECT_TRUE(WidePattern(L"^\\s+$").Search(L" \t\n\v\f\r", 0, match));
    for (const wchar_t* blank : {L"\xa0", L"\x2003", L"\x3000", L"\x85"}) {
        EXPECT_FALSE(WidePattern(L"\\s").Search(blank, 0, match));
    }
    EXPECT_FALSE(WidePattern(L"\\d").Search(L"\x0664", 0, match));
    EXPECT_FALSE(WidePattern(L"a").Search(L"A", 0, match));
    EXPECT_FALSE(WidePattern(L"^a$").Search(L"a\n", 0, match));
    EXPECT_FALSE(WidePattern(L"^b").Search(L"a\nb", 0, match));
    EXPECT_FALSE(WidePattern(L"a.b").Search(L"a\nb", 0, match));
}

TEST(WidePattern, APatternThatDoesNotCompileMatchesNothing) {
    PatternMatch match;
    for (const wchar_t* bad : {L"(", L"[a", L"a{3,1}", L"*", L"\\"}) {
        const WidePattern pattern(bad);
        EXPECT_FALSE(pattern.IsValid()) << ::testing::PrintToString(bad);
        EXPECT_FALSE(pattern.Search(L"aaa", 0, match));
    }
    EXPECT_FALSE(WidePattern(std::wstring(100000, L'(')).IsValid());
}

TEST(WidePattern, LongMatchesAreFoundWhole) {
    const std::wstring body(1'000'000, L'x');
    const std::wstring text = L"TEXT\"" + body + L"\"";
    PatternMatch match;
    ASSERT_TRUE(WidePattern(LR"re(TEXT\s*"\s*([^"]+)"?)re").Search(text, 0, match));
    EXPECT_EQ(match.groups.at(1)->length, body.size());
    ASSERT_TRUE(WidePattern(LR"re(TABLE\s*\(\s*(.+?)\s*\))re").Search(L"TABLE(" + body + L")", 0, match));
    EXPECT_EQ(match.groups.at(1)->length, body.size());
}

TEST(WidePattern, GivesUpOnALongFruitlessAttemptOnly) {
    const WidePattern pattern(LR"re(DB\s*\(\s*([^)(]+)\(\s*([^)]+))re");
    // The attempt on the first DB takes a number of steps that grows with the square of its blanks.
    const auto search = [&](std::size_t blanks) {
        PatternMatch match;
        return pattern.Search(L"DB(" + std::wstring(blanks, L' ') + L") DB(Orders(Due))", 0, match);
    };
    EXPECT_TRUE(search(500));
    EXPECT_FALSE(search(5000));
}

} // namespace
} // namespace Kestrona::Platform
