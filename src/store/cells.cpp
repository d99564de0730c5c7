// Implements: GetDbValue, SetDbValue, GetDbDefaultValue, GetDbKeyValue, SetDbKeyValue, GetDbUpdate, SetDbUpdate,
// HasStorage.
//
// A good read or write is two array steps, one comparison and one virtual call. Everything else stands in functions of
// its own, out of the way.
#include "platform/format_text.h"
#include "platform/scan_wide.h"
#include "store/class_test.h"

#include <kestrona/classes.h>
#include <kestrona/classification_readers.h>
#include <kestrona/services.h>
#include <kestrona/store.h>

#include <cassert>
#include <string_view>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr const wchar_t* kBadRead = L"Get Invalid Record Number %li for format %s field %s";
constexpr const wchar_t* kBadWrite = L"Set Invalid Record Number %li for format %s";
constexpr const wchar_t* kAssertCaption = L"Assert";
constexpr std::wstring_view kStringDefault = L"STRING_DEF";
constexpr const wchar_t* kStringDefaultPattern = L"STRING_DEF \"%[^\"]";
constexpr double kNoKey = -1.0;
constexpr std::int32_t kSubstituteFound = 0;

// The text of a STRING_DEF classification, empty for none.
std::wstring StringDefault(const field_info& field) {
    std::wstring text;
    if (HasClass(field, Classes::kStringDefault)) {
        const std::wstring_view classification = field.current.classString;
        const std::size_t start = classification.find(kStringDefault);
        if (start != std::wstring_view::npos) {
            Platform::ScanWide(classification.substr(start), kStringDefaultPattern, &text);
        }
    }
    return text;
}

} // namespace

double MemoryResidentData::GetDbValue(std::int32_t format, std::int32_t field, std::int32_t record) {
    assert(FindField(format, field) != nullptr);
    const formats_info& info = formats_[static_cast<std::size_t>(format)];
    const IColumn<double>* const column = info.fields[static_cast<std::size_t>(field)].column;
    // One comparison for both ends; scratch records are sorted out beyond it.
    if (static_cast<std::uint32_t>(record) >= static_cast<std::uint32_t>(info.recordCount) || column == nullptr)
        [[unlikely]] {
        return ReadBeyondRecords(format, field, record);
    }
    return column->GetValue(record);
}

void MemoryResidentData::SetDbValue(std::int32_t format, std::int32_t field, std::int32_t record, double value) {
    assert(FindField(format, field) != nullptr);
    IColumn<double>* const column =
        formats_[static_cast<std::size_t>(format)].fields[static_cast<std::size_t>(field)].column;
    // Nothing is needed any more after the test, so that the good way saves no registers.
    if (static_cast<std::uint32_t>(record) > static_cast<std::uint32_t>(kLastScratchRecord) || column == nullptr)
        [[unlikely]] {
        return WriteElsewhere(format, field, record, value);
    }
    column->SetValue(record, value);
}

[[gnu::noinline]] double MemoryResidentData::ReadBeyondRecords(std::int32_t format, std::int32_t field,
                                                               std::int32_t record) {
    if (record < kFirstScratchRecord && (record < 0 || record >= GetCurrentDbSize(format))) {
        ReportBadRead(format, field, record);
    }
    // Looked up again: a message box may have run anything.
    const IColumn<double>* const column = GetDbColumn(format, field);
    return column != nullptr ? column->GetValue(record) : GetDbDefaultValue(format, field);
}

[[gnu::noinline]] void MemoryResidentData::WriteElsewhere(std::int32_t format, std::int32_t field, std::int32_t record,
                                                          double value) {
    if (static_cast<std::uint32_t>(record) > static_cast<std::uint32_t>(kLastScratchRecord)) {
        ReportBadWrite(format, record);
    }
    if (IColumn<double>* const column = GetDbColumn(format, field)) {
        column->SetValue(record, value);
    }
}

[[gnu::cold]] void MemoryResidentData::ReportBadRead(std::int32_t format, std::int32_t field, std::int32_t record) {
    const std::wstring text = Platform::FormatText(kBadRead, record, GetDbName(format), GetColumnName(format, field));
    MessageManager::getInstance()->ShowMessage(text.c_str(), kAssertCaption, kMessageStyleError);
    KSDLL_WriteDebug(text.c_str());
}

[[gnu::cold]] void MemoryResidentData::ReportBadWrite(std::int32_t format, std::int32_t record) {
    KSDLL_WriteDebug(Platform::FormatText(kBadWrite, record, GetDbName(format)).c_str());
}

double MemoryResidentData::GetDbDefaultValue(std::int32_t format, std::int32_t field) {
    const field_info* const info = FindField(format, field);
    if (info == nullptr) {
        return 0.0;
    }
    const std::wstring text = StringDefault(*info);
    double value = 0.0;
    const bool found =
        !text.empty() && CheckForSubstitute(*this, format, field, nullptr, text.c_str(), &value) == kSubstituteFound;
    return found ? value : info->defaultValue;
}

double MemoryResidentData::GetDbKeyValue(std::int32_t format, std::int32_t record) {
    const std::int32_t key = GetDbKey(format);
    return FindField(format, key) != nullptr ? GetDbValue(format, key, record) : kNoKey;
}

void MemoryResidentData::SetDbKeyValue(std::int32_t format, std::int32_t record, double value) {
    const std::int32_t key = GetDbKey(format);
    if (FindField(format, key) != nullptr) {
        SetDbValue(format, key, record, value);
    }
}

std::int32_t MemoryResidentData::GetDbUpdate(std::int32_t format, std::int32_t record) {
    const formats_info* const info = FindFormat(format);
    return info != nullptr && info->updateColumn != nullptr ? info->updateColumn->GetValue(record) : 0;
}

void MemoryResidentData::SetDbUpdate(std::int32_t format, std::int32_t record, std::int32_t value) {
    formats_info* const info = FindFormat(format);
    if (info != nullptr && info->updateColumn != nullptr) {
        info->updateColumn->SetValue(record, value);
    }
}

bool IMemoryResidentData::HasStorage(std::int32_t format, std::int32_t field) {
    const field_info* const info = GetFieldInfo(format, field);
    if (info == nullptr) {
        return false;
    }
    const bool keeps_values = info->column != nullptr && !info->column->IsNullColumn() && info->column->CanWrite();
    return keeps_values || (info->stringColumn != nullptr && info->stringColumn->CanWrite());
}

} // namespace Kestrona::Data::MemoryResident
