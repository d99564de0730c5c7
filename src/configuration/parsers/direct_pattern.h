#pragma once

#include "configuration/parsers/pattern_step.h"
#include "platform/regex_search.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace Kestrona::Configuration::Parsers {

// A pattern that is tried without an engine first: from left to right, every repetition takes all it can and nothing is
// given back. That is the first of all ways that a backtracking engine tries, so where it comes through, the match is
// the engine's. Where it does not, the engine may still find one.
//
// A pattern of the elements of PatternStep and of groups has such a way: groups that capture, one beside the other, as
// they are or followed by "?". A group with "?" holds no repetition: an engine would give some of that back before it
// does without the group. Of alternatives of the whole pattern it is the first one's. Any other pattern has none.
class DirectPattern {
public:
    explicit DirectPattern(std::wstring_view pattern);

    // Matches `text` at `position`; `out` is changed only when that comes through. Group 0 begins at `start`.
    bool MatchAt(std::wstring_view text, std::size_t start, std::size_t position, Platform::PatternMatch& out) const;

private:
    // Elements in one group, or between groups.
    struct Piece {
        std::vector<PatternStep> steps;
        bool captures = false;
        bool optional = false;
    };

    bool TakePieces(PatternReader& reader);

    std::vector<Piece> pieces_; // empty for a pattern without a direct way
};

} // namespace Kestrona::Configuration::Parsers
