#pragma once

#include <kestrona/find_result.h>
#include <kestrona/schema_records.h>
#include <kestrona/types.h>

#include <cstdint>
#include <string>
#include <vector>

/// \file
/// The store's interface: the plant model as formats, fields and records.

namespace Kestrona::Data::MemoryResident {

/// The one store of a plant model.
///
/// Everything is addressed by three numbers: format, field, record. Schema operations are total: a number out of range
/// reads as false, 0, -1 (where a format, field or record is meant), null or "", and a write to it is dropped; a text
/// or an object that such a write would have taken over is freed. `GetDbValue` and `SetDbValue` alone trust format and
/// field (Requires: both in range), since they are the hot path.
///
/// Records are positional: removing one renumbers every later one. References between formats hold key values.
///
/// Threads: one at a time.
class KS_API IMemoryResidentData {
public:
    IMemoryResidentData() = default;
    IMemoryResidentData(const IMemoryResidentData&) = delete;
    IMemoryResidentData& operator=(const IMemoryResidentData&) = delete;
    virtual ~IMemoryResidentData() = default;

    // Names and number of formats

    virtual void SetColumnName(std::int32_t format, std::int32_t field, const std::wstring& name) = 0;
    virtual std::wstring GetColumnName(std::int32_t format, std::int32_t field) = 0;
    virtual std::int32_t GetFormatCount() = 0;
    /// Sets the number of formats, between 0 and 1000.
    virtual void SetFormatCount(std::int32_t count) = 0;

    // Cells and rows

    /// Lets `to_field` share the column of matrix identities of `from_field`; its own one is freed.
    virtual void AssignDbMatrix(std::int32_t format, std::int32_t to_field, std::int32_t from_field) = 0;
    /// Returns the value of a cell. A negative record number, or one at or past the record count that is no scratch
    /// record, is reported in a box titled "Assert" and to the debug log, and reads as the default. A field without a
    /// column reads as `GetDbDefaultValue`. Two array steps and a virtual call.
    ///
    /// Requires: `format` and `field` in range.
    virtual double GetDbValue(std::int32_t format, std::int32_t field, std::int32_t record) = 0;
    /// Removes the cells of these records from every column. The record count stays; the caller lowers it.
    virtual void EraseDbRows(std::int32_t format, std::vector<std::int32_t> records) = 0;
    /// Removes the cells of a record from every column; refuses scratch records. The record count stays.
    virtual void EraseDbRow(std::int32_t format, std::int32_t record) = 0;
    /// Returns the value of a new cell: the one that a STRING_DEF text stands for, else the stored default.
    virtual double GetDbDefaultValue(std::int32_t format, std::int32_t field) = 0;
    /// Suspends index maintenance of a format before a mass change. Searches in between rebuild what they need.
    virtual void InvalidateIndexes(std::int32_t format) = 0;
    /// Rebuilds the indexes of a format at once.
    virtual void RebuildIndexes(std::int32_t format) = 0;
    /// Stores a value. A record number past the record count is written quietly; one that no cell has (negative, above
    /// the scratch records) is reported to the debug log and dropped. What changes nothing counts as no change. A field
    /// without a column drops the write.
    ///
    /// Requires: `format` and `field` in range.
    virtual void SetDbValue(std::int32_t format, std::int32_t field, std::int32_t record, double value) = 0;

    // Change tracking

    /// Returns a counter that grows with every tracked change.
    virtual std::int64_t GetTimestamp(std::int32_t format) = 0;
    /// Tells whether any record is marked, changed or merely asked about, or the format as a whole has changed.
    virtual bool GetDbChanged(std::int32_t format) = 0;
    /// Returns the first state other than 0 among the record's cells in the format and in the children of its root
    /// format: 2 for changed. Asking marks the record as known, which `GetDbChanged` shows.
    virtual std::int32_t GetRecordChanged(std::int32_t format, std::int32_t record) = 0;
    /// Forgets the changes of the field, and with them those of the whole format.
    virtual void ResetColumnChanged(std::int32_t format, std::int32_t field) = 0;
    /// Forgets the changes of every field.
    virtual void ResetDbChanged(std::int32_t format) = 0;
    virtual void ResetDbChangedIncludeChildTables(std::int32_t format) = 0;

