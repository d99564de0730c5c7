#pragma once

#include "expressions/parse_context.h"

#include <cstdint>

// The expression language.
namespace Kestrona::Expressions {

// Brackets within brackets, a bound on the stack that a parse takes.
inline constexpr std::int32_t kMaxBracketDepth = 128;

enum class GrammarResult : std::uint8_t {
    Parsed,
    Failed,
    TooDeep, // more than kMaxBracketDepth
};

// Parses a text from `first` on into `root`, and moves `first` to where an expression and the blanks behind it end.
// Failures on the way are told to the context's error handler. The grammar is made at the first call; threads share it.
GrammarResult ParseGrammar(ParseContext& context, const wchar_t*& first, const wchar_t* last, Expression& root);

} // namespace Kestrona::Expressions
