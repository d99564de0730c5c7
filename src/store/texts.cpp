// Implements: the names of formats and fields, the extension, and the texts of cells.
#include "store/format_names.h"
#include "store/growing_fields.h"
#include "store/take_over.h"

#include <kestrona/classes.h>
#include <kestrona/store.h>
#include <kestrona/unicode.h>

namespace Kestrona::Data::MemoryResident {

wchar_t* MemoryResidentData::GetDbName(std::int32_t format) {
    const formats_info* const info = FindFormat(format);
    return info != nullptr ? info->name.get() : nullptr;
}

void MemoryResidentData::SetDbName(std::int32_t format, wchar_t* name) {
    formats_info* const info = FindFormat(format);
    names_->Forget();
    ForgetGrowingFields();
    TakeOver(info != nullptr ? &info->name : nullptr, name);
}

const std::wstring& MemoryResidentData::GetDbDisplayName(std::int32_t format) {
    static const std::wstring none;
    const formats_info* const info = FindFormat(format);
    return info != nullptr ? info->displayName : none;
}

void MemoryResidentData::SetDbDisplayName(std::int32_t format, const std::wstring& name) {
    if (formats_info* const info = FindFormat(format)) {
        info->displayName = name;
    }
}

wchar_t* MemoryResidentData::GetDbExtension(std::int32_t format) {
    const formats_info* const info = FindFormat(format);
    return info != nullptr ? info->extension.get() : nullptr;
}

void MemoryResidentData::SetDbExtension(std::int32_t format, wchar_t* extension) {
    formats_info* const info = FindFormat(format);
    ForgetGrowingFields();
    TakeOver(info != nullptr ? &info->extension : nullptr, extension);
}

std::wstring MemoryResidentData::GetColumnName(std::int32_t format, std::int32_t field) {
    const field_info* const info = FindField(format, field);
    return info != nullptr ? info->name : std::wstring();
}

void MemoryResidentData::SetColumnName(std::int32_t format, std::int32_t field, const std::wstring& name) {
    if (field_info* const info = FindField(format, field)) {
        info->name = name;
    }
}

std::wstring MemoryResidentData::GetDbString(std::int32_t format, std::int32_t field, std::int32_t record) {
    const field_info* const info = FindField(format, field);
    return info != nullptr && info->stringColumn != nullptr ? info->stringColumn->GetValue(record) : std::wstring();
}

void MemoryResidentData::SetDbString(std::int32_t format, std::int32_t field, std::int32_t record,
                                     const std::wstring& text) {
    const field_info* const info = FindField(format, field);
    if (info == nullptr || info->stringColumn == nullptr) {
        return;
    }
    const std::int32_t limit = info->data[DataSlot::kMaxTextLength];
    const std::wstring_view kept = limit > 0 ? CutUtf16(text, static_cast<std::size_t>(limit)) : text;
    if (kept.size() == text.size()) {
        info->stringColumn->SetValue(record, text);
    } else {
        info->stringColumn->SetValue(record, std::wstring(kept));
    }
}

} // namespace Kestrona::Data::MemoryResident
