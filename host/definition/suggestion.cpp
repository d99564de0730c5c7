#include "definition/suggestion.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <array>
#include <utility>

namespace Kestrona::Host::Language {

namespace {

constexpr std::size_t kLongest = 64;

using Row = std::array<std::size_t, kLongest + 1>;

// How many changes a candidate may be away from a word of this length. With as many for a short word, words that have
// nothing to do with it would be near.
std::size_t LargestDistance(std::size_t length) {
    return length < 4 ? 1 : length < 8 ? 2 : 3;
}

std::size_t CellDistance(std::wstring_view left, std::wstring_view right, std::size_t i, std::size_t j,
                         const Row& before_last, const Row& last, const Row& current) {
    const std::size_t changed = last[j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
    std::size_t best = std::min({changed, last[j] + 1, current[j - 1] + 1});
    if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1]) {
        best = std::min(best, before_last[j - 2] + 1);
    }
    return best;
}

} // namespace

std::size_t EditDistance(std::wstring_view left, std::wstring_view right, std::size_t limit) {
    if (left.size() > kLongest || right.size() > kLongest) {
        return limit + 1;
    }
    if (std::max(left.size(), right.size()) - std::min(left.size(), right.size()) > limit) {
        return limit + 1;
    }
    Row before_last{};
    Row last{};
    Row current{};
    for (std::size_t j = 0; j <= right.size(); ++j) {
        last[j] = j;
    }
    for (std::size_t i = 1; i <= left.size(); ++i) {
        current[0] = i;
        std::size_t smallest = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            current[j] = CellDistance(left, right, i, j, before_last, last, current);
            smallest = std::min(smallest, current[j]);
        }
        if (smallest > limit) {
            return limit + 1;
        }
        before_last = std::exchange(last, current);
    }
    return std::min(last[right.size()], limit + 1);
}

Suggestion::Suggestion(std::wstring_view word)
    : word_(word.size() > kLongest ? std::wstring() : FoldCase(word)),
      distance_(LargestDistance(word_.size()) + 1) {}

void Suggestion::Offer(std::wstring_view candidate) {
    if (word_.empty() || distance_ == 0 || candidate.size() > kLongest) {
        return;
    }
    const std::size_t distance = EditDistance(word_, FoldCase(candidate), distance_ - 1);
    if (distance < distance_ && distance < word_.size()) {
        distance_ = distance;
        best_ = candidate;
    }
}

std::string Suggestion::Best() const {
    return ToUtf8(best_);
}

} // namespace Kestrona::Host::Language
