#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <optional>
#include <string>

/// \file
/// Dates, times and durations in the form in which the application shows them.
///
/// The library's readers pass over what they do not know, as suits a dialog, where the user sees what became of the
/// text. In a file it would be lost without a word, so such texts are refused here.

namespace Kestrona::Tool {

/// Reads a date in the locale's layout, or a time of day for a field that shows only that.
[[nodiscard]] std::optional<double> ReadShownDate(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                                  std::int32_t field, const std::wstring& text);

/// Reads a duration in the mode of the field.
[[nodiscard]] std::optional<double> ReadShownDuration(Data::MemoryResident::IMemoryResidentData& store,
                                                      std::int32_t format, std::int32_t field,
                                                      const std::wstring& text);

} // namespace Kestrona::Tool
