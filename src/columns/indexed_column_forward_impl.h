#pragma once

#include <kestrona/indexed_column.h>

#include <utility>

// The operations of IndexedColumn<T> that the column behind it answers alone. They take no lock.
namespace Kestrona::Data::MemoryResident {

template <typename T>
void IndexedColumn<T>::StartTransaction(std::string id) {
    column_->StartTransaction(std::move(id));
}

template <typename T>
void IndexedColumn<T>::EndTransaction(std::string id) {
    column_->EndTransaction(std::move(id));
}

template <typename T>
void IndexedColumn<T>::RevertTransaction(std::string id) {
    column_->RevertTransaction(std::move(id));
}

template <typename T>
T IndexedColumn<T>::operator[](std::int32_t record) const {
    return (*column_)[record];
}

template <typename T>
T IndexedColumn<T>::GetValue(std::int32_t record) const {
    return column_->GetValue(record);
}

template <typename T>
void IndexedColumn<T>::ReadBlock(std::int32_t first, std::int32_t count, T* out) const {
    column_->ReadBlock(first, count, out);
}

template <typename T>
std::uint32_t IndexedColumn<T>::GetCurrentSize() const {
    return column_->GetCurrentSize();
}

template <typename T>
T IndexedColumn<T>::FindMaxValue(bool exclude_default) {
    return column_->FindMaxValue(exclude_default);
}

template <typename T>
T IndexedColumn<T>::FindMaxValue() {
    return FindMaxValue(false);
}

template <typename T>
T IndexedColumn<T>::FindMinValue(bool exclude_default) {
    return column_->FindMinValue(exclude_default);
}

template <typename T>
T IndexedColumn<T>::FindMinValue() {
    return FindMinValue(false);
}

template <typename T>
T IndexedColumn<T>::GetDefaultValue() const {
    return column_->GetDefaultValue();
}

template <typename T>
bool IndexedColumn<T>::HasColumnChanged() {
    return column_->HasColumnChanged();
}

template <typename T>
std::int32_t IndexedColumn<T>::GetRecordState(std::int32_t record) {
    return column_->GetRecordState(record);
}

template <typename T>
void IndexedColumn<T>::ResetColoumnChanged() {
    column_->ResetColoumnChanged();
}

} // namespace Kestrona::Data::MemoryResident
