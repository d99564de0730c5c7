#include "definition/print_tables.h"

#include "definition/print_text.h"
#include "definition/string_tables.h"
#include "definition/values.h"

#include <kestrona/types.h>

#include <cstdint>
#include <string_view>

namespace Kestrona::Host::Language {

namespace {

using Data::MemoryResident::IMemoryResidentData;

std::string PrintConstants(IMemoryResidentData& store, std::int32_t table) {
    std::string text;
    for (std::int32_t i = 0; i < store.GetTableFields(table); ++i) {
        text += "define " + PrintName(store.GetTableText(table, i)) + " = " +
                PrintValue(store.GetTableValue(table, i)) + "\n";
    }
    return text;
}

std::string PrintHelp(IMemoryResidentData& store, std::int32_t table) {
    std::string text;
    for (std::int32_t i = 0; i < store.GetTableFields(table); ++i) {
        text +=
            "help " + PrintValue(store.GetTableValue(table, i)) + " " + PrintText(store.GetTableText(table, i)) + "\n";
    }
    return text;
}

std::string PrintTable(IMemoryResidentData& store, std::int32_t table) {
    std::string text = "table " + PrintText(store.GetTableName(table)) + " {\n";
    for (std::int32_t i = 0; i < store.GetTableFields(table); ++i) {
        text +=
            "    " + PrintText(store.GetTableText(table, i)) + " = " + PrintValue(store.GetTableValue(table, i)) + "\n";
    }
    return text + "}\n";
}

} // namespace

std::string PrintTables(IMemoryResidentData& store) {
    std::string text;
    for (std::int32_t table = 0; table < kMaxStringTables && store.GetTableName(table) != nullptr; ++table) {
        const std::wstring_view name = store.GetTableName(table);
        const auto print = name == kConstantTable ? PrintConstants : name == kHelpTable ? PrintHelp : PrintTable;
        const std::string statements = print(store, table);
        text += statements.empty() ? "" : statements + "\n";
    }
    return text;
}

} // namespace Kestrona::Host::Language
