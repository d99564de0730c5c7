// Implements: the search for fields by class and by what their classification string holds.
#include "store/class_test.h"

#include <kestrona/record_search.h>

#include <algorithm>

namespace {

using Kestrona::Class;
using Kestrona::TableColumn;
using Kestrona::Data::MemoryResident::field_info;
using Kestrona::Data::MemoryResident::formats_info;
using Kestrona::Data::MemoryResident::HasClass;
using Kestrona::Data::MemoryResident::IMemoryResidentData;

// The first field from the format `start` on that `test` accepts, in the order of formats and fields.
template <typename Test>
TableColumn FindFirst(IMemoryResidentData& store, std::int32_t start, Test test) {
    for (std::int32_t format = std::max(start, 0); format < store.GetFormatCount(); ++format) {
        const formats_info& info = *store.GetFormatInfo(format);
        for (std::size_t i = 0; i < info.fields.size(); ++i) {
            const TableColumn place{format, static_cast<std::int32_t>(i)};
            if (test(place, info.fields[i])) {
                return place;
            }
        }
    }
    return {};
}

} // namespace

std::int32_t FindFirstColumnWithClassification(IMemoryResidentData& store, std::int32_t format, Class c) {
    const formats_info* const info = store.GetFormatInfo(format);
    if (info == nullptr) {
        return -1;
    }
    const auto found = std::ranges::find_if(info->fields, [c](const field_info& field) { return HasClass(field, c); });
    return found != info->fields.end() ? static_cast<std::int32_t>(found - info->fields.begin()) : -1;
}

TableColumn KSDLL_FindFirstClassificationInstance(IMemoryResidentData& store, Class c) {
    return FindFirst(store, 0, [c](TableColumn, const field_info& field) { return HasClass(field, c); });
}

TableColumn KSDLL_FindClassificationInstance(IMemoryResidentData& store, const std::wstring& text, TableColumn skip) {
    return FindFirst(store, 0, [&](TableColumn place, const field_info& field) {
        return place != skip && field.current.classString.find(text) != std::wstring::npos;
    });
}

TableColumn KSDLL_FindClassificationInstance(IMemoryResidentData& store, const std::wstring& text, std::int32_t start) {
    return FindFirst(store, start, [&](TableColumn, const field_info& field) {
        return field.current.classString.find(text) != std::wstring::npos;
    });
}
