#include "configuration/parsers/parser_cases.h"

#include <kestrona/unicode.h>

#include <map>
#include <optional>

namespace Kestrona::ParsersTest {

using namespace Configuration::Parsers;

namespace {

template <typename Parser, typename... Arguments>
std::shared_ptr<const IClassificationParser> Make(const Arguments&... arguments) {
    return std::make_shared<const Parser>(arguments...);
}

const std::wstring kFieldName = LR"re( FIELD NAME\s*(?:"([^"]+?)"|\(([^"]+?)\)))re";
const std::wstring kSubstitute = LR"re(\s*\(\s*(-?\d+\.?\d*)\s*-\s*>\s*"([^"]*)"\s*\))re";
const std::wstring kExpression = LR"re(\s*"\s*([^"]+)"?)re";

bool IsBlank(const std::wstring& text) {
    return text.find_first_not_of(L" \t\n\v\f\r") == std::wstring::npos;
}

using Groups = std::vector<std::optional<std::wstring>>;

bool TakeValues(const ParserCase& c, const Groups& groups, std::map<std::wstring, std::wstring>& values) {
    switch (c.layout) {
    case Layout::One:
        if (groups[1]) {
            values[c.first_key] = *groups[1];
        }
        return true;
    case Layout::Either:
        values[c.first_key] = groups[1] ? *groups[1] : groups[2].value();
        return true;
    case Layout::Two:
        values = {{c.first_key, groups[1].value()}, {c.second_key, groups[2].value()}};
        return true;
    case Layout::Source:
        values = {{c.first_key, groups[2].value()}, {c.second_key, groups[3].value()}};
        return groups[1].value().empty();
    case Layout::Format:
        values[c.first_key] = groups[2].value().empty() ? L".2" : *groups[2];
        if (groups[1]) {
            values[c.second_key] = *groups[1];
        }
        return groups[1] || !groups[2].value().empty();
    case Layout::Expression:
        values[c.first_key] = groups[1].value();
        return !IsBlank(*groups[1]);
    }
    return false;
}

std::vector<ParserCase> MakeCases() {
    return {
        {"HELPPOPUPID", Make<ClassificationParser_HELPPOPUPID>(), L"HELPPOPUPID ( -12 )",
         LR"re(HELPPOPUPID\s*\(\s*(-?\d+)\s*\))re", Layout::One, L"ID"},
        {"TIP DISPLAY", Make<ClassificationParser_TIP_DISPLAY>(), L"TIP DISPLAY ( 5 )",
         LR"re(TIP DISPLAY\s*\(\s*(\d+)\s*\)|TIP DISPLAY)re", Layout::One, L"ORDER"},
        {"TABLE", Make<ClassificationParser_TABLE>(), L"TABLE( a b )", LR"re(TABLE\s*\(\s*(.+?)\s*\))re", Layout::One,
         L"NAME"},
        {"BY CLASSIFICATION", Make<ClassificationParser_BY_CLASSIFICATION>(), L"BY CLASSIFICATION ( a b )",
         LR"re(BY CLASSIFICATION\s*\(\s*([^\)]+?)\s*\))re", Layout::One, L"CLASSIFICATION"},
        {"DATABASE[]", Make<ClassificationParser_DATABASE_BY_CLASSIFICATION>(), L"DATABASE [ a b ]",
         LR"re(DATABASE\s*\[\s*([^\]]+?)\s*\])re", Layout::One, L"CLASSIFICATION"},
        {"FAMILY", Make<ClassificationParser_FAMILY>(), L"FAMILY(a )", LR"re(FAMILY\(([^)]+)\s*\))re", Layout::One,
         L"COLUMN"},
        {"ASSOCIATE", Make<ClassificationParser_ASSOCIATE>(), L"ASSOCIATE ( a)", LR"re(ASSOCIATE\s*\(\s*([^)]+))re",
         Layout::One, L"COLUMN"},
        {"ADDITIONAL REFERENCE", Make<ClassificationParser_ADDITIONAL_REFERENCE>(), L"ADDITIONAL REFERENCE ( a:b)",
         LR"re(ADDITIONAL REFERENCE\s*\(\s*([^):]+))re", Layout::One, L"COLUMN"},
        {"OVERRIDE", Make<ClassificationParser_OVERRIDE>(), L"OVERRIDE ( a:b)", LR"re(OVERRIDE\s*\(\s*([^):]+))re",
         Layout::One, L"COLUMN"},
        {"UPDATE REFERENCE", Make<ClassificationParser_UPDATE_REFERENCE>(), L"UPDATE REFERENCE ( a:b)",
         LR"re(UPDATE REFERENCE\s*\(\s*([^):]+))re", Layout::One, L"COLUMN"},
        {"BUTTON TEXT", Make<ClassificationParser_BUTTON_TEXT>(), L"BUTTON TEXT (a)",
         LR"re(BUTTON TEXT\s*(?:"([^"]+?)"|\(([^"]+?)\)))re", Layout::Either, L"NAME"},
        {"DIALOG FIELD NAME", Make<ClassificationParser_DIALOG_FIELD_NAME>(), LR"(DIALOG FIELD NAME "a")",
         L"DIALOG" + kFieldName, Layout::Either, L"NAME"},
        {"TIP FIELD NAME", Make<ClassificationParser_TIP_FIELD_NAME>(), L"TIP FIELD NAME (a)", L"TIP" + kFieldName,
         Layout::Either, L"NAME"},
        {"EDITOR FIELD NAME", Make<ClassificationParser_EDITOR_FIELD_NAME>(), LR"(EDITOR FIELD NAME "a")",
         L"EDITOR" + kFieldName, Layout::Either, L"NAME"},
        // A prefix may be a pattern itself.
        {"A or B FIELD NAME", Make<ClassificationParserBase_FIELD_NAME>(std::wstring(L"[AB]\\d?")), L"A FIELD NAME(a)",
         L"[AB]\\d?" + kFieldName, Layout::Either, L"NAME"},
        {"DATABASE", Make<ClassificationParser_DATABASE>(), L"DATABASE ( A (B ))",
         LR"re(DATABASE\s*\(\s*([^)(]+)\(\s*([^)]+))re", Layout::Two, L"TABLE", L"FIELD"},
        {"AUTO LIST", Make<ClassificationParser_AUTO_LIST>(), L"AUTO LIST(A(B))",
         LR"re(AUTO LIST\s*\(\s*([^)(]+)\(\s*([^)]+))re", Layout::Two, L"TABLE", L"FIELD"},
        {"SOURCE", Make<ClassificationParser_SOURCE>(), L"LOOKUP SOURCE ( A (B))",
         LR"re((LOOKUP |)SOURCE\s*\(\s*([^)(]+)\(\s*([^)]+))re", Layout::Source, L"TABLE", L"FIELD"},
        {"REMOTE_DEF", Make<ClassificationParser_REMOTE_DEF>(), LR"(REMOTE_DEF " A (B ) ")",
         LR"re(REMOTE_DEF\s*"\s*([^("]+)\s*\(\s*([^)"]+)\s*\)\s*")re", Layout::Two, L"TABLE", L"COLUMN"},
        {"REMOTE", Make<ClassificationParser_REMOTE>(), L"REMOTE ( A (B) )",
         LR"re(REMOTE\s*\(\s*([^(]+)\s*\(\s*([^)]+)\)\s*\))re", Layout::Two, L"TABLE", L"COLUMN"},
        {"SUBSTITUTE", Make<ClassificationParser_SUBSTITUTE>(), LR"(SUBSTITUTE ( -2.5 - > "a" ))",
         L"SUBSTITUTE" + kSubstitute, Layout::Two, L"VALUE", L"TEXT"},
        {"SUBSTITUTX", Make<ClassificationParser_SUBSTITUTX>(), LR"(SUBSTITUTX(1->"a"))", L"SUBSTITUTX" + kSubstitute,
         Layout::Two, L"VALUE", L"TEXT"},
        {"FORMAT", Make<ClassificationParser_FORMAT>(), L"FORMAT ( MAX 8.2 )",
         LR"re(FORMAT\s*\(\s*(MAX)?\s*([^ \)]*)\s*\))re", Layout::Format, L"FORMAT", L"MAX"},
        {"EVALUATE", Make<ClassificationParser_EVALUATE>(), LR"(EVALUATE " a ")", L"EVALUATE" + kExpression,
         Layout::Expression, L""},
        {"HIDDEN IF", Make<ClassificationParser_HIDDEN_IF_Expr>(), LR"(HIDDEN IF "a")", L"HIDDEN IF" + kExpression,
         Layout::Expression, L""},
        {"EXCLUDE", Make<ClassificationParser_EXCLUDE>(), LR"(EXCLUDE"a")", L"EXCLUDE" + kExpression,
         Layout::Expression, L""},
    };
}

} // namespace

const std::vector<ParserCase>& ParserCases() {
    static const std::vector<ParserCase> cases = [] {
        std::vector<ParserCase> made = MakeCases();
        for (ParserCase& c : made) {
            c.compiled = std::make_shared<const Platform::WidePattern>(c.pattern);
        }
        return made;
    }();
    return cases;
}

ClassificationMatch MatchByPattern(const ParserCase& c, const std::wstring& text, std::int32_t start) {
    Platform::PatternMatch found;
    ClassificationMatch match;
    if (!c.compiled->Search(text, static_cast<std::size_t>(start), found)) {
        return match;
    }
    Groups groups;
    for (const auto& group : found.groups) {
        groups.push_back(group ? std::optional<std::wstring>(group->In(text)) : std::nullopt);
    }
    if (!TakeValues(c, groups, match.Values)) {
        return {};
    }
    match.Matched = true;
    match.Start = static_cast<std::int32_t>(found.groups[0]->start);
    match.Length = static_cast<std::int32_t>(found.groups[0]->length);
    match.End = match.Start + match.Length;
    match.Text = *groups[0];
    return match;
}

std::string Describe(const ClassificationMatch& match) {
    if (!match.Matched) {
        return "none";
    }
    std::string text = std::to_string(match.Start) + "+" + std::to_string(match.Length) + "=" +
                       std::to_string(match.End) + " <" + ToUtf8(match.Text) + ">";
    for (const auto& [key, value] : match.Values) {
        text += " " + ToUtf8(key) + ":<" + ToUtf8(value) + ">";
    }
    return text;
}

} // namespace Kestrona::ParsersTest
