#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>

// Which matrix fields depend on the records of which formats.
namespace Kestrona::Data::MemoryResident {

bool HoldsMatrices(const field_info& field);

// A matrix field with matrices of its own; one that shares those of another field leaves them to that field.
bool OwnsMatrices(const field_info& field);

// A list: alone, or beside another list.
bool IsAnyList(const field_info& field);

// A matrix field with a cell for each record of the format, or for each pair with one.
bool IsDimensionedBy(const field_info& field, std::int32_t format);

// The number of elements of a matrix of this field, 0 for one that would be too large.
std::uint32_t FullSize(IMemoryResidentData& store, const field_info& field);
std::uint32_t GridSize(std::int64_t size_x, std::int64_t size_y);

// The records that have a matrix of their own in the field: all, or the first one for all.
std::int32_t MatrixOwners(IMemoryResidentData& store, std::int32_t format, const field_info& field);

// Whether other formats' records change the matrices of this one.
bool FollowsOthers(const formats_info& format);

// Calls `action` with format number, field number and field of every field of every such format.
template <typename Action>
void ForEachFollowingField(IMemoryResidentData& store, Action action) {
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        formats_info& info = *store.GetFormatInfo(format);
        if (FollowsOthers(info)) {
            for (std::size_t i = 0; i < info.fields.size(); ++i) {
                action(format, static_cast<std::int32_t>(i), info.fields[i]);
            }
        }
    }
}

} // namespace Kestrona::Data::MemoryResident
