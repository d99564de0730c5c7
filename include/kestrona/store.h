#pragma once

#include <kestrona/host_interfaces.h>
#include <kestrona/memory_resident_data.h>
#include <kestrona/services.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// \file
/// The store.

namespace Kestrona::Data::MemoryResident {

class FormatNames;

/// The only implementation of `IMemoryResidentData`. A host derives from it, or calls `CreateMemoryResidentData`.
class KS_API MemoryResidentData : public IMemoryResidentData {
public:
    ~MemoryResidentData() override;

    void SetColumnName(std::int32_t format, std::int32_t field, const std::wstring& name) override;
    std::wstring GetColumnName(std::int32_t format, std::int32_t field) override;
    std::int32_t GetFormatCount() override;
    void SetFormatCount(std::int32_t count) override;
    void AssignDbMatrix(std::int32_t format, std::int32_t to_field, std::int32_t from_field) override;
    double GetDbValue(std::int32_t format, std::int32_t field, std::int32_t record) override;
    void EraseDbRows(std::int32_t format, std::vector<std::int32_t> records) override;
    void EraseDbRow(std::int32_t format, std::int32_t record) override;
    double GetDbDefaultValue(std::int32_t format, std::int32_t field) override;
    void InvalidateIndexes(std::int32_t format) override;
    void RebuildIndexes(std::int32_t format) override;
    void SetDbValue(std::int32_t format, std::int32_t field, std::int32_t record, double value) override;
    std::int64_t GetTimestamp(std::int32_t format) override;
    bool GetDbChanged(std::int32_t format) override;
    std::int32_t GetRecordChanged(std::int32_t format, std::int32_t record) override;
    void ResetColumnChanged(std::int32_t format, std::int32_t field) override;
    void ResetDbChanged(std::int32_t format) override;
    void ResetDbChangedIncludeChildTables(std::int32_t format) override;
    std::uint32_t GetDbType(std::int32_t format, std::int32_t field) override;
    bool ClassDefined(std::int32_t format, std::int32_t field, Class c) override;
    std::uint32_t GetDbClass(std::int32_t format, std::int32_t field, std::int32_t word) override;
    bool IsAssociatedTable(std::int32_t format) override;
    std::int32_t GetAssociateTableNumber(std::int32_t format) override;
    bool IsFormatChildOfParent(std::int32_t format, std::int32_t child) override;
    void RemoveDbClass(std::int32_t format, std::int32_t field, Class c) override;
    void AddDbClass(std::int32_t format, std::int32_t field, Class c) override;
    std::int32_t GetDbKey(std::int32_t format) override;
    std::int32_t GetCurrentDbSize(std::int32_t format) override;
    void ResizeTable(std::int32_t format, std::int32_t size) override;
    void SetCurrentDbSize(std::int32_t format, std::int32_t size) override;
    void ChangeCurrentDbSize(std::int32_t format, std::int32_t delta) override;
    void SetUserMaxRecords(std::int32_t format, std::int32_t count) override;
    std::int32_t GetUserMaxRecords(std::int32_t format) override;
    double GetDbKeyValue(std::int32_t format, std::int32_t record) override;
    void SetDbKeyValue(std::int32_t format, std::int32_t record, double value) override;
    std::int32_t GetDbRelated(std::int32_t format, std::int32_t field) override;
    std::int32_t GetDbRelatedY(std::int32_t format, std::int32_t field) override;
    void SetDbRelated(std::int32_t format, std::int32_t field, std::int32_t value) override;
    void SetDbRelatedY(std::int32_t format, std::int32_t field, std::int32_t value) override;
    std::int32_t GetDbData(std::int32_t format, std::int32_t field, std::int32_t slot) override;
    void SetDbData(std::int32_t format, std::int32_t field, std::int32_t slot, std::int32_t value) override;
    INativeExpression* GetDbEvaluateExpression(std::int32_t format, std::int32_t field) override;
    std::int32_t GetDbTable(std::int32_t format, std::int32_t field) override;
    void SetDbTable(std::int32_t format, std::int32_t field, std::int32_t value) override;
    std::int32_t GetDbSource(std::int32_t format, std::int32_t field) override;
    std::int32_t GetDbSourceS(std::int32_t format, std::int32_t field) override;
    void SetDbSourceS(std::int32_t format, std::int32_t field, std::int32_t value) override;
    void SetDbSource(std::int32_t format, std::int32_t field, std::int32_t value) override;
    ReadOnlyType GetDbReadOnly(std::int32_t format, std::int32_t field) override;
    void SetDbReadOnly(std::int32_t format, std::int32_t field, ReadOnlyType value) override;
    void SetDbUpdate(std::int32_t format, std::int32_t record, std::int32_t value) override;
    std::int32_t GetDbUpdate(std::int32_t format, std::int32_t record) override;
    std::int32_t GetDbTableY(std::int32_t format, std::int32_t field) override;
    void SetDbTableY(std::int32_t format, std::int32_t field, std::int32_t value) override;
    std::int16_t GetDbDialogLevel(std::int32_t format, std::int32_t field) override;
    std::int32_t GetDbSourceY(std::int32_t format, std::int32_t field) override;
    void SetDbSourceY(std::int32_t format, std::int32_t field, std::int32_t value) override;
    wchar_t* GetDbExtension(std::int32_t format) override;
    wchar_t* GetDefaultDatasetName(std::int32_t format) override;
    wchar_t* GetDbCurrentDatasetName(std::int32_t format) override;
    const wchar_t* GetDbClassString(std::int32_t format, std::int32_t field) override;
    std::wstring GetDbString(std::int32_t format, std::int32_t field, std::int32_t record) override;
    void SetDbString(std::int32_t format, std::int32_t field, std::int32_t record, const std::wstring& text) override;
    std::int32_t GetDbFields(std::int32_t format) override;
    std::int32_t GetDbMinLength(std::int32_t format) override;
    std::int32_t GetDbXLocation(std::int32_t format, std::int32_t field) override;
    void SetDbXLocation(std::int32_t format, std::int32_t field, std::int32_t value) override;
    std::int32_t GetTableFields(std::int32_t table) override;
    double GetTableValue(std::int32_t table, std::int32_t index) override;
    wchar_t* GetTableName(std::int32_t table) override;
    void SetTableName(std::int32_t table, wchar_t* name) override;
    const wchar_t* GetTableText(std::int32_t table, std::int32_t index) override;
    void SetTableText(std::int32_t table, std::int32_t index, wchar_t* text) override;
    void SetTableValue(std::int32_t table, std::int32_t index, double value) override;
    void SetTableFields(std::int32_t table, std::int32_t count) override;
    void CreateTablePointer() override;
    void CreateTableFields(std::int32_t table) override;
    void SetDefaultDatasetName(std::int32_t format, wchar_t* name) override;
    void SetDatasetName(std::int32_t format, const wchar_t* name) override;
    void SetDbCurrentDatasetName(std::int32_t format, const wchar_t* name) override;
    void SetDbExtension(std::int32_t format, wchar_t* extension) override;
    void SetAssociatedTable(std::int32_t format, wchar_t* name, bool eligible_common_dataset) override;
    wchar_t* GetAssociatedTable(std::int32_t format) override;
    bool IsAssociatedTableEligibleCommonDataset(std::int32_t format) override;
    void AddChildTable(std::int32_t format, std::int32_t child) override;
    void SetDbMinLength(std::int32_t format, std::int32_t value) override;
    void SetDbFields(std::int32_t format, std::int32_t count) override;
    void CreateDbFieldInfo(std::int32_t format, std::int32_t count) override;
    void SetDbKey(std::int32_t format, std::int32_t field) override;
    std::int32_t GetCopiedFormatSource(std::int32_t format) override;
    void SetCopiedFormatSource(std::int32_t format, std::int32_t source) override;
    void CreateDbUpdate(std::int32_t format) override;
    void SetDbType(std::int32_t format, std::int32_t field, std::uint32_t type) override;
    void AddDbType(std::int32_t format, std::int32_t field, std::uint32_t bits) override;
    void SetDbDefaultValue(std::int32_t format, std::int32_t field, double value) override;
    void SetDbClass(std::int32_t format, std::int32_t field, std::int32_t word, std::uint32_t bits) override;
    void CreateDbMatrix(std::int32_t format, std::int32_t field) override;
    void SetDbClassString(std::int32_t format, std::int32_t field, const std::wstring& text) override;
    void CreateSpecialisedDataStorage(std::int32_t format, std::int32_t field) override;
    void CreateDbValues(std::int32_t format, std::int32_t field) override;
    void CreateDbStrings(std::int32_t format, std::int32_t field) override;
    void ClearStringColumn(std::int32_t format, std::int32_t field) override;
    bool IsHiddenDialog(std::int32_t format, std::int32_t field) override;
    void SetDbDialogLevel(std::int32_t format, std::int32_t field, std::int16_t level) override;
    void CopyMatrix(std::int32_t source_format, std::int32_t source_field, std::int32_t source_record,
                    std::int32_t target_format, std::int32_t target_field, std::int32_t target_record) override;
    void SwapMatrix(std::int32_t format, std::int32_t field, std::int32_t record1, std::int32_t record2) override;
    void CopyMatrixItemInfo(std::int32_t source_record, std::int32_t target_record, std::int32_t format) override;
    void SwapMatrixItemInfo(std::int32_t record1, std::int32_t record2, std::int32_t format) override;
    void CopyField(std::int32_t format, std::int32_t field, std::int32_t source_record,
                   std::int32_t target_record) override;
    void SwapItemInfo(std::int32_t record1, std::int32_t record2, std::int32_t format) override;
    void CopyItemInfo(std::int32_t source_record, std::int32_t target_record, std::int32_t format) override;
    bool ItemInfoIsEqual(std::int32_t record1, std::int32_t record2, std::int32_t format) override;
    bool GetParentSortEnabled(std::int32_t format, std::int32_t field) override;
    void SetParentSortEnabled(std::int32_t format, std::int32_t field, bool enabled) override;
    void GetStringSubstitution(std::int32_t index, wchar_t** from, wchar_t** to) override;
    void SetStringSubstitution(wchar_t* from, wchar_t* to) override;
    void ResetStringSubstitutions() override;
    void FreeFieldMemory(std::int32_t format, std::int32_t field) override;
    void DestroyFormat(std::int32_t format) override;
    std::int32_t CreateDuplicateFormat(std::int32_t format, wchar_t* name, bool at_end) override;
    void FreeDbMemory() override;
    FindResult* DistinctRecords(std::int32_t format, std::int32_t field) override;
    std::int32_t LookupKeyRecord(std::int32_t format, double key) override;
    FindResult* LookupRecords(std::int32_t format, std::int32_t field, const wchar_t* text,
                              FindOperator comparison) override;
    FindResult* LookupRecords(std::int32_t format, std::int32_t field, double value, FindOperator comparison) override;
    void AddIndexToColumn(std::int32_t format, std::int32_t field) override;
    std::string StartRecordStateTransaction(std::int32_t format, std::int32_t matrix_record) override;
    void EndRecordStateTransaction(std::int32_t format, std::string id, std::int32_t matrix_record) override;
    void RevertRecordState(std::int32_t format, std::string id, std::int32_t matrix_record) override;
    void SuspendTimestampChangeTracking(std::int32_t format) override;
    void ResumeTimestampChangeTracking(std::int32_t format) override;
    double GetMaxValueForColumn(std::int32_t format, std::int32_t field, bool exclude_default) override;
    double GetMinValueForColumn(std::int32_t format, std::int32_t field, bool exclude_default) override;
    wchar_t* GetDbName(std::int32_t format) override;
    const std::wstring& GetDbDisplayName(std::int32_t format) override;
    void SetDbName(std::int32_t format, wchar_t* name) override;
    void SetDbDisplayName(std::int32_t format, const std::wstring& name) override;
    FindResult* GetRecordsMatchingRow(std::int32_t format, std::int32_t field, std::int32_t record) override;