    // Types, classes and relations of formats

    virtual std::uint32_t GetDbType(std::int32_t format, std::int32_t field) = 0;
    /// Tells whether all bits of the class are set.
    virtual bool ClassDefined(std::int32_t format, std::int32_t field, Class c) = 0;
    /// Returns a whole class word.
    virtual std::uint32_t GetDbClass(std::int32_t format, std::int32_t field, std::int32_t word) = 0;
    virtual bool IsAssociatedTable(std::int32_t format) = 0;
    /// Returns the format that this one is a child of, -1 when there is none.
    virtual std::int32_t GetAssociateTableNumber(std::int32_t format) = 0;
    virtual bool IsFormatChildOfParent(std::int32_t format, std::int32_t child) = 0;
    virtual void RemoveDbClass(std::int32_t format, std::int32_t field, Class c) = 0;
    virtual void AddDbClass(std::int32_t format, std::int32_t field, Class c) = 0;
    /// Returns the field of the primary key.
    virtual std::int32_t GetDbKey(std::int32_t format) = 0;
    /// Returns the number of records.
    virtual std::int32_t GetCurrentDbSize(std::int32_t format) = 0;

    // Size

    /// Resizes every column. The record count stays. A size of 0 empties the format's matrices; a size below 0 acts
    /// as 0, one above 999900000 as that.
    virtual void ResizeTable(std::int32_t format, std::int32_t size) = 0;
    /// Resizes every column and sets the record count.
    virtual void SetCurrentDbSize(std::int32_t format, std::int32_t size) = 0;
    virtual void ChangeCurrentDbSize(std::int32_t format, std::int32_t delta) = 0;
    virtual void SetUserMaxRecords(std::int32_t format, std::int32_t count) = 0;
    virtual std::int32_t GetUserMaxRecords(std::int32_t format) = 0;
    /// Returns the record's value of the primary key, -1.0 in a format without one.
    virtual double GetDbKeyValue(std::int32_t format, std::int32_t record) = 0;
    virtual void SetDbKeyValue(std::int32_t format, std::int32_t record, double value) = 0;

    // Numbers that resolution writes into a field

    virtual std::int32_t GetDbRelated(std::int32_t format, std::int32_t field) = 0;
    virtual std::int32_t GetDbRelatedY(std::int32_t format, std::int32_t field) = 0;
    virtual void SetDbRelated(std::int32_t format, std::int32_t field, std::int32_t value) = 0;
    virtual void SetDbRelatedY(std::int32_t format, std::int32_t field, std::int32_t value) = 0;
    /// Returns a data slot; see `DataSlot`.
    virtual std::int32_t GetDbData(std::int32_t format, std::int32_t field, std::int32_t slot) = 0;
    virtual void SetDbData(std::int32_t format, std::int32_t field, std::int32_t slot, std::int32_t value) = 0;
    /// Returns the field's compiled expression, null for none. The store keeps it.
    virtual INativeExpression* GetDbEvaluateExpression(std::int32_t format, std::int32_t field) = 0;
    virtual std::int32_t GetDbTable(std::int32_t format, std::int32_t field) = 0;
    virtual void SetDbTable(std::int32_t format, std::int32_t field, std::int32_t value) = 0;
    virtual std::int32_t GetDbSource(std::int32_t format, std::int32_t field) = 0;
    virtual std::int32_t GetDbSourceS(std::int32_t format, std::int32_t field) = 0;
    virtual void SetDbSourceS(std::int32_t format, std::int32_t field, std::int32_t value) = 0;
    virtual void SetDbSource(std::int32_t format, std::int32_t field, std::int32_t value) = 0;
    virtual ReadOnlyType GetDbReadOnly(std::int32_t format, std::int32_t field) = 0;
    virtual void SetDbReadOnly(std::int32_t format, std::int32_t field, ReadOnlyType value) = 0;
    /// Writes the record's update number.
    virtual void SetDbUpdate(std::int32_t format, std::int32_t record, std::int32_t value) = 0;
    virtual std::int32_t GetDbUpdate(std::int32_t format, std::int32_t record) = 0;
    virtual std::int32_t GetDbTableY(std::int32_t format, std::int32_t field) = 0;
    virtual void SetDbTableY(std::int32_t format, std::int32_t field, std::int32_t value) = 0;
    virtual std::int16_t GetDbDialogLevel(std::int32_t format, std::int32_t field) = 0;
    virtual std::int32_t GetDbSourceY(std::int32_t format, std::int32_t field) = 0;
    virtual void SetDbSourceY(std::int32_t format, std::int32_t field, std::int32_t value) = 0;

