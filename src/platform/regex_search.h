#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace Kestrona::Platform {

// A stretch of the searched text.
struct PatternSpan {
    std::size_t start = 0;
    std::size_t length = 0;

    std::wstring_view In(std::wstring_view text) const { return text.substr(start, length); }
};

struct PatternMatch {
    // Group 0 is the whole match; a group that took no part is empty. Positions count from the beginning of the text,
    // wherever the search started.
    std::vector<std::optional<PatternSpan>> groups;
};

// A compiled regular expression in ECMAScript grammar: case-sensitive, '.' matches no line break, '^' and '$' stand for
// the two ends of what is searched, blanks and digits are those of the "C" locale. Immutable, so shared by threads.
//
// The work of one search is bounded by a multiple of the length of the text. A search that needs more than that, which
// takes a text made to provoke it, counts as no match.
class WidePattern {
public:
    // A pattern that cannot be compiled matches nothing.
    explicit WidePattern(std::wstring_view pattern);
    ~WidePattern(); // where `Compiled` is complete
    WidePattern(const WidePattern&) = delete;
    WidePattern& operator=(const WidePattern&) = delete;

    bool IsValid() const { return compiled_ != nullptr; }

    // Finds the first match at or behind `start`. `out` is changed only when there is one.
    bool Search(std::wstring_view text, std::size_t start, PatternMatch& out) const;

private:
    struct Compiled;
    std::unique_ptr<const Compiled> compiled_;
};

} // namespace Kestrona::Platform
