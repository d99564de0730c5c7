#pragma once

#include "columns/column_index_impl.h"
#include "columns/index_lock.h"

#include <kestrona/indexed_column.h>

#include <algorithm>
#include <cassert>
#include <utility>

namespace Kestrona::Data::MemoryResident {

template <typename T>
class IndexedColumn<T>::Index : public ColumnIndex<T> {};

template <typename T>
IndexedColumn<T>::IndexedColumn(IColumn<T>* column) : index_(std::make_unique<Index>()) {
    assert(column != nullptr);
    column_.reset(column); // not before all the memory is there: without an index the column stays its owner's
}

template <typename T>
IndexedColumn<T>::~IndexedColumn() = default;

template <typename T>
void IndexedColumn<T>::Invalidate() {
    if (!updating_.load(std::memory_order_relaxed)) {
        valid_.store(false, std::memory_order_relaxed);
    }
}

// Who goes on to read the index takes the lock, which orders that behind the building.
template <typename T>
inline void IndexedColumn<T>::EnsureIndex() const {
    if (!valid_.load(std::memory_order_relaxed)) [[unlikely]] {
        BuildIndex();
    }
}

template <typename T>
[[gnu::noinline]] void IndexedColumn<T>::BuildIndex() const {
    const ExclusiveHold hold(mutex_);
    if (!valid_.load(std::memory_order_relaxed)) {
        index_->Build(*column_);
        valid_.store(true, std::memory_order_relaxed);
    }
}

template <typename T>
std::int32_t IndexedColumn<T>::Find(const T& value) const {
    EnsureIndex();
    {
        const SharedHold hold(mutex_);
        const std::int32_t record = index_->FirstRecord(value);
        if (record != Index::kUnknown) {
            return IfStillThere(record);
        }
    }
    return SettleAndFind(value);
}

template <typename T>
[[gnu::noinline]] std::int32_t IndexedColumn<T>::SettleAndFind(const T& value) const {
    const ExclusiveHold hold(mutex_);
    index_->Settle(value);
    return IfStillThere(index_->FirstRecord(value));
}

// A writer may have made the index stale since it was ensured.
template <typename T>
inline std::int32_t IndexedColumn<T>::IfStillThere(std::int32_t record) const {
    const bool is_there =
        valid_.load(std::memory_order_relaxed) || static_cast<std::uint32_t>(record) < column_->GetCurrentSize();
    return is_there ? record : -1;
}

template <typename T>
FindResult* IndexedColumn<T>::FindAll(const T& value) {
    EnsureIndex();
    const auto answer = [](std::optional<std::span<const std::int32_t>> records) {
        return records->empty() ? new FindResult() : new FindResult(*records);
    };
    {
        const SharedHold hold(mutex_);
        if (const auto records = index_->Records(value)) {
            return answer(records);
        }
    }
    const ExclusiveHold hold(mutex_);
    index_->Settle(value);
    return answer(index_->Records(value));
}

template <typename T>
FindResult* IndexedColumn<T>::FindAll(const T& value, FindOperator comparison) {
    if (comparison == FindOperator::Equal) {
        return FindAll(value);
    }
    const SharedHold hold(mutex_);
    return column_->FindAll(value, comparison);
}

template <typename T>
FindResult* IndexedColumn<T>::DistinctValues() {
    EnsureIndex();
    std::optional<RecordNumbers> records;
    {
        const SharedHold hold(mutex_);
        records = index_->FirstRecords();
    }
    if (!records) {
        const ExclusiveHold hold(mutex_);
        index_->SettleAll();
        records = index_->FirstRecords();
    }
    std::sort(records->begin(), records->end());
    return new FindResult(std::move(*records));
}

// Changes the column by `write` and then the index by `follow`. The column tells the index that it is written to; that
// must not make a sound index stale here. If anything throws, nobody knows what the index still says of the column.
template <typename T>
template <typename Write, typename Follow>
void IndexedColumn<T>::WriteThrough(Write write, Follow follow) {
    updating_.store(true, std::memory_order_relaxed);
    try {
        write();
        updating_.store(false, std::memory_order_relaxed);
        if (valid_.load(std::memory_order_relaxed)) {
            follow();
        }
    } catch (...) {
        updating_.store(false, std::memory_order_relaxed);
        valid_.store(false, std::memory_order_relaxed);
        throw;
    }
}

template <typename T>
void IndexedColumn<T>::SetValue(std::int32_t record, const T& value) {
    const ExclusiveHold hold(mutex_);
    const bool is_row = record >= 0 && record < kFirstScratchRecord;
    if (!is_row || !valid_.load(std::memory_order_relaxed)) {
        column_->SetValue(record, value);
        return;
    }
    const std::uint32_t size = column_->GetCurrentSize();
    const auto write = [&] {
        column_->SetValue(record, value);
    };
    if (static_cast<std::uint32_t>(record) >= size) {
        WriteThrough(write, [&] { IndexNewRecords(size, column_->GetCurrentSize(), record); });
        return;
    }
    const T before = column_->GetValue(record);
    WriteThrough(write, [&] {
        const T after = column_->GetValue(record);
        if (!(before == after)) {
            index_->Remove(before, record);
            index_->Add(after, record);
        }
    });
}

// Enters records that a write past the end brought about: `written`, and those before it, which have the default.
template <typename T>
void IndexedColumn<T>::IndexNewRecords(std::uint32_t first, std::uint32_t last, std::int32_t written) {
    if (first == last) {
        return; // the default written past the end grows nothing
    }
    assert(static_cast<std::uint32_t>(written) + 1 == last);
    index_->AddRange(column_->GetDefaultValue(), static_cast<std::int32_t>(first), written);
    index_->Add(column_->GetValue(written), written);
}

// The size goes to the column also where it says nothing new: the column may have come to it by a write past its
// announced end, and would lose it at the next erasure.
template <typename T>
void IndexedColumn<T>::Resize(std::uint32_t size) {
    constexpr std::uint32_t kFewRecords = 16;
    const ExclusiveHold hold(mutex_);
    const std::uint32_t before = column_->GetCurrentSize();
    if (size < before && before - size > kFewRecords) {
        Invalidate();
    }
    WriteThrough(
        [&] {
            for (std::uint32_t gone = size; gone < before && valid_.load(std::memory_order_relaxed); ++gone) {
                const auto record = static_cast<std::int32_t>(gone);
                index_->Remove(column_->GetValue(record), record);
            }
            column_->Resize(size);
        },
        [&] {
            index_->AddRange(column_->GetDefaultValue(), static_cast<std::int32_t>(before),
                             static_cast<std::int32_t>(column_->GetCurrentSize()));
        });
}

template <typename T>
template <typename Change>
void IndexedColumn<T>::ChangeUnindexed(Change change) {
    const ExclusiveHold hold(mutex_);
    valid_.store(false, std::memory_order_relaxed);
    change(*column_);
}

template <typename T>
void IndexedColumn<T>::Insert(std::int32_t record, const T& value) {
    ChangeUnindexed([&](IColumn<T>& column) { column.Insert(record, value); });
}

// Following each of many writes costs more than building the index anew.
template <typename T>
void IndexedColumn<T>::MoveUp(std::int32_t first, std::int32_t last) {
    constexpr std::uint32_t kShareWorthRebuilding = 4;
    const bool is_long = static_cast<std::uint32_t>(last - first) > column_->GetCurrentSize() / kShareWorthRebuilding;
    if (is_long || !valid_.load(std::memory_order_relaxed)) {
        ChangeUnindexed([&](IColumn<T>& column) { column.MoveUp(first, last); });
    } else {
        IColumn<T>::MoveUp(first, last);
    }
}

// The last record goes without moving another one. Its number may stay, with the default, until the new size is told.
template <typename T>
void IndexedColumn<T>::Erase(std::int32_t record, double key) {
    const ExclusiveHold hold(mutex_);
    const std::uint32_t size = column_->GetCurrentSize();
    if (record < 0 || static_cast<std::uint32_t>(record) + 1 != size) {
        valid_.store(false, std::memory_order_relaxed);
        column_->Erase(record, key);
        return;
    }
    const T before = column_->GetValue(record);
    WriteThrough([&] { column_->Erase(record, key); },
                 [&] {
                     index_->Remove(before, record);
                     if (column_->GetCurrentSize() == size) {
                         index_->Add(column_->GetValue(record), record);
                     }
                 });
}

template <typename T>
void IndexedColumn<T>::GroupErase(IColumn<double>* keys, std::vector<std::int32_t> records) {
    ChangeUnindexed([&](IColumn<T>& column) { column.GroupErase(keys, std::move(records)); });
}

template <typename T>
void IndexedColumn<T>::Clear(bool mark_changed) {
    ChangeUnindexed([&](IColumn<T>& column) { column.Clear(mark_changed); });
}

template <typename T>
void IndexedColumn<T>::ReadFromFile(std::FILE* file) {
    ChangeUnindexed([&](IColumn<T>& column) { column.ReadFromFile(file); });
}

template <typename T>
void IndexedColumn<T>::WriteToFile(std::FILE* file) {
    const SharedHold hold(mutex_);
    column_->WriteToFile(file);
}

template <typename T>
void IndexedColumn<T>::BeginBulkUpdate() {
    valid_.store(false, std::memory_order_relaxed);
}

template <typename T>
void IndexedColumn<T>::EndBulkUpdate() {
    EnsureIndex();
}

template <typename T>
bool IndexedColumn<T>::IsIndexedColumn() {
    return true;
}

template <typename T>
bool IndexedColumn<T>::IsIndexValid() {
    return valid_.load(std::memory_order_relaxed);
}

template <typename T>
IColumn<T>* IndexedColumn<T>::CreateIndexedColumn() {
    return this;
}

} // namespace Kestrona::Data::MemoryResident
