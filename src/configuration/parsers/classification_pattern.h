#pragma once

#include "configuration/parsers/direct_pattern.h"
#include "configuration/parsers/keyword_search.h"
#include "configuration/parsers/pattern_outline.h"
#include "platform/regex_search.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Kestrona::Configuration::Parsers {

// A pattern and what is known about it.
struct PatternText {
    std::wstring_view pattern;
    // Stands in every match, before everything that the outline tells. A keyword that comes from a caller may hold
    // characters with a meaning in a pattern; then it says nothing, and neither does the outline.
    std::wstring_view keyword;
    // What follows the keyword, see PatternOutline.
    std::wstring_view outline;
    // Characters that a match may have before the keyword, at most.
    std::size_t lead = 0;
};

// The groups of a match in a text that the caller keeps.
class PatternGroups {
public:
    PatternGroups(std::wstring_view text, const Platform::PatternMatch& match) : text_(text), match_(match) {}

    // Nothing for a group that took no part and for one that the pattern does not have.
    std::optional<std::wstring_view> At(std::size_t group) const;

private:
    std::wstring_view text_;
    const Platform::PatternMatch& match_;
};

// A compiled pattern that is searched for by its keyword first: a text without the keyword costs a plain search, and
// the pattern runs only from the first keyword whose outline fits, unless the direct way matches at the first keyword
// of all. The result is that of the pattern alone. Immutable.
class ClassificationPattern {
public:
    explicit ClassificationPattern(const PatternText& text);

    bool Search(std::wstring_view text, std::size_t start, Platform::PatternMatch& out) const;

private:
    Platform::WidePattern pattern_;
    std::optional<KeywordSearch> keyword_;
    PatternOutline outline_;
    std::size_t lead_;
    DirectPattern direct_; // what follows the keyword, where nothing may stand before it
};

// The compiled form of a pattern, the same object for the same pattern text: it is compiled once a process and kept for
// good. Any number of threads.
std::shared_ptr<const ClassificationPattern> CompiledPattern(const PatternText& text);

} // namespace Kestrona::Configuration::Parsers
