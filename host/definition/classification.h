#pragma once

#include "definition/lexer.h"
#include "definition/reporter.h"
#include "definition/words.h"

#include <kestrona/host/definition.h>

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Understands the raw text of a classification.

namespace Kestrona::Host::Language {

// What stands between two words of a classification string.
inline constexpr std::wstring_view kWordSeparator = L" | ";

struct Classification {
    std::wstring text; // the canonical words, divided by `kWordSeparator`
    std::vector<ClassificationWord> words;
    std::uint32_t type = 0;
    std::array<std::uint32_t, kClassWords> classes{};
    std::int32_t dialog = -1; // the number of CALL DIALOG
};

// Reads the lines of a classification and reports what is wrong with them: broken brackets and quotes, empty words,
// wrong arguments, unknown words, keywords inside of other texts. What cannot be understood stays in the text as it is.
[[nodiscard]] Classification ReadClassification(std::span<const RawText> lines, Reporter& reporter);

// The same for a classification string. Nothing is reported; `is_canonical` tells whether reading found nothing wrong
// and the canonical text is the very one given.
struct KnownClassification {
    Classification classification;
    bool is_canonical = false;
};

[[nodiscard]] KnownClassification UnderstandClassification(std::wstring_view text);

// The text of a word of a classification without its arguments: "DATABASE" of "DATABASE(A(B))".
[[nodiscard]] std::wstring_view KeywordOf(std::wstring_view word);

// The arguments of such a word: "(A(B))".
[[nodiscard]] std::wstring_view ArgumentsOf(std::wstring_view word);

} // namespace Kestrona::Host::Language
