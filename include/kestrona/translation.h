#pragma once

#include <kestrona/export.h>

#include <cstdint>
#include <string>

/// \file
/// The translation table: texts of the table definition in the user's language.
///
/// One table for the process. A host fills it before it shows the first text, and passes each text through it with the
/// name of the section that the text belongs to. Lists of what there is to translate: translation_writer.h.
///
/// Threads: not guarded.

namespace Kestrona {

/// What an entry stands in for. Entries with another number are kept and never applied.
enum class TranslationEntryType : std::int32_t {
    WholeText = 1,  ///< A text that equals the source text.
    Occurrences = 2 ///< Every occurrence of the source text inside a text.
};

} // namespace Kestrona

/// Appends an entry to a section, which is made when it is not there. The translation " ", as it stands in a list that
/// nobody has filled in, counts as the source text itself. An earlier entry for the same text stays in force.
KS_API void KSDLL_SetTranslationEntry(const std::wstring& text, const std::wstring& translation,
                                      Kestrona::TranslationEntryType type, const std::wstring& section);

/// Returns the translation of a text, or the text itself. The entries of the section are applied in the order they
/// came, up to the first whole text that fits: it sees what the entries before it made of the text. Expected constant
/// time in a section of whole texts, otherwise linear in its number of entries.
[[nodiscard]] KS_API std::wstring KSDLL_CheckTranslationEntryT(const std::wstring& text, const std::wstring& section);
/// The same in place. Requires: room for the result.
KS_API void KSDLL_CheckTranslationEntry(wchar_t* text, const std::wstring& section);

/// Empties the table; `FreeDbMemory` does so too.
KS_API void FreeTranslationTable();