    // Texts. Pointers stay valid until the text is set again or the format is destroyed.

    virtual wchar_t* GetDbExtension(std::int32_t format) = 0;
    virtual wchar_t* GetDefaultDatasetName(std::int32_t format) = 0;
    virtual wchar_t* GetDbCurrentDatasetName(std::int32_t format) = 0;
    /// Returns the classification string; "" for a wrong field.
    virtual const wchar_t* GetDbClassString(std::int32_t format, std::int32_t field) = 0;
    /// Returns the text of a cell; "" where the field has no string column.
    virtual std::wstring GetDbString(std::int32_t format, std::int32_t field, std::int32_t record) = 0;
    /// Stores a text, cut to data slot 0 UTF-16 units when that is above 0. A cut never splits a character.
    virtual void SetDbString(std::int32_t format, std::int32_t field, std::int32_t record,
                             const std::wstring& text) = 0;
    virtual std::int32_t GetDbFields(std::int32_t format) = 0;
    virtual std::int32_t GetDbMinLength(std::int32_t format) = 0;
    virtual std::int32_t GetDbXLocation(std::int32_t format, std::int32_t field) = 0;
    virtual void SetDbXLocation(std::int32_t format, std::int32_t field, std::int32_t value) = 0;

    // String tables

    /// Returns the number of entries.
    virtual std::int32_t GetTableFields(std::int32_t table) = 0;
    /// Returns an entry's value, -1.0 out of range.
    virtual double GetTableValue(std::int32_t table, std::int32_t index) = 0;
    virtual wchar_t* GetTableName(std::int32_t table) = 0;
    /// Takes ownership of `name`.
    virtual void SetTableName(std::int32_t table, wchar_t* name) = 0;
    /// Returns an entry's text, "" out of range.
    virtual const wchar_t* GetTableText(std::int32_t table, std::int32_t index) = 0;
    /// Takes ownership of `text`, also when the index is out of range: then it is freed.
    virtual void SetTableText(std::int32_t table, std::int32_t index, wchar_t* text) = 0;
    /// Like `SetTableText`, an entry may be filled before `SetTableFields` counts it.
    virtual void SetTableValue(std::int32_t table, std::int32_t index, double value) = 0;
    /// Sets the number of entries, between 0 and 10000.
    virtual void SetTableFields(std::int32_t table, std::int32_t count) = 0;
    /// Makes the string tables, all without a name, unless they stand already.
    virtual void CreateTablePointer() = 0;
    /// Makes the 10000 empty entries of a table; former ones are freed.
    virtual void CreateTableFields(std::int32_t table) = 0;

    // Datasets and relations of formats

