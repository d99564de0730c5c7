#include "expressions/parse_context.h"

#include <kestrona/record_search.h>

#include <algorithm>

namespace Kestrona::Expressions {

namespace {

constexpr const wchar_t* kScriptTable = L"KSEP Script Variables";

std::int32_t FindScriptField(IMemoryResidentData& store, std::int32_t format, const wchar_t* name) {
    return std::max(KSDLL_FindField(store, format, name, nullptr), -1);
}

// A reference without type and name; all numbers are -1 in a store without the table.
KSEPVariable FindScriptTable(IMemoryResidentData& store) {
    KSEPVariable table;
    table.format = KSDLL_FindFormatImpl(store, kScriptTable);
    if (table.format >= 0) {
        table.nameField = FindScriptField(store, table.format, L"Name");
        table.numericValueField = FindScriptField(store, table.format, L"Numeric Value");
        table.stringValueField = FindScriptField(store, table.format, L"String Value");
    }
    return table;
}

} // namespace

const FieldNames& ParseContext::Names() {
    if (names_ == nullptr) {
        names_ = &tables_.For(format_, field_);
    }
    return *names_;
}

KSEPVariable ParseContext::ScriptVariable(ExpressionFieldType type, std::wstring name) {
    if (!script_table_.has_value()) {
        script_table_ = FindScriptTable(store_);
    }
    KSEPVariable variable = *script_table_;
    variable.type = type;
    variable.name = std::move(name);
    return variable;
}

} // namespace Kestrona::Expressions
