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
/// Fields of the records that a record refers to, named by the way there: `Order.Product.Colour`.

namespace Kestrona::Tool {

/// A field of a format itself, or one that references lead to.
struct FollowedField {
    std::string name;                    ///< As it was asked for, UTF-8.
    std::vector<TableColumn> references; ///< Fields that refer to the next format, in their order; empty for none.
    std::int32_t format = -1;            ///< Where the field stands.
    std::int32_t field = -1;
};

/// Returns the field that the format itself has under this number.
[[nodiscard]] FollowedField OwnField(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                     std::int32_t field);

/// Reads the name of a field, or names of references and of a field of the last record, divided by dots. A name with
/// dots in it comes before the names that its pieces would be. Returns what is wrong through `problem` with an empty
/// result: also where the field has no values to show.
[[nodiscard]] std::optional<FollowedField> ParseFollowedField(Data::MemoryResident::IMemoryResidentData& store,
                                                              std::int32_t format, std::string_view name,
                                                              Problem& problem);

/// Makes `FollowReferences` fast: the keys that it looks up are indexed. Call it when the records are loaded.
void IndexReferences(Data::MemoryResident::IMemoryResidentData& store, const FollowedField& field);

/// Returns the record that has the field, -1 where a reference is unset or no record answers to it.
[[nodiscard]] std::int32_t FollowReferences(Data::MemoryResident::IMemoryResidentData& store,
                                            const FollowedField& field, std::int32_t record);

} // namespace Kestrona::Tool
