#pragma once

#include <kestrona/export.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

/// \file
/// Results of searches that can give many records.

namespace Kestrona {

/// Comparison of a search; the stored value stands on the left. Any other number acts as `Equal`.
enum class FindOperator : std::int32_t {
    Equal = 1,
    LessThan = 4,
    LessThanOrEqual = 8,
    GreaterThan = 0x10,
    GreaterThanOrEqual = 0x20,
};

/// Record numbers in ascending order.
using RecordNumbers = std::vector<std::int32_t>;

/// The records that a search found, in ascending order.
///
/// A result either owns its numbers or is a view into the index of the column that was searched. A view is valid until
/// the next write to that column or to the schema; copy the numbers if they must outlive it. The caller of a search
/// owns the result object and deletes it in both cases.
class KS_API FindResult {
public:
    /// Makes an owned result.
    explicit FindResult(RecordNumbers owned = {}) : owned_(std::move(owned)), view_(owned_), owns_(true) {}

    /// Makes a view on numbers that somebody else keeps.
    explicit FindResult(std::span<const std::int32_t> view) : view_(view), owns_(false) {}

    FindResult(const FindResult&) = delete;
    FindResult& operator=(const FindResult&) = delete;

    [[nodiscard]] std::span<const std::int32_t> Records() const { return view_; }

    [[nodiscard]] bool OwnsRecords() const { return owns_; }

    [[nodiscard]] std::size_t Size() const { return view_.size(); }

    [[nodiscard]] bool IsEmpty() const { return view_.empty(); }

    [[nodiscard]] auto begin() const { return view_.begin(); }

    [[nodiscard]] auto end() const { return view_.end(); }

private:
    RecordNumbers owned_;
    std::span<const std::int32_t> view_;
    bool owns_;
};

/// A field and the comparison to make on it.
struct FieldMatchCriteria {
    std::int32_t field = -1;
    FindOperator comparison = FindOperator::Equal;
};

} // namespace Kestrona
