#pragma once

#include "commands/added_columns.h"
#include "commands/record_filter.h"
#include "data/followed_field.h"
#include "data/record_order.h"
#include "output/table_writer.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// \file
/// The last step of the commands that print records.

namespace Kestrona::Tool {

/// What to print, all of it checked.
struct RecordPrint {
    std::vector<FollowedField> fields;
    std::vector<NamedExpression> added;
    RecordFilter filter;
    std::size_t limit = 0; ///< Most rows to print; 0 for all.
    OutputForm form = OutputForm::Table;
    CellStyle style = CellStyle::Stored;
    RecordOrder order = {};
};

/// Reads the texts of an order. Says on stderr what is wrong and gives an empty result.
[[nodiscard]] std::optional<RecordOrder> ParseOrder(Data::MemoryResident::MemoryResidentData& store,
                                                    std::int32_t format, const std::vector<std::string>& texts,
                                                    bool group_families);

/// Returns the records that the filter finds, in this order, `limit` of them at most unless that is 0. `found`, if
/// given, receives how many there were.
[[nodiscard]] std::vector<std::int32_t> ChooseRecords(const RecordFilter& filter, const RecordOrder& order,
                                                      std::size_t limit, std::size_t* found = nullptr);

/// Prints the records to stdout and says on stderr how many of the format's they are. Returns whether the output could
/// be written.
[[nodiscard]] bool PrintRecords(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                RecordPrint print);

} // namespace Kestrona::Tool
