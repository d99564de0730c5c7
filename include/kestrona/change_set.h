#pragma once

#include <kestrona/export.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

/// \file
/// The change marks of a format.

namespace Kestrona::Data::MemoryResident {

/// What is known of the records of a format: nothing, unchanged (`false`) or changed (`true`).
///
/// Behaves as a map from record number to flag with an ascending walk. Marks live in pages of 4096 records, so that a
/// mark costs the same however many there are; any record number is allowed.
class KS_API ChangedRecords {
public:
    ChangedRecords();
    /// Leaves the source empty.
    ChangedRecords(ChangedRecords&& other) noexcept;
    ChangedRecords& operator=(ChangedRecords&& other) noexcept;
    ChangedRecords(const ChangedRecords&) = delete;
    ChangedRecords& operator=(const ChangedRecords&) = delete;
    ~ChangedRecords();

    /// Enters the record as changed. Constant time.
    void Mark(std::int32_t record);
    /// Enters the records 0 to `count` - 1 as changed, page by page.
    void MarkRange(std::int32_t count);
    /// Enters the records `first` + i, for each bit i of `bits`, as changed. Requires: `first` a multiple of 64, not
    /// negative.
    void MarkMany(std::int32_t first, std::uint64_t bits);
    /// Returns the record's flag; a record that is not known is entered as unchanged.
    bool Lookup(std::int32_t record);
    /// Tells whether the record is known, changed or not.
    [[nodiscard]] bool Contains(std::int32_t record) const;
    /// Forgets the record.
    void Erase(std::int32_t record);
    /// Forgets everything.
    void Clear();

    [[nodiscard]] bool IsEmpty() const { return count_ == 0; }

    /// Number of known records.
    [[nodiscard]] std::size_t Size() const { return count_; }

    /// Known records in ascending order with their flags.
    [[nodiscard]] std::vector<std::pair<std::int32_t, bool>> Entries() const;

private:
    friend class RecordStateStrategy;

    struct Page;
    inline void MarkInPlace(std::int32_t record);
    void MarkOnNewPage(std::int32_t record);
    [[nodiscard]] inline Page* FindPage(std::int32_t page) const;
    [[nodiscard]] Page* FindFarPage(std::int32_t page) const;
    Page& NeedPage(std::int32_t page);
    Page& AddPage(std::int32_t page);

    std::vector<std::unique_ptr<Page>> near_;           // pages of the record numbers that formats really have
    std::map<std::int32_t, std::unique_ptr<Page>> far_; // all others: negative ones, scratch records, far outliers
    std::size_t count_ = 0;
};

/// Orders keys with NaN below every number, so that a set of keys stays sound whatever it is given.
struct KS_API KeyOrder {
    bool operator()(double a, double b) const { return a < b || (a != a && b == b); }
};

/// Key values of erased records, ascending, each with a flag.
using ErasedKeys = std::map<double, bool, KeyOrder>;

} // namespace Kestrona::Data::MemoryResident
