#pragma once

#include "columns/data_storage_impl.h"

#include <memory>
#include <numeric>
#include <stdexcept>
#include <tuple>
#include <utility>
#include <vector>

// Searches of DataStorage<T>, and its extreme values with their cached positions.
namespace Kestrona::Data::MemoryResident {

inline constexpr const char* kMaxOfEmptyColumn = "Cannot find max value when column is empty.";
inline constexpr const char* kMinOfEmptyColumn = "Cannot find min value when column is empty.";

template <typename T>
bool DataStorage<T>::IsLessThan(const T& a, const T& b) {
    return IsBelow(a, b);
}

template <typename T>
bool DataStorage<T>::IsLessThanOrEqual(const T& a, const T& b) {
    return IsBelowOrEqual(a, b);
}

template <typename T>
bool DataStorage<T>::IsGreaterThan(const T& a, const T& b) {
    return IsBelow(b, a);
}

template <typename T>
bool DataStorage<T>::IsGreaterThanOrEqual(const T& a, const T& b) {
    return IsBelowOrEqual(b, a);
}

template <typename T>
std::int32_t DataStorage<T>::Find(const T& value) const {
    const auto hit = std::find(values_.begin(), values_.end(), value);
    if (hit != values_.end()) {
        return static_cast<std::int32_t>(hit - values_.begin());
    }
    const bool has_tail = values_.size() < GetCurrentSize();
    return has_tail && AreEqual(defaultValue_, value) ? static_cast<std::int32_t>(values_.size()) : -1;
}

template <typename T>
FindResult* DataStorage<T>::FindAll(const T& value, FindOperator comparison) {
    switch (comparison) {
    case FindOperator::LessThan:
        return FindAllImpl(value, [](const T& a, const T& b) { return IsLessThan(a, b); });
    case FindOperator::LessThanOrEqual:
        return FindAllImpl(value, [](const T& a, const T& b) { return IsLessThanOrEqual(a, b); });
    case FindOperator::GreaterThan:
        return FindAllImpl(value, [](const T& a, const T& b) { return IsGreaterThan(a, b); });
    case FindOperator::GreaterThanOrEqual:
        return FindAllImpl(value, [](const T& a, const T& b) { return IsGreaterThanOrEqual(a, b); });
    case FindOperator::Equal:
        break;
    }
    return FindAll(value);
}

template <typename T>
FindResult* DataStorage<T>::FindAll(const T& value) {
    return FindAllImpl(value, [](const T& a, const T& b) { return AreEqual(a, b); });
}

template <typename T>
template <typename Predicate>
FindResult* DataStorage<T>::FindAllImpl(const T& value, Predicate predicate) {
    RecordNumbers found;
    const auto held = static_cast<std::int32_t>(values_.size());
    for (std::int32_t i = 0; i < held; ++i) {
        if (predicate(values_[static_cast<std::size_t>(i)], value)) {
            found.push_back(i);
        }
    }
    const auto size = static_cast<std::int32_t>(GetCurrentSize());
    if (held < size && predicate(defaultValue_, value)) {
        const std::size_t hits = found.size();
        found.resize(hits + static_cast<std::size_t>(size - held));
        std::iota(found.begin() + static_cast<std::ptrdiff_t>(hits), found.end(), held);
    }
    return new FindResult(std::move(found));
}

template <typename T>
T DataStorage<T>::GetMinTypeValue() {
    if constexpr (std::is_arithmetic_v<T>) {
        return std::numeric_limits<T>::lowest();
    } else {
        return T();
    }
}

template <typename T>
T DataStorage<T>::GetMaxTypeValue() {
    if constexpr (std::is_arithmetic_v<T>) {
        return std::numeric_limits<T>::max();
    } else {
        return T();
    }
}

template <typename T>
void DataStorage<T>::RequireRecords(const char* message) const {
    if (GetCurrentSize() == 0) {
        throw std::range_error(message);
    }
}

template <typename T>
T DataStorage<T>::FindMaxValue() {
    return FindMaxValue(false);
}

template <typename T>
T DataStorage<T>::FindMinValue() {
    return FindMinValue(false);
}

// A position that is still unknown after the scan says that the answer is the default, or nothing beside the default.
template <typename T>
T DataStorage<T>::FindMaxValue(bool exclude_default) {
    RequireRecords(kMaxOfEmptyColumn);
    const auto wanted = exclude_default ? &Extremes::maxNonDefault : &Extremes::max;
    if (extremes_.*wanted < 0) {
        ScanForMax();
    }
    const std::int32_t position = extremes_.*wanted;
    if (position < 0) {
        return exclude_default ? GetMinTypeValue() : defaultValue_;
    }
    return values_[static_cast<std::size_t>(position)];
}

template <typename T>
T DataStorage<T>::FindMinValue(bool exclude_default) {
    RequireRecords(kMinOfEmptyColumn);
    const auto wanted = exclude_default ? &Extremes::minNonDefault : &Extremes::min;
    if (extremes_.*wanted < 0) {
        ScanForMin();
    }
    const std::int32_t position = extremes_.*wanted;
    if (position < 0) {
        return exclude_default ? GetMaxTypeValue() : defaultValue_;
    }
    return values_[static_cast<std::size_t>(position)];
}

// Finds the first of the values that go beyond `start` farthest; -1 when none does.
template <typename T, typename Beyond, typename Counts>
std::int32_t FirstExtreme(const std::vector<T>& values, const T& start, Beyond beyond, Counts counts) {
    std::int32_t position = -1;
    const T* best = &start;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (beyond(values[i], *best) && counts(values[i])) {
            best = &values[i];
            position = static_cast<std::int32_t>(i);
        }
    }
    return position;
}

