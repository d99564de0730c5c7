// Implements: the texts of references, of texts held by number, and of string tables.
#include "configuration/parsers/field_caches.h"
#include "text/date_messages.h"
#include "text/number_expression.h"
#include "text/number_format.h"
#include "text/read_level.h"
#include "text/value_forms.h"

#include <kestrona/built_in_tables.h>
#include <kestrona/classes.h>
#include <kestrona/value_text.h>

namespace Kestrona::Text {

using Data::MemoryResident::field_info;
using Data::MemoryResident::IMemoryResidentData;

namespace {

constexpr double kUnsetKey = -1.0;
constexpr std::int32_t kDecimalsOfKeys = 2;

struct Target {
    std::int32_t format;
    std::int32_t field;
};

// False when no record has the key. Formats may refer to each other in a ring, and a calculated field on the way may
// ask for texts itself.
bool ShowTarget(const ShownValue& shown, std::int32_t keys, const Target& target, std::wstring& text) {
    const ReadLevel level(0);
    const std::int32_t record = level.IsGranted() ? shown.store.LookupKeyRecord(keys, shown.value) : -1;
    if (record >= 0) {
        KSDLL_FieldToTString(shown.store, target.format, target.field, record, &text);
    }
    return record >= 0;
}

std::int32_t Slot(const field_info& info, std::int32_t slot) {
    return info.data[static_cast<std::size_t>(slot)];
}

std::wstring StoredText(const ShownValue& shown) {
    const std::int32_t format = Slot(shown.info, DataSlot::kStorageFormat);
    const std::int32_t record = shown.store.LookupKeyRecord(format, shown.value);
    return record >= 0 ? shown.store.GetDbString(format, Slot(shown.info, DataSlot::kStorageField), record)
                       : std::wstring();
}

std::wstring MissingTarget(const ShownValue& shown) {
    if (shown.value != kUnsetKey) {
        return FixedText(shown.value, kDecimalsOfKeys);
    }
    const bool second =
        HasClass(shown.info, Classes::kSequenceOwner) || HasClass(shown.info, Classes::kSecondUnsetWord);
    return Message(second ? kSecondUnsetWord : kUnsetWord);
}

void ShowDatabase(const ShownValue& shown, std::wstring& text) {
    const field_info& info = shown.info;
    const Target target = shown.list_index != -1
                              ? Target{Slot(info, DataSlot::kMatrixFormat), Slot(info, DataSlot::kMatrixField)}
                              : Target{info.table, info.source};
    if (!ShowTarget(shown, target.format, target, text)) {
        text = MissingTarget(shown);
    }
}

void ShowFamily(const ShownValue& shown, std::wstring& text) {
    if (!ShowTarget(shown, shown.format, {shown.format, shown.info.table}, text)) {
        text = Message(kNoFamilyWord);
    }
}

std::wstring TableText(const ShownValue& shown) {
    const std::int32_t table = GetStringTableIndex(shown.store, shown.format, shown.field);
    const std::int32_t count = shown.store.GetTableFields(table);
    for (std::int32_t index = 0; index < count; ++index) {
        if (shown.store.GetTableValue(table, index) == shown.value) {
            return shown.store.GetTableText(table, index);
        }
    }
    return FixedText(shown.value, kDecimalsOfKeys);
}

bool IsNamed(IMemoryResidentData& store, std::int32_t table, const std::wstring& name) {
    const wchar_t* const found = store.GetTableName(table);
    return found != nullptr && found == name;
}

} // namespace

void ShowReference(const ShownValue& shown, std::wstring& text) {
    const field_info& info = shown.info;
    if (HasClass(info, Classes::kStringStorage)) {
        text = StoredText(shown);
    } else if (HasClass(info, Classes::kFreeFormat)) {
        text = shown.store.GetDbString(shown.format, shown.field, shown.record);
    } else if (HasClass(info, Classes::kDatabase)) {
        if (HasClass(info, Classes::kDataList)) {
            text = KSDLL_ParseWriteDoubleT(shown.value) + L' ';
        } else {
            ShowDatabase(shown, text);
        }
    } else if (HasClass(info, Classes::kFamily)) {
        ShowFamily(shown, text);
    } else {
        text = TableText(shown);
    }
}

} // namespace Kestrona::Text

std::int32_t GetStringTableIndex(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                 std::int32_t field) {
    Kestrona::Data::MemoryResident::field_info* const info = store.GetFieldInfo(format, field);
    if (info == nullptr) {
        return 0;
    }
    if (Kestrona::Text::HasClass(*info, Kestrona::Classes::kStringTableCached) && info->stringTableIndex != -1) {
        return info->stringTableIndex;
    }
    const std::wstring& name = Kestrona::Configuration::Parsers::KeptStringTableName(*info);
    if (!name.empty() && Kestrona::Text::IsNamed(store, info->stringTableIndex, name)) {
        return info->stringTableIndex; // nearly always the table of the last time
    }
    std::int32_t index = 0;
    if (!name.empty()) {
        Kestrona::Configuration::BuiltInTableManager::FindBuiltInTable(store, name.c_str(), &index);
    }
    info->stringTableIndex = index;
    return index;
}
