#include "columns/matrix_identities.h"

#include "columns/matrix_table.h"

namespace Kestrona::Data::MemoryResident {

MatrixIdentityColumn::MatrixIdentityColumn(IRecordStateStrategy* record_state)
    : DataStorage<std::int32_t>(record_state),
      ValueManagedDataStorage<std::int32_t>(MatrixTable::kNoId, record_state) {}

std::int32_t MatrixIdentityColumn::InOrder(std::uint32_t size) const {
    return size == size_ && orderBreaks_ == MatrixTable::Instance().OrderBreaks() ? inOrder_ : 0;
}

void MatrixIdentityColumn::NoteInOrder(std::int32_t records, std::uint32_t size) {
    inOrder_ = records;
    size_ = size;
    orderBreaks_ = MatrixTable::Instance().OrderBreaks();
    HearOfNextChange();
}

void MatrixIdentityColumn::InvalidateIndex() {
    inOrder_ = 0;
    ValueManagedDataStorage<std::int32_t>::InvalidateIndex();
}

} // namespace Kestrona::Data::MemoryResident
