#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Kestrona::Configuration::Parsers {

// Finds one keyword in many texts, by its rarest character: a classification string is searched for some thirty
// keywords, and the letters that they begin with are all over it.
class KeywordSearch {
public:
    // Requires: a keyword that is not empty.
    explicit KeywordSearch(std::wstring_view keyword);

    std::size_t Length() const { return keyword_.size(); }

    // The first occurrence at or behind `start`, npos for none.
    std::size_t Find(std::wstring_view text, std::size_t start) const;

private:
    std::wstring keyword_;
    std::size_t rarest_; // index of that character
};

} // namespace Kestrona::Configuration::Parsers
