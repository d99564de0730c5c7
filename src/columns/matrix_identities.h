#pragma once

#include <kestrona/concrete_columns.h>

#include <cstdint>

namespace Kestrona::Data::MemoryResident {

// The ids of a field's matrices. Keeps up to which record a look at all of them has found them in order, so that a new
// record need not have those of all others looked at again.
class MatrixIdentityColumn : public ValueManagedDataStorage<std::int32_t> {
public:
    // Takes ownership of `record_state`.
    explicit MatrixIdentityColumn(IRecordStateStrategy* record_state);

    // The records from 0 on that were noted with this size; 0 where an id or a matrix has changed since.
    [[nodiscard]] std::int32_t InOrder(std::uint32_t size) const;
    // Requires: the matrices of the records are marked as noted.
    void NoteInOrder(std::int32_t records, std::uint32_t size);

protected:
    void InvalidateIndex() override;

private:
    std::int32_t inOrder_ = 0;
    std::uint32_t size_ = 0;
    std::uint64_t orderBreaks_ = 0; // of the matrix table when it was noted
};

} // namespace Kestrona::Data::MemoryResident
