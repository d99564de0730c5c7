#pragma once

#include "data/record_condition.h"
#include "data/record_expression.h"
#include "output/message.h"

#include <kestrona/memory_resident_data.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// \file
/// The records that a command works on.

namespace Kestrona::Tool {

/// What the `--where` switches of a command line ask for; all of it must hold.
class RecordFilter {
public:
    /// Reads each text as a comparison of a field with a value, or else as an expression that must not be 0. Says on
    /// stderr what is wrong and gives an empty result.
    [[nodiscard]] static std::optional<RecordFilter> Parse(Data::MemoryResident::IMemoryResidentData& store,
                                                           std::int32_t format, const std::vector<std::string>& texts);

    [[nodiscard]] bool IsEmpty() const { return conditions_.empty() && expressions_.empty(); }

    /// Returns the records of the format that fulfil it, ascending.
    [[nodiscard]] std::vector<std::int32_t> Find() const;

private:
    RecordFilter(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format)
        : store_(&store),
          format_(format) {}

    [[nodiscard]] bool Add(const std::string& text, Problem& problem);
    [[nodiscard]] bool AddExpression(const std::string& text, Problem& problem);

    Data::MemoryResident::IMemoryResidentData* store_;
    std::int32_t format_;
    std::vector<RecordCondition> conditions_;
    std::vector<RecordExpression> expressions_;
};

} // namespace Kestrona::Tool
