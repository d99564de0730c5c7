#pragma once

#include "columns/data_storage_impl.h"

// Removal of records from DataStorage<T>.
namespace Kestrona::Data::MemoryResident {

// Lengths of the runs of consecutive descending numbers.
inline std::vector<std::size_t> DescendingRuns(const std::vector<std::int32_t>& records) {
    std::vector<std::size_t> runs;
    for (std::size_t i = 0; i < records.size(); ++i) {
        const bool continues = i > 0 && records[i - 1] >= 0 && records[i] == records[i - 1] - 1;
        if (continues) {
            ++runs.back();
        } else {
            runs.push_back(1);
        }
    }
    return runs;
}

template <typename T>
void DataStorage<T>::Erase(std::int32_t record, double key) {
    InvalidateIndexInFront();
    ResetMinMax();
    if (IsHeld(record)) {
        values_.erase(values_.begin() + record);
    }
    recordState_->RecordErased(key);
}

template <typename T>
void DataStorage<T>::GroupErase(IColumn<double>* keys, std::vector<std::int32_t> records) {
    assert(keys != nullptr);
    assert(std::is_sorted(records.rbegin(), records.rend()));
    InvalidateIndexInFront();
    ResetMinMax();
    ReportErasedRuns(*keys, records);
    RemoveHeld(records);
}

// Each run reports as many records as it has, but from the front of the whole list: the records of the first run are
// told again, those of later runs are not. Consumers of the erased keys rely on this order and number. A record counts
// as long as it is physically held, after the runs before have gone.
template <typename T>
void DataStorage<T>::ReportErasedRuns(IColumn<double>& keys, const std::vector<std::int32_t>& records) {
    const std::vector<std::size_t> runs = DescendingRuns(records);
    if (runs.empty()) {
        return;
    }
    // `keys` may be this column, so the keys are read while every record still stands.
    std::vector<double> front(*std::max_element(runs.begin(), runs.end()));
    std::transform(records.begin(), records.begin() + static_cast<std::ptrdiff_t>(front.size()), front.begin(),
                   [&keys](std::int32_t record) { return keys.GetValue(record); });
    std::size_t held = values_.size();
    auto run_begin = records.begin();
    for (const std::size_t length : runs) {
        for (std::size_t j = 0; j < length; ++j) {
            if (static_cast<std::uint32_t>(records[j]) < held) {
                recordState_->RecordErased(front[j]);
            }
        }
        const auto run_end = run_begin + static_cast<std::ptrdiff_t>(length);
        held -= static_cast<std::size_t>(std::count_if(run_begin, run_end, [this](auto r) { return IsHeld(r); }));
        run_begin = run_end;
    }
}

// One pass over the column, stretch by stretch of what stays. A number given twice removes one record.
template <typename T>
void DataStorage<T>::RemoveHeld(const std::vector<std::int32_t>& records) {
    const auto first = std::find_if(records.rbegin(), records.rend(), [this](auto r) { return IsHeld(r); });
    if (first == records.rend()) {
        return;
    }
    auto kept = values_.begin() + *first;
    for (auto next = first; next != records.rend() && IsHeld(*next);) { // ascending
        const std::int32_t gone = *next;
        next = std::find_if(next, records.rend(), [gone](auto r) { return r != gone; });
        const bool has_end = next != records.rend() && IsHeld(*next);
        kept = std::move(values_.begin() + gone + 1, has_end ? values_.begin() + *next : values_.end(), kept);
    }
    values_.erase(kept, values_.end());
}

} // namespace Kestrona::Data::MemoryResident
