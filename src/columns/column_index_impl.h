#pragma once

#include "columns/column_index.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <functional>
#include <type_traits>
#include <utility>

namespace Kestrona::Data::MemoryResident {

// Spreads the bits of a number over the whole word: whole numbers as doubles differ in a few high bits only.
inline std::size_t MixBits(std::uint64_t bits) {
    constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15; // 2^64 divided by the golden ratio
    const auto product = static_cast<unsigned __int128>(bits) * kOdd;
    return static_cast<std::size_t>(product) ^ static_cast<std::size_t>(product >> 64);
}

// Positive and negative zero are one value and hash alike.
template <typename T>
std::size_t ColumnIndex<T>::Hash::operator()(const T& value) const {
    if constexpr (std::is_same_v<T, double>) {
        return MixBits(std::bit_cast<std::uint64_t>(value + 0.0));
    } else if constexpr (std::is_integral_v<T>) {
        return MixBits(static_cast<std::uint64_t>(value));
    } else {
        return std::hash<T>{}(value);
    }
}

template <typename T>
bool ColumnIndex<T>::EqualsItself(const T& value) {
    if constexpr (std::is_floating_point_v<T>) {
        return value == value; // cppcheck-suppress duplicateExpression ; not where it is no number
    } else {
        return true;
    }
}

template <typename T>
void ColumnIndex<T>::Clear() {
    map_.clear();
    sets_.clear();
    freeSets_.clear();
    rows_.clear();
    unequal_ = RecordSet();
}

// Two passes: find which value has several records and how many, then lay the records of each such value side by side.
// They come out ascending, and no value costs an allocation of its own.
template <typename T>
void ColumnIndex<T>::Build(const IColumn<T>& column) {
    if (map_.size() > column.GetCurrentSize()) {
        map_ = Map(); // too much room to keep
    }
    Clear();
    try {
        MakeSets(Group(column));
    } catch (...) {
        Clear(); // the entries name sets that were not made
        throw;
    }
}

template <typename T>
typename ColumnIndex<T>::Groups ColumnIndex<T>::Group(const IColumn<T>& column) {
    Groups groups;
    std::vector<T> block(kBlock);
    for (std::int32_t first = 0;; first += kBlock) {
        const std::int32_t left = static_cast<std::int32_t>(column.GetCurrentSize()) - first;
        if (left <= 0) {
            return groups;
        }
        const std::int32_t count = std::min(left, kBlock);
        column.ReadBlock(first, count, block.data());
        GroupBlock(groups, std::span(block).first(static_cast<std::size_t>(count)), first);
    }
}

template <typename T>
void ColumnIndex<T>::GroupBlock(Groups& groups, std::span<const T> values, std::int32_t record) {
    groups.ofRecord.resize(groups.ofRecord.size() + values.size(), kNone);
    std::int32_t* of_record = groups.ofRecord.data() + record;
    for (const T& value : values) {
        if (!EqualsItself(value)) [[unlikely]] {
            unequal_.Add(record);
        } else if (const auto [place, is_new] = map_.try_emplace(value, Entry{record}); !is_new) {
            *of_record = groups.Enter(place->second);
        }
        ++of_record;
        ++record;
    }
}

template <typename T>
inline std::int32_t ColumnIndex<T>::Groups::Enter(Entry& entry) {
    if (!entry.HasSet()) {
        entry.NameSet(sizes.size());
        sizes.push_back(1);
        firsts.push_back(entry.First());
    }
    ++sizes[entry.Set()];
    return static_cast<std::int32_t>(entry.Set());
}

template <typename T>
void ColumnIndex<T>::MakeSets(const Groups& groups) {
    const std::size_t count = groups.sizes.size();
    if (count == 0) {
        return;
    }
    std::vector<std::size_t> next(count);
    std::size_t rows = 0;
    for (std::size_t set = 0; set < count; ++set) {
        next[set] = rows;
        rows += static_cast<std::size_t>(groups.sizes[set]);
    }
    rows_.resize(rows);
    sets_.reserve(count);
    for (std::size_t set = 0; set < count; ++set) {
        const auto size = static_cast<std::size_t>(groups.sizes[set]);
        sets_.emplace_back(std::span(rows_).subspan(next[set], size));
        rows_[next[set]++] = groups.firsts[set];
    }
    for (std::size_t record = 0; record < groups.ofRecord.size(); ++record) {
        if (const std::int32_t set = groups.ofRecord[record]; set != kNone) {
            rows_[next[static_cast<std::size_t>(set)]++] = static_cast<std::int32_t>(record);
        }
    }
}

// The set of an entry, made of its records where there is none yet.
template <typename T>
RecordSet& ColumnIndex<T>::NeedSet(Entry& entry) {
    if (!entry.HasSet()) {
        RecordSet set;
        for (const std::int32_t record : entry.Records()) {
            set.Add(record);
        }
        if (freeSets_.empty()) {
            sets_.push_back(std::move(set));
            entry.NameSet(sets_.size() - 1);
        } else {
            sets_[freeSets_.back()] = std::move(set);
            entry.NameSet(freeSets_.back());
            freeSets_.pop_back();
        }
    }
    return sets_[entry.Set()];
}

template <typename T>
void ColumnIndex<T>::Add(const T& value, std::int32_t record) {
    if (!EqualsItself(value)) {
        unequal_.Add(record);
        return;
    }
    const auto [place, is_new] = map_.try_emplace(value, Entry{record});
    if (!is_new) {
        Entry& entry = place->second;
        if (entry.HasOneRecord()) {
            entry.AddSecond(record);
        } else {
            NeedSet(entry).Add(record);
            entry.SetFirst(std::min(entry.First(), record)); // kUnknown is below every record
        }
    }
}

template <typename T>
void ColumnIndex<T>::AddRange(const T& value, std::int32_t first, std::int32_t last) {
    if (first >= last) {
        return;
    }
    if (!EqualsItself(value)) {
        unequal_.AddRange(first, last);
        return;
    }
    const auto [place, is_new] = map_.try_emplace(value, Entry{first});
    const std::int32_t next = is_new ? first + 1 : first;
    if (next + 1 == last && place->second.HasOneRecord()) {
        place->second.AddSecond(next);
    } else if (next < last) {
        NeedSet(place->second).AddRange(next, last);
    }
}

template <typename T>
void ColumnIndex<T>::Remove(const T& value, std::int32_t record) {
    if (!EqualsItself(value)) {
        unequal_.Remove(record);
        return;
    }
    const auto place = map_.find(value);
    assert(place != map_.end());
    Entry& entry = place->second;
    if (entry.HasSet()) {
        RemoveFromSet(place, record);
    } else if (entry.HasOneRecord()) {
        map_.erase(place);
    } else {
        entry.RemoveOneOfTwo(record);
    }
}

template <typename T>
void ColumnIndex<T>::RemoveFromSet(typename Map::iterator place, std::int32_t record) {
    Entry& entry = place->second;
    RecordSet& set = sets_[entry.Set()];
    const std::size_t size = set.Size();
    if (size == 1 || (size == 2 && set.IsSettled())) {
        freeSets_.push_back(entry.Set());
        if (size == 1) {
            map_.erase(place);
        } else {
            const auto rows = set.Rows();
            entry = Entry(rows.front() == record ? rows.back() : rows.front());
        }
        set = RecordSet();
        return;
    }
    set.Remove(record);
    if (entry.First() == record) {
        entry.SetFirst(set.IsSettled() ? set.Rows().front() : kUnknown);
    }
}

template <typename T>
std::optional<std::span<const std::int32_t>> ColumnIndex<T>::Records(const T& value) const {
    const auto place = map_.find(value);
    if (place == map_.end()) {
        return std::span<const std::int32_t>();
    }
    const Entry& entry = place->second;
    if (!entry.HasSet()) {
        return entry.Records();
    }
    const RecordSet& set = sets_[entry.Set()];
    return set.IsSettled() ? std::optional(set.Rows()) : std::nullopt;
}

template <typename T>
void ColumnIndex<T>::Settle(const T& value) {
    const auto place = map_.find(value);
    if (place != map_.end()) {
        SettleEntry(place->second);
    }
}

template <typename T>
void ColumnIndex<T>::SettleEntry(Entry& entry) {
    if (entry.HasSet()) {
        RecordSet& set = sets_[entry.Set()];
        set.Settle();
        entry.SetFirst(set.Rows().front());
    }
}

template <typename T>
std::optional<RecordNumbers> ColumnIndex<T>::FirstRecords() const {
    if (!unequal_.IsSettled()) {
        return std::nullopt;
    }
    RecordNumbers records(unequal_.Rows().begin(), unequal_.Rows().end());
    records.reserve(records.size() + map_.size());
    for (const auto& [value, entry] : map_) {
        if (entry.First() == kUnknown) {
            return std::nullopt;
        }
        records.push_back(entry.First());
    }
    return records;
}

template <typename T>
void ColumnIndex<T>::SettleAll() {
    unequal_.Settle();
    for (auto& [value, entry] : map_) {
        SettleEntry(entry);
    }
}

} // namespace Kestrona::Data::MemoryResident
