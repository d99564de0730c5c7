#include "columns/data_storage_impl.h"
#include "columns/data_storage_search_impl.h"
#include "platform/numbers.h"

#include <kestrona/concrete_columns.h>

#include <utility>

namespace Kestrona::Data::MemoryResident {

template <typename T>
ValueManagedDataStorage<T>::ValueManagedDataStorage(T default_value, IRecordStateStrategy* record_state)
    : DataStorage<T>(record_state) {
    this->Initialise(default_value);
}

// The two hottest operations of the library stand here once more, where the comparison is known and a call by way of
// IColumn<T> arrives without an adjustment of the pointer.
template <typename T>
T ValueManagedDataStorage<T>::GetValue(std::int32_t record) const {
    return this->Cell(record);
}

template <typename T>
void ValueManagedDataStorage<T>::SetValue(std::int32_t record, const T& value) {
    this->Write(record, value, [](const T& a, const T& b) { return DataStorage<T>::AreEqual(a, b); });
}

template <typename T>
void ValueManagedDataStorage<T>::MoveUp(std::int32_t first, std::int32_t last) {
    this->MoveValuesUp(first, last, [](const T& a, const T& b) { return DataStorage<T>::AreEqual(a, b); });
}

template <typename T>
bool ValueManagedDataStorage<T>::ValuesEqual(const T& a, const T& b) {
    return this->AreEqual(a, b);
}

template class ValueManagedDataStorage<double>;
template class ValueManagedDataStorage<char>;
template class ValueManagedDataStorage<std::int32_t>;

DoubleColumn::DoubleColumn(IRecordStateStrategy* record_state, double default_value)
    : DataStorage<double>(record_state),
      ValueManagedDataStorage<double>(default_value, record_state) {}

DoubleColumn::~DoubleColumn() = default;

OverrideDoubleColumn::OverrideDoubleColumn(IRecordStateStrategy* record_state, IColumn<double>* target,
                                           double default_value)
    : DataStorage<double>(record_state),
      ValueManagedDataStorage<double>(default_value, record_state),
      DoubleColumn(record_state, default_value),
      target_(target) {}

void OverrideDoubleColumn::SetValue(std::int32_t record, const double& value) {
    constexpr double kNoOverride = -1.0;
    DoubleColumn::SetValue(record, value);
    if (value != kNoOverride && target_ != nullptr) {
        target_->SetValue(record, value);
    }
}

StringColumn::StringColumn(std::wstring default_value, IRecordStateStrategy* record_state)
    : DataStorage<std::wstring>(record_state) {
    Initialise(std::move(default_value));
}

bool StringColumn::ValuesEqual(const std::wstring& a, const std::wstring& b) {
    return AreEqual(a, b);
}

std::wstring StringColumn::GetMinTypeValue() {
    return {};
}

std::wstring StringColumn::GetMaxTypeValue() {
    return {};
}

IntegerColumn::IntegerColumn(std::int32_t default_value, IRecordStateStrategy* record_state)
    : DataStorageWrapper<std::int32_t>(default_value, record_state) {}

std::int32_t IntegerColumn::ToStoredValue(double value) const {
    return Platform::TruncateToInt32(value);
}

BoolColumn::BoolColumn(char default_value, IRecordStateStrategy* record_state)
    : DataStorageWrapper<char>(default_value, record_state) {}

char BoolColumn::ToStoredValue(double value) const {
    return value == 0.0 ? 0 : 1;
}

} // namespace Kestrona::Data::MemoryResident
