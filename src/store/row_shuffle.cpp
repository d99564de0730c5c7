#include "store/row_shuffle.h"

#include <cstdint>

namespace Kestrona::Data::MemoryResident {

namespace {

std::int32_t running_shuffles = 0;

} // namespace

RowShuffle::RowShuffle() {
    ++running_shuffles;
}

RowShuffle::~RowShuffle() {
    --running_shuffles;
}

bool RowShuffle::IsRunning() {
    return running_shuffles > 0;
}

} // namespace Kestrona::Data::MemoryResident
