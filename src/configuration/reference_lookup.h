#pragma once

#include "configuration/name_index.h"

#include <kestrona/memory_resident_data.h>
#include <kestrona/types.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace Kestrona::Configuration {

// Makes the line that says which keyword of which field is being resolved; called only when it is shown.
using ContextText = std::function<std::wstring()>;

// Which formats a keyword may name.
enum class Datasets {
    Own, // those without an extension and those that share the dataset of the format at hand
    Any,
};

// Finds the formats and fields that classifications name, for one pass over the definition. Both look-ups report what
// they cannot find and then call `ErrorExit`.
class ReferenceLookup {
public:
    explicit ReferenceLookup(Data::MemoryResident::IMemoryResidentData& store) : store_(store), names_(store) {}

    // The first field of `format` with exactly this name, or -1. `classification` is the keyword as it is written.
    std::int32_t FindReferenceField(std::int32_t format, const std::wstring& field_name, const ContextText& context,
                                    std::wstring_view classification);

    // The first format with exactly this name that `current_format` may name, and its field. False when there is none.
    bool FindReferenceFormatField(const std::wstring& format_name, const std::wstring& field_name,
                                  const ContextText& context, Datasets datasets, std::wstring_view classification,
                                  std::int32_t current_format, TableColumn& found);

private:
    bool IsCandidate(std::int32_t format, Datasets datasets, std::int32_t current_format);
    std::int32_t ParentOf(std::int32_t format);

    Data::MemoryResident::IMemoryResidentData& store_;
    NameIndex names_;
    std::int32_t child_ = -1; // whose parent is kept
    std::int32_t parent_ = -1;
};

// The keyword that stands at `position`, with its argument up to the closing bracket; cut where it is long.
std::wstring_view ClassificationAt(std::wstring_view text, std::size_t position);

} // namespace Kestrona::Configuration
