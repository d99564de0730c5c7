#pragma once

#include "definition/reporter.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

// Divides a line of a classification into its words.

namespace Kestrona::Host::Language {

struct RawWord {
    std::wstring_view text; // without blanks at its ends
    std::size_t offset = 0;
};

struct SplitProblem {
    std::size_t offset = 0;
    Finding finding;
};

struct SplitLine {
    std::vector<RawWord> words;
    std::optional<SplitProblem> problem; // the first one
};

// Splits at each '|' outside of quotes and brackets. A '#' outside of both, at the start or behind a blank, begins a
// comment. An empty word is a problem and is left out.
[[nodiscard]] SplitLine SplitWords(std::wstring_view line);

} // namespace Kestrona::Host::Language