    /// Takes ownership of `name` and makes it the current dataset name of each child format. Null frees the former
    /// name and leaves the children as they are.
    virtual void SetDefaultDatasetName(std::int32_t format, wchar_t* name) = 0;
    /// Switches the dataset of one format and marks every record changed. A name that differs only in case is not
    /// stored. At most 511 characters.
    virtual void SetDatasetName(std::int32_t format, const wchar_t* name) = 0;
    /// Switches the dataset of the format's root and all its children.
    virtual void SetDbCurrentDatasetName(std::int32_t format, const wchar_t* name) = 0;
    /// Takes ownership of `extension`.
    virtual void SetDbExtension(std::int32_t format, wchar_t* extension) = 0;
    /// Takes ownership of `name`; null makes the format a root.
    virtual void SetAssociatedTable(std::int32_t format, wchar_t* name, bool eligible_common_dataset) = 0;
    virtual wchar_t* GetAssociatedTable(std::int32_t format) = 0;
    virtual bool IsAssociatedTableEligibleCommonDataset(std::int32_t format) = 0;
    virtual void AddChildTable(std::int32_t format, std::int32_t child) = 0;

    // Building the schema

    virtual void SetDbMinLength(std::int32_t format, std::int32_t value) = 0;
    virtual void SetDbFields(std::int32_t format, std::int32_t count) = 0;
    /// Grows or shrinks the field array; fields that go are freed. Invalidates `field_info` pointers. Throws the wide
    /// text "Fields must be a positive number" (`const wchar_t*`) for a negative count.
    virtual void CreateDbFieldInfo(std::int32_t format, std::int32_t count) = 0;
    /// Sets the field of the primary key, -1 for none. A value column that the field has already gets an index.
    virtual void SetDbKey(std::int32_t format, std::int32_t field) = 0;
    virtual std::int32_t GetCopiedFormatSource(std::int32_t format) = 0;
    virtual void SetCopiedFormatSource(std::int32_t format, std::int32_t source) = 0;
    /// Makes the format's update column.
    virtual void CreateDbUpdate(std::int32_t format) = 0;
    virtual void SetDbType(std::int32_t format, std::int32_t field, std::uint32_t type) = 0;
    virtual void AddDbType(std::int32_t format, std::int32_t field, std::uint32_t bits) = 0;
    virtual void SetDbDefaultValue(std::int32_t format, std::int32_t field, double value) = 0;
    /// Replaces a whole class word.
    virtual void SetDbClass(std::int32_t format, std::int32_t field, std::int32_t word, std::uint32_t bits) = 0;
    /// Makes the column of matrix identities, or borrows that of the shared field.
    virtual void CreateDbMatrix(std::int32_t format, std::int32_t field) = 0;
    /// Sets the classification string and marks what was read from the former one as stale.
    virtual void SetDbClassString(std::int32_t format, std::int32_t field, const std::wstring& text) = 0;
    /// Makes the value column that the type code asks for. Like the other operations that make columns, it frees the
    /// column that it replaces, and fields that share that column share the new one.
    virtual void CreateSpecialisedDataStorage(std::int32_t format, std::int32_t field) = 0;
    /// Makes the value column of a field; that of a key field gets an index at once. That of a calculated field keeps
    /// nothing: it evaluates the field's expression at each read.
    virtual void CreateDbValues(std::int32_t format, std::int32_t field) = 0;
    /// Makes the string column of a field.
    virtual void CreateDbStrings(std::int32_t format, std::int32_t field) = 0;
    /// Forgets the string column without freeing it.
    virtual void ClearStringColumn(std::int32_t format, std::int32_t field) = 0;
    virtual bool IsHiddenDialog(std::int32_t format, std::int32_t field) = 0;
    virtual void SetDbDialogLevel(std::int32_t format, std::int32_t field, std::int16_t level) = 0;

    // Copying. Either record may be a scratch record. A row's fields are copied, swapped and compared except matrices,
    // free strings and calculated fields; matrices go apart.

