#include <kestrona/record_state_strategy.h>

#include <bit>

namespace Kestrona::Data::MemoryResident {

void IRecordStateStrategy::RecordsChanged(std::int32_t first, std::uint64_t bits) {
    for (; bits != 0; bits &= bits - 1) {
        RecordChanged(first + std::countr_zero(bits));
    }
}

void NullRecordStateStrategy::RecordChanged(std::int32_t) {}

void NullRecordStateStrategy::RecordsChanged(std::int32_t, std::uint64_t) {}

void NullRecordStateStrategy::RecordErased(double) {}

void NullRecordStateStrategy::StartTransaction(std::string) {}

void NullRecordStateStrategy::EndTransaction(std::string) {}

void NullRecordStateStrategy::RevertTransaction(std::string) {}

void NullRecordStateStrategy::ResetColumnChanged() {}

bool NullRecordStateStrategy::HasColumnChanged() {
    return false;
}

std::int32_t NullRecordStateStrategy::GetRecordState(std::int32_t) {
    return 0;
}

void NullRecordStateStrategy::ColumnCleared(bool) {}

} // namespace Kestrona::Data::MemoryResident
