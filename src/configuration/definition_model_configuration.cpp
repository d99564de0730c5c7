// Implements: ConfigurationDefinition.
#include <kestrona/definition_model.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>

namespace Kestrona::Configuration {

using Data::MemoryResident::MemoryResidentData;

ConfigurationDefinition::ConfigurationDefinition(MemoryResidentData& store) : store_(store) {}

TableDefinition* ConfigurationDefinition::GetTableDefinition(std::int32_t index) const {
    return new TableDefinition(store_, index);
}

TableDefinition* ConfigurationDefinition::FindTableDefinitionByName(const std::wstring& name) const {
    const std::int32_t index = GetTableIndex(name);
    return index < 0 ? nullptr : GetTableDefinition(index);
}

std::vector<TableDefinition*> ConfigurationDefinition::get_TableDefinitions() const {
    std::vector<TableDefinition*> tables;
    tables.reserve(static_cast<std::size_t>(std::max(store_.GetFormatCount(), 0)));
    for (std::int32_t index = 0; index < store_.GetFormatCount(); ++index) {
        tables.push_back(GetTableDefinition(index));
    }
    return tables;
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes what the object is a view of
void ConfigurationDefinition::KeepOriginal() {
    for (TableDefinition* const table : get_TableDefinitions()) {
        const std::unique_ptr<TableDefinition> owned(table);
        table->KeepOriginal();
    }
}

// NOLINTNEXTLINE(readability-make-member-function-const): likewise
void ConfigurationDefinition::RestoreOriginal() {
    for (TableDefinition* const table : get_TableDefinitions()) {
        const std::unique_ptr<TableDefinition> owned(table);
        table->RestoreOriginal();
    }
}

std::int32_t ConfigurationDefinition::GetTableIndex(const std::wstring& name) const {
    for (std::int32_t index = 0; index < store_.GetFormatCount(); ++index) {
        const wchar_t* const other = store_.GetDbName(index);
        if (other != nullptr && other == std::wstring_view(name)) {
            return index;
        }
    }
    return -1;
}

} // namespace Kestrona::Configuration
