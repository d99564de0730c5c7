#pragma once

#include <kestrona/export.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Conversions and comparisons of text.
///
/// Wide text holds one code point in each `wchar_t`. Two neighbouring elements that are a high and a low surrogate mean
/// the same as the one code point that they encode, and every function here treats them so. A surrogate without its
/// partner is kept as it is wherever the target can hold it. An element that is no code point at all (negative or above
/// U+10FFFF) counts as U+FFFD.
namespace Kestrona {

/// Turns wide text into UTF-16 code units. Lone surrogates pass unchanged.
KS_API std::u16string ToUtf16(std::wstring_view text);

/// Turns UTF-16 code units into wide text: a surrogate pair becomes one element, lone surrogates pass unchanged.
/// `ToUtf16(FromUtf16(units))` gives `units` back, whatever they are.
KS_API std::wstring FromUtf16(std::u16string_view units);

/// Compares by UTF-16 code units, which is not the order of `std::wstring`: U+E000 to U+FFFF stand behind the code
/// points above U+FFFF. Negative, 0 or positive, as for `std::wstring::compare`. Allocates nothing.
KS_API int CompareUtf16(std::wstring_view left, std::wstring_view right);

/// The number of code units that `ToUtf16` would give.
KS_API std::size_t Utf16Length(std::wstring_view text);

/// The longest beginning of `text` that needs at most `max_units` UTF-16 code units and does not end inside a surrogate
/// pair. The result views the characters of `text`.
KS_API std::wstring_view CutUtf16(std::wstring_view text, std::size_t max_units);

/// Turns wide text into UTF-8. UTF-8 cannot hold lone surrogates: each becomes U+FFFD.
KS_API std::string ToUtf8(std::wstring_view text);

/// Turns UTF-8 into wide text. Bytes that are not UTF-8 become U+FFFD, one for each longest run of bytes that begins a
/// well-formed sequence and one for each byte that cannot begin any.
KS_API std::wstring FromUtf8(std::string_view bytes);

/// Whether all of `bytes` is well-formed UTF-8. `bad_offset`, when given, receives the offset of the first byte of the
/// first ill-formed sequence, or the length of `bytes` when there is none.
KS_API bool IsValidUtf8(std::string_view bytes, std::size_t* bad_offset = nullptr);

/// Folds case for comparing "without regard to case": the simple default folding of each character, independent of any
/// locale, so the length stays the same.
KS_API std::wstring FoldCase(std::wstring_view text);

/// The simple upper-case form of each character, independent of any locale.
KS_API std::wstring UpperCase(std::wstring_view text);

/// Whether both texts have the same `FoldCase`. Allocates nothing.
KS_API bool EqualIgnoringCase(std::wstring_view left, std::wstring_view right);

/// The numeric locale identity (language in the low ten bits, region above them) of a locale name such as "de_DE.UTF-8"
/// or "pt-BR". "C", "POSIX" and the empty name give 0x007f, the invariant identity. Returns 0 for a name whose language
/// has no identity.
KS_API std::uint32_t LocaleIdFromName(std::string_view name);

} // namespace Kestrona
