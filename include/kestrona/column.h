#pragma once

#include <kestrona/find_result.h>
#include <kestrona/types.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

/// \file
/// The abstract column that every field stores its values in.

namespace Kestrona::Data::MemoryResident {

/// A column of values, one for each record of a format.
///
/// A record number is a position. The numbers 999900000 to 999900003 address four scratch cells beside the records.
/// Reading any other number that no record has gives the default value.
///
/// Threads: one at a time, unless an index stands in front (`IndexedColumn<T>`), which locks.
///
/// \tparam T `double`, `std::wstring`, `char` or `std::int32_t`.
template <typename T>
class KS_API IColumn {
public:
    virtual void StartTransaction(std::string id) = 0;
    virtual void EndTransaction(std::string id) = 0;
    virtual void RevertTransaction(std::string id) = 0;
    /// Inserts a value before `record`. Marks nothing as changed; follow with `Resize`.
    virtual void Insert(std::int32_t record, const T& value) = 0;

    /// Moves the values of the records `first` to `last` - 1 one record up; what stood in `last` goes, `first` keeps
    /// its value. Counts as that many writes.
    virtual void MoveUp(std::int32_t first, std::int32_t last) {
        for (std::int32_t record = last; record > first; --record) {
            SetValue(record, GetValue(record - 1));
        }
    }

    /// Removes the record and reports `key`, the key value that it had. Follow with `Resize`.
    virtual void Erase(std::int32_t record, double key) = 0;
    virtual T operator[](std::int32_t record) const = 0;
    /// Stores a value. A write that changes nothing is not reported as a change.
    virtual void SetValue(std::int32_t record, const T& value) = 0;
    virtual T GetValue(std::int32_t record) const = 0;
    /// Returns the lowest record with exactly this value, -1 when there is none.
    virtual std::int32_t Find(const T& value) const = 0;
    /// Returns the records whose value compares so with `value`. The caller deletes the result.
    virtual FindResult* FindAll(const T& value, FindOperator comparison) = 0;
    /// Returns the records with exactly this value. The caller deletes the result.
    virtual FindResult* FindAll(const T& value) = 0;

    /// Returns one record for each distinct value; empty where a column has no index. The caller deletes the result.
    virtual FindResult* DistinctValues() { return new FindResult(); }

    /// Appends the physically held values to an open file. A failed write shows in `std::ferror(file)`.
    virtual void WriteToFile(std::FILE* file) = 0;
    /// Reads the values that stand next in an open file. Where the file ends too early, the values up to there are
    /// taken and `std::feof(file)` tells; nothing is allocated for values that the file does not hold.
    virtual void ReadFromFile(std::FILE* file) = 0;
    /// Drops all values and their memory. The scratch cells stay.
    virtual void Clear(bool mark_changed) = 0;
    /// Returns the number of records: the announced one, or the physically held one when that is larger.
    virtual std::uint32_t GetCurrentSize() const = 0;
    /// Largest value, without the records at the default when `exclude_default` is true.
    /// Throws `std::range_error` on an empty column.
    virtual T FindMaxValue(bool exclude_default) = 0;
    virtual T FindMaxValue() = 0;
    /// Smallest value; see `FindMaxValue`.
    virtual T FindMinValue(bool exclude_default) = 0;
    virtual T FindMinValue() = 0;
    /// Announces the number of records, at most `kFirstScratchRecord`. Growing allocates nothing; shrinking cuts the
    /// values.
    virtual void Resize(std::uint32_t size) = 0;
    virtual T GetDefaultValue() const = 0;
    virtual ~IColumn() = default;

    virtual bool IsIndexedColumn() { return false; }

    virtual bool IsIndexValid() { return false; }

    virtual bool HasColumnChanged() = 0;
    /// Returns 2 for a changed record, 0 otherwise. Asking marks the record as known to the format's change set.
    virtual std::int32_t GetRecordState(std::int32_t record) = 0;
    /// Forgets the changes. The spelling is part of the interface.
    virtual void ResetColoumnChanged() = 0;

    virtual bool IsMatrix() { return false; }

    virtual bool IsNullColumn() { return false; }

    /// Stops index maintenance until `EndBulkUpdate`.
    virtual void BeginBulkUpdate() {}

    /// Rebuilds the index, if there is one.
    virtual void EndBulkUpdate() {}

    /// Removes many records in one pass and reports key values that `keys` gives, which may be this column itself.
    /// Requires: `keys` not null, `records` in descending order.
    // NOLINTNEXTLINE(performance-unnecessary-value-param): columns that erase take the list over.
    virtual void GroupErase(IColumn<double>* /*keys*/, std::vector<std::int32_t> /*records*/) {}

    /// Puts an index in front of the column. The result takes the column's place and owns it.
    virtual IColumn<T>* CreateIndexedColumn() = 0;

    virtual bool CanWrite() { return true; }

    /// Copies the values of the records `first` to `first + count - 1` to `out`: `GetValue` of each, in one call.
    virtual void ReadBlock(std::int32_t first, std::int32_t count, T* out) const {
        for (std::int32_t i = 0; i < count; ++i) {
            out[i] = GetValue(first + i);
        }
    }
};

extern template class KS_API IColumn<double>;
extern template class KS_API IColumn<std::wstring>;
extern template class KS_API IColumn<char>;
extern template class KS_API IColumn<std::int32_t>;

} // namespace Kestrona::Data::MemoryResident
