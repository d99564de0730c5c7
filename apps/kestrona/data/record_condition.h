#pragma once

#include "output/message.h"

#include <kestrona/memory_resident_data.h>
#include <kestrona/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Choosing records by the values of their fields.

namespace Kestrona::Tool {

/// "The field's value is equal to, less than, ... the value."
struct RecordCondition {
    std::int32_t field = -1;
    FindOperator comparison = FindOperator::Equal;
    bool is_text = false;
    double number = 0.0;
    std::wstring text;
    std::string reference; ///< Text of the records referred to, in place of a number; "" for none.
};

/// Tells whether the text begins with the name of a field and a sign, so that `ParseCondition` is to read it.
[[nodiscard]] bool ComparesField(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                 std::string_view text);

/// Reads `FIELD=VALUE`; the sign may be `=`, `<`, `<=`, `>` or `>=`, and blanks may stand around it. An empty value
/// stands for an unset date, duration or reference, or for an empty text. Returns what is wrong through `problem` with
/// an empty result.
[[nodiscard]] std::optional<RecordCondition> ParseCondition(Data::MemoryResident::IMemoryResidentData& store,
                                                            std::int32_t format, std::string_view text,
                                                            Problem& problem);

/// Returns the records that fulfil all conditions, ascending. Costs an index per field named and the records found.
[[nodiscard]] std::vector<std::int32_t> FindRecords(Data::MemoryResident::IMemoryResidentData& store,
                                                    std::int32_t format, std::vector<RecordCondition> conditions);

} // namespace Kestrona::Tool
