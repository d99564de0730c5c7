#pragma once

#include <kestrona/export.h>

#include <cstdint>
#include <string>

/// \file
/// What a column tells about its changes.

namespace Kestrona::Data::MemoryResident {

/// Receives the changes of one column. Each column owns one strategy and deletes it.
class KS_API IRecordStateStrategy {
public:
    virtual ~IRecordStateStrategy() = default;
    /// A value of the record really changed.
    virtual void RecordChanged(std::int32_t record) = 0;
    /// Values of the records `first` + i, for each bit i of `bits`, really changed: like `RecordChanged` of each.
    /// Requires: `first` a multiple of 64, not negative.
    virtual void RecordsChanged(std::int32_t first, std::uint64_t bits);
    /// The record with this key value was removed.
    virtual void RecordErased(double key) = 0;
    /// Attributes the changes that follow to the transaction `id`; replaces a running one.
    virtual void StartTransaction(std::string id) = 0;
    /// Accepts the changes attributed to `id`: their marks stay, the attribution goes.
    virtual void EndTransaction(std::string id) = 0;
    /// Takes the marks attributed to `id` back. Values are not touched.
    virtual void RevertTransaction(std::string id) = 0;
    /// Forgets all changes of the whole format.
    virtual void ResetColumnChanged() = 0;
    virtual bool HasColumnChanged() = 0;
    /// Returns 2 for a changed record and 0 otherwise.
    virtual std::int32_t GetRecordState(std::int32_t record) = 0;
    /// The column lost all its values. `mark_changed` tells whether the column itself counts as changed.
    virtual void ColumnCleared(bool mark_changed) = 0;
};

/// Tracks nothing: no column is ever changed.
class KS_API NullRecordStateStrategy : public virtual IRecordStateStrategy {
public:
    void RecordChanged(std::int32_t record) override;
    void RecordsChanged(std::int32_t first, std::uint64_t bits) override;
    void RecordErased(double key) override;
    void StartTransaction(std::string id) override;
    void EndTransaction(std::string id) override;
    void RevertTransaction(std::string id) override;
    void ResetColumnChanged() override;
    bool HasColumnChanged() override;
    std::int32_t GetRecordState(std::int32_t record) override;
    void ColumnCleared(bool mark_changed) override;
};

} // namespace Kestrona::Data::MemoryResident
