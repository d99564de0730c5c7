#pragma once

#include <kestrona/column.h>
#include <kestrona/encryption.h>
#include <kestrona/record_state_strategy.h>
#include <kestrona/store.h>

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

/// \file
/// Texts that are kept encrypted in memory and in files.

namespace Kestrona::Data::MemoryResident {

/// A text column that holds only what `EncryptionService::Encrypt` gave. Reading and writing speak plain text; a text
/// that was read has zeros behind it up to a multiple of 8 code units.
///
/// No two encryptions of a text are alike, so every write is a change and nothing can be searched or sorted. Each read
/// and write derives a key, about 100 microseconds. While the service is not fully enabled, they throw the wide text
/// "The Encryption Service is not enabled"; what the service throws passes through.
class KS_API EncryptedStringColumn : public virtual IColumn<std::wstring> {
public:
    /// Takes ownership of `record_state`, borrows the service. Throws the wide text "ArgumentNullException: Parameter
    /// 'encryptionService' is null" for a null service.
    EncryptedStringColumn(std::wstring default_value, IRecordStateStrategy* record_state,
                          Encryption::EncryptionService* service);
    ~EncryptedStringColumn() override;
    EncryptedStringColumn(const EncryptedStringColumn&) = delete;
    EncryptedStringColumn& operator=(const EncryptedStringColumn&) = delete;

    void StartTransaction(std::string id) override;
    void EndTransaction(std::string id) override;
    void RevertTransaction(std::string id) override;
    void Insert(std::int32_t record, const std::wstring& text) override;
    /// Moves the encrypted texts as they are.
    void MoveUp(std::int32_t first, std::int32_t last) override;
    void Erase(std::int32_t record, double key) override;
    std::wstring operator[](std::int32_t record) const override;
    void SetValue(std::int32_t record, const std::wstring& text) override;
    std::wstring GetValue(std::int32_t record) const override;
    /// Finds nothing: -1.
    std::int32_t Find(const std::wstring& text) const override;
    /// Finds nothing.
    FindResult* FindAll(const std::wstring& text, FindOperator comparison) override;
    FindResult* FindAll(const std::wstring& text) override;
    /// Writes the encrypted texts.
    void WriteToFile(std::FILE* file) override;
    /// Takes the texts as they are, encrypted.
    void ReadFromFile(std::FILE* file) override;
    void Clear(bool mark_changed) override;
    /// Returns the number of texts held.
    [[nodiscard]] std::uint32_t GetCurrentSize() const override;
    /// The default, whatever the column holds.
    std::wstring FindMaxValue(bool exclude_default) override;
    std::wstring FindMaxValue() override;
    std::wstring FindMinValue(bool exclude_default) override;
    std::wstring FindMinValue() override;
    /// Really grows the array, with the default.
    void Resize(std::uint32_t size) override;
    [[nodiscard]] std::wstring GetDefaultValue() const override;
    bool HasColumnChanged() override;
    std::int32_t GetRecordState(std::int32_t record) override;
    void ResetColoumnChanged() override;
    /// Returns this column, which is never indexed.
    IColumn<std::wstring>* CreateIndexedColumn() override;

    /// The text as it is held, encrypted.
    [[nodiscard]] const std::wstring& GetStoredValue(std::int32_t record) const;
    /// Takes an encrypted text. One that equals the held one is no change.
    void SetStoredValue(std::int32_t record, const std::wstring& stored);

    /// `Erase` of many records, in one pass. `GroupErase` removes nothing here. Requires: `records` ascending, each
    /// once, and a key for each.
    void EraseRecords(std::span<const std::int32_t> records, std::span<const double> keys);

    /// Throws when the service is not fully enabled.
    void Guard() const;

private:
    [[nodiscard]] std::wstring PlainDefault() const;

    std::wstring default_value_;
    std::vector<std::wstring> values_;
    std::array<std::wstring, kScratchRecords> scratch_values_;
    Encryption::EncryptionService* service_;
    std::unique_ptr<IRecordStateStrategy> record_state_;
};

} // namespace Kestrona::Data::MemoryResident

/// Returns the encrypted text of a cell, for moving it without decrypting. Requires: a field whose text column is an
/// `EncryptedStringColumn`; any other gives "".
KS_API std::wstring KSDLL_GetEncryptedStringValue(Kestrona::Data::MemoryResident::MemoryResidentData& store,
                                                  std::int32_t format, std::int32_t field, std::int32_t record);
/// Stores an encrypted text as it is. Any other field is left alone. Throws like a write.
KS_API void KSDLL_SetEncryptedStringValue(Kestrona::Data::MemoryResident::MemoryResidentData& store,
                                          std::int32_t format, std::int32_t field, std::int32_t record,
                                          const std::wstring& encrypted);
