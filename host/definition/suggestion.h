#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Finds the word that was probably meant.

namespace Kestrona::Host::Language {

// Takes candidates one by one and keeps the nearest one: case counts nothing, and a changed, missing, added or swapped
// character counts one. Texts of more than 64 characters have no suggestion. Each offer costs at most the product of
// the two lengths.
class Suggestion {
public:
    explicit Suggestion(std::wstring_view word);

    void Offer(std::wstring_view candidate);

    // The nearest candidate in UTF-8; "" when none is near. The first of several equally near ones.
    [[nodiscard]] std::string Best() const;

private:
    std::wstring word_;
    std::wstring best_;
    std::size_t distance_;
};

// The number of changes between two texts, or `limit` + 1 when there are more than `limit`.
[[nodiscard]] std::size_t EditDistance(std::wstring_view left, std::wstring_view right, std::size_t limit);

} // namespace Kestrona::Host::Language
