#include "configuration/parsers/keyword_search.h"

#include <algorithm>
#include <cassert>

namespace Kestrona::Configuration::Parsers {

namespace {

// The characters of keywords, the most frequent ones first. Any order is right; this one is quick.
constexpr std::wstring_view kByFrequency = L" EATRINOSDLUCMPHFBGYWKVXQJZ";

std::size_t RarityOf(wchar_t c) {
    return std::min(kByFrequency.find(c), kByFrequency.size());
}

} // namespace

KeywordSearch::KeywordSearch(std::wstring_view keyword) : keyword_(keyword) {
    assert(!keyword.empty());
    const auto rarest = std::max_element(keyword_.begin(), keyword_.end(),
                                         [](wchar_t a, wchar_t b) { return RarityOf(a) < RarityOf(b); });
    rarest_ = static_cast<std::size_t>(rarest - keyword_.begin());
}

std::size_t KeywordSearch::Find(std::wstring_view text, std::size_t start) const {
    std::size_t at = text.find(keyword_[rarest_], start + rarest_);
    while (at != std::wstring_view::npos && text.substr(at - rarest_, keyword_.size()) != keyword_) {
        at = text.find(keyword_[rarest_], at + 1);
    }
    return at == std::wstring_view::npos ? at : at - rarest_;
}

} // namespace Kestrona::Configuration::Parsers
