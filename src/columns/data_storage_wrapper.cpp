#include "columns/data_storage_impl.h"

#include <kestrona/concrete_columns.h>

#include <array>
#include <utility>

namespace Kestrona::Data::MemoryResident {

template <typename T>
DataStorageWrapper<T>::DataStorageWrapper(T default_value, IRecordStateStrategy* record_state) : storage_(nullptr) {
    std::unique_ptr<IRecordStateStrategy> owned(record_state);
    // Given up once the storage has its memory, which new asks for first.
    storage_ = new ValueManagedDataStorage<T>(default_value, owned.release());
    wrapped_.reset(storage_);
}

template <typename T>
DataStorageWrapper<T>::~DataStorageWrapper() = default;

template <typename T>
void DataStorageWrapper<T>::StartTransaction(std::string id) {
    wrapped_->StartTransaction(std::move(id));
}

template <typename T>
void DataStorageWrapper<T>::EndTransaction(std::string id) {
    wrapped_->EndTransaction(std::move(id));
}

template <typename T>
void DataStorageWrapper<T>::RevertTransaction(std::string id) {
    wrapped_->RevertTransaction(std::move(id));
}

template <typename T>
void DataStorageWrapper<T>::Insert(std::int32_t record, const double& value) {
    wrapped_->Insert(record, ToStoredValue(value));
}

template <typename T>
void DataStorageWrapper<T>::MoveUp(std::int32_t first, std::int32_t last) {
    wrapped_->MoveUp(first, last);
}

template <typename T>
void DataStorageWrapper<T>::Erase(std::int32_t record, double key) {
    wrapped_->Erase(record, key);
}

template <typename T>
double DataStorageWrapper<T>::operator[](std::int32_t record) const {
    return GetValue(record);
}

template <typename T>
void DataStorageWrapper<T>::SetValue(std::int32_t record, const double& value) {
    wrapped_->SetValue(record, ToStoredValue(value));
}

// Reads the storage itself: an index above it would only pass the call on.
template <typename T>
double DataStorageWrapper<T>::GetValue(std::int32_t record) const {
    return static_cast<double>(storage_->Cell(record));
}

template <typename T>
std::int32_t DataStorageWrapper<T>::Find(const double& value) const {
    return wrapped_->Find(ToStoredValue(value));
}

template <typename T>
FindResult* DataStorageWrapper<T>::FindAll(const double& value, FindOperator comparison) {
    return wrapped_->FindAll(ToStoredValue(value), comparison);
}

template <typename T>
FindResult* DataStorageWrapper<T>::FindAll(const double& value) {
    return wrapped_->FindAll(ToStoredValue(value));
}

template <typename T>
FindResult* DataStorageWrapper<T>::DistinctValues() {
    return wrapped_->DistinctValues();
}

template <typename T>
void DataStorageWrapper<T>::WriteToFile(std::FILE* file) {
    wrapped_->WriteToFile(file);
}

template <typename T>
void DataStorageWrapper<T>::ReadFromFile(std::FILE* file) {
    wrapped_->ReadFromFile(file);
}

template <typename T>
void DataStorageWrapper<T>::Clear(bool mark_changed) {
    wrapped_->Clear(mark_changed);
}

template <typename T>
std::uint32_t DataStorageWrapper<T>::GetCurrentSize() const {
    return wrapped_->GetCurrentSize();
}

template <typename T>
double DataStorageWrapper<T>::FindMaxValue(bool exclude_default) {
    return static_cast<double>(wrapped_->FindMaxValue(exclude_default));
}

template <typename T>
double DataStorageWrapper<T>::FindMaxValue() {
    return FindMaxValue(false);
}

template <typename T>
double DataStorageWrapper<T>::FindMinValue(bool exclude_default) {
    return static_cast<double>(wrapped_->FindMinValue(exclude_default));
}

template <typename T>
double DataStorageWrapper<T>::FindMinValue() {
    return FindMinValue(false);
}

template <typename T>
void DataStorageWrapper<T>::Resize(std::uint32_t size) {
    wrapped_->Resize(size);
}

template <typename T>
double DataStorageWrapper<T>::GetDefaultValue() const {
    return static_cast<double>(wrapped_->GetDefaultValue());
}

template <typename T>
bool DataStorageWrapper<T>::IsIndexedColumn() {
    return wrapped_->IsIndexedColumn();
}

template <typename T>
bool DataStorageWrapper<T>::HasColumnChanged() {
    return wrapped_->HasColumnChanged();
}

template <typename T>
std::int32_t DataStorageWrapper<T>::GetRecordState(std::int32_t record) {
    return wrapped_->GetRecordState(record);
}

template <typename T>
void DataStorageWrapper<T>::ResetColoumnChanged() {
    wrapped_->ResetColoumnChanged();
}

template <typename T>
void DataStorageWrapper<T>::GroupErase(IColumn<double>* keys, std::vector<std::int32_t> records) {
    wrapped_->GroupErase(keys, std::move(records));
}

template <typename T>
IColumn<double>* DataStorageWrapper<T>::CreateIndexedColumn() {
    IColumn<T>* const index = wrapped_->CreateIndexedColumn();
    // The index owns the storage now.
    static_cast<void>(wrapped_.release());
    wrapped_.reset(index);
    return this;
}

template <typename T>
void DataStorageWrapper<T>::ReadBlock(std::int32_t first, std::int32_t count, double* out) const {
    std::array<T, 512> narrow;
    constexpr auto kStep = static_cast<std::int32_t>(narrow.size());
    for (std::int32_t done = 0; done < count; done += kStep) {
        const std::int32_t step = std::min(kStep, count - done);
        storage_->DataStorage<T>::ReadBlock(first + done, step, narrow.data());
        std::copy_n(narrow.begin(), step, out + done);
    }
}

template class DataStorageWrapper<char>;
template class DataStorageWrapper<std::int32_t>;

} // namespace Kestrona::Data::MemoryResident
