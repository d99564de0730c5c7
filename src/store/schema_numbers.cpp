// Implements: the plain numbers of formats and fields: type, table, source, related, data slots, dialog level, key,
// counts and limits.
#include "platform/format_text.h"
#include "store/column_ownership.h"
#include "store/growing_fields.h"

#include <kestrona/services.h>
#include <kestrona/store.h>

#include <algorithm>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr std::int32_t kNone = -1;
constexpr const wchar_t* kTableYLine = L"SetDbTableY Format %li Field %li Value %li\n";

template <typename Record, typename T>
T Read(const Record* record, T Record::*member, T neutral) {
    return record != nullptr ? record->*member : neutral;
}

template <typename Record, typename T>
void Write(Record* record, T Record::*member, T value) {
    if (record != nullptr) {
        record->*member = value;
    }
}

bool IsDataSlot(std::int32_t slot) {
    return slot >= 0 && slot < kDataSlots;
}

} // namespace

std::int32_t MemoryResidentData::GetFormatCount() {
    return formatCount_;
}

std::uint32_t MemoryResidentData::GetDbType(std::int32_t format, std::int32_t field) {
    return Read(FindField(format, field), &field_info::type, std::uint32_t{0});
}

void MemoryResidentData::SetDbType(std::int32_t format, std::int32_t field, std::uint32_t type) {
    Write(FindField(format, field), &field_info::type, type);
    ForgetGrowingFields();
}

void MemoryResidentData::AddDbType(std::int32_t format, std::int32_t field, std::uint32_t bits) {
    SetDbType(format, field, GetDbType(format, field) | bits);
}

std::int32_t MemoryResidentData::GetDbTable(std::int32_t format, std::int32_t field) {
    return Read(FindField(format, field), &field_info::table, kNone);
}

void MemoryResidentData::SetDbTable(std::int32_t format, std::int32_t field, std::int32_t value) {
    Write(FindField(format, field), &field_info::table, value);
    ForgetGrowingFields();
}

std::int32_t MemoryResidentData::GetDbSource(std::int32_t format, std::int32_t field) {
    return Read(FindField(format, field), &field_info::source, kNone);
}

void MemoryResidentData::SetDbSource(std::int32_t format, std::int32_t field, std::int32_t value) {
    Write(FindField(format, field), &field_info::source, value);
}

std::int32_t MemoryResidentData::GetDbSourceS(std::int32_t format, std::int32_t field) {
    return Read(FindField(format, field), &field_info::sourceS, kNone);
}

void MemoryResidentData::SetDbSourceS(std::int32_t format, std::int32_t field, std::int32_t value) {
    Write(FindField(format, field), &field_info::sourceS, value);
}

std::int32_t MemoryResidentData::GetDbRelated(std::int32_t format, std::int32_t field) {
    return Read(FindField(format, field), &field_info::related, kNone);
}

void MemoryResidentData::SetDbRelated(std::int32_t format, std::int32_t field, std::int32_t value) {
    Write(FindField(format, field), &field_info::related, value);
}

std::int32_t MemoryResidentData::GetDbRelatedY(std::int32_t format, std::int32_t field) {
    return Read(FindField(format, field), &field_info::relatedY, kNone);
}

void MemoryResidentData::SetDbRelatedY(std::int32_t format, std::int32_t field, std::int32_t value) {
    Write(FindField(format, field), &field_info::relatedY, value);
}

std::int32_t MemoryResidentData::GetDbTableY(std::int32_t format, std::int32_t field) {
    return Read(FindField(format, field), &field_info::tableY, kNone);
}

void MemoryResidentData::SetDbTableY(std::int32_t format, std::int32_t field, std::int32_t value) {
    if (IsDebugLogEnabled()) {
        KSDLL_WriteDebug(Platform::FormatText(kTableYLine, format, field, value).c_str());
    }
    Write(FindField(format, field), &field_info::tableY, value);
    ForgetGrowingFields();
}

std::int32_t MemoryResidentData::GetDbSourceY(std::int32_t format, std::int32_t field) {
    return Read(FindField(format, field), &field_info::sourceY, kNone);
}

void MemoryResidentData::SetDbSourceY(std::int32_t format, std::int32_t field, std::int32_t value) {
    Write(FindField(format, field), &field_info::sourceY, value);
}

