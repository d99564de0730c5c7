#include "data/decrypted_text.h"

#include <kestrona/unicode.h>

#include <algorithm>

namespace Kestrona::Tool {
namespace {

constexpr std::size_t kBlock = 8; ///< Code units.

// Pairs are one element in wide text; what is left of the range stands alone.
bool IsLoneSurrogate(wchar_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

} // namespace

bool IsPlausible(const std::wstring& decrypted) {
    const std::size_t zeros = decrypted.size() - std::min(decrypted.find(L'\0'), decrypted.size());
    return zeros >= 1 && zeros <= kBlock && Utf16Length(decrypted) % kBlock == 0 &&
           decrypted.find_last_not_of(L'\0') + 1 == decrypted.size() - zeros &&
           std::none_of(decrypted.begin(), decrypted.end(), IsLoneSurrogate);
}

} // namespace Kestrona::Tool
