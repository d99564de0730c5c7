#pragma once

#include <kestrona/export.h>
#include <kestrona/services.h>

#include <cstdint>
#include <cstdio>

/// \file
/// Texts in compiled definitions: lightly scrambled and checksummed against editing by hand, not for secrecy.
///
/// The state of the scrambling runs through all texts of a file. It belongs to the process: one file at a time, and
/// every file, read or written, begins with `KSDLL_ResetChecksum`. Texts must be read in the order of writing, those
/// that are not wanted too. docs/file-formats.md tells the layout.

/// What `KSDLL_ReadBinaryString` found.
inline constexpr std::int32_t kBinaryStringText = 0; ///< A text, perhaps an empty one.
inline constexpr std::int32_t kBinaryStringEnd = 1;  ///< The end marker of a list.
inline constexpr std::int32_t kBinaryStringBad = -1; ///< A text that is cut short or damaged; it was reported.

/// Puts the state back to that of a file's beginning.
KS_API void KSDLL_ResetChecksum();

/// Appends a text to an open file. Null is written as "". A failed write shows in `std::ferror(file)`.
KS_API void KSDLL_WriteBinaryString(std::FILE* file, const wchar_t* text);

/// Reads a text; returns 0, 1 or -1 as above. `*text` becomes a text from `malloc`, which the caller frees or hands to
/// an operation that takes ownership, null for an empty text; it stays as it is after a failure and at the end marker.
/// With `wide` 0 the file holds 8-bit texts in the code page of `SetLegacyCodePage`. A text ends at its first zero.
KS_API std::int32_t KSDLL_ReadBinaryString(std::FILE* file, wchar_t** text, std::int32_t wide);
/// The same with `owner` as the window of the message that reports a failure. `*text` stays as it is for an empty text.
KS_API std::int32_t KSDLL_ReadBinaryString(std::FILE* file, wchar_t** text, WindowHandle owner, std::int32_t wide);