    /// Copies the matrix of a cell. Within a format a list is shared: source and target hold the same one from then on,
    /// and the one that the target had goes unless others hold it. So is a COMMON MATRIX. Any other matrix is copied
    /// element by element. A string reference (STRING STORAGE) whose string is missing becomes 0.0, and the target
    /// takes over the source's text. Nothing where the target is no matrix. Linear in the size.
    virtual void CopyMatrix(std::int32_t source_format, std::int32_t source_field, std::int32_t source_record,
                            std::int32_t target_format, std::int32_t target_field, std::int32_t target_record) = 0;
    /// Exchanges which record owns which matrix; no element moves. Nothing for a COMMON MATRIX.
    virtual void SwapMatrix(std::int32_t format, std::int32_t field, std::int32_t record1, std::int32_t record2) = 0;
    /// Copies the matrices of a row.
    virtual void CopyMatrixItemInfo(std::int32_t source_record, std::int32_t target_record, std::int32_t format) = 0;
    /// Exchanges the matrices of two rows.
    virtual void SwapMatrixItemInfo(std::int32_t record1, std::int32_t record2, std::int32_t format) = 0;
    /// Copies one cell, its value, or its text where it has no value; not the matrix.
    virtual void CopyField(std::int32_t format, std::int32_t field, std::int32_t source_record,
                           std::int32_t target_record) = 0;
    /// Exchanges two rows, their matrices and update numbers included.
    virtual void SwapItemInfo(std::int32_t record1, std::int32_t record2, std::int32_t format) = 0;
    /// Copies a row, its matrices and update number included.
    virtual void CopyItemInfo(std::int32_t source_record, std::int32_t target_record, std::int32_t format) = 0;
    /// Tells whether two rows have equal cells. Matrices are not compared.
    virtual bool ItemInfoIsEqual(std::int32_t record1, std::int32_t record2, std::int32_t format) = 0;
    virtual bool GetParentSortEnabled(std::int32_t format, std::int32_t field) = 0;
    virtual void SetParentSortEnabled(std::int32_t format, std::int32_t field, bool enabled) = 0;

    // String substitutions

    /// Both null out of range.
    virtual void GetStringSubstitution(std::int32_t index, wchar_t** from, wchar_t** to) = 0;
    /// Appends a pair and takes ownership of both texts; a pair beyond 10000 is freed.
    virtual void SetStringSubstitution(wchar_t* from, wchar_t* to) = 0;
    virtual void ResetStringSubstitutions() = 0;

    // Lifetime

    /// Zeroes the numbers of a field and frees its columns, caches, labels and expressions. A column that another field
    /// of the format holds stays; an OVERRIDE column that wrote to a freed one goes with it.
    virtual void FreeFieldMemory(std::int32_t format, std::int32_t field) = 0;
    /// Frees a format and takes it out of the child lists of others. Its number becomes free for a duplicate; if it was
    /// the last one, the format count goes down by one. The duplicate handler is told.
    virtual void DestroyFormat(std::int32_t format) = 0;
    /// Makes a format with the schema of another one and no records. What refers to the source itself refers to the
    /// duplicate there. `name` is copied and may be null. Returns the duplicate's number: the first free one, or with
    /// `at_end` the format count plus 2, where no search by name finds it and the next such duplicate replaces it.
    /// Returns -1 and changes nothing for a source out of range, and when that number is past the last format or the
    /// source's own. The duplicate handler is told.
    virtual std::int32_t CreateDuplicateFormat(std::int32_t format, wchar_t* name, bool at_end) = 0;
    /// Frees everything, the process-wide user strings and services included: they belong to all stores of the process.
    /// The switches that a host set stay. Callable twice.
    virtual void FreeDbMemory() = 0;

    // Search

    /// Returns one record for each distinct value; indexes the field first. The caller deletes the result.
    virtual FindResult* DistinctRecords(std::int32_t format, std::int32_t field) = 0;
    /// Returns the record with this key value, -1 for none. Expected constant time.
    virtual std::int32_t LookupKeyRecord(std::int32_t format, double key) = 0;
    /// Searches the texts of a field; null acts as "". Call `AddIndexToColumn` first where the search repeats: without
    /// an index it walks the column. Empty where the field has no such column. The caller deletes the result.
    virtual FindResult* LookupRecords(std::int32_t format, std::int32_t field, const wchar_t* text,
                                      FindOperator comparison) = 0;
    /// Searches the values of a field, likewise.
    virtual FindResult* LookupRecords(std::int32_t format, std::int32_t field, double value,
                                      FindOperator comparison) = 0;
    /// Puts an index in front of the field's column; nothing for a calculated field or an indexed one.
    virtual void AddIndexToColumn(std::int32_t format, std::int32_t field) = 0;

