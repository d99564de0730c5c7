#include "printable.h"

#include <kestrona/host/expression_excerpt.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>

namespace Kestrona::Host {

namespace {

// The one message whose position counts from 0.
constexpr std::wstring_view kExpecting = L"Expecting Valid Expression";

constexpr std::wstring_view kPositionLine = L"\nAt Position ";
constexpr std::wstring_view kExpressionLine = L"\nIn Expression \"";

// Characters shown of a long expression, and how many of them at most stand before the place.
constexpr std::size_t kMostShown = 100;
constexpr std::size_t kMostBefore = 70;
constexpr const wchar_t* kEllipsis = L"\u2026";

// Digits of a position that are read; more would overflow, and no expression is so long.
constexpr std::size_t kMostDigits = 9;

bool IsBetween(wchar_t c, const std::pair<wchar_t, wchar_t>& range) {
    return c >= range.first && c <= range.second;
}

// Terminals show these in two columns.
bool IsWide(wchar_t c) {
    constexpr std::array<std::pair<wchar_t, wchar_t>, 10> kRanges{{{0x1100, 0x115F},
                                                                   {0x2E80, 0x303E},
                                                                   {0x3041, 0xA4CF},
                                                                   {0xAC00, 0xD7A3},
                                                                   {0xF900, 0xFAFF},
                                                                   {0xFE30, 0xFE6F},
                                                                   {0xFF00, 0xFF60},
                                                                   {0xFFE0, 0xFFE6},
                                                                   {0x1F300, 0x1FAFF},
                                                                   {0x20000, 0x3FFFD}}};
    return std::ranges::any_of(kRanges, [c](const auto& range) { return IsBetween(c, range); });
}

bool IsCombining(wchar_t c) {
    return IsBetween(c, {0x0300, 0x036F}) || IsBetween(c, {0x200B, 0x200D}) || IsBetween(c, {0xFE00, 0xFE0F});
}

// As many blanks as the text takes columns; a tab stands for itself.
std::string PaddingFor(std::wstring_view text) {
    std::string padding;
    for (const wchar_t c : FromUtf8(PrintableLine(text))) {
        if (c == L'\t') {
            padding += '\t';
        } else if (!IsCombining(c)) {
            padding.append(IsWide(c) ? 2 : 1, ' ');
        }
    }
    return padding;
}

// A box's text, cut at its fixed lines.
struct ParseBox {
    std::wstring_view head; // up to the position line
    std::int64_t position = -1;
    std::wstring_view position_line;
    std::wstring_view expression;
};

std::optional<ParseBox> CutBox(std::wstring_view text) {
    const std::size_t line = text.find(kPositionLine);
    if (line == std::wstring_view::npos) {
        return std::nullopt;
    }
    const std::wstring_view rest = text.substr(line + kPositionLine.size());
    const std::size_t digits = std::min(rest.find_first_not_of(L"0123456789"), rest.size());
    const std::wstring_view tail = rest.substr(digits);
    const bool quoted =
        tail.size() > kExpressionLine.size() && tail.starts_with(kExpressionLine) && tail.ends_with(L'"');
    if (digits == 0 || digits > kMostDigits || !quoted) {
        return std::nullopt;
    }
    ParseBox box{text.substr(0, line), 0, text.substr(line, kPositionLine.size() + digits), {}};
    for (const wchar_t digit : rest.substr(0, digits)) {
        box.position = box.position * 10 + (digit - L'0');
    }
    box.expression = tail.substr(kExpressionLine.size());
    box.expression.remove_suffix(1);
    return box;
}

// Index into the expression; some messages count from 0, the others from 1. -1 when not known.
std::int64_t FailurePlace(std::wstring_view message, std::int64_t position) {
    if (position < 0 || message == kExpecting) {
        return std::max<std::int64_t>(position, -1);
    }
    return std::max<std::int64_t>(position - 1, 0);
}

// What stands around an expression in its line.
struct Frame {
    std::string_view indent;
    std::wstring_view lead;
    std::wstring_view tail;
};

// The expression, and a caret under its character at `place` or behind the last one.
std::string CaretLines(const Frame& frame, std::wstring_view expression, std::int64_t place) {
    const std::size_t at = std::min(static_cast<std::size_t>(place), expression.size());
    std::size_t first = 0;
    if (expression.size() > kMostShown) {
        first = std::min(at - std::min(at, kMostBefore), expression.size() - kMostShown);
    }
    std::wstring before(frame.lead);
    before += first > 0 ? kEllipsis : L"";
    before += expression.substr(first, at - first);
    const std::size_t shown = std::min(expression.size() - first, kMostShown);
    std::wstring line = before;
    line += expression.substr(at, first + shown - at);
    line += first + shown < expression.size() ? kEllipsis : L"";
    line += frame.tail;
    std::string lines(frame.indent);
    lines += PrintableLine(line);
    lines += '\n';
    lines += frame.indent;
    lines += PaddingFor(before);
    return lines += '^';
}

} // namespace

std::string ExplainFailure(std::wstring_view message, std::wstring_view expression, std::int64_t position,
                           std::string_view indent) {
    std::string text = PrintableLine(message.substr(0, message.find_last_not_of(L' ') + 1));
    if (const std::int64_t place = FailurePlace(message, position); place >= 0) {
        text += '\n' + CaretLines({indent, {}, {}}, expression, place);
    }
    return text;
}

std::string ExplainParseBox(std::wstring_view text, std::string_view indent) {
    const std::optional<ParseBox> box = CutBox(text);
    if (!box) {
        return PrintableLines(text, indent);
    }
    const std::wstring_view message = box->head.substr(box->head.rfind(L'\n') + 1);
    std::wstring head(box->head);
    head += box->position_line;
    return PrintableLines(head, indent) + '\n' +
           CaretLines({indent, kExpressionLine.substr(1), L"\""}, box->expression,
                      FailurePlace(message, box->position));
}

} // namespace Kestrona::Host
