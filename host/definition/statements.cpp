#include "definition/statements.h"

#include "definition/files.h"
#include "definition/format_block.h"
#include "definition/suggestion.h"
#include "definition/values.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <array>
#include <utility>

namespace Kestrona::Host::Language {

namespace {

void ParseIncludeStatement(TokenParser& parser) {
    const Place place = parser.Current().place;
    const auto name = parser.TakeWord("the name of a file");
    if (name) {
        ParseInclude(parser.Context(), *name, place);
    } else {
        parser.Recover();
    }
}

void AddConstant(ParseContext& context, ConstantDefinition constant) {
    const bool is_new = context.constants.emplace(FoldCase(constant.name), constant.value).second;
    if (!is_new) {
        context.reporter.Warning(constant.place, {"constant is defined twice, the first one stays",
                                                  Quoted(constant.name), "a new name (case does not count)", ""});
        return;
    }
    context.definition.constants.push_back(std::move(constant));
}

void ParseDefine(TokenParser& parser) {
    ConstantDefinition constant;
    constant.place = parser.Current().place;
    if (parser.SeesName() && LooksLikeValue(parser.Current().text)) {
        parser.Unexpected("wrong name", "a name that begins with a letter");
        parser.Recover();
        return;
    }
    const auto name = parser.TakeName("the name of a constant");
    const bool has_sign = name && parser.Take(TokenKind::Equals, "'='");
    const auto value = has_sign ? parser.TakeValue() : std::nullopt;
    if (!value) {
        parser.Recover();
        return;
    }
    constant.name = *name;
    constant.value = *value;
    AddConstant(parser.Context(), std::move(constant));
}

void ParseHelp(TokenParser& parser) {
    HelpDefinition help;
    help.place = parser.Current().place;
    const auto id = parser.TakeWhole(INT32_MIN, INT32_MAX, "the number of a help text");
    auto text = id ? parser.TakeText("the help text in quotes") : std::nullopt;
    if (!text) {
        parser.Recover();
        return;
    }
    help.id = *id;
    help.text = std::move(*text);
    while (parser.Sees(TokenKind::Text)) {
        help.text += parser.Current().text;
        parser.Advance();
    }
    parser.Context().definition.help.push_back(std::move(help));
}

void ParseSubstitute(TokenParser& parser) {
    SubstitutionDefinition substitution;
    substitution.place = parser.Current().place;
    auto from = parser.TakeText("the text to replace, in quotes");
    auto to = from && parser.Take(TokenKind::Arrow, "'->'") ? parser.TakeText("the new text, in quotes") : std::nullopt;
    if (!to) {
        parser.Recover();
        return;
    }
    substitution.from = std::move(*from);
    substitution.to = std::move(*to);
    parser.Context().definition.substitutions.push_back(std::move(substitution));
}

bool ParseTableEntry(TokenParser& parser, StringTableDefinition& table) {
    if (!parser.Sees(TokenKind::Text)) {
        parser.Unexpected("unexpected text", "a text in quotes, or '}'");
        return false;
    }
    StringTableDefinition::Entry entry{parser.Current().text, 0.0};
    parser.Advance();
    const auto value = parser.Take(TokenKind::Equals, "'='") ? parser.TakeValue() : std::nullopt;
    entry.value = value.value_or(0.0);
    table.entries.push_back(std::move(entry));
    return value.has_value();
}

// Goes on at the closing brace or in the next line.
void SkipTableEntry(TokenParser& parser) {
    const std::int32_t line = parser.Current().place.line;
    while (!parser.Sees(TokenKind::CloseBrace) && !parser.Sees(TokenKind::End) && parser.Current().place.line == line) {
        parser.Advance();
    }
}

void ParseTableEntries(TokenParser& parser, StringTableDefinition& table) {
    while (!parser.Sees(TokenKind::CloseBrace)) {
        if (SeesEndOfBlock(parser)) {
            parser.Unexpected("table " + Quoted(table.name) + " has no end", "'}'");
            return;
        }
        if (!ParseTableEntry(parser, table)) {
            SkipTableEntry(parser);
        }
    }
    parser.Advance();
}

void ParseTable(TokenParser& parser) {
    StringTableDefinition table;
    table.place = parser.Current().place;
    auto name = parser.TakeWord("the name of a table");
    if (!name || !parser.Take(TokenKind::OpenBrace, "'{'")) {
        parser.Recover();
        return;
    }
    table.name = std::move(*name);
    ParseTableEntries(parser, table);
    parser.Context().definition.tables.push_back(std::move(table));
}

struct Statement {
    std::wstring_view word;
    void (*parse)(TokenParser&);
};

constexpr std::array kStatements{
    Statement{L"include", ParseIncludeStatement},
    Statement{L"define", ParseDefine},
    Statement{L"help", ParseHelp},
    Statement{L"table", ParseTable},
    Statement{L"substitute", ParseSubstitute},
    Statement{L"format", ParseFormat},
};

const Statement* FindStatement(const Token& token) {
    const auto found = std::find_if(kStatements.begin(), kStatements.end(),
                                    [&](const Statement& statement) { return statement.word == token.text; });
    return token.kind == TokenKind::Word && found != kStatements.end() ? &*found : nullptr;
}

void ReportUnknownStatement(TokenParser& parser) {
    Suggestion suggestion(parser.Current().text);
    for (const Statement& statement : kStatements) {
        suggestion.Offer(statement.word);
    }
    parser.Unexpected("unknown statement", "include, define, help, table, substitute or format", suggestion.Best());
}

} // namespace

bool SeesEndOfBlock(const TokenParser& parser) {
    return parser.Sees(TokenKind::End) || FindStatement(parser.Current()) != nullptr ||
           parser.Context().reporter.IsFull();
}

void ParseStatements(ParseContext& context, Lexer& lexer) {
    TokenParser parser(context, lexer);
    while (!parser.Sees(TokenKind::End) && !context.reporter.IsFull()) {
        if (const Statement* statement = FindStatement(parser.Current())) {
            parser.Advance();
            statement->parse(parser);
        } else {
            ReportUnknownStatement(parser);
            parser.Advance();
            parser.Recover();
        }
    }
}

} // namespace Kestrona::Host::Language
