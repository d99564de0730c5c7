#pragma once

#include <kestrona/store.h>

#include <cstdint>
#include <cstdio>
#include <string>

namespace Kestrona::Host::Snapshots {

// Appends the block of a format: its head, and its records unless nothing of the format is kept.
void WriteTable(Data::MemoryResident::MemoryResidentData& store, std::int32_t format, const std::wstring& dataset,
                std::FILE* file);

} // namespace Kestrona::Host::Snapshots
