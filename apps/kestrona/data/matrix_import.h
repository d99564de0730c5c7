#pragma once

#include "data/data_import.h"

/// \file
/// Lists and matrices that a file holds.

namespace Kestrona::Tool {

/// Gives the records of the imported formats their lists and matrices, once all formats hold their records: the sizes
/// depend on them. Of several files of a format the last one counts. A cell that does not fit is returned; its matrix
/// keeps the default values.
std::vector<Rejection> FillMatrices(Data::MemoryResident::IMemoryResidentData& store,
                                    const std::vector<ImportedFile>& files);

} // namespace Kestrona::Tool
