#pragma once

#include "definition/context.h"
#include "definition/lexer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// What statements are made of.

namespace Kestrona::Host::Language {

// The parser of one file's tokens. Each Take function takes what it names, or reports and takes nothing; the statement
// is then given up with `Recover`.
class TokenParser {
public:
    TokenParser(ParseContext& context, Lexer& lexer) : context_(context), lexer_(lexer) {}

    [[nodiscard]] const Token& Current() const { return lexer_.Current(); }

    [[nodiscard]] bool Sees(TokenKind kind) const { return Current().kind == kind; }

    [[nodiscard]] bool SeesWord(std::wstring_view word) const {
        return Sees(TokenKind::Word) && Current().text == word;
    }

    // A bare word or a text.
    [[nodiscard]] bool SeesName() const { return Sees(TokenKind::Word) || Sees(TokenKind::Text); }

    void Advance() { lexer_.Advance(); }

    bool Take(TokenKind kind, const char* expected);
    std::optional<std::wstring> TakeText(const char* expected);
    // A bare word or a text that is not empty.
    std::optional<std::wstring> TakeWord(const char* expected);
    // The same, and fit for a name of a format or a field.
    std::optional<std::wstring> TakeName(const char* expected);
    std::optional<std::int32_t> TakeWhole(std::int32_t lowest, std::int32_t highest, const char* expected);
    // A number, date, duration or named constant.
    std::optional<double> TakeValue();

    // Reports the current token as not fitting, unless it has been reported.
    void Unexpected(const std::string& what, const std::string& expected, const std::string& suggestion = "");

    // Skips the rest of the statement. Requires: its first word has been taken.
    void Recover() { lexer_.SkipStatement(); }

    // The same inside a block, where a closing brace is not skipped.
    void RecoverInBlock();

    [[nodiscard]] ParseContext& Context() const { return context_; }

    [[nodiscard]] Lexer& Tokens() { return lexer_; }

private:
    bool ReportEndOfLine(const char* expected);
    [[nodiscard]] bool CheckName(const Token& token);
    [[nodiscard]] std::optional<double> FindConstant(const Token& token);

    ParseContext& context_;
    Lexer& lexer_;
};

} // namespace Kestrona::Host::Language
