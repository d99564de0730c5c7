#pragma once

#include <kestrona/find_result.h>
#include <kestrona/types.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

// A slow and obvious column: what it holds, what it was told its size is, and nothing remembered beside.
namespace Kestrona::Testing {

inline bool Below(double a, double b) {
    return a < b;
}

inline bool Below(const std::wstring& a, const std::wstring& b) {
    return ToUtf16(a) < ToUtf16(b);
}

// NaN counts as itself, so that a test can say that it is there.
inline bool Same(double a, double b) {
    return a == b || (a != a && b != b);
}

inline bool Same(const std::wstring& a, const std::wstring& b) {
    return a == b;
}

// The records of a result, which goes.
inline RecordNumbers Numbers(FindResult* result) {
    const std::unique_ptr<FindResult> owned(result);
    return {owned->begin(), owned->end()};
}

template <typename T>
class ColumnTwin {
public:
    // `lowest` and `highest` are where searches for the largest and the smallest value start.
    ColumnTwin(T default_value, T lowest, T highest) : default_(default_value), lowest_(lowest), highest_(highest) {
        scratch_.fill(default_value);
    }

    T Get(std::int32_t record) const {
        if (record >= kFirstScratchRecord && record <= kLastScratchRecord) {
            return scratch_[static_cast<std::size_t>(record - kFirstScratchRecord)];
        }
        return record >= 0 && record < Held() ? held_[static_cast<std::size_t>(record)] : default_;
    }

    void Set(std::int32_t record, const T& value) {
        if (record >= kFirstScratchRecord && record <= kLastScratchRecord) {
            scratch_[static_cast<std::size_t>(record - kFirstScratchRecord)] = value;
        } else if (record >= 0 && record < kFirstScratchRecord && !(Get(record) == value)) {
            held_.resize(static_cast<std::size_t>(std::max(Held(), record + 1)), default_);
            held_[static_cast<std::size_t>(record)] = value;
        }
    }

    void Insert(std::int32_t record, const T& value) {
        if (record >= 0) {
            held_.resize(static_cast<std::size_t>(std::max(Held(), record)), default_);
            held_.insert(held_.begin() + record, value);
        }
    }

    void Erase(std::int32_t record) {
        if (record >= 0 && record < Held()) {
            held_.erase(held_.begin() + record);
        }
    }

    void Resize(std::int32_t size) {
        held_.resize(static_cast<std::size_t>(std::min(Held(), size)));
        announced_ = size;
    }

    std::int32_t Size() const { return std::max(announced_, Held()); }

    std::int32_t Held() const { return static_cast<std::int32_t>(held_.size()); }

    template <typename Predicate>
    RecordNumbers Where(Predicate predicate) const {
        RecordNumbers records;
        for (std::int32_t i = 0; i < Size(); ++i) {
            if (predicate(Get(i))) {
                records.push_back(i);
            }
        }
        return records;
    }

    RecordNumbers Matches(const T& value, FindOperator comparison) const {
        return Where([&](const T& stored) {
            switch (comparison) {
            case FindOperator::LessThan:
                return Below(stored, value);
            case FindOperator::LessThanOrEqual:
                return Below(stored, value) || stored == value;
            case FindOperator::GreaterThan:
                return Below(value, stored);
            case FindOperator::GreaterThanOrEqual:
                return Below(value, stored) || stored == value;
            default:
                return stored == value;
            }
        });
    }

    // One record for each value; each NaN is a value of its own.
    RecordNumbers Distinct() const {
        RecordNumbers records;
        for (std::int32_t i = 0; i < Size(); ++i) {
            const RecordNumbers same = Matches(Get(i), FindOperator::Equal);
            if (same.empty() || same.front() == i) {
                records.push_back(i);
            }
        }
        return records;
    }

    T Max(bool exclude_default) const {
        return Extreme(exclude_default, lowest_, [](const T& a, const T& b) { return Below(b, a); });
    }

    T Min(bool exclude_default) const {
        return Extreme(exclude_default, highest_, [](const T& a, const T& b) { return Below(a, b); });
    }

private:
    // A value that does not go beyond the start is never found, and without any the default stands in.
    template <typename Beyond>
    T Extreme(bool exclude_default, const T& start, Beyond beyond) const {
        T best = start;
        bool found = false;
        for (const T& value : held_) {
            if (beyond(value, best) && !(exclude_default && value == default_)) {
                best = value;
                found = true;
            }
        }
        if (exclude_default) {
            return best;
        }
        return !found || (Held() < Size() && beyond(default_, best)) ? default_ : best;
    }

    T default_;
    T lowest_;
    T highest_;
    std::vector<T> held_;
    std::array<T, kScratchRecords> scratch_;
    std::int32_t announced_ = 0;
};

} // namespace Kestrona::Testing
