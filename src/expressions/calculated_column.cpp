// Implements: what the columns of calculated fields have in common.
#include "columns/value_order.h"

#include <kestrona/evaluate_columns.h>

#include <algorithm>
#include <array>
#include <type_traits>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr double kNoExtreme = -9e+99;

template <typename T>
T NoExtreme() {
    if constexpr (std::is_same_v<T, double>) {
        return kNoExtreme;
    } else {
        return T();
    }
}

// Reads all records in blocks and calls `visit(record, value)` with each until it returns false.
template <typename T, typename Visit>
void ForEachValue(const IColumn<T>& column, std::int32_t size, Visit visit) {
    constexpr std::int32_t kBlock = std::is_same_v<T, double> ? 512 : 16;
    std::array<T, static_cast<std::size_t>(kBlock)> values;
    for (std::int32_t first = 0; first < size; first += kBlock) {
        const std::int32_t count = std::min(kBlock, size - first);
        column.ReadBlock(first, count, values.data());
        for (std::int32_t i = 0; i < count; ++i) {
            if (!visit(first + i, values[static_cast<std::size_t>(i)])) {
                return;
            }
        }
    }
}

} // namespace

template <typename T>
void CalculatedColumn<T>::StartTransaction(std::string) {}

template <typename T>
void CalculatedColumn<T>::EndTransaction(std::string) {}

template <typename T>
void CalculatedColumn<T>::RevertTransaction(std::string) {}

template <typename T>
void CalculatedColumn<T>::Insert(std::int32_t, const T&) {}

template <typename T>
void CalculatedColumn<T>::Erase(std::int32_t, double) {}

template <typename T>
T CalculatedColumn<T>::operator[](std::int32_t record) const {
    return this->GetValue(record);
}

template <typename T>
void CalculatedColumn<T>::SetValue(std::int32_t, const T&) {}

template <typename T>
std::int32_t CalculatedColumn<T>::Find(const T& value) const {
    std::int32_t found = -1;
    ForEachValue(*this, store_->GetCurrentDbSize(format_), [&](std::int32_t record, const T& stored) {
        if (stored == value) {
            found = record;
        }
        return found == -1;
    });
    return found;
}

template <typename T>
template <typename Predicate>
FindResult* CalculatedColumn<T>::FindRecords(Predicate predicate) const {
    RecordNumbers records;
    ForEachValue(*this, store_->GetCurrentDbSize(format_), [&](std::int32_t record, const T& stored) {
        if (predicate(stored)) {
            records.push_back(record);
        }
        return true;
    });
    return new FindResult(std::move(records));
}

template <typename T>
FindResult* CalculatedColumn<T>::FindAll(const T& value, FindOperator comparison) {
    switch (comparison) {
    case FindOperator::Equal:
        return FindAll(value);
    case FindOperator::LessThan:
        return FindRecords([&](const T& stored) { return IsBelow(stored, value); });
    case FindOperator::LessThanOrEqual:
        return FindRecords([&](const T& stored) { return IsBelowOrEqual(stored, value); });
    case FindOperator::GreaterThan:
        return FindRecords([&](const T& stored) { return IsBelow(value, stored); });
    case FindOperator::GreaterThanOrEqual:
        return FindRecords([&](const T& stored) { return IsBelowOrEqual(value, stored); });
    }
    return new FindResult();
}

template <typename T>
FindResult* CalculatedColumn<T>::FindAll(const T& value) {
    return FindRecords([&](const T& stored) { return stored == value; });
}

template <typename T>
void CalculatedColumn<T>::WriteToFile(std::FILE*) {}

template <typename T>
void CalculatedColumn<T>::ReadFromFile(std::FILE*) {}

template <typename T>
void CalculatedColumn<T>::Clear(bool) {}

template <typename T>
std::uint32_t CalculatedColumn<T>::GetCurrentSize() const {
    return 0;
}

template <typename T>
T CalculatedColumn<T>::FindMaxValue(bool) {
    return NoExtreme<T>();
}

template <typename T>
T CalculatedColumn<T>::FindMaxValue() {
    return NoExtreme<T>();
}

template <typename T>
T CalculatedColumn<T>::FindMinValue(bool) {
    return NoExtreme<T>();
}

template <typename T>
T CalculatedColumn<T>::FindMinValue() {
    return NoExtreme<T>();
}

template <typename T>
void CalculatedColumn<T>::Resize(std::uint32_t) {}

template <typename T>
bool CalculatedColumn<T>::HasColumnChanged() {
    return false;
}

template <typename T>
std::int32_t CalculatedColumn<T>::GetRecordState(std::int32_t) {
    return 0;
}

template <typename T>
void CalculatedColumn<T>::ResetColoumnChanged() {}

template <typename T>
IColumn<T>* CalculatedColumn<T>::CreateIndexedColumn() {
    return this;
}

template <typename T>
bool CalculatedColumn<T>::CanWrite() {
    return false;
}

template class CalculatedColumn<double>;
template class CalculatedColumn<std::wstring>;

} // namespace Kestrona::Data::MemoryResident
