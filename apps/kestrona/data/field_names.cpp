#include "data/field_names.h"

#include <kestrona/unicode.h>

namespace Kestrona::Tool {

using Data::MemoryResident::IMemoryResidentData;

std::string FormatName(IMemoryResidentData& store, std::int32_t format) {
    const wchar_t* const name = store.GetDbName(format);
    return name == nullptr ? std::string() : ToUtf8(name);
}

std::int32_t FormatNamed(IMemoryResidentData& store, std::string_view name) {
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        const wchar_t* const format_name = store.GetDbName(format);
        if ((format_name != nullptr && ToUtf8(format_name) == name) || ToUtf8(store.GetDbDisplayName(format)) == name) {
            return format;
        }
    }
    return -1;
}

std::int32_t FieldNamed(IMemoryResidentData& store, std::int32_t format, std::string_view name) {
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        if (ToUtf8(store.GetColumnName(format, field)) == name) {
            return field;
        }
    }
    return -1;
}

} // namespace Kestrona::Tool
