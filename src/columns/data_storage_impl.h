#pragma once

#include "columns/neighbours.h"
#include "columns/value_order.h"

#include <kestrona/data_storage.h>
#include <kestrona/indexed_column.h>
#include <kestrona/record_state.h>

#include <algorithm>
#include <cassert>
#include <limits>
#include <type_traits>
#include <typeinfo>
#include <utility>

// Cells, size and lifetime of DataStorage<T>.
//
// values_[i] is the value of record i; every record behind values_ has the default. values_ never reaches the scratch
// records (values_.size() <= kFirstScratchRecord), so a number below its size needs no other test.
namespace Kestrona::Data::MemoryResident {

template <typename T>
DataStorage<T>::DataStorage(IRecordStateStrategy* record_state)
    : recordState_(record_state),
      marks_(typeid(*record_state) == typeid(RecordStateStrategy) ? dynamic_cast<RecordStateStrategy*>(record_state)
                                                                  : nullptr),
      tracked_(typeid(*record_state) != typeid(NullRecordStateStrategy)) {
    assert(record_state != nullptr);
}

template <typename T>
DataStorage<T>::DataStorage(const DataStorage& other) = default;

template <typename T>
DataStorage<T>& DataStorage<T>::operator=(const DataStorage& other) = default;

template <typename T>
DataStorage<T>::~DataStorage() {
    delete recordState_;
}

template <typename T>
void DataStorage<T>::Initialise(T default_value) {
    scratchValues_.fill(default_value);
    defaultValue_ = std::move(default_value);
    logicalSize_ = 0;
}

template <typename T>
void DataStorage<T>::Free(T) {}

template <typename T>
T DataStorage<T>::GetValue(std::uint32_t record) const {
    return GetValue(static_cast<std::int32_t>(record));
}

template <typename T>
void DataStorage<T>::SetValue(std::uint32_t record, const T& value) {
    SetValue(static_cast<std::int32_t>(record), value);
}

template <typename T>
T DataStorage<T>::operator[](std::int32_t record) const {
    return GetValue(record);
}

template <typename T>
T DataStorage<T>::GetValue(std::int32_t record) const {
    return Cell(record);
}

template <typename T>
const T& DataStorage<T>::CellBehindValues(std::int32_t record) const {
    if (record >= kFirstScratchRecord && record <= kLastScratchRecord) {
        return scratchValues_[static_cast<std::size_t>(record - kFirstScratchRecord)];
    }
    return defaultValue_;
}

template <typename T>
void DataStorage<T>::ReadBlock(std::int32_t first, std::int32_t count, T* out) const {
    std::int32_t held = 0;
    if (count > 0 && IsHeld(first)) {
        const std::size_t left = values_.size() - static_cast<std::size_t>(first);
        held = static_cast<std::int32_t>(std::min(static_cast<std::size_t>(count), left));
        std::copy_n(values_.begin() + first, held, out);
    }
    for (std::int32_t i = held; i < count; ++i) {
        out[i] = Cell(first + i);
    }
}

template <typename T>
void DataStorage<T>::SetValue(std::int32_t record, const T& value) {
    Write(record, value, [this](const T& a, const T& b) { return ValuesEqual(a, b); });
}

// Nearly every write meets a record that is held and a column that nobody watches. That way is kept free of calls to
// come back from, so that it needs no stack frame: fewer stores for each write let the processor work on more of them
// at once, which decides the speed of writes to random cells of a large table.
template <typename T>
template <typename Equal>
void DataStorage<T>::Write(std::int32_t record, const T& value, Equal equal) {
    if (watched_ || !IsHeld(record)) [[unlikely]] {
        return WriteTheLongWay(record, value);
    }
    // cppcheck-suppress containerOutOfBounds ; the record is held
    T& cell = values_[static_cast<std::size_t>(record)];
    if (equal(cell, value)) {
        return;
    }
    cell = value;
    if (marks_ != nullptr) {
        return marks_->RecordStateStrategy::RecordChanged(record);
    }
    if (tracked_) {
        return recordState_->RecordChanged(record);
    }
}

// Scratch records tell nobody; a number that is no record at all is dropped; the default needs no cell.
template <typename T>
void DataStorage<T>::WriteTheLongWay(std::int32_t record, const T& value) {
    if (record >= kFirstScratchRecord && record <= kLastScratchRecord) {
        scratchValues_[static_cast<std::size_t>(record - kFirstScratchRecord)] = value;
    }
    if (record < 0 || record >= kFirstScratchRecord) {
        return;
    }
    InvalidateIndexInFront();
    if (ValuesEqual(Cell(record), value)) {
        return;
    }
    if (IsHeld(record)) {
        ReplaceHeld(record, value);
    } else {
        Extend(record, value);
    }
    recordState_->RecordChanged(record);
}

template <typename T>
void DataStorage<T>::ReplaceHeld(std::int32_t record, const T& value) {
    const Extremes after = ExtremesAfterWrite(record, value);
    values_[static_cast<std::size_t>(record)] = value;
    extremes_ = after;
}

template <typename T>
void DataStorage<T>::Extend(std::int32_t record, const T& value) {
    if (static_cast<std::uint32_t>(record) > GetCurrentSize()) {
        ForgetExtremesBeyondDefault(); // the records between are new
    }
    const Extremes after = ExtremesAfterWrite(record, value);
    const auto position = static_cast<std::size_t>(record);
    if (position == values_.size()) {
        values_.push_back(value);
    } else {
        T copy = value;
        values_.resize(position + 1, defaultValue_);
        values_.back() = std::move(copy);
    }
    extremes_ = after;
}

template <typename T>
void DataStorage<T>::MoveUp(std::int32_t first, std::int32_t last) {
    MoveValuesUp(first, last, [this](const T& a, const T& b) { return ValuesEqual(a, b); });
}

// Behind the held values a default moves over a default. The first of them may get a value, and so be held.
template <typename T>
template <typename Equal>
void DataStorage<T>::MoveValuesUp(std::int32_t first, std::int32_t last, Equal equal) {
    constexpr std::int32_t kBlock = 4096;
    assert(first >= 0 && last < kFirstScratchRecord);
    const auto held = static_cast<std::int32_t>(values_.size());
    if (last >= held && held > first) {
        SetValue(held, T(held > 0 ? values_[static_cast<std::size_t>(held) - 1] : defaultValue_));
    }
    const std::int32_t end = std::min(last, held - 1);
    if (end <= first) {
        return;
    }
    InvalidateIndexInFront();
    ResetMinMax();
    // A block is compared and moved while it is in the processor's nearest memory.
    for (std::int32_t high = end; high > first;) {
        const std::int32_t low = std::max(high - high % kBlock, first + 1);
        ReportMoves(low, high, equal);
        std::move_backward(values_.begin() + low - 1, values_.begin() + high, values_.begin() + high + 1);
        // A text that has moved is gone from its place: `first` keeps its own, and the next block compares with it.
        values_[static_cast<std::size_t>(low) - 1] = T(values_[static_cast<std::size_t>(low)]);
        high = low - 1;
    }
}

// Reports the records from `low` to `high` that get another value from the record before them.
template <typename T>
template <typename Equal>
void DataStorage<T>::ReportMoves(std::int32_t low, std::int32_t high, Equal equal) {
    if (!tracked_) {
        return;
    }
    constexpr std::int32_t kWordBits = 64;
    for (std::int32_t begin = low; begin <= high;) { // forward, as processors foresee it
        const std::int32_t word = begin - begin % kWordBits;
        const std::int32_t count = std::min(high + 1, word + kWordBits) - begin;
        const std::uint64_t changed = DifferentFromBefore(values_.data() + begin, count, equal);
        recordState_->RecordsChanged(word, changed << (begin - word));
        begin += count;
    }
}

template <typename T>
void DataStorage<T>::Insert(std::int32_t record, const T& value) {
    if (record < 0 || record >= kFirstScratchRecord || values_.size() >= std::size_t{kFirstScratchRecord}) {
        return;
    }
    InvalidateIndexInFront();
    ResetMinMax();
    const auto position = static_cast<std::size_t>(record);
    T copy = value;
    if (position > values_.size()) {
        values_.resize(position, defaultValue_);
    }
    values_.insert(values_.begin() + record, std::move(copy));
}

template <typename T>
void DataStorage<T>::Resize(std::uint32_t size) {
    const std::uint32_t records = std::min(size, static_cast<std::uint32_t>(kFirstScratchRecord));
    if (records != GetCurrentSize()) {
        InvalidateIndexInFront();
    }
    if (records > values_.size()) {
        ForgetExtremesBeyondDefault();
    } else if (records < values_.size()) {
        if (records == 0) {
            Clear(false);
            return;
        }
        ResetMinMax();
        values_.resize(records);
    }
    logicalSize_ = records;
}

template <typename T>
void DataStorage<T>::Clear(bool mark_changed) {
    InvalidateIndexInFront();
    ResetMinMax();
    std::vector<T>().swap(values_);
    logicalSize_ = 0;
    recordState_->ColumnCleared(mark_changed);
}

template <typename T>
std::uint32_t DataStorage<T>::GetCurrentSize() const {
    return std::max(logicalSize_, static_cast<std::uint32_t>(values_.size()));
}

template <typename T>
T DataStorage<T>::GetDefaultValue() const {
    return defaultValue_;
}

template <typename T>
void DataStorage<T>::StartTransaction(std::string id) {
    recordState_->StartTransaction(std::move(id));
}

template <typename T>
void DataStorage<T>::EndTransaction(std::string id) {
    recordState_->EndTransaction(std::move(id));
}

template <typename T>
void DataStorage<T>::RevertTransaction(std::string id) {
    recordState_->RevertTransaction(std::move(id));
}

template <typename T>
bool DataStorage<T>::HasColumnChanged() {
    return recordState_->HasColumnChanged();
}

template <typename T>
std::int32_t DataStorage<T>::GetRecordState(std::int32_t record) {
    return recordState_->GetRecordState(record);
}

template <typename T>
void DataStorage<T>::ResetColoumnChanged() {
    recordState_->ResetColumnChanged();
}

template <typename T>
void DataStorage<T>::InvalidateIndexInFront() {
    if (indexedColumn_ != nullptr || listens_) {
        listens_ = false;
        InvalidateIndex();
    }
}

template <typename T>
void DataStorage<T>::InvalidateIndex() {
    if (indexedColumn_ != nullptr) {
        indexedColumn_->Invalidate();
    }
}

template <typename T>
void DataStorage<T>::HearOfNextChange() {
    listens_ = true;
    watched_ = true;
}

template <typename T>
IColumn<T>* DataStorage<T>::CreateIndexedColumn() {
    if (indexedColumn_ == nullptr) {
        indexedColumn_ = new IndexedColumn<T>(this);
        watched_ = true;
    }
    return indexedColumn_;
}

} // namespace Kestrona::Data::MemoryResident