    /// Returns the format with exactly this name, -1 for none or for null. Destroyed formats leave holes that the
    /// search passes; it ends at the first format without a name at or past the format count. Expected constant time.
    [[nodiscard]] std::int32_t FindFormatByName(const wchar_t* name);
    /// Frees every format and sets the format count to 0. String tables and substitutions stay.
    void InitializeFormats();

protected:
    /// Makes an empty store.
    ///
    /// Takes ownership of every pointer; each may be null. `progress` and `messages` replace the process-wide service.
    /// A `logger` that is given is freed at once and the process goes back to the do-nothing logger: install one with
    /// `LogManager::setInstance`.
    MemoryResidentData(IGlobalizationHelper* globalization, IDuplicateFormatHandler* duplicates, DefaultLogger* logger,
                       BaseProgressManager* progress, CoreMessage* messages);

private:
    friend class IMemoryResidentData;
    friend KS_API std::unique_ptr<MemoryResidentData>
    CreateMemoryResidentData(IGlobalizationHelper* globalization, IDuplicateFormatHandler* duplicates,
                             DefaultLogger* logger, BaseProgressManager* progress, CoreMessage* messages);

    struct StringSubstitution {
        OwnedText from;
        OwnedText to;
    };

    [[nodiscard]] formats_info* FindFormat(std::int32_t format) {
        const auto index = static_cast<std::uint32_t>(format);
        return index < formats_.size() ? &formats_[index] : nullptr;
    }