    // Record state transactions

    /// Attributes the changes that follow to a new transaction and returns its id. `matrix_record` names the record
    /// whose matrices take part, -1 for none. Throws `boost::uuids::entropy_error` when the system has no random
    /// numbers; then no transaction starts.
    virtual std::string StartRecordStateTransaction(std::int32_t format, std::int32_t matrix_record) = 0;
    virtual void EndRecordStateTransaction(std::int32_t format, std::string id, std::int32_t matrix_record) = 0;
    /// Takes the change marks of the transaction back. Values are not touched.
    virtual void RevertRecordState(std::int32_t format, std::string id, std::int32_t matrix_record) = 0;
    virtual void SuspendTimestampChangeTracking(std::int32_t format) = 0;
    /// Counts the timestamp up once when nothing suspends it any more, whether or not there were changes.
    virtual void ResumeTimestampChangeTracking(std::int32_t format) = 0;

    /// Returns the largest value of a field, the default where it has no column. Throws `std::range_error` when the
    /// column is empty.
    virtual double GetMaxValueForColumn(std::int32_t format, std::int32_t field, bool exclude_default) = 0;
    /// Returns the smallest value of a field; see `GetMaxValueForColumn`.
    virtual double GetMinValueForColumn(std::int32_t format, std::int32_t field, bool exclude_default) = 0;
    /// Returns the format's name; null past the end of the formats.
    virtual wchar_t* GetDbName(std::int32_t format) = 0;
    virtual const std::wstring& GetDbDisplayName(std::int32_t format) = 0;
    /// Takes ownership of `name`.
    virtual void SetDbName(std::int32_t format, wchar_t* name) = 0;
    virtual void SetDbDisplayName(std::int32_t format, const std::wstring& name) = 0;
    /// Returns the records that match this one in this field: the members of its family for a FAMILY field that names
    /// one, else those with the same text or value; indexes the field first. The caller deletes the result. Throws a
    /// wide text (`const wchar_t*`) for a calculated field.
    virtual FindResult* GetRecordsMatchingRow(std::int32_t format, std::int32_t field, std::int32_t record) = 0;

    // Beyond the table of operations. `MemoryResidentData` is the only implementation of this interface; these reach
    // into it.

    /// Tells whether reads and writes of the field reach a column that keeps values. False for a calculated field,
    /// which drops writes, for a matrix field, and while the columns have not been made.
    [[nodiscard]] bool HasStorage(std::int32_t format, std::int32_t field);
    /// Returns the value column, null for none. The store keeps it; valid until the column is made anew or indexed.
    [[nodiscard]] IColumn<double>* GetDbColumn(std::int32_t format, std::int32_t field);
    /// Replaces the column pointer; the former column is not freed.
    void SetDbColumn(std::int32_t format, std::int32_t field, IColumn<double>* column);
    /// Returns the string column likewise.
    [[nodiscard]] IColumn<std::wstring>* GetDbStringArray(std::int32_t format, std::int32_t field);
    /// Returns a schema record, null out of range. Valid until the schema changes.
    [[nodiscard]] field_info* GetFieldInfo(std::int32_t format, std::int32_t field);
    [[nodiscard]] formats_info* GetFormatInfo(std::int32_t format);
    /// Takes ownership of `expression`.
    void SetDbEvaluateExpression(std::int32_t format, std::int32_t field, INativeExpression* expression);
    /// Takes ownership of `expression`.
    void SetDbHiddenIfExpression(std::int32_t format, std::int32_t field, INativeExpression* expression);
    [[nodiscard]] INativeExpression* GetDbHiddenIfExpression(std::int32_t format, std::int32_t field);
    /// Returns the locale identity that the host's globalization helper names, 0 without one.
    [[nodiscard]] std::uint32_t GetLCID();
};

} // namespace Kestrona::Data::MemoryResident
