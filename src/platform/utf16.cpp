#include "platform/code_points.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <utility>

namespace Kestrona {

namespace {

using namespace Platform;

constexpr std::size_t UnitsOf(wchar_t element) {
    return ElementToCodePoint(element) >= kFirstSupplementary ? 2 : 1;
}

// Walks the UTF-16 code units of wide text without storing them.
class UnitCursor {
public:
    explicit UnitCursor(std::wstring_view text) : text_(text) {}

    bool AtEnd() const { return pending_ == 0 && index_ == text_.size(); }

    char32_t Next() {
        if (pending_ != 0) {
            return std::exchange(pending_, 0);
        }
        const char32_t c = ElementToCodePoint(text_[index_++]);
        if (c < kFirstSupplementary) {
            return c;
        }
        pending_ = LowSurrogateOf(c);
        return HighSurrogateOf(c);
    }

private:
    std::wstring_view text_;
    std::size_t index_ = 0;
    // The second unit of a pair whose first was handed out; 0 when there is none.
    char32_t pending_ = 0;
};

} // namespace

std::u16string ToUtf16(std::wstring_view text) {
    std::u16string units;
    units.reserve(text.size());
    for (const wchar_t element : text) {
        const char32_t c = ElementToCodePoint(element);
        if (c >= kFirstSupplementary) {
            units.push_back(static_cast<char16_t>(HighSurrogateOf(c)));
            units.push_back(static_cast<char16_t>(LowSurrogateOf(c)));
        } else {
            units.push_back(static_cast<char16_t>(c));
        }
    }
    return units;
}

std::wstring FromUtf16(std::u16string_view units) {
    std::wstring text;
    text.reserve(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t c = units[i];
        if (IsHighSurrogate(c) && i + 1 < units.size() && IsLowSurrogate(units[i + 1])) {
            c = CombineSurrogates(c, units[++i]);
        }
        text.push_back(static_cast<wchar_t>(c));
    }
    return text;
}

int CompareUtf16(std::wstring_view left, std::wstring_view right) {
    const auto [left_end, right_end] = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
    // The common beginning has the same units on both sides, also where it ends inside a pair of two elements.
    UnitCursor a(left.substr(static_cast<std::size_t>(left_end - left.begin())));
    UnitCursor b(right.substr(static_cast<std::size_t>(right_end - right.begin())));
    while (!a.AtEnd() && !b.AtEnd()) {
        const char32_t x = a.Next();
        const char32_t y = b.Next();
        if (x != y) {
            return x < y ? -1 : 1;
        }
    }
    return static_cast<int>(!a.AtEnd()) - static_cast<int>(!b.AtEnd());
}

std::size_t Utf16Length(std::wstring_view text) {
    std::size_t units = 0;
    for (const wchar_t element : text) {
        units += UnitsOf(element);
    }
    return units;
}

std::wstring_view CutUtf16(std::wstring_view text, std::size_t max_units) {
    std::size_t left = max_units;
    std::size_t end = 0;
    while (end < text.size() && UnitsOf(text[end]) <= left) {
        left -= UnitsOf(text[end++]);
    }
    const bool inside_pair = end > 0 && end < text.size() && IsHighSurrogate(ElementToCodePoint(text[end - 1])) &&
                             IsLowSurrogate(ElementToCodePoint(text[end]));
    return text.substr(0, inside_pair ? end - 1 : end);
}

} // namespace Kestrona
