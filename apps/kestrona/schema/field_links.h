#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// What a resolved field points at: its table entries and data slots by their meaning.

namespace Kestrona::Tool {

enum class LinkKind {
    Reference, ///< The value is a key of a record there.
    List,      ///< The values are keys of records there.
    Dimension, ///< The records there size a matrix.
    Other      ///< The keyword takes something from the field there, or works on it.
};

/// One field that another one points at.
struct FieldLink {
    std::string_view keyword; ///< As it stands in a classification, or what it means: "X axis".
    LinkKind kind = LinkKind::Other;
    std::int32_t format = -1;
    std::int32_t field = -1; ///< -1 where the format as a whole is meant.
};

/// Returns what the field points at, keyword by keyword. Targets that are not there are left out.
///
/// Requires: a resolved definition.
[[nodiscard]] std::vector<FieldLink> FieldLinks(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                                std::int32_t field);

/// Returns "Format(Field)", or the field alone when it is one of `home`.
[[nodiscard]] std::string TargetText(Data::MemoryResident::IMemoryResidentData& store, const FieldLink& link,
                                     std::int32_t home = -1);

} // namespace Kestrona::Tool
