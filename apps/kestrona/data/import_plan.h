#pragma once

#include "data/cell_text.h"
#include "output/message.h"

#include <cstdint>
#include <string>
#include <vector>

/// \file
/// Which column of a file goes to which field.

namespace Kestrona::Tool {

struct PlannedColumn {
    std::int32_t field = -1; ///< -1 for a column that is not taken over.
    ValueForm form = ValueForm::Text;
    std::size_t max_length = 0; ///< UTF-16 units of a text; 0 for no limit.
    std::string name;
    bool matrix = false;    ///< The cells are lists or matrices.
    bool has_texts = false; ///< Texts of other records may stand in place of keys.
};

struct ImportPlan {
    std::vector<PlannedColumn> columns;
    bool has_heading = false; ///< The first row is the heading and no data.
    bool has_key = false;
    std::vector<std::string> notes; ///< What the user should know.
    std::vector<Problem> warnings;  ///< Columns that are left out by mistake.
};

/// Makes the plan from the first row of a file.
[[nodiscard]] ImportPlan PlanImport(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                    const std::vector<std::string>& first_row);

} // namespace Kestrona::Tool
