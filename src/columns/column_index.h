#pragma once

#include "columns/record_set.h"

#include <kestrona/column.h>

#include <boost/unordered/unordered_flat_map.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The map from values to records behind IndexedColumn<T>. It has no lock: the const operations may run side by side,
// the others alone.
namespace Kestrona::Data::MemoryResident {

template <typename T>
class ColumnIndex {
public:
    // Enters every record of the column. Starts from nothing, whatever was there.
    void Build(const IColumn<T>& column);

    // Requires: the record is not in the index.
    void Add(const T& value, std::int32_t record);
    // Enters the records `first` to `last` - 1. Requires: greater than every record of the index.
    void AddRange(const T& value, std::int32_t first, std::int32_t last);
    // Requires: the record is in the index with this value.
    void Remove(const T& value, std::int32_t record);

    static constexpr std::int32_t kNone = -1;
    static constexpr std::int32_t kUnknown = -2;

    // The lowest record with the value; kNone when there is none, kUnknown while that is not known before `Settle`.
    [[nodiscard, gnu::always_inline]] std::int32_t FirstRecord(const T& value) const {
        const auto place = map_.find(value);
        return place == map_.end() ? kNone : place->second.First();
    }

    // The records with the value; nothing when they do not stand in one array before `Settle`.
    [[nodiscard]] std::optional<std::span<const std::int32_t>> Records(const T& value) const;
    // Makes the array of the value's records.
    void Settle(const T& value);

    // The lowest record of each value, unordered; nothing when one is not known before `SettleAll`. A value that does
    // not equal itself is as many values as it has records.
    [[nodiscard]] std::optional<RecordNumbers> FirstRecords() const;
    void SettleAll();

private:
    // Most values of a key column have one record, and two while rows change places: those stand here, one behind the
    // other, and nothing else is allocated for them.
    class Entry {
    public:
        explicit Entry(std::int32_t record) : records_{record, kNone} {}

        // The lowest record; kUnknown while the set has lost it and is not settled.
        [[nodiscard]] std::int32_t First() const { return records_[0]; }

        void SetFirst(std::int32_t record) { records_[0] = record; }

        [[nodiscard]] bool HasOneRecord() const { return records_[1] == kNone; }

        [[nodiscard]] bool HasSet() const { return records_[1] < kNone; }

        // Where in sets_.
        [[nodiscard]] std::size_t Set() const { return static_cast<std::size_t>(kFirstSet - records_[1]); }

        void NameSet(std::size_t set) { records_[1] = kFirstSet - static_cast<std::int32_t>(set); }

        // Requires here and below: no set.
        [[nodiscard]] std::span<const std::int32_t> Records() const {
            return std::span(records_).first(HasOneRecord() ? 1 : 2);
        }

        // Requires: one record, another one than this.
        void AddSecond(std::int32_t record) { records_ = {std::min(First(), record), std::max(First(), record)}; }

        // Requires: two records, this one of them.
        void RemoveOneOfTwo(std::int32_t record) { records_ = {First() == record ? records_[1] : First(), kNone}; }

    private:
        static constexpr std::int32_t kFirstSet = kNone - 1;

        std::array<std::int32_t, 2> records_;
    };

    struct Hash {
        using is_avalanching = void; // the map need not mix the bits once more
        std::size_t operator()(const T& value) const;
    };

    using Map = boost::unordered_flat_map<T, Entry, Hash>;

    // What the first pass of building finds: the values that have several records.
    struct Groups {
        std::vector<std::int32_t> ofRecord; // the set of each record; kNone where it is the first of its value
        std::vector<std::int32_t> sizes;
        std::vector<std::int32_t> firsts;

        // Counts a further record of the entry and returns its set.
        std::int32_t Enter(Entry& entry);
    };

    static constexpr std::int32_t kBlock = 512;

    static bool EqualsItself(const T& value);
    void Clear();
    Groups Group(const IColumn<T>& column);
    void GroupBlock(Groups& groups, std::span<const T> values, std::int32_t record);
    void MakeSets(const Groups& groups);
    RecordSet& NeedSet(Entry& entry);
    void RemoveFromSet(typename Map::iterator place, std::int32_t record);
    void SettleEntry(Entry& entry);

    Map map_;
    std::vector<std::int32_t> rows_; // the sets as they were built, one after another
    std::vector<RecordSet> sets_;
    std::vector<std::size_t> freeSets_;
    RecordSet unequal_; // records whose value does not equal itself: no search finds them
};

} // namespace Kestrona::Data::MemoryResident
