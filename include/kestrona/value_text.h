#pragma once

#include <kestrona/caches.h>
#include <kestrona/export.h>
#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>

/// \file
/// Values as text, and back.
///
/// A value is shown by its field's type and classes: as a number, a date, a duration, a word, or as the text of what it
/// stands for. The words are the host's (`CoreMessage`). Numbers are those of the "C" locale. Dates and durations stand
/// in dates.h and durations.h, FORMAT and SUBSTITUTE classifications in classification_readers.h.
///
/// What is read from a field's classification string is kept with the field, so one thread at a time may ask for texts.

// Display text

/// The printf-style format that shows this value as a FORMAT classification tells: "%.2lf" without one. A format text
/// that holds an "l" gets the letters "lf" a second time for whole values; they stand behind the number then.
[[nodiscard]] KS_API std::wstring BuildFormat(const Kestrona::NumberFormat& format, double value);

/// Sets `text` to the display text of a value of the field. `text` is left unchanged when the field shows none: a free
/// string (the text of such a field is `GetDbString`), a list or matrix without an entry, a field out of range.
///
/// `list_index` is the entry of a list that the value stands in, -1 for none. With an entry, a list shows the text of
/// its source field: for the record `list_index` with the class `Classes::kParallelList`, else for the record of
/// `SetCurrentListRecord`. A reference is looked up in the formats of the list then.
///
/// A reference to a reference is followed up to 256 steps, calculated fields on the way included; behind that it counts
/// as a key that is not found, with one line to the debug log. A FORMAT that is no format of one number, or with a
/// width or precision above 512, counts as "%.2lf".
///
/// Returns the value, or 0.0 for references and texts.
KS_API double KSDLL_ValueToTString(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                   std::int32_t field, std::int32_t record, std::wstring* text, double value,
                                   std::int32_t list_index);
/// Returns the text, "" for none.
[[nodiscard]] KS_API std::wstring KSDLL_ValueToTString(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                       std::int32_t format, std::int32_t field, std::int32_t record,
                                                       double value, std::int32_t list_index);

/// Sets `text` to the display text of a cell. Left unchanged for a free string, a list and a matrix. Returns as
/// `KSDLL_ValueToTString`.
KS_API double KSDLL_FieldToTString(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                   std::int32_t field, std::int32_t record, std::wstring* text);
/// Returns the text, "" for none.
[[nodiscard]] KS_API std::wstring KSDLL_FieldToTString(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                       std::int32_t format, std::int32_t field, std::int32_t record);
/// The same.
[[nodiscard]] KS_API std::wstring GetValueAsTString(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                    std::int32_t format, std::int32_t field, std::int32_t record);

/// Returns the number of the string table that the field's TABLE classification names, 0 when there is none. The name
/// is kept with the field; with the class `Classes::kStringTableCached` so is the number. Otherwise linear in the
/// number of tables, unless the table of the last call still has the name.
[[nodiscard]] KS_API std::int32_t GetStringTableIndex(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                      std::int32_t format, std::int32_t field);

// Text to value

/// Reads a text as a value of the field: a date, time, duration, number or toggle. `value` is left unchanged when the
/// text is none, and for fields of other types. What stands behind a number is ignored, an integer saturates at 32
/// bits, and only finite numbers count; every text but the word for a set toggle clears a toggle. A null text acts as
/// "".
///
/// Returns false, whatever the text.
KS_API bool ConvertStringByColumnType(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                      std::int32_t field, const wchar_t* text, double* value);

// Numbers in expressions

/// Returns a number with as many decimals as it has, up to 10; a number with more in the form "1.50000000000000e-12".
[[nodiscard]] KS_API std::wstring KSDLL_ParseWriteDoubleT(double value);
/// The same into a buffer. Requires: room for 320 characters; 64 do for numbers below 1e50.
KS_API void KSDLL_ParseWriteDouble(wchar_t* text, double value);