// The position among all values, and that among those that are not the default.
template <typename T, typename Beyond>
std::pair<std::int32_t, std::int32_t> FirstExtremes(const std::vector<T>& values, const T& start,
                                                    const T& default_value, Beyond beyond) {
    return {FirstExtreme(values, start, beyond, [](const T&) { return true; }),
            FirstExtreme(values, start, beyond, [&](const T& value) { return !(value == default_value); })};
}

template <typename T>
void DataStorage<T>::ScanForMax() {
    watched_ = true;
    std::tie(extremes_.max, extremes_.maxNonDefault) =
        FirstExtremes(values_, GetMinTypeValue(), defaultValue_, [](const T& a, const T& b) { return IsBelow(b, a); });
    if (values_.size() < GetCurrentSize()) {
        ForgetExtremesBeyondDefault();
    }
}

template <typename T>
void DataStorage<T>::ScanForMin() {
    watched_ = true;
    std::tie(extremes_.min, extremes_.minNonDefault) =
        FirstExtremes(values_, GetMaxTypeValue(), defaultValue_, [](const T& a, const T& b) { return IsBelow(a, b); });
    if (values_.size() < GetCurrentSize()) {
        ForgetExtremesBeyondDefault();
    }
}

template <typename T>
void DataStorage<T>::ResetMinMax() {
    extremes_ = Extremes{};
    watched_ = indexedColumn_ != nullptr || listens_;
}

// To be called where records at the default join the others.
template <typename T>
void DataStorage<T>::ForgetExtremesBeyondDefault() {
    if (extremes_.max >= 0 && IsLessThan(values_[static_cast<std::size_t>(extremes_.max)], defaultValue_)) {
        extremes_.max = -1;
    }
    if (extremes_.min >= 0 && IsGreaterThan(values_[static_cast<std::size_t>(extremes_.min)], defaultValue_)) {
        extremes_.min = -1;
    }
}

// Tells whether a record that holds an extreme value would give it up. A NaN gives up every extreme, the default those
// among the values that are not the default.
template <typename T>
bool DataStorage<T>::LosesExtreme(std::int32_t record, const T& value) const {
    const auto held_by = [record](std::int32_t position) {
        return position == record;
    };
    if (!held_by(extremes_.max) && !held_by(extremes_.min) && !held_by(extremes_.maxNonDefault) &&
        !held_by(extremes_.minNonDefault)) {
        return false;
    }
    const T& before = values_[static_cast<std::size_t>(record)];
    if ((held_by(extremes_.max) || held_by(extremes_.maxNonDefault)) && !IsGreaterThanOrEqual(value, before)) {
        return true;
    }
    if ((held_by(extremes_.min) || held_by(extremes_.minNonDefault)) && !IsLessThanOrEqual(value, before)) {
        return true;
    }
    return (held_by(extremes_.maxNonDefault) || held_by(extremes_.minNonDefault)) && AreEqual(value, defaultValue_);
}

// The positions as they are once `value` stands at `record`. Reads the values as they are before.
template <typename T>
typename DataStorage<T>::Extremes DataStorage<T>::ExtremesAfterWrite(std::int32_t record, const T& value) const {
    if (LosesExtreme(record, value)) {
        return Extremes{};
    }
    Extremes after = extremes_;
    const bool is_default = AreEqual(value, defaultValue_);
    const auto move_if = [&](std::int32_t& position, bool (*beyond)(const T&, const T&)) {
        if (position >= 0 && beyond(value, values_[static_cast<std::size_t>(position)])) {
            position = record;
        }
    };
    move_if(after.max, &IsGreaterThan);
    move_if(after.min, &IsLessThan);
    if (!is_default) {
        move_if(after.maxNonDefault, &IsGreaterThan);
        move_if(after.minNonDefault, &IsLessThan);
    }
    return after;
}

} // namespace Kestrona::Data::MemoryResident
