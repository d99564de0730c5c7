#include "configuration/parsers/classification_pattern.h"

#include <algorithm>
#include <functional>
#include <map>
#include <mutex>

namespace Kestrona::Configuration::Parsers {

namespace {

std::optional<KeywordSearch> SearchFor(std::wstring_view keyword) {
    const bool stands_for_itself = keyword.find_first_of(L"\\^$.|?*+()[]{}") == std::wstring_view::npos;
    return stands_for_itself && !keyword.empty() ? std::optional<KeywordSearch>(keyword) : std::nullopt;
}

// An empty pattern has no direct way.
std::wstring_view BehindKeyword(const PatternText& text) {
    const bool begins_with_keyword = text.lead == 0 && text.pattern.starts_with(text.keyword);
    return begins_with_keyword ? text.pattern.substr(text.keyword.size()) : std::wstring_view();
}

class PatternCache {
public:
    std::shared_ptr<const ClassificationPattern> Get(const PatternText& text);

private:
    using Patterns = std::map<std::wstring, std::shared_ptr<const ClassificationPattern>, std::less<>>;

    std::mutex mutex_;
    Patterns patterns_;
    // A definition asks for the same pattern many times on end.
    const Patterns::value_type* last_ = nullptr;
};

std::shared_ptr<const ClassificationPattern> PatternCache::Get(const PatternText& text) {
    const std::lock_guard lock(mutex_);
    if (last_ != nullptr && last_->first == text.pattern) {
        return last_->second;
    }
    auto found = patterns_.find(text.pattern);
    if (found == patterns_.end()) {
        found = patterns_.emplace(text.pattern, std::make_shared<ClassificationPattern>(text)).first;
    }
    last_ = &*found;
    return found->second;
}

} // namespace

std::optional<std::wstring_view> PatternGroups::At(std::size_t group) const {
    if (group >= match_.groups.size() || !match_.groups[group]) {
        return std::nullopt;
    }
    return match_.groups[group]->In(text_);
}

ClassificationPattern::ClassificationPattern(const PatternText& text)
    : pattern_(text.pattern),
      keyword_(SearchFor(text.keyword)),
      outline_(text.outline),
      lead_(text.lead),
      direct_(BehindKeyword(text)) {}

bool ClassificationPattern::Search(std::wstring_view text, std::size_t start, Platform::PatternMatch& out) const {
    if (!keyword_) {
        return pattern_.Search(text, start, out);
    }
    std::size_t keyword = keyword_->Find(text, start);
    if (keyword == std::wstring_view::npos) {
        return false;
    }
    if (direct_.MatchAt(text, keyword, keyword + keyword_->Length(), out)) {
        return true;
    }
    OutlineScan scan(outline_, text);
    while (!scan.FitsAt(keyword + keyword_->Length())) {
        keyword = keyword_->Find(text, keyword + 1);
        if (keyword == std::wstring_view::npos) {
            return false;
        }
    }
    return pattern_.Search(text, std::max(start, keyword - std::min(keyword, lead_)), out);
}

std::shared_ptr<const ClassificationPattern> CompiledPattern(const PatternText& text) {
    static PatternCache cache;
    return cache.Get(text);
}

} // namespace Kestrona::Configuration::Parsers
