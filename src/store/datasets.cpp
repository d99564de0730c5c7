// Implements: dataset names, and the tie between a root format and its children.
#include "store/take_over.h"

#include <kestrona/store.h>
#include <kestrona/unicode.h>

#include <algorithm>

namespace Kestrona::Data::MemoryResident {

namespace {

// The buffer is made for formats that need one: in the record itself it would push the formats apart that every cell
// access reads.
wchar_t* DatasetNameBuffer(formats_info& format) {
    if (format.currentDatasetName == nullptr) {
        format.currentDatasetName = std::make_unique<std::array<wchar_t, kMaxDatasetName + 1>>();
    }
    return format.currentDatasetName->data();
}

void StoreDatasetName(formats_info& format, std::wstring_view name) {
    const std::wstring_view kept = CutUtf16(name, kMaxDatasetName);
    wchar_t* const end = std::ranges::copy(kept, DatasetNameBuffer(format)).out;
    *end = L'\0';
}

} // namespace

wchar_t* MemoryResidentData::GetDefaultDatasetName(std::int32_t format) {
    const formats_info* const info = FindFormat(format);
    return info != nullptr ? info->defaultDatasetName.get() : nullptr;
}

void MemoryResidentData::SetDefaultDatasetName(std::int32_t format, wchar_t* name) {
    formats_info* const info = FindFormat(format);
    TakeOver(info != nullptr ? &info->defaultDatasetName : nullptr, name);
    if (info == nullptr || name == nullptr) {
        return;
    }
    for (const std::int32_t child : info->childTables) {
        if (formats_info* const child_info = FindFormat(child)) {
            StoreDatasetName(*child_info, name);
        }
    }
}

wchar_t* MemoryResidentData::GetDbCurrentDatasetName(std::int32_t format) {
    formats_info* const info = FindFormat(format);
    return info != nullptr ? DatasetNameBuffer(*info) : nullptr;
}

void MemoryResidentData::SetDatasetName(std::int32_t format, const wchar_t* name) {
    formats_info* const info = FindFormat(format);
    if (info == nullptr) {
        return;
    }
    const std::wstring wanted = name != nullptr ? name : L""; // the name may stand in the buffer that is written
    if (!EqualIgnoringCase(wanted, DatasetNameBuffer(*info))) {
        StoreDatasetName(*info, wanted);
    }
    info->changed = true;
    info->changedRecords.MarkRange(info->recordCount);
}

void MemoryResidentData::SetDbCurrentDatasetName(std::int32_t format, const wchar_t* name) {
    const std::int32_t parent = GetAssociateTableNumber(format);
    const std::int32_t root = parent != -1 ? parent : format;
    const formats_info* const info = FindFormat(root);
    if (info == nullptr) {
        return;
    }
    const std::wstring wanted = name != nullptr ? name : L"";
    SetDatasetName(root, wanted.c_str());
    for (const std::int32_t child : info->childTables) {
        SetDatasetName(child, wanted.c_str());
    }
}

bool MemoryResidentData::IsAssociatedTable(std::int32_t format) {
    return GetAssociatedTable(format) != nullptr;
}

wchar_t* MemoryResidentData::GetAssociatedTable(std::int32_t format) {
    const formats_info* const info = FindFormat(format);
    return info != nullptr ? info->associatedTableName.get() : nullptr;
}

std::int32_t MemoryResidentData::GetAssociateTableNumber(std::int32_t format) {
    return FindFormatByName(GetAssociatedTable(format));
}

void MemoryResidentData::SetAssociatedTable(std::int32_t format, wchar_t* name, bool eligible_common_dataset) {
    formats_info* const info = FindFormat(format);
    TakeOver(info != nullptr ? &info->associatedTableName : nullptr, name);
    if (info != nullptr) {
        info->eligibleForCommonDataset = eligible_common_dataset;
    }
}

bool MemoryResidentData::IsAssociatedTableEligibleCommonDataset(std::int32_t format) {
    const formats_info* const info = FindFormat(format);
    return info != nullptr && info->eligibleForCommonDataset;
}

void MemoryResidentData::AddChildTable(std::int32_t format, std::int32_t child) {
    formats_info* const info = FindFormat(format);
    if (info != nullptr && FindFormat(child) != nullptr) {
        info->childTables.push_back(child);
    }
}

bool MemoryResidentData::IsFormatChildOfParent(std::int32_t format, std::int32_t child) {
    const formats_info* const info = FindFormat(format);
    return info != nullptr && std::ranges::find(info->childTables, child) != info->childTables.end();
}

} // namespace Kestrona::Data::MemoryResident
