#pragma once

#include "definition/reporter.h"

#include <kestrona/host/definition.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Cuts the text of one file into tokens. The language is token by token, with one exception: a classification is raw
// text up to the end of its line, with further lines that begin with '|'.

namespace Kestrona::Host::Language {

enum class TokenKind : std::uint8_t {
    End,
    Word, // bare: up to a blank or one of { } = : " |, or an arrow
    Text, // in double quotes
    OpenBrace,
    CloseBrace,
    Equals,
    Colon,
    Arrow,
    Bar,
    Bad, // has been reported
};

struct Token {
    TokenKind kind = TokenKind::End;
    std::wstring text; // of a text without its quotes and escapes, of other tokens as it stands
    Place place;
};

// Raw text inside one line.
struct RawText {
    std::wstring_view text;
    Place place; // of its first character
};

class Lexer {
public:
    // Requires: `text` lives as long as the lexer and what it hands out.
    Lexer(std::wstring_view text, std::int32_t file, Reporter& reporter);

    [[nodiscard]] const Token& Current() const { return current_; }

    void Advance();

    // Whether the current token is the first one of its line.
    [[nodiscard]] bool StartsLine() const { return current_.place.line != taken_.line; }

    // The place behind the token before the current one.
    [[nodiscard]] const Place& EndOfTaken() const { return taken_; }

    // Reads the lines of a classification, comments included, and goes on behind them.
    // Requires: the current token is the colon in front of it.
    [[nodiscard]] std::vector<RawText> TakeClassification();

    // Skips what is left of the line that the last token taken stands on, and the lines that go on with it: those that
    // begin with '|' or ':'.
    void SkipStatement();

private:
    void Read();
    void ReadText();
    void ReadEscape();
    void ReadCodePoint();
    void ReadWord();
    void SkipBlanks();
    void SkipLine();
    void SkipNewLine();
    void ReportControl();
    void Fail(std::size_t position, const Finding& finding);

    [[nodiscard]] bool AtEnd() const { return position_ >= text_.size(); }

    [[nodiscard]] wchar_t Peek(std::size_t offset = 0) const;
    [[nodiscard]] Place PlaceOf(std::size_t position) const;
    [[nodiscard]] RawText RestOfLine();

    std::wstring_view text_;
    Reporter& reporter_;
    std::int32_t file_;
    std::size_t position_ = 0;
    std::size_t line_start_ = 0;
    std::int32_t line_ = 1;
    Place taken_; // behind the token before the current one
    Token current_;
};

} // namespace Kestrona::Host::Language
