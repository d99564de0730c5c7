#pragma once

// KSDLL_GetDefaultFreeFormatStringValue reads a classification string too.
#include <kestrona/built_in_tables.h>
#include <kestrona/caches.h>
#include <kestrona/classification_parsers.h>
#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>
#include <vector>

/// \file
/// Small questions about a field's classification string.
///
/// A keyword that is missing is never an error. Forms that take a store read the string of the field; a format or field
/// out of range reads as "". A null text acts as "". Numbers are those of the "C" locale; integers saturate at 32 bits.

// Expressions. Returned texts come from `malloc`; the caller frees them with `free`. Null when the keyword is absent or
// its expression blank.

[[nodiscard]] KS_API wchar_t* Parse_EVALUATE(const wchar_t* text);
[[nodiscard]] KS_API wchar_t* Parse_HIDDEN_IF(const wchar_t* text);
[[nodiscard]] KS_API wchar_t* Parse_EXCLUDE(const wchar_t* text);

// Button text

/// Returns the name behind BUTTON TEXT, "" for none.
[[nodiscard]] KS_API std::wstring ParseClassification_BUTTON_TEXT(const wchar_t* text);
[[nodiscard]] KS_API std::wstring
ParseClassification_BUTTON_TEXT(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                std::int32_t field);

// Help. False, and the output unchanged, when the first occurrence of the keyword does not have its value.

/// Reads HELPPOPUPID(number).
KS_API bool ParseHELPPOPUPID(const wchar_t* text, std::int32_t* id);
/// Reads HELPID(number); the number may be octal after "0" or hexadecimal after "0x". The closing parenthesis may be
/// missing, here and in the two below.
KS_API bool ParseHELPID(const wchar_t* text, std::int32_t* id);
/// Reads HELP TEXT(text), without the blanks before the text.
KS_API bool ParseHELPTEXT(const wchar_t* text, std::wstring* out);
/// Reads HELP FILE(name), without the blanks before the name.
KS_API bool ParseHELPFILE(const wchar_t* text, std::wstring* out);

// Scanning by a format

/// Scans the beginning of `text` by a format of the C library's scanf family with one %[...] or %s conversion. `a`
/// receives what was read, "" for nothing. Returns the number of values read, -1 when the text ended before the first.
///
/// Requires: a format of blanks, characters to be matched, and as many text conversions as there are outputs.
KS_API std::int32_t Parse1StringParameter(const wchar_t* text, const wchar_t* format, std::wstring* a);
/// The same with two conversions.
KS_API std::int32_t Parse2StringParameters(const wchar_t* text, const wchar_t* format, std::wstring* a,
                                           std::wstring* b);

// Substitutes

/// Returns every SUBSTITUTE entry in text order; entries with the same value are all kept.
[[nodiscard]] KS_API std::vector<Kestrona::SubstPair> Parse_SUBSTITUTE(const std::wstring& text);
/// The same for SUBSTITUTX.
[[nodiscard]] KS_API std::vector<Kestrona::SubstPair> Parse_SUBSTITUTX(const std::wstring& text);
/// Returns the SUBSTITUTE entries of a field. None for a field without the class `Classes::kSubstitute`, whatever its
/// string holds. The string is parsed once; the field keeps the pairs until its classification string is set.
[[nodiscard]] KS_API std::vector<Kestrona::SubstPair>
Parse_SUBSTITUTE(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field);
/// Returns the SUBSTITUTX entries of a field, whatever its classes. The string is parsed at each call, although the
/// field keeps the pairs as for SUBSTITUTE.
[[nodiscard]] KS_API std::vector<Kestrona::SubstPair>
Parse_SUBSTITUTX(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field);

/// Returns the pair of one entry. Requires: a match of this parser.
[[nodiscard]] KS_API Kestrona::SubstPair
ClassificationMatchToSubstitutePair(const Kestrona::Configuration::Parsers::SubstituteClassificationParserBase* parser,
                                    const Kestrona::Configuration::Parsers::ClassificationMatch& match);
/// Tells whether a SUBSTITUTE entry has exactly this value. SUBSTITUTX entries do not count.
[[nodiscard]] KS_API bool ContainsSubstituteValue(double value, const std::wstring& text);

/// Turns a displayed text back into its value, by the SUBSTITUTE entries and then the SUBSTITUTX entries. Texts compare
/// exactly; null acts as "".
///
/// Returns 0 with the value of the first entry that shows `wanted`; 1 when there are no entries; 2 when none of them
/// shows it, and then `value` holds that of the last entry. The texts of the entries passed over are appended to
/// `list_out`, each in double quotes with a comma and a blank behind it.
KS_API std::int32_t CheckForSubstitute(const std::wstring& text, std::wstring& list_out, const wchar_t* wanted,
                                       double* value);
/// The same with the entries of a field, see `Parse_SUBSTITUTE`.
KS_API std::int32_t CheckForSubstitute(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                       std::int32_t field, std::wstring& list_out, const wchar_t* wanted,
                                       double* value);
/// The same into a buffer of the caller, null for no list. Requires: a text in the buffer, and room behind it for every
/// entry's text and four characters more each. The forms above bound themselves.
KS_API std::int32_t CheckForSubstitute(const std::wstring& text, wchar_t* list_out, const wchar_t* wanted,
                                       double* value);
KS_API std::int32_t CheckForSubstitute(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                       std::int32_t field, wchar_t* list_out, const wchar_t* wanted, double* value);

// Number format

/// Parses the FORMAT classification. Not `Specified` when there is none; FORMAT(MAX) has the format text ".2".
[[nodiscard]] KS_API Kestrona::NumberFormat MatchFormat(const std::wstring& classification);
/// The same.
[[nodiscard]] KS_API Kestrona::NumberFormat KSDLL_GetNumberFormat(const std::wstring& classification);
/// Returns the number format of a field. The string is parsed once; the field keeps the result until its classification
/// string is set.
[[nodiscard]] KS_API Kestrona::NumberFormat
KSDLL_GetNumberFormat(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                      std::int32_t field);

// Names of a field for one place of display

/// Reads the name behind `prefix` and FIELD NAME. False, and `out` unchanged, when there is none. For `prefix` see
/// `ClassificationParserBase_FIELD_NAME`.
KS_API bool ParseFieldName(const std::wstring& text, const std::wstring& prefix, std::wstring* out);
/// Returns the name behind `prefix` and FIELD NAME in the field's string, else the field's column name.
[[nodiscard]] KS_API std::wstring KSDLL_GetFieldName(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                     std::int32_t format, std::int32_t field,
                                                     const std::wstring& prefix);
/// The same with the prefix DIALOG.
[[nodiscard]] KS_API std::wstring GetDialogFieldName(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                     std::int32_t format, std::int32_t field);
/// The same, but reads `text` instead of the field's string.
[[nodiscard]] KS_API std::wstring GetDialogFieldName(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                     const std::wstring& text, std::int32_t format, std::int32_t field);
/// The same with the prefix TIP.
[[nodiscard]] KS_API std::wstring GetToolTipFieldName(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                      std::int32_t format, std::int32_t field);
/// The same with the prefix EDITOR.
[[nodiscard]] KS_API std::wstring GetEditorFieldName(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                     std::int32_t format, std::int32_t field);
