#pragma once

#include <kestrona/record_state_strategy.h>
#include <kestrona/schema_records.h>

#include <cstdint>
#include <memory>
#include <string>

/// \file
/// Change tracking of a column.

namespace Kestrona::Data::MemoryResident {

/// Marks the changes of one column in the change sets of its format and keeps which transaction made them.
///
/// The change sets belong to the format: taking a mark back, or resetting one column, shows in all its columns.
class KS_API RecordStateStrategy : public virtual IRecordStateStrategy {
public:
    /// Borrows `format`, which must outlive this object. Requires: not null.
    RecordStateStrategy(formats_info* format, std::int32_t format_number);
    RecordStateStrategy(const RecordStateStrategy&) = delete;
    RecordStateStrategy& operator=(const RecordStateStrategy&) = delete;
    ~RecordStateStrategy() override;

    void RecordChanged(std::int32_t record) override;
    void RecordsChanged(std::int32_t first, std::uint64_t bits) override;
    void RecordErased(double key) override;
    /// An empty `id` means that no transaction is running.
    void StartTransaction(std::string id) override;
    /// Ends the running transaction, whichever it is, and drops the attribution to `id`.
    void EndTransaction(std::string id) override;
    /// Takes back the marks that `id` owns: of several transactions that touched a record, the last one.
    void RevertTransaction(std::string id) override;
    void ResetColumnChanged() override;
    bool HasColumnChanged() override;
    /// Asking about an unknown record enters it as unchanged, and the format then counts as changed until the next
    /// reset.
    std::int32_t GetRecordState(std::int32_t record) override;
    void ColumnCleared(bool mark_changed) override;

private:
    // Which transaction made which change; there only while there is something to keep.
    class Attribution;

    void CountChanges(std::int32_t changes);
    void RecordChangedInTransaction(std::int32_t record);
    Attribution& NeedAttribution();
    template <typename TakeBack>
    void ReleaseTransaction(const std::string& id, TakeBack take_back);

    std::unique_ptr<std::string> currentTransaction_; // null for none, so that small columns stay small
    formats_info* format_;
    std::int32_t formatNumber_;
    bool columnChanged_ = false;
    std::unique_ptr<Attribution> attribution_;
};

} // namespace Kestrona::Data::MemoryResident
