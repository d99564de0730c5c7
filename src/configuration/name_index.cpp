#include "configuration/name_index.h"

#include <algorithm>
#include <cstddef>

namespace Kestrona::Configuration {

using Data::MemoryResident::field_info;
using Data::MemoryResident::IMemoryResidentData;

NameIndex::NameIndex(IMemoryResidentData& store)
    : store_(store),
      formats_(static_cast<std::size_t>(std::max(store.GetFormatCount(), 0))) {
    EnterFormats();
}

std::int32_t NameIndex::FormatNamed(std::wstring_view name) const {
    const auto found = by_name_.find(name);
    return found == by_name_.end() ? -1 : found->second;
}

std::int32_t NameIndex::NextOfSameName(std::int32_t format) const {
    return formats_[static_cast<std::size_t>(format)].next_of_same_name;
}

bool NameIndex::HasExtension(std::int32_t format) const {
    return formats_[static_cast<std::size_t>(format)].has_extension;
}

std::int32_t NameIndex::FieldNamed(std::int32_t format, std::wstring_view name) {
    if (format < 0 || static_cast<std::size_t>(format) >= formats_.size()) {
        return -1;
    }
    const ByName& fields = FieldsOf(format);
    const auto found = fields.find(name);
    return found == fields.end() ? -1 : found->second;
}

// Goes from the last format to the first, so that each finds the next of its name in the index.
void NameIndex::EnterFormats() {
    for (auto format = static_cast<std::int32_t>(formats_.size()) - 1; format >= 0; --format) {
        formats_[static_cast<std::size_t>(format)].has_extension = store_.GetDbExtension(format) != nullptr;
        if (const wchar_t* name = store_.GetDbName(format)) {
            const auto [entry, is_first] = by_name_.try_emplace(name, format);
            if (!is_first) {
                formats_[static_cast<std::size_t>(format)].next_of_same_name = entry->second;
                entry->second = format;
            }
        }
    }
}

const NameIndex::ByName& NameIndex::FieldsOf(std::int32_t number) {
    Format& format = formats_[static_cast<std::size_t>(number)];
    if (!format.entered) {
        format.entered = true;
        const std::int32_t count = store_.GetDbFields(number);
        for (std::int32_t field = 0; field < count; ++field) {
            if (const field_info* info = store_.GetFieldInfo(number, field)) {
                format.fields.emplace(info->name, field); // the first of a name stays
            }
        }
    }
    return format.fields;
}

} // namespace Kestrona::Configuration
