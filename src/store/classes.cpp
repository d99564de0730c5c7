// Implements: the class words and the classification string of a field.
#include "configuration/parsers/field_caches.h"
#include "store/class_test.h"
#include "store/growing_fields.h"

#include <kestrona/store.h>

namespace Kestrona::Data::MemoryResident {

namespace {

// The class word of a field for changing it, null where there is none. What grows with whom may change with it.
std::uint32_t* FindWord(field_info* field, std::int32_t word) {
    ForgetGrowingFields();
    const bool found = field != nullptr && IsClassWord(word);
    return found ? &field->current.classWords[static_cast<std::size_t>(word)] : nullptr;
}

} // namespace

bool MemoryResidentData::ClassDefined(std::int32_t format, std::int32_t field, Class c) {
    const field_info* const info = FindField(format, field);
    return info != nullptr && HasClass(*info, c);
}

std::uint32_t MemoryResidentData::GetDbClass(std::int32_t format, std::int32_t field, std::int32_t word) {
    const field_info* const info = FindField(format, field);
    return info != nullptr ? ClassWord(*info, word) : 0;
}

void MemoryResidentData::SetDbClass(std::int32_t format, std::int32_t field, std::int32_t word, std::uint32_t bits) {
    if (std::uint32_t* const target = FindWord(FindField(format, field), word)) {
        *target = bits;
    }
}

void MemoryResidentData::AddDbClass(std::int32_t format, std::int32_t field, Class c) {
    if (std::uint32_t* const target = FindWord(FindField(format, field), c.word)) {
        *target |= c.mask;
    }
}

void MemoryResidentData::RemoveDbClass(std::int32_t format, std::int32_t field, Class c) {
    if (std::uint32_t* const target = FindWord(FindField(format, field), c.word)) {
        *target &= ~c.mask;
    }
}

const wchar_t* MemoryResidentData::GetDbClassString(std::int32_t format, std::int32_t field) {
    const field_info* const info = FindField(format, field);
    return info != nullptr ? info->current.classString.c_str() : L"";
}

void MemoryResidentData::SetDbClassString(std::int32_t format, std::int32_t field, const std::wstring& text) {
    field_info* const info = FindField(format, field);
    if (info == nullptr) {
        return;
    }
    Configuration::Parsers::EnsureFieldCaches(*info);
    info->substituteCache->Invalidate();
    info->substitutxCache->Invalidate();
    info->numberFormatCache->Invalidate();
    info->stringTableNameCache->Invalidate();
    info->stringTableIndex = -1;
    info->current.classString = text;
}

} // namespace Kestrona::Data::MemoryResident
