#pragma once

#include "data/text_decoder.h"

#include <kestrona/memory_resident_data.h>

#include <string>
#include <vector>

/// \file
/// The data that a command works on.

namespace Kestrona::Tool {

/// Loads folders of CSV files into the store and prints to stderr what became of them. Returns the worst exit code.
int ImportFolders(Data::MemoryResident::IMemoryResidentData& store, const std::vector<std::string>& folders,
                  TextEncoding encoding);

/// Loads folders that have been loaded before once more, without a word.
void ReimportFolders(Data::MemoryResident::IMemoryResidentData& store, const std::vector<std::string>& folders,
                     TextEncoding encoding);

} // namespace Kestrona::Tool