std::int32_t MemoryResidentData::GetDbData(std::int32_t format, std::int32_t field, std::int32_t slot) {
    const field_info* const info = FindField(format, field);
    return info != nullptr && IsDataSlot(slot) ? info->data[static_cast<std::size_t>(slot)] : 0;
}

void MemoryResidentData::SetDbData(std::int32_t format, std::int32_t field, std::int32_t slot, std::int32_t value) {
    field_info* const info = FindField(format, field);
    if (info != nullptr && IsDataSlot(slot)) {
        info->data[static_cast<std::size_t>(slot)] = value;
    }
}

ReadOnlyType MemoryResidentData::GetDbReadOnly(std::int32_t format, std::int32_t field) {
    return Read(FindField(format, field), &field_info::readOnly, ReadOnlyType::No);
}

void MemoryResidentData::SetDbReadOnly(std::int32_t format, std::int32_t field, ReadOnlyType value) {
    Write(FindField(format, field), &field_info::readOnly, value);
}

std::int32_t MemoryResidentData::GetDbXLocation(std::int32_t format, std::int32_t field) {
    return Read(FindField(format, field), &field_info::xLocation, 0);
}

void MemoryResidentData::SetDbXLocation(std::int32_t format, std::int32_t field, std::int32_t value) {
    Write(FindField(format, field), &field_info::xLocation, value);
}

void MemoryResidentData::SetDbDefaultValue(std::int32_t format, std::int32_t field, double value) {
    Write(FindField(format, field), &field_info::defaultValue, value);
}

bool MemoryResidentData::GetParentSortEnabled(std::int32_t format, std::int32_t field) {
    return Read(FindField(format, field), &field_info::parentSortEnabled, false);
}

void MemoryResidentData::SetParentSortEnabled(std::int32_t format, std::int32_t field, bool enabled) {
    Write(FindField(format, field), &field_info::parentSortEnabled, enabled);
}

std::int16_t MemoryResidentData::GetDbDialogLevel(std::int32_t format, std::int32_t field) {
    const field_info* const info = FindField(format, field);
    return info != nullptr ? info->current.dialogLevel : std::int16_t{0};
}

void MemoryResidentData::SetDbDialogLevel(std::int32_t format, std::int32_t field, std::int16_t level) {
    if (field_info* const info = FindField(format, field)) {
        info->current.dialogLevel = level;
    }
}

bool MemoryResidentData::IsHiddenDialog(std::int32_t format, std::int32_t field) {
    return GetDbDialogLevel(format, field) == kHiddenDialogLevel;
}

std::int32_t MemoryResidentData::GetDbFields(std::int32_t format) {
    return Read(FindFormat(format), &formats_info::fieldCount, 0);
}

void MemoryResidentData::SetDbFields(std::int32_t format, std::int32_t count) {
    Write(FindFormat(format), &formats_info::fieldCount, std::max(count, 0));
}

std::int32_t MemoryResidentData::GetDbMinLength(std::int32_t format) {
    return Read(FindFormat(format), &formats_info::minimumLength, 0);
}

void MemoryResidentData::SetDbMinLength(std::int32_t format, std::int32_t value) {
    Write(FindFormat(format), &formats_info::minimumLength, value);
}

std::int32_t MemoryResidentData::GetUserMaxRecords(std::int32_t format) {
    return Read(FindFormat(format), &formats_info::userMaximumRecords, 0);
}

void MemoryResidentData::SetUserMaxRecords(std::int32_t format, std::int32_t count) {
    Write(FindFormat(format), &formats_info::userMaximumRecords, count);
}

std::int32_t MemoryResidentData::GetCopiedFormatSource(std::int32_t format) {
    return Read(FindFormat(format), &formats_info::copiedFormatSource, kNone);
}

void MemoryResidentData::SetCopiedFormatSource(std::int32_t format, std::int32_t source) {
    Write(FindFormat(format), &formats_info::copiedFormatSource, source);
}

std::int32_t MemoryResidentData::GetDbKey(std::int32_t format) {
    return Read(FindFormat(format), &formats_info::keyField, kNone);
}

void MemoryResidentData::SetDbKey(std::int32_t format, std::int32_t field) {
    Write(FindFormat(format), &formats_info::keyField, field);
    if (field_info* const key = FindField(format, field)) {
        IndexColumn(*FindFormat(format), *key, &field_info::column);
    }
}

} // namespace Kestrona::Data::MemoryResident
