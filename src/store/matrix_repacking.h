#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <span>

// Matrices that lose the cells of deleted records. The records still stand and are ascending, each once.
namespace Kestrona::Data::MemoryResident {

// Records that are being deleted from a format.
struct DeletedRecords {
    std::int32_t format;
    std::span<const std::int32_t> ascending;
};

// Closes the gaps in every matrix that the format dimensions.
void CloseMatrices(IMemoryResidentData& store, const DeletedRecords& deleted);

} // namespace Kestrona::Data::MemoryResident
