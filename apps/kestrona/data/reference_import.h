#pragma once

#include "data/data_import.h"

#include <vector>

/// \file
/// References that a file tells by their text.

namespace Kestrona::Tool {

/// Looks up the texts that the imported files hold in place of keys, once all formats hold their records: a text is
/// that of a record of another format. Of several files of a format the last one counts. A cell that is the text of no
/// record, or of several, is returned; its reference stays unset.
std::vector<Rejection> ResolveReferences(Data::MemoryResident::IMemoryResidentData& store,
                                         const std::vector<ImportedFile>& files);

} // namespace Kestrona::Tool
