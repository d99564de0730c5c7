#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <map>
#include <vector>

// Records that belong to others: those whose keys stand in lists with STRING STORAGE.
namespace Kestrona::Data::MemoryResident {

struct StoredKey {
    std::int32_t format;
    double key;
};

// Whether records of the format can own others.
bool OwnsRecords(const formats_info& format);

// Appends the keys of what the record owns, list by list.
void AppendStoredKeys(IMemoryResidentData& store, std::int32_t format, std::int32_t record,
                      std::vector<StoredKey>& keys);

// Empties the lists of what the records own. Whoever deletes a record deletes what it owns, and then erases the
// record's row: that must not erase the row of an owner that waits for its turn.
void EmptyStoredLists(IMemoryResidentData& store, std::int32_t format, const std::vector<std::int32_t>& records);

// Everything that the records own, directly or through others, without themselves: ascending record numbers by format.
// A ring of owners ends where it began.
std::map<std::int32_t, std::vector<std::int32_t>> FindOwnedRecords(IMemoryResidentData& store, std::int32_t format,
                                                                   const std::vector<std::int32_t>& records);

} // namespace Kestrona::Data::MemoryResident
