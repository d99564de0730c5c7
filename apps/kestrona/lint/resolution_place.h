#pragma once

#include <kestrona/host/definition.h>

#include <string_view>

namespace Kestrona::Tool::Lint {

/// Where a message of the resolution points: a field and its format, a format alone, or nothing.
struct ResolutionPlace {
    const Host::FormatDefinition* format = nullptr;
    const Host::FieldDefinition* field = nullptr;
};

/// Finds the first field that a message names with its format, "format 'Orders', field 'Price'" or "Format 'Orders'
/// Field 'Price'", or else the first format that it names.
[[nodiscard]] ResolutionPlace FindResolutionPlace(std::wstring_view message, const Host::Definition& definition);

} // namespace Kestrona::Tool::Lint
