#pragma once

#include "configuration/compiled/definition_input.h"

#include <kestrona/store.h>

#include <cstdint>
#include <cstdio>

// One format in a definition stream, with its fields.
namespace Kestrona::Configuration::Compiled {

void WriteFormat(Data::MemoryResident::MemoryResidentData& store, std::int32_t format, std::FILE* file);

// Fills a format of the store. The flag for the common dataset is in the stream from version 14.3 on.
[[nodiscard]] bool ReadFormat(Data::MemoryResident::MemoryResidentData& store, std::int32_t format,
                              bool has_common_dataset_flag, DefinitionInput& input);

} // namespace Kestrona::Configuration::Compiled
