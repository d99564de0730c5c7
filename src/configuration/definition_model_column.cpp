// Implements: ColumnDefinition.
#include "configuration/remote_value.h"

#include <kestrona/classes.h>
#include <kestrona/classification_readers.h>
#include <kestrona/definition_model.h>

#include <cstddef>

namespace Kestrona::Configuration {

using Data::MemoryResident::field_info;
using Data::MemoryResident::FieldClassification;
using Data::MemoryResident::MemoryResidentData;

namespace {

constexpr const wchar_t* kNegativeTable = L"tableIndex must not be less than zero";
constexpr const wchar_t* kNegativeColumn = L"columnIndex must not be less than zero";
constexpr const wchar_t* kOriginalIsFixed = L"Changes are not permitted when using the Original view";

bool IsClassWord(std::int16_t word) {
    return word >= 0 && word < kClassWords;
}

} // namespace

ColumnDefinition::ColumnDefinition(MemoryResidentData& store, std::int32_t table, std::int32_t column)
    : ColumnDefinition(store, table, column, DefinitionView::Current) {}

ColumnDefinition::ColumnDefinition(MemoryResidentData& store, std::int32_t table, std::int32_t column,
                                   DefinitionView view)
    : table_(table),
      column_(column),
      view_(view),
      store_(store) {
    if (table < 0) {
        throw kNegativeTable;
    }
    if (column < 0) {
        throw kNegativeColumn;
    }
}

ColumnDefinition::~ColumnDefinition() = default;

std::wstring ColumnDefinition::get_NativeName() const {
    return store_.GetColumnName(table_, column_);
}

std::wstring ColumnDefinition::get_DisplayName() const {
    const std::wstring& classification = Block().classString;
    if ((get_Type() & TypeBit::kFreeString) != 0) {
        std::wstring text = ParseClassification_BUTTON_TEXT(classification.c_str());
        if (!text.empty()) {
            return text;
        }
    }
    return GetDialogFieldName(store_, classification, table_, column_);
}

std::uint32_t ColumnDefinition::get_Type() const {
    return store_.GetDbType(table_, column_);
}

bool ColumnDefinition::ClassAttributeDefined(Class attribute) const {
    return IsClassWord(attribute.word) &&
           (Block().classWords[static_cast<std::size_t>(attribute.word)] & attribute.mask) == attribute.mask;
}

void ColumnDefinition::AddClassAttribute(Class attribute) {
    RequireCurrent();
    store_.AddDbClass(table_, column_, attribute);
}

void ColumnDefinition::RemoveClassAttribute(Class attribute) {
    RequireCurrent();
    store_.RemoveDbClass(table_, column_, attribute);
}

void ColumnDefinition::OverrideClassAttribute(Class attribute) {
    FieldClassification* const block = BlockOf(view_);
    if (block != nullptr && IsClassWord(attribute.word)) {
        block->classWords[static_cast<std::size_t>(attribute.word)] |= attribute.mask;
    }
}

std::wstring ColumnDefinition::get_ClassificationString() const {
    return Block().classString;
}

void ColumnDefinition::set_ClassificationString(const std::wstring& text) {
    RequireCurrent();
    OverrideClassificationString(text);
}

void ColumnDefinition::OverrideClassificationString(const std::wstring& text) {
    if (view_ == DefinitionView::Current) {
        store_.SetDbClassString(table_, column_, text); // the parsed forms of the old string go
    } else if (FieldClassification* const block = BlockOf(view_)) {
        block->classString = text;
    }
}

std::int16_t ColumnDefinition::get_DialogLevel() const {
    return Block().dialogLevel;
}

void ColumnDefinition::set_DialogLevel(std::int16_t level) {
    RequireCurrent();
    store_.SetDbDialogLevel(table_, column_, level);
}

std::int32_t ColumnDefinition::get_DialogOrder() const {
    return Block().dialogOrder;
}

void ColumnDefinition::set_DialogOrder(std::int32_t order) {
    RequireCurrent();
    if (FieldClassification* const block = BlockOf(view_)) {
        block->dialogOrder = order;
    }
}

bool ColumnDefinition::get_Hidden() const {
    return ClassAttributeDefined(Classes::kHidden);
}

bool ColumnDefinition::get_ReadOnly() const {
    return ClassAttributeDefined(Classes::kReadOnly);
}

bool ColumnDefinition::get_IncludeSeconds() const {
    return ClassAttributeDefined(Classes::kIncludeSeconds);
}

bool ColumnDefinition::get_ShowDate() const {
    return ClassAttributeDefined(Classes::kShowDate);
}

bool ColumnDefinition::get_ShowTooltip() const {
    return ClassAttributeDefined(Classes::kShowTooltip);
}

std::int32_t ColumnDefinition::get_TooltipOrder() const {
    return Tooltips::GetToolTipRank(Block().classString.c_str());
}

NullValue<std::int16_t> ColumnDefinition::get_CallDialog() const {
    if (!ClassAttributeDefined(Classes::kCallDialog)) {
        return {};
    }
    return static_cast<std::int16_t>(store_.GetDbTable(table_, column_));
}

std::wstring ColumnDefinition::get_NumberFormat() const {
    return KSDLL_GetNumberFormat(Block().classString).Format;
}

double ColumnDefinition::get_RemoteIdentityValue() const {
    return ConvertTableColumnIndexToRemoteValue(table_, column_);
}

bool ColumnDefinition::get_IsEvaluate() const {
    return store_.ClassDefined(table_, column_, Classes::kEvaluate);
}

NullValue<std::int32_t> ColumnDefinition::get_AssociatedTo() const {
    if (!ClassAttributeDefined(Classes::kAssociate)) {
        return {};
    }
    return store_.GetDbData(table_, column_, DataSlot::kAssociateField);
}

ColumnDefinition* ColumnDefinition::get_Original() const {
    return new ColumnDefinition(store_, table_, column_, DefinitionView::Original);
}

void ColumnDefinition::KeepOriginal() {
    if (field_info* const info = store_.GetFieldInfo(table_, column_)) {
        info->original = info->current;
        info->originalTaken = true;
    }
}

void ColumnDefinition::RestoreOriginal() {
    field_info* const info = store_.GetFieldInfo(table_, column_);
    if (info == nullptr || !info->originalTaken) {
        return;
    }
    store_.SetDbClassString(table_, column_, info->original.classString);
    info->current = info->original;
}

const FieldClassification& ColumnDefinition::Block() const {
    static const FieldClassification none{};
    const FieldClassification* const block = BlockOf(view_);
    return block != nullptr ? *block : none;
}

FieldClassification* ColumnDefinition::BlockOf(DefinitionView view) const {
    field_info* const info = store_.GetFieldInfo(table_, column_);
    if (info == nullptr) {
        return nullptr;
    }
    return view == DefinitionView::Original ? &info->original : &info->current;
}

void ColumnDefinition::RequireCurrent() const {
    if (view_ == DefinitionView::Original) {
        throw kOriginalIsFixed;
    }
}

} // namespace Kestrona::Configuration
