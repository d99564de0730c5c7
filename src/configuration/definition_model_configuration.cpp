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
    std::vector<std::unique_ptr<TableDefinition>> made;
    made.reserve(static_cast<std::size_t>(std::max(store_.GetFormatCount(), 0)));
    for (std::int32_t index = 0; index < store_.GetFormatCount(); ++index) {
        made.push_back(std::make_unique<TableDefinition>(store_, index));
    }
    std::vector<TableDefinition*> tables(made.size());
    std::ranges::transform(made, tables.begin(), [](auto& table) { return table.release(); });
    return tables;
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes what the object is a view of
void ConfigurationDefinition::KeepOriginal() {
    for (std::int32_t index = 0; index < store_.GetFormatCount(); ++index) {
        TableDefinition(store_, index).KeepOriginal();
    }
}

// NOLINTNEXTLINE(readability-make-member-function-const): likewise
void ConfigurationDefinition::RestoreOriginal() {
    for (std::int32_t index = 0; index < store_.GetFormatCount(); ++index) {
        TableDefinition(store_, index).RestoreOriginal();
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
