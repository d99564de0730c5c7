#pragma once

#include "output/message.h"

#include <kestrona/sorting.h>
#include <kestrona/store.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// \file
/// The order in which records are printed.

namespace Kestrona::Tool {

/// Fields to sort by, the first one before the others, and whether families stay together. Without either, records
/// keep the order in which they were read.
class RecordOrder {
public:
    RecordOrder() = default;

    /// Reads texts of the form `FIELD`, `FIELD:asc` or `FIELD:desc`. Returns what is wrong through `problem` with an
    /// empty result: also where families are to stay together in a format that has none.
    [[nodiscard]] static std::optional<RecordOrder> Parse(Data::MemoryResident::MemoryResidentData& store,
                                                          std::int32_t format, const std::vector<std::string>& texts,
                                                          bool group_families, Problem& problem);

    /// Brings some records of the format into this order. Costs a sort of all its records.
    void Arrange(std::vector<std::int32_t>& records) const;

private:
    Data::MemoryResident::MemoryResidentData* store_ = nullptr; ///< Null where nothing is sorted.
    std::int32_t format_ = -1;
    std::vector<Data::MemoryResident::SortDetails> details_;
    bool group_families_ = false;
};

} // namespace Kestrona::Tool
