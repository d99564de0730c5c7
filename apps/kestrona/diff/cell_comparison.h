#pragma once

#include "diff/table_diff.h"

namespace Kestrona::Tool {

/// Tells whether two cells hold the same. Lists and matrices are compared entry by entry; of fields that are of one
/// kind on one side and of another on the other side, the texts of the cells are compared.
[[nodiscard]] bool SameCell(const DiffSides& sides, const FieldPair& pair, std::int32_t old_record,
                            std::int32_t new_record);

} // namespace Kestrona::Tool
