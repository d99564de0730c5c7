#include "definition/fill_tables.h"

#include "definition/string_tables.h"

#include <kestrona/process.h>

#include <cstdint>
#include <string_view>

namespace Kestrona::Host::Language {

namespace {

using Data::MemoryResident::IMemoryResidentData;

// Tables fill the slots from the first one on; a slot without a name ends them.
std::int32_t FindOrCreateTable(IMemoryResidentData& store, std::wstring_view name) {
    for (std::int32_t table = 0; table < kMaxStringTables; ++table) {
        const wchar_t* other = store.GetTableName(table);
        if (other == nullptr) {
            store.CreateTableFields(table);
            store.SetTableName(table, KSDLL_AddText(std::wstring(name).c_str()));
            return table;
        }
        if (other == name) {
            return table;
        }
    }
    return -1;
}

class TableWriter {
public:
    explicit TableWriter(IMemoryResidentData& store) : store_(store) { store_.CreateTablePointer(); }

    // `entry(i)` gives the text and the value of entry i.
    template <typename Entry>
    void Write(std::wstring_view name, std::size_t count, Entry entry) {
        const std::int32_t table = FindOrCreateTable(store_, name);
        if (table < 0) {
            all_written_ = false;
            return;
        }
        store_.SetTableFields(table, static_cast<std::int32_t>(count));
        for (std::size_t i = 0; i < count; ++i) {
            const auto& [text, value] = entry(i);
            store_.SetTableText(table, static_cast<std::int32_t>(i), KSDLL_AddText(text.c_str()));
            store_.SetTableValue(table, static_cast<std::int32_t>(i), value);
        }
    }

    [[nodiscard]] bool AllWritten() const { return all_written_; }

private:
    IMemoryResidentData& store_;
    bool all_written_ = true;
};

} // namespace

bool FillTables(const Definition& definition, IMemoryResidentData& store) {
    TableWriter writer(store);
    if (!definition.constants.empty()) {
        writer.Write(kConstantTable, definition.constants.size(), [&](std::size_t i) {
            return StringTableDefinition::Entry{definition.constants[i].name, definition.constants[i].value};
        });
    }
    if (!definition.help.empty()) {
        writer.Write(kHelpTable, definition.help.size(), [&](std::size_t i) {
            return StringTableDefinition::Entry{definition.help[i].text, static_cast<double>(definition.help[i].id)};
        });
    }
    for (const StringTableDefinition& table : definition.tables) {
        writer.Write(table.name, table.entries.size(), [&](std::size_t i) { return table.entries[i]; });
    }
    return writer.AllWritten();
}

} // namespace Kestrona::Host::Language
