#include "definition/lexer.h"

#include "definition/characters.h"

#include <cassert>

namespace Kestrona::Host::Language {

namespace {

constexpr std::wstring_view kWordEnds = L" \t\r\n{}=:\"|";
constexpr std::size_t kMostCodePointDigits = 6;

TokenKind PunctuationKind(wchar_t c) {
    switch (c) {
    case L'{':
        return TokenKind::OpenBrace;
    case L'}':
        return TokenKind::CloseBrace;
    case L'=':
        return TokenKind::Equals;
    case L':':
        return TokenKind::Colon;
    case L'|':
        return TokenKind::Bar;
    default:
        return TokenKind::Word;
    }
}

int HexDigit(wchar_t c) {
    if (c >= L'0' && c <= L'9') {
        return c - L'0';
    }
    const wchar_t lower = c | 0x20;
    return lower >= L'a' && lower <= L'f' ? lower - L'a' + 10 : -1;
}

} // namespace

Lexer::Lexer(std::wstring_view text, std::int32_t file, Reporter& reporter)
    : text_(text),
      reporter_(reporter),
      file_(file) {
    Read();
}

void Lexer::Advance() {
    taken_ = PlaceOf(position_);
    Read();
}

wchar_t Lexer::Peek(std::size_t offset) const {
    return position_ + offset < text_.size() ? text_[position_ + offset] : L'\0';
}

Place Lexer::PlaceOf(std::size_t position) const {
    return {file_, line_, static_cast<std::int32_t>(position - line_start_) + 1};
}

void Lexer::Fail(std::size_t position, const Finding& finding) {
    reporter_.Error(PlaceOf(position), finding);
    current_.kind = TokenKind::Bad;
}

void Lexer::SkipNewLine() {
    ++position_;
    ++line_;
    line_start_ = position_;
}

void Lexer::SkipLine() {
    while (!AtEnd() && Peek() != L'\n') {
        ++position_;
    }
}

void Lexer::ReportControl() {
    Fail(position_, {"control character", Quoted(text_.substr(position_, 1)), "printable text", ""});
}

// Blanks, line ends, comments, and characters that may stand nowhere.
void Lexer::SkipBlanks() {
    while (!AtEnd()) {
        const wchar_t c = Peek();
        if (c == L'\n') {
            SkipNewLine();
        } else if (c == L'#') {
            SkipLine();
        } else if (IsBlank(c)) {
            ++position_;
        } else if (IsControl(c)) {
            ReportControl();
            ++position_;
        } else {
            return;
        }
    }
}

void Lexer::Read() {
    SkipBlanks();
    current_.text.clear();
    current_.place = PlaceOf(position_);
    if (AtEnd()) {
        current_.kind = TokenKind::End;
    } else if (Peek() == L'"') {
        ReadText();
    } else if (Peek() == L'-' && Peek(1) == L'>') {
        current_.kind = TokenKind::Arrow;
        current_.text = L"->";
        position_ += 2;
    } else if (const TokenKind kind = PunctuationKind(Peek()); kind != TokenKind::Word) {
        current_.kind = kind;
        current_.text = Peek();
        ++position_;
    } else {
        ReadWord();
    }
}

void Lexer::ReadWord() {
    const std::size_t start = position_;
    while (!AtEnd() && !IsControl(Peek()) && kWordEnds.find(Peek()) == std::wstring_view::npos &&
           !(Peek() == L'-' && Peek(1) == L'>')) {
        ++position_;
    }
    current_.kind = TokenKind::Word;
    current_.text = text_.substr(start, position_ - start);
}

void Lexer::ReadText() {
    const std::size_t start = position_;
    current_.kind = TokenKind::Text;
    for (++position_; !AtEnd() && Peek() != L'"' && Peek() != L'\n';) {
        if (Peek() == L'\\') {
            ReadEscape();
        } else {
            if (IsControl(Peek())) {
                ReportControl();
            }
            current_.text += Peek();
            ++position_;
        }
    }
    if (Peek() == L'"' && !AtEnd()) {
        ++position_;
        return;
    }
    Fail(start, {"text without an end", "the end of the line", "'\"'", ""});
}

void Lexer::ReadEscape() {
    constexpr std::wstring_view kLetters = L"\"\\nt";
    constexpr std::wstring_view kMeanings = L"\"\\\n\t";
    const wchar_t letter = Peek(1);
    if (letter == L'u') {
        ReadCodePoint();
        return;
    }
    const std::size_t index = kLetters.find(letter);
    if (index == std::wstring_view::npos || position_ + 1 >= text_.size()) {
        Fail(position_, {"unknown escape", Quoted(text_.substr(position_, letter == L'\n' ? 1 : 2)),
                         "one of \\\" \\\\ \\n \\t \\u{...}", ""});
        ++position_;
        return;
    }
    current_.text += kMeanings[index];
    position_ += 2;
}

// \u{1f4a1}
void Lexer::ReadCodePoint() {
    const std::size_t start = position_;
    position_ += 2;
    std::uint32_t code = 0;
    std::size_t digits = 0;
    if (Peek() == L'{') {
        for (++position_; digits <= kMostCodePointDigits && HexDigit(Peek()) >= 0; ++position_, ++digits) {
            code = code * 16 + static_cast<std::uint32_t>(HexDigit(Peek()));
        }
    }
    if (digits == 0 || digits > kMostCodePointDigits || Peek() != L'}' || code == 0 || code > kLastCodePoint) {
        Fail(start, {"wrong code point", Quoted(text_.substr(start, position_ - start + (Peek() == L'}' ? 1 : 0))),
                     "\\u{1} to \\u{10ffff}", ""});
        return;
    }
    current_.text += static_cast<wchar_t>(code);
    ++position_;
}

RawText Lexer::RestOfLine() {
    const std::size_t start = position_;
    SkipLine();
    std::wstring_view line = text_.substr(start, position_ - start);
    if (line.ends_with(L'\r')) {
        line.remove_suffix(1);
    }
    return {line, PlaceOf(start)};
}

std::vector<RawText> Lexer::TakeClassification() {
    assert(current_.kind == TokenKind::Colon);
    std::vector<RawText> lines{RestOfLine()};
    for (SkipBlanks(); Peek() == L'|'; SkipBlanks()) {
        ++position_;
        lines.push_back(RestOfLine());
    }
    taken_ = lines.back().place;
    Read();
    return lines;
}

void Lexer::SkipStatement() {
    if (!StartsLine()) {
        SkipLine();
        Read();
    }
    while (current_.kind == TokenKind::Bar || current_.kind == TokenKind::Colon) {
        SkipLine();
        Read();
    }
}

} // namespace Kestrona::Host::Language
