// Implements: the way from a record to its matrices.
#include "store/record_matrices.h"

namespace Kestrona::Data::MemoryResident {

IColumn<double>* FindMatrix(const field_info& /*field*/, std::int32_t /*record*/) {
    return nullptr;
}

void EmptyMatrices(field_info& /*field*/) {}

void FreeMatrices(formats_info& /*format*/) {}

} // namespace Kestrona::Data::MemoryResident
