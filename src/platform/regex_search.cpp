#include "platform/regex_search.h"

#include <boost/regex.hpp>

#include <cstdint>
#include <iterator>
#include <locale>
#include <stdexcept>
#include <string>
#include <utility>

namespace Kestrona::Platform {

namespace {

// The characters that one search may look at: enough for every match that a text of normal length can ask for, and a
// fixed number for each character of a long one.
constexpr std::int64_t kLooksAtLeast = 1'000'000;
constexpr std::int64_t kLooksPerCharacter = 32;

struct SearchExhausted {};

// Walks wide text and counts the characters looked at. The engine has a limit of its own, but that grows with the
// square of the pattern's size and of the text's length: minutes for a long text. Has the operators that the engine
// asks for.
class CountedIterator {
public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = wchar_t;
    using difference_type = std::ptrdiff_t;
    using pointer = const wchar_t*;
    using reference = const wchar_t&;

    CountedIterator() = default;

    CountedIterator(pointer at, std::int64_t* looks_left) : at_(at), looks_left_(looks_left) {}

    reference operator*() const {
        if (--*looks_left_ < 0) {
            throw SearchExhausted();
        }
        return *at_;
    }

    reference operator[](difference_type offset) const { return *(*this + offset); }

    CountedIterator& operator++() { return *this += 1; }

    CountedIterator& operator--() { return *this += -1; }

    CountedIterator operator++(int) { return std::exchange(*this, *this + 1); }

    CountedIterator operator--(int) { return std::exchange(*this, *this - 1); }

    CountedIterator& operator+=(difference_type offset) {
        at_ += offset;
        return *this;
    }

    CountedIterator& operator-=(difference_type offset) { return *this += -offset; }

    friend CountedIterator operator+(CountedIterator it, difference_type offset) { return it += offset; }

    friend CountedIterator operator-(CountedIterator it, difference_type offset) { return it -= offset; }

    friend difference_type operator-(CountedIterator a, CountedIterator b) { return a.at_ - b.at_; }

    friend bool operator==(CountedIterator a, CountedIterator b) { return a.at_ == b.at_; }

private:
    pointer at_ = nullptr;
    std::int64_t* looks_left_ = nullptr;
};

using CountedMatch = boost::match_results<CountedIterator>;

std::optional<PatternSpan> SpanOf(const CountedMatch& found, std::size_t group, CountedIterator text_begin) {
    const auto& part = found[static_cast<int>(group)];
    if (!part.matched) {
        return std::nullopt;
    }
    return PatternSpan{static_cast<std::size_t>(part.first - text_begin),
                       static_cast<std::size_t>(part.second - part.first)};
}

// The engine's own '.' stops at form feeds too, and at every character whose low 16 bits are those of a line separator,
// some of them letters.
constexpr std::wstring_view kDot = L"[^\n\r\u2028\u2029]";

std::wstring SpellDotsOut(std::wstring_view pattern) {
    std::wstring spelled;
    bool in_set = false;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const wchar_t c = pattern[i];
        if (c == L'.' && !in_set) {
            spelled += kDot;
            continue;
        }
        spelled += c;
        if (c == L'\\' && i + 1 < pattern.size()) {
            spelled += pattern[++i];
        } else {
            in_set = in_set ? c != L']' : c == L'[';
        }
    }
    return spelled;
}

} // namespace

struct WidePattern::Compiled {
    boost::wregex regex;
};

WidePattern::WidePattern(std::wstring_view pattern) {
    auto compiled = std::make_unique<Compiled>();
    compiled->regex.imbue(std::locale::classic());
    try {
        compiled->regex.assign(SpellDotsOut(pattern), boost::wregex::ECMAScript);
    } catch (const std::runtime_error&) {
        return;
    }
    compiled_ = std::move(compiled);
}

WidePattern::~WidePattern() = default;

bool WidePattern::Search(std::wstring_view text, std::size_t start, PatternMatch& out) const {
    if (compiled_ == nullptr || start > text.size()) {
        return false;
    }
    std::int64_t looks_left = kLooksAtLeast + kLooksPerCharacter * static_cast<std::int64_t>(text.size() - start);
    const CountedIterator begin(text.data(), &looks_left);
    CountedMatch found;
    try {
        if (!boost::regex_search(begin + static_cast<std::ptrdiff_t>(start),
                                 begin + static_cast<std::ptrdiff_t>(text.size()), found, compiled_->regex,
                                 boost::match_single_line)) {
            return false;
        }
    } catch (const SearchExhausted&) {
        return false;
    } catch (const std::runtime_error&) {
        // The engine's own limits.
        return false;
    }
    out.groups.clear();
    for (std::size_t group = 0; group < found.size(); ++group) {
        out.groups.push_back(SpanOf(found, group, begin));
    }
    return true;
}

} // namespace Kestrona::Platform
