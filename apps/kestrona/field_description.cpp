#include "field_description.h"

#include "data/cell_text.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <set>
#include <string_view>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

std::string FormatName(IMemoryResidentData& store, std::int32_t format) {
    const wchar_t* name = store.GetDbName(format);
    return name == nullptr ? std::string("?") : ToUtf8(name);
}

bool IsMatrix(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return (store.GetDbType(format, field) & TypeBit::kMatrix) != 0;
}

std::string_view PlainTypeName(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    if (IsMatrix(store, format, field)) {
        return store.ClassDefined(format, field, Classes::kList) ? "list" : "matrix";
    }
    if ((store.GetDbType(format, field) & TypeBit::kFreeString) != 0) {
        return "button";
    }
    switch (FormOfField(store, format, field)) {
    case ValueForm::Text:
        return "text";
    case ValueForm::Integer:
        return "integer";
    case ValueForm::Toggle:
        return "toggle";
    case ValueForm::Date:
        return "date";
    case ValueForm::Duration:
        return "duration";
    case ValueForm::Reference:
        return "reference";
    case ValueForm::Number:
        break;
    }
    return "number";
}

} // namespace

std::string TypeName(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    std::string name(PlainTypeName(store, format, field));
    if (store.ClassDefined(format, field, Classes::kEvaluate)) {
        name += ", calculated";
    }
    if (store.ClassDefined(format, field, Classes::kEncrypted)) {
        name += ", encrypted";
    }
    return name;
}

std::string DefaultText(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const ValueForm form = FormOfField(store, format, field);
    if (form == ValueForm::Text || (store.GetDbType(format, field) & TypeBit::kFreeString) != 0) {
        return {};
    }
    const double value = store.GetDbDefaultValue(format, field);
    if (HasUnset(form) && value == -1.0) {
        return {};
    }
    return form == ValueForm::Date ? IsoDate(value) : fmt::format("{}", value);
}

std::string ReferenceText(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const std::int32_t table = store.GetDbTable(format, field);
    if (store.ClassDefined(format, field, Classes::kDatabase)) {
        return fmt::format("{}({})", FormatName(store, table),
                           ToUtf8(store.GetColumnName(table, store.GetDbSource(format, field))));
    }
    if (!IsMatrix(store, format, field)) {
        return {};
    }
    if (store.ClassDefined(format, field, Classes::kList)) {
        const std::int32_t list_table = store.GetDbTableY(format, field);
        return list_table < 0 ? std::string() : FormatName(store, list_table);
    }
    if (store.ClassDefined(format, field, Classes::kAutoDimension)) {
        return fmt::format("{} x {}", FormatName(store, table), FormatName(store, store.GetDbTableY(format, field)));
    }
    return {};
}

std::string ReferredFormats(IMemoryResidentData& store, std::int32_t format) {
    std::set<std::int32_t> seen;
    std::string text;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        const std::int32_t table = store.GetDbTable(format, field);
        if (store.ClassDefined(format, field, Classes::kDatabase) && seen.insert(table).second) {
            text += (text.empty() ? "" : ", ") + FormatName(store, table);
        }
    }
    return text;
}

} // namespace Kestrona::Tool
