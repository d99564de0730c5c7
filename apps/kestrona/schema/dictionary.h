#pragma once

#include <kestrona/memory_resident_data.h>

#include <string>

namespace Kestrona::Tool {

/// Returns a data dictionary of a resolved definition in Markdown (UTF-8): a list of the formats, a section with a
/// table of fields for each, the string tables, and the named constants. `source` is named in the heading.
[[nodiscard]] std::string DataDictionary(Data::MemoryResident::IMemoryResidentData& store, const std::string& source);

} // namespace Kestrona::Tool
