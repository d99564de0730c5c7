#include "definition/token_parser.h"

#include "definition/characters.h"
#include "definition/suggestion.h"
#include "definition/values.h"

#include <kestrona/unicode.h>

namespace Kestrona::Host::Language {

namespace {

constexpr std::wstring_view kNeverInNames = L"()\"|";

// What makes a text unfit for a name, "" for nothing.
std::string NameFault(std::wstring_view name) {
    if (name.empty()) {
        return "a name that is not empty";
    }
    if (name.find_first_of(kNeverInNames) != std::wstring_view::npos) {
        return "a name without ( ) \" |";
    }
    for (const wchar_t c : name) {
        if (IsControl(c) || c == L'\n' || c == L'\t') {
            return "a name without control characters";
        }
    }
    return IsBlank(name.front()) || IsBlank(name.back()) ? "a name without blanks at its ends" : "";
}

} // namespace

void TokenParser::Unexpected(const std::string& what, const std::string& expected, const std::string& suggestion) {
    const Token& token = Current();
    if (token.kind == TokenKind::Bad) {
        return;
    }
    const std::string found = token.kind == TokenKind::End ? "the end of the file" : Quoted(token.text);
    context_.reporter.Error(token.place, {what, found, expected, suggestion});
}

void TokenParser::RecoverInBlock() {
    if (!Sees(TokenKind::CloseBrace)) {
        Recover();
    }
}

// What belongs to a statement stands on its line, so that an unfinished one does not swallow the next.
bool TokenParser::ReportEndOfLine(const char* expected) {
    if (!lexer_.StartsLine()) {
        return false;
    }
    context_.reporter.Error(lexer_.EndOfTaken(), {"unfinished statement", "the end of the line", expected, ""});
    return true;
}

bool TokenParser::Take(TokenKind kind, const char* expected) {
    if (!Sees(kind)) {
        Unexpected("unexpected text", expected);
        return false;
    }
    Advance();
    return true;
}

std::optional<std::wstring> TokenParser::TakeText(const char* expected) {
    if (ReportEndOfLine(expected)) {
        return std::nullopt;
    }
    if (!Sees(TokenKind::Text)) {
        Unexpected("unexpected text", expected);
        return std::nullopt;
    }
    std::wstring text = Current().text;
    Advance();
    return text;
}

std::optional<std::wstring> TokenParser::TakeWord(const char* expected) {
    if (ReportEndOfLine(expected)) {
        return std::nullopt;
    }
    if (!SeesName()) {
        Unexpected("unexpected text", expected);
        return std::nullopt;
    }
    if (Current().text.empty()) {
        Unexpected("empty text", expected);
        return std::nullopt;
    }
    std::wstring text = Current().text;
    Advance();
    return text;
}

bool TokenParser::CheckName(const Token& token) {
    const std::string fault = NameFault(token.text);
    if (!fault.empty()) {
        context_.reporter.Error(token.place, {"wrong name", Quoted(token.text), fault, ""});
    }
    return fault.empty();
}

std::optional<std::wstring> TokenParser::TakeName(const char* expected) {
    if (ReportEndOfLine(expected)) {
        return std::nullopt;
    }
    if (!SeesName()) {
        Unexpected("unexpected text", expected);
        return std::nullopt;
    }
    if (!CheckName(Current())) {
        return std::nullopt;
    }
    std::wstring name = Current().text;
    Advance();
    return name;
}

std::optional<std::int32_t> TokenParser::TakeWhole(std::int32_t lowest, std::int32_t highest, const char* expected) {
    if (ReportEndOfLine(expected)) {
        return std::nullopt;
    }
    const auto value = Sees(TokenKind::Word) ? ParseWhole(Current().text, lowest, highest) : std::nullopt;
    if (!value) {
        Unexpected("wrong number", expected);
        return std::nullopt;
    }
    Advance();
    return value;
}

std::optional<double> TokenParser::FindConstant(const Token& token) {
    const auto found = context_.constants.find(FoldCase(token.text));
    if (found != context_.constants.end()) {
        return found->second;
    }
    Suggestion suggestion(context_.reporter.IsFull() ? std::wstring_view() : token.text);
    for (const ConstantDefinition& constant : context_.definition.constants) {
        suggestion.Offer(constant.name);
    }
    Unexpected("unknown constant", "a constant that stands in a define before", suggestion.Best());
    return std::nullopt;
}

std::optional<double> TokenParser::TakeValue() {
    constexpr const char* kExpected = "a number, a date, a duration or a constant";
    if (ReportEndOfLine(kExpected)) {
        return std::nullopt;
    }
    if (!SeesName()) {
        Unexpected("unexpected text", kExpected);
        return std::nullopt;
    }
    std::optional<double> value;
    if (Sees(TokenKind::Text) || LooksLikeValue(Current().text)) {
        value = ParseValue(Current().text);
        if (!value) {
            Unexpected("wrong value", kExpected);
        }
    } else {
        value = FindConstant(Current());
    }
    if (value) {
        Advance();
    }
    return value;
}

} // namespace Kestrona::Host::Language
