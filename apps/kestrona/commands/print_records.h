#pragma once

#include "commands/added_columns.h"
#include "commands/record_filter.h"
#include "output/table_writer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// \file
/// The last step of the commands that print records.

namespace Kestrona::Tool {

/// What to print, all of it checked.
struct RecordPrint {
    std::vector<std::int32_t> fields;
    std::vector<NamedExpression> added;
    RecordFilter filter;
    std::size_t limit = 0; ///< Most rows to print; 0 for all.
    OutputForm form = OutputForm::Table;
};

/// Prints the records to stdout and says on stderr how many of the format's they are. Returns whether the output could
/// be written.
[[nodiscard]] bool PrintRecords(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                RecordPrint print);

} // namespace Kestrona::Tool
