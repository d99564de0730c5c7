#pragma once

#include "definition/words.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Checks what follows a word of a classification against the form that the word asks for, and writes it the way the
// readers of classification strings want it: they are strict about blanks around brackets and quotes.

namespace Kestrona::Host::Language {

struct ArgumentProblem {
    std::size_t offset = 0; // into the arguments
    std::string expected;
};

struct Arguments {
    std::wstring canonical; // to be put straight behind the word
    std::optional<ArgumentProblem> problem;
};

// `text` is what stands behind the word, leading blanks included.
[[nodiscard]] Arguments ReadArguments(Shape shape, std::wstring_view text);

// The names in arguments of the forms Target, DatabaseTarget and QuotedTarget, canonical or not.
struct TargetNames {
    std::wstring_view format;
    std::wstring_view field;
};

// Nothing when the arguments name no format and field: another form, or broken.
[[nodiscard]] std::optional<TargetNames> FindTargetNames(std::wstring_view arguments);

// The name in arguments of the forms (Field) and (Field:...). "" when there is none.
[[nodiscard]] std::wstring_view FindFieldName(std::wstring_view arguments, bool ends_at_colon);

struct AxisNames {
    TargetNames x;
    TargetNames y;
};

[[nodiscard]] std::optional<AxisNames> FindAxisNames(std::wstring_view arguments);

} // namespace Kestrona::Host::Language
