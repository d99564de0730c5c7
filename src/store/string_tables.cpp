// Implements: the string tables.
#include "store/take_over.h"

#include <kestrona/store.h>

#include <algorithm>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr double kNoValue = -1.0;

} // namespace

TableInfo* MemoryResidentData::FindTable(std::int32_t table) {
    const bool found = tables_ != nullptr && table >= 0 && table < kMaxStringTables;
    return found ? &tables_[static_cast<std::size_t>(table)] : nullptr;
}

// An entry that has memory, counted or not.
TableEntry* MemoryResidentData::FindTableEntry(std::int32_t table, std::int32_t index) {
    const TableInfo* const info = FindTable(table);
    const bool found = info != nullptr && info->entries != nullptr && index >= 0 && index < kMaxStringTableEntries;
    return found ? &info->entries[static_cast<std::size_t>(index)] : nullptr;
}

void MemoryResidentData::CreateTablePointer() {
    if (tables_ == nullptr) {
        tables_ = std::make_unique<TableInfo[]>(static_cast<std::size_t>(kMaxStringTables));
    }
}

void MemoryResidentData::CreateTableFields(std::int32_t table) {
    if (TableInfo* const info = FindTable(table)) {
        info->entries = std::make_unique<TableEntry[]>(static_cast<std::size_t>(kMaxStringTableEntries));
    }
}

std::int32_t MemoryResidentData::GetTableFields(std::int32_t table) {
    const TableInfo* const info = FindTable(table);
    return info != nullptr ? info->entryCount : 0;
}

void MemoryResidentData::SetTableFields(std::int32_t table, std::int32_t count) {
    if (TableInfo* const info = FindTable(table)) {
        info->entryCount = std::clamp(count, 0, kMaxStringTableEntries);
    }
}

wchar_t* MemoryResidentData::GetTableName(std::int32_t table) {
    const TableInfo* const info = FindTable(table);
    return info != nullptr ? info->name.get() : nullptr;
}

void MemoryResidentData::SetTableName(std::int32_t table, wchar_t* name) {
    TableInfo* const info = FindTable(table);
    TakeOver(info != nullptr ? &info->name : nullptr, name);
}

const wchar_t* MemoryResidentData::GetTableText(std::int32_t table, std::int32_t index) {
    const TableEntry* const entry = index < GetTableFields(table) ? FindTableEntry(table, index) : nullptr;
    return entry != nullptr && entry->text ? entry->text.get() : L"";
}

void MemoryResidentData::SetTableText(std::int32_t table, std::int32_t index, wchar_t* text) {
    TableEntry* const entry = FindTableEntry(table, index);
    TakeOver(entry != nullptr ? &entry->text : nullptr, text);
}

double MemoryResidentData::GetTableValue(std::int32_t table, std::int32_t index) {
    const TableEntry* const entry = index < GetTableFields(table) ? FindTableEntry(table, index) : nullptr;
    return entry != nullptr ? entry->value : kNoValue;
}

void MemoryResidentData::SetTableValue(std::int32_t table, std::int32_t index, double value) {
    if (TableEntry* const entry = FindTableEntry(table, index)) {
        entry->value = value;
    }
}

} // namespace Kestrona::Data::MemoryResident
