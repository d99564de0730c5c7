#include "configuration/load_state.h"
#include "platform/format_text.h"
#include "platform/scan_wide.h"

#include <kestrona/built_in_tables.h>
#include <kestrona/process.h>
#include <kestrona/services.h>
#include <kestrona/types.h>
#include <kestrona/unicode.h>

#include <string_view>

namespace Kestrona::Configuration {

using Data::MemoryResident::IMemoryResidentData;

namespace {

constexpr const wchar_t* kDefineTable = L"#define_Table";
constexpr const wchar_t* kHelpTable = L"#popup_help_Table";

// Gives the slot of the name, or the free one behind the tables; false when there is neither.
bool FindSlot(IMemoryResidentData& store, std::wstring_view name, std::int32_t& slot) {
    for (slot = 0; slot < kMaxStringTables; ++slot) {
        const wchar_t* other = store.GetTableName(slot);
        if (other == nullptr || other == name) {
            return true;
        }
    }
    return false;
}

void EmptySlot(IMemoryResidentData& store, std::int32_t slot) {
    KSDLL_WriteDebug(Platform::FormatText(L"Create Table %li", slot));
    store.SetTableName(slot, nullptr);
    store.SetTableFields(slot, 0);
    KSDLL_WriteDebug(Platform::FormatText(L"Table %li Created", slot));
}

bool HoldsText(IMemoryResidentData& store, std::int32_t table, std::wstring_view text) {
    const std::int32_t count = store.GetTableFields(table);
    for (std::int32_t index = 0; index < count; ++index) {
        if (EqualIgnoringCase(store.GetTableText(table, index), text)) {
            return true;
        }
    }
    return false;
}

} // namespace

void BuiltInTableManager::Initialise(IMemoryResidentData& store) {
    store.CreateTablePointer(); // a second store of the process needs its own
    if (!ClaimStringTables() || store.GetTableName(0) != nullptr) {
        return; // tables that a host has filled stay
    }
    KSDLL_WriteDebug(L"Initialising");
    for (std::int32_t slot = 0; slot < kMaxStringTables; ++slot) {
        EmptySlot(store, slot);
    }
}

std::int32_t BuiltInTableManager::FindOrCreateStringTable(IMemoryResidentData& store, const wchar_t* name) {
    Initialise(store);
    std::int32_t slot = -1;
    if (!FindSlot(store, name, slot)) {
        return -1;
    }
    if (store.GetTableName(slot) == nullptr) {
        store.CreateTableFields(slot);
        store.SetTableName(slot, KSDLL_AddText(name));
    }
    return slot;
}

void BuiltInTableManager::AddDefineItem(IMemoryResidentData& store, const wchar_t* text, double value) {
    const std::int32_t table = FindOrCreateStringTable(store, kDefineTable);
    if (table < 0 || HoldsText(store, table, text)) {
        return;
    }
    const std::int32_t index = store.GetTableFields(table);
    if (index < kMaxStringTableEntries) {
        store.SetTableFields(table, index + 1);
        store.SetTableText(table, index, KSDLL_AddText(text));
        store.SetTableValue(table, index, value);
    }
}

bool BuiltInTableManager::FindBuiltInTable(IMemoryResidentData& store, const wchar_t* name, std::int32_t* number) {
    std::int32_t slot = -1;
    if (!FindSlot(store, name, slot) || store.GetTableName(slot) == nullptr) {
        return false;
    }
    *number = slot;
    return true;
}

std::int32_t HelpPopupTableManager::FindOrCreate(IMemoryResidentData& store) {
    return BuiltInTableManager::FindOrCreateStringTable(store, kHelpTable);
}

bool HelpPopupTableManager::GetHelpText(IMemoryResidentData& store, std::int32_t id, std::wstring* text) {
    std::int32_t table = -1;
    if (!BuiltInTableManager::FindBuiltInTable(store, kHelpTable, &table)) {
        return false;
    }
    const std::int32_t count = store.GetTableFields(table);
    for (std::int32_t index = 0; index < count; ++index) {
        if (store.GetTableValue(table, index) == static_cast<double>(id)) {
            *text = store.GetTableText(table, index);
            return true;
        }
    }
    return false;
}

} // namespace Kestrona::Configuration

std::wstring KSDLL_GetDefaultFreeFormatStringValue(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                   std::int32_t format, std::int32_t field) {
    const std::wstring_view text = store.GetDbClassString(format, field);
    const std::size_t keyword = text.find(L"FF_STRING_DEF ");
    std::wstring value;
    if (keyword != std::wstring_view::npos) {
        Kestrona::Platform::ScanWide(text.substr(keyword), L"FF_STRING_DEF \"%[^\"]", &value);
    }
    return value;
}
