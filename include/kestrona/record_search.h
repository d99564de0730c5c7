#pragma once

#include <kestrona/find_result.h>
#include <kestrona/memory_resident_data.h>
#include <kestrona/types.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// \file
/// Finding formats and fields by name and by class, and records by value.
///
/// A search for records indexes the field that it looks at, so the first one of a field costs a pass over the column.

/// Returns the format with exactly this name, -1 for none or for null. Destroyed formats leave holes that the search
/// passes. Expected constant time.
KS_API std::int32_t KSDLL_FindFormatImpl(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                         const wchar_t* name);
/// Like `KSDLL_FindFormatImpl`; a name that no format has is read as a 1-based number (decimal, octal after "0",
/// hexadecimal after "0x"). Returns that number minus 1 unchecked, -2 for a text that is no number.
KS_API std::int32_t KSDLL_FindFormat(Kestrona::Data::MemoryResident::IMemoryResidentData& store, const wchar_t* name);
/// Returns the first field with exactly this name. Otherwise the text is read as a number like that of a format:
/// without `context` 1-based and unchecked, with `context` 0-based, and a number out of range is an error:
/// `CompileFail` shows the messages 0x6a23 and 0x6a24, joined to one text with the arguments `context`, format name and
/// `name`, and the result is -1.
KS_API std::int32_t KSDLL_FindField(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                    const wchar_t* name, const wchar_t* context);

/// Returns the first field of the format with the class, -1 for none.
KS_API std::int32_t FindFirstColumnWithClassification(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                      std::int32_t format, Kestrona::Class c);
/// Returns the first field with the class in the order of formats and fields; -1 and -1 for none.
KS_API Kestrona::TableColumn
KSDLL_FindFirstClassificationInstance(Kestrona::Data::MemoryResident::IMemoryResidentData& store, Kestrona::Class c);
/// Returns the first field other than `skip` whose classification string holds `text`.
KS_API Kestrona::TableColumn
KSDLL_FindClassificationInstance(Kestrona::Data::MemoryResident::IMemoryResidentData& store, const std::wstring& text,
                                 Kestrona::TableColumn skip);
/// The same without a field to skip, from the format `start` on.
KS_API Kestrona::TableColumn
KSDLL_FindClassificationInstance(Kestrona::Data::MemoryResident::IMemoryResidentData& store, const std::wstring& text,
                                 std::int32_t start = 0);
/// Follows DATABASE references from a field to the first field without one, or with one to no existing field. A ring of
/// references ends at the last field before the first repeat. Either pointer may be null.
KS_API void ResolveReferenceChain(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                  std::int32_t field, std::int32_t* out_format, std::int32_t* out_field);

/// Tells whether the format has an extension.
KS_API bool KSDLL_IsLoadableTable(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format);
/// Returns the name of the format's associated table, "" for none.
KS_API std::wstring KSDLL_GetAssociatedTableTSTRING(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                    std::int32_t format);
/// Returns the record with this key value, -1 for none.
KS_API std::int32_t KSDLL_GetRecordNumberFromPrimaryKey(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                        std::int32_t format, double key);
/// Returns the key value of a record, -1.0 in a format without a primary key.
KS_API double KSDLL_GetPrimaryKeyFromRecordNumber(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                  std::int32_t format, std::int32_t record);
/// Returns the associated format, or the format itself.
KS_API std::int32_t KSDLL_GetRootTable(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format);

/// Returns the records with this text, or this value, in the field, ascending.
KS_API std::vector<std::int32_t> KSDLL_GetRecords(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                  std::int32_t format, std::int32_t field, const wchar_t* text);
KS_API std::vector<std::int32_t> KSDLL_GetRecords(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                  std::int32_t format, std::int32_t field, double value);
/// Returns the records whose FAMILY field holds the key, ascending; nothing in a format without families.
KS_API std::vector<std::int32_t> KSDLL_GetChildRecords(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                       std::int32_t format, double parent_key);
/// Returns the record with the key, followed by its children; nothing when no record has the key.
KS_API std::vector<std::int32_t> KSDLL_GetFamilyRecords(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                        std::int32_t format, double key);

/// Returns the first record behind `record`, or the last one before it, whose value or text is the given one; -1 for
/// none. No search goes round at the end.
KS_API std::int32_t KSDLL_FindNextNumeric(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                          std::int32_t format, std::int32_t field, std::int32_t record, double value);
KS_API std::int32_t KSDLL_FindPreviousNumeric(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                              std::int32_t format, std::int32_t field, std::int32_t record,
                                              double value);
KS_API std::int32_t KSDLL_FindNextString(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                         std::int32_t format, std::int32_t field, std::int32_t record,
                                         const wchar_t* text);
KS_API std::int32_t KSDLL_FindPreviousString(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                             std::int32_t format, std::int32_t field, std::int32_t record,
                                             const wchar_t* text);
/// The same for any of several values; -1 for none of them.
KS_API std::int32_t KSDLL_FindNextNumericMany(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                              std::int32_t format, std::int32_t field, std::int32_t record,
                                              std::vector<double>& values);
KS_API std::int32_t KSDLL_FindPreviousNumericMany(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                  std::int32_t format, std::int32_t field, std::int32_t record,
                                                  std::vector<double>& values);

/// Returns the records that fulfil every criterion, in an owned result. A criterion with several values is fulfilled by
/// any of them. A single criterion with several values gives the records value after value, as found; every other
/// result is ascending and tells no record twice. Without criteria the result is empty.
KS_API Kestrona::FindResult*
KSDLL_LookupRecordsIntersect(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                             std::vector<std::pair<Kestrona::FieldMatchCriteria, std::vector<double>>>& numbers,
                             std::vector<std::pair<Kestrona::FieldMatchCriteria, wchar_t*>>& texts);

/// Tells whether `b` is the associated format of `a`, or a child of it, or of `a` where that has none.
KS_API std::int32_t KSDLL_AreTablesAssociated(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                              std::int32_t a, std::int32_t b);
