#include "columns/column_file.h"

#include <kestrona/encrypted_string_column.h>

#include <algorithm>
#include <cassert>
#include <utility>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr const wchar_t* kNoService = L"ArgumentNullException: Parameter 'encryptionService' is null";
constexpr const wchar_t* kNotEnabled = L"The Encryption Service is not enabled";

bool IsScratch(std::int32_t record) {
    return record >= kFirstScratchRecord && record <= kLastScratchRecord;
}

std::size_t ScratchPlace(std::int32_t record) {
    return static_cast<std::size_t>(record - kFirstScratchRecord);
}

// Whether a record of this number can have a text of its own.
bool IsRecord(std::int32_t record) {
    return record >= 0 && record < kFirstScratchRecord;
}

} // namespace

// cppcheck-suppress passedByValue ; the signature is exported
// NOLINTNEXTLINE(performance-unnecessary-value-param): likewise
EncryptedStringColumn::EncryptedStringColumn(std::wstring default_value, IRecordStateStrategy* record_state,
                                             Encryption::EncryptionService* service)
    : service_(service),
      record_state_(record_state) {
    if (service == nullptr) {
        throw kNoService;
    }
    Guard();
    default_value_ = service_->Encrypt(default_value);
    scratch_values_.fill(default_value_);
}

EncryptedStringColumn::~EncryptedStringColumn() = default;

void EncryptedStringColumn::Guard() const {
    if (!service_->get_FullyEnabled()) {
        throw kNotEnabled;
    }
}

const std::wstring& EncryptedStringColumn::GetStoredValue(std::int32_t record) const {
    if (IsScratch(record)) {
        return scratch_values_[ScratchPlace(record)];
    }
    return record >= 0 && static_cast<std::size_t>(record) < values_.size() ? values_[static_cast<std::size_t>(record)]
                                                                            : default_value_;
}

void EncryptedStringColumn::SetStoredValue(std::int32_t record, const std::wstring& stored) {
    if (IsScratch(record)) {
        scratch_values_[ScratchPlace(record)] = stored;
        return;
    }
    if (!IsRecord(record)) {
        return;
    }
    const auto place = static_cast<std::size_t>(record);
    if (place >= values_.size()) {
        values_.resize(place + 1, default_value_);
    } else if (values_[place] == stored) {
        return;
    }
    values_[place] = stored;
    record_state_->RecordChanged(record);
}

std::wstring EncryptedStringColumn::GetValue(std::int32_t record) const {
    Guard();
    return service_->Decrypt(GetStoredValue(record));
}

std::wstring EncryptedStringColumn::operator[](std::int32_t record) const {
    return GetValue(record);
}

void EncryptedStringColumn::SetValue(std::int32_t record, const std::wstring& text) {
    Guard();
    SetStoredValue(record, service_->Encrypt(text));
}

void EncryptedStringColumn::Insert(std::int32_t record, const std::wstring& text) {
    Guard();
    if (!IsRecord(record)) {
        return;
    }
    std::wstring stored = service_->Encrypt(text);
    const auto place = static_cast<std::size_t>(record);
    if (place > values_.size()) {
        values_.resize(place, default_value_);
    }
    values_.insert(values_.begin() + record, std::move(stored));
}

void EncryptedStringColumn::MoveUp(std::int32_t first, std::int32_t last) {
    for (std::int32_t record = last; record > first; --record) {
        const std::wstring stored = GetStoredValue(record - 1);
        SetStoredValue(record, stored);
    }
}

void EncryptedStringColumn::Erase(std::int32_t record, double key) {
    if (record >= 0 && static_cast<std::size_t>(record) < values_.size()) {
        values_.erase(values_.begin() + record);
    }
    record_state_->RecordErased(key);
}

void EncryptedStringColumn::EraseRecords(std::span<const std::int32_t> records, std::span<const double> keys) {
    assert(records.size() == keys.size() && std::is_sorted(records.begin(), records.end()));
    auto next = records.begin();
    std::size_t kept = 0;
    for (std::size_t place = 0; place < values_.size(); ++place) {
        if (next != records.end() && static_cast<std::size_t>(*next) == place) {
            ++next;
        } else if (kept++ != place) {
            values_[kept - 1] = std::move(values_[place]);
        }
    }
    values_.resize(kept);
    for (std::size_t i = keys.size(); i-- > 0;) {
        record_state_->RecordErased(keys[i]);
    }
}

std::int32_t EncryptedStringColumn::Find(const std::wstring& /*text*/) const {
    return -1;
}

FindResult* EncryptedStringColumn::FindAll(const std::wstring& /*text*/, FindOperator /*comparison*/) {
    return new FindResult();
}

FindResult* EncryptedStringColumn::FindAll(const std::wstring& /*text*/) {
    return new FindResult();
}

void EncryptedStringColumn::WriteToFile(std::FILE* file) {
    WriteTexts(file, values_);
}

void EncryptedStringColumn::ReadFromFile(std::FILE* file) {
    const std::int32_t count = ReadCount(file);
    std::wstring stored;
    for (std::int32_t record = 0; record < count && ReadText(file, stored); ++record) {
        Guard();
        SetStoredValue(record, stored);
    }
}

void EncryptedStringColumn::Clear(bool mark_changed) {
    values_ = {};
    record_state_->ColumnCleared(mark_changed);
}

std::uint32_t EncryptedStringColumn::GetCurrentSize() const {
    return static_cast<std::uint32_t>(values_.size());
}

void EncryptedStringColumn::Resize(std::uint32_t size) {
    if (size == values_.size()) {
        return;
    }
    if (size == 0) {
        Clear(false);
    } else {
        values_.resize(std::min<std::size_t>(size, kFirstScratchRecord), default_value_);
    }
}

std::wstring EncryptedStringColumn::PlainDefault() const {
    Guard();
    return service_->Decrypt(default_value_);
}

std::wstring EncryptedStringColumn::GetDefaultValue() const {
    return PlainDefault();
}

std::wstring EncryptedStringColumn::FindMaxValue(bool /*exclude_default*/) {
    return PlainDefault();
}

std::wstring EncryptedStringColumn::FindMaxValue() {
    return PlainDefault();
}

std::wstring EncryptedStringColumn::FindMinValue(bool /*exclude_default*/) {
    return PlainDefault();
}

std::wstring EncryptedStringColumn::FindMinValue() {
    return PlainDefault();
}

void EncryptedStringColumn::StartTransaction(std::string id) {
    record_state_->StartTransaction(std::move(id));
}

void EncryptedStringColumn::EndTransaction(std::string id) {
    record_state_->EndTransaction(std::move(id));
}

void EncryptedStringColumn::RevertTransaction(std::string id) {
    record_state_->RevertTransaction(std::move(id));
}

bool EncryptedStringColumn::HasColumnChanged() {
    return record_state_->HasColumnChanged();
}

std::int32_t EncryptedStringColumn::GetRecordState(std::int32_t record) {
    return record_state_->GetRecordState(record);
}

void EncryptedStringColumn::ResetColoumnChanged() {
    record_state_->ResetColumnChanged();
}

IColumn<std::wstring>* EncryptedStringColumn::CreateIndexedColumn() {
    return this;
}

} // namespace Kestrona::Data::MemoryResident
