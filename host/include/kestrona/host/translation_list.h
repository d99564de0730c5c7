#pragma once

#include <kestrona/host/definition.h>
#include <kestrona/memory_resident_data.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Lists of texts to translate: filled by a load of a definition source, and read back when a translator has filled
/// them in. The data module's translation_writer.h tells the form of a list.

namespace Kestrona::Host {

/// Sections of the list that a definition source gives.
inline constexpr const wchar_t* kFormatNames = L"Formats";
inline constexpr const wchar_t* kFieldNames = L"Fields";
inline constexpr const wchar_t* kStringTableTexts = L"String tables";
inline constexpr const wchar_t* kDimensionLabels = L"Dimensions";

/// One entry of a list.
struct TranslationListEntry {
    std::wstring section; ///< "" before the first section.
    std::wstring text;
    std::wstring translation; ///< " " or "" where the translator has left it.
    std::int32_t line = 1;    ///< Where it begins.

    /// Tells whether the entry has a translation.
    [[nodiscard]] bool IsFilledIn() const { return !translation.empty() && translation != L" "; }
};

/// A list that a translator has filled in.
struct TranslationList {
    std::vector<TranslationListEntry> entries; ///< In reading order.
    std::vector<Diagnostic> diagnostics;       ///< Entries that were left out, and section names that were cut off.
};

/// Reads a list: UTF-16 with a byte order mark, or UTF-8. Everything that is neither a section nor an entry counts as
/// a remark. An entry whose quotes do not close before the next one is left out, and a section's name is cut off after
/// 256 characters. `file` is the name in diagnostics.
[[nodiscard]] TranslationList ParseTranslationList(std::string_view bytes, const std::string& file);

/// Reads a list file; nothing when it cannot be read.
[[nodiscard]] std::optional<TranslationList> ReadTranslationListFile(const std::string& path);

/// Enters the entries of a list into the process's translation table, as whole texts. Entries that are not filled in
/// are left out. Returns the number of those entered.
std::size_t ApplyTranslationList(const TranslationList& list);

/// Hands the display names of formats, the names of fields and the texts of string tables to the process's translation
/// writer, each text once in its section, and begins the section of dimension labels.
void ListDefinitionTexts(Data::MemoryResident::IMemoryResidentData& store);

} // namespace Kestrona::Host
