#include "platform/characters.h"
#include "platform/code_points.h"

#include <kestrona/unicode.h>

#include <unicode/uchar.h>

#include <algorithm>

namespace Kestrona {

namespace {

// What is not a code point has no case: it stays as it is, and so does a surrogate.
wchar_t FoldElement(wchar_t c) {
    if (c >= 0 && c < 0x80) {
        return Platform::LowerAscii(c);
    }
    if (static_cast<char32_t>(c) > Platform::kLastCodePoint) {
        return c;
    }
    return static_cast<wchar_t>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT));
}

wchar_t UpperElement(wchar_t c) {
    if (static_cast<char32_t>(c) > Platform::kLastCodePoint) {
        return c;
    }
    return static_cast<wchar_t>(u_toupper(static_cast<UChar32>(c)));
}

} // namespace

std::wstring FoldCase(std::wstring_view text) {
    std::wstring folded(text);
    std::transform(folded.begin(), folded.end(), folded.begin(), FoldElement);
    return folded;
}

std::wstring UpperCase(std::wstring_view text) {
    std::wstring upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), UpperElement);
    return upper;
}

bool EqualIgnoringCase(std::wstring_view left, std::wstring_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](wchar_t a, wchar_t b) { return a == b || FoldElement(a) == FoldElement(b); });
}

} // namespace Kestrona
