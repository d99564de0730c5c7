// Implements: TableDefinition.
#include "configuration/report.h"

#include <kestrona/classification_parsers.h>
#include <kestrona/definition_model.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <set>

namespace Kestrona::Configuration {

using Data::MemoryResident::formats_info;
using Data::MemoryResident::MemoryResidentData;

namespace {

constexpr const wchar_t* kNegativeTable = L"TableIndex must not be less than zero";

// The levels that every dialog has.
constexpr std::int16_t kNoDialogLevel = -32767;
constexpr std::int32_t kMsgHiddenLevel = 18500;
constexpr std::int32_t kMsgMainLevel = 18501;
constexpr std::int32_t kMsgNoLevel = 18503;
constexpr std::int32_t kHiddenKind = 6;
constexpr std::int32_t kNoLevelKind = 34;
constexpr std::int32_t kShownKind = 1;

} // namespace

TableDefinition::TableDefinition(MemoryResidentData& store, std::int32_t table) : table_(table), store_(store) {
    if (table < 0) {
        throw kNegativeTable;
    }
}

TableDefinition::~TableDefinition() = default;

std::wstring TableDefinition::get_NativeName() const {
    const wchar_t* const name = store_.GetDbName(table_);
    return name != nullptr ? name : L"";
}

std::wstring TableDefinition::get_DisplayName() const {
    return store_.GetDbDisplayName(table_);
}

void TableDefinition::set_DisplayName(const std::wstring& name) {
    store_.SetDbDisplayName(table_, name);
}

const std::wstring& TableDefinition::get_OriginalDisplayName() const {
    static const std::wstring none;
    const formats_info* const info = store_.GetFormatInfo(table_);
    return info != nullptr ? info->originalDisplayName : none;
}

ColumnDefinition* TableDefinition::get_PrimaryKey() const {
    const std::int32_t key = store_.GetDbKey(table_);
    return key < 0 ? nullptr : GetColumnDefinition(key);
}

ColumnDefinition* TableDefinition::FindColumnDefinitionByName(const std::wstring& name) const {
    const std::int32_t count = store_.GetDbFields(table_);
    for (std::int32_t column = 0; column < count; ++column) {
        if (store_.GetColumnName(table_, column) == name) {
            return GetColumnDefinition(column);
        }
    }
    return nullptr;
}

ColumnDefinition* TableDefinition::GetColumnDefinition(std::int32_t column) const {
    return new ColumnDefinition(store_, table_, column);
}

std::vector<ColumnDefinition*> TableDefinition::get_ColumnDefinitions() const {
    std::vector<std::unique_ptr<ColumnDefinition>> made;
    const std::int32_t count = store_.GetDbFields(table_);
    made.reserve(static_cast<std::size_t>(std::max(count, 0)));
    for (std::int32_t column = 0; column < count; ++column) {
        made.push_back(std::make_unique<ColumnDefinition>(store_, table_, column));
    }
    std::vector<ColumnDefinition*> columns(made.size());
    std::ranges::transform(made, columns.begin(), [](auto& column) { return column.release(); });
    return columns;
}

std::vector<DialogLevel> TableDefinition::get_DialogLevels() const {
    std::vector<DialogLevel> levels{{kHiddenDialogLevel, Message(kMsgHiddenLevel), kHiddenKind},
                                    {kNoDialogLevel, Message(kMsgNoLevel), kNoLevelKind},
                                    {0, Message(kMsgMainLevel), kShownKind}};
    std::set<std::int16_t> known{kHiddenDialogLevel, kNoDialogLevel, 0};
    const std::int32_t count = store_.GetDbFields(table_);
    for (std::int32_t index = 0; index < count; ++index) {
        const ColumnDefinition column(store_, table_, index);
        const NullValue<std::int32_t> list = column.get_AssociatedTo();
        if (!list.HasValue() || list.get_Value() < 0 || !known.insert(column.get_DialogLevel()).second) {
            continue;
        }
        levels.push_back({column.get_DialogLevel(),
                          ColumnDefinition(store_, table_, list.get_Value()).get_DisplayName(), kShownKind});
    }
    return levels;
}

bool TableDefinition::get_SystemTable() {
    if (!system_table_known_) {
        const Parsers::ClassificationParser_SYSTEMDB parser;
        const std::int32_t count = store_.GetDbFields(table_);
        for (std::int32_t column = 0; column < count && !system_table_; ++column) {
            system_table_ = parser.IsMatch(store_.GetDbClassString(table_, column));
        }
        system_table_known_ = true;
    }
    return system_table_;
}

bool TableDefinition::get_IsLoadable() const {
    return store_.GetDbExtension(table_) != nullptr;
}

bool TableDefinition::get_IsEligibleForCommonDataset() const {
    return store_.IsAssociatedTableEligibleCommonDataset(table_);
}

std::vector<std::int32_t> TableDefinition::get_ChildTables() const {
    const formats_info* const info = store_.GetFormatInfo(table_);
    return info != nullptr ? info->childTables : std::vector<std::int32_t>();
}

void TableDefinition::KeepOriginal() {
    if (formats_info* const info = store_.GetFormatInfo(table_)) {
        info->originalDisplayName = info->displayName;
        info->originalNameTaken = true;
    }
    const std::int32_t count = store_.GetDbFields(table_);
    for (std::int32_t column = 0; column < count; ++column) {
        ColumnDefinition(store_, table_, column).KeepOriginal();
    }
}

void TableDefinition::RestoreOriginal() {
    const formats_info* const info = store_.GetFormatInfo(table_);
    if (info != nullptr && info->originalNameTaken) {
        store_.SetDbDisplayName(table_, info->originalDisplayName);
    }
    const std::int32_t count = store_.GetDbFields(table_);
    for (std::int32_t column = 0; column < count; ++column) {
        ColumnDefinition(store_, table_, column).RestoreOriginal();
    }
}

} // namespace Kestrona::Configuration