    [[nodiscard]] field_info* FindField(std::int32_t format, std::int32_t field) {
        formats_info* info = FindFormat(format);
        const auto index = static_cast<std::uint32_t>(field);
        return info != nullptr && index < info->fields.size() ? &info->fields[index] : nullptr;
    }

    [[nodiscard]] TableInfo* FindTable(std::int32_t table);
    [[nodiscard]] TableEntry* FindTableEntry(std::int32_t table, std::int32_t index);
    double ReadBeyondRecords(std::int32_t format, std::int32_t field, std::int32_t record);
    void WriteElsewhere(std::int32_t format, std::int32_t field, std::int32_t record, double value);
    void ReportBadRead(std::int32_t format, std::int32_t field, std::int32_t record);
    void ReportBadWrite(std::int32_t format, std::int32_t record);
    void ResetFormat(std::int32_t format);
    [[nodiscard]] std::int32_t DuplicateNumber(bool at_end);

    std::vector<formats_info> formats_; // always kMaxFormats: columns point at the entries
    std::unique_ptr<TableInfo[]> tables_;
    std::unique_ptr<IGlobalizationHelper> globalization_;
    std::unique_ptr<IDuplicateFormatHandler> duplicates_;
    std::unique_ptr<FormatNames> names_;
    std::int32_t formatCount_ = 0;
    std::vector<StringSubstitution> substitutions_;
};

/// Makes a store for a host that does not derive. The arguments are those of the constructor.
KS_API std::unique_ptr<MemoryResidentData> CreateMemoryResidentData(IGlobalizationHelper* globalization = nullptr,
                                                                    IDuplicateFormatHandler* duplicates = nullptr,
                                                                    DefaultLogger* logger = nullptr,
                                                                    BaseProgressManager* progress = nullptr,
                                                                    CoreMessage* messages = nullptr);

} // namespace Kestrona::Data::MemoryResident
