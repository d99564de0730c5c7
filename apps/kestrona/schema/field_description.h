#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>

/// \file
/// What a field is, in words.

namespace Kestrona::Tool {

/// Returns the field's kind: "integer", "date", "text", "list" and the like, with ", calculated" where it applies.
[[nodiscard]] std::string TypeName(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                   std::int32_t field);

/// Returns the default of a new cell, "" for one that is unset or has no single value.
[[nodiscard]] std::string DefaultText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                      std::int32_t field);

/// Returns the most characters of a text field, "" for one without a limit and for fields of other kinds.
[[nodiscard]] std::string LengthText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                     std::int32_t field);

/// Returns "Format(Field)" for a field whose values are keys of records, also of its own format; "" for other fields.
[[nodiscard]] std::string ReferenceText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                        std::int32_t field);

/// Returns "Format(Field) x Format(Field) (label, label)" for a matrix by two formats, else "".
[[nodiscard]] std::string DimensionText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                        std::int32_t field);

/// Returns what the other keywords of the field point at: "UPDATE REFERENCE Step; SOURCE Routings(Group)".
[[nodiscard]] std::string LinksText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                    std::int32_t field);

/// Returns the names of the field's classes.
[[nodiscard]] std::string ClassesText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                      std::int32_t field);

/// Returns the names of the other formats that the format's fields and lists refer to, each once.
[[nodiscard]] std::string ReferredFormats(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format);

} // namespace Kestrona::Tool
