#include "schema/field_description.h"

#include "data/cell_text.h"
#include "data/field_names.h"
#include "schema/class_names.h"
#include "schema/field_links.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <set>
#include <string_view>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::field_info;
using Data::MemoryResident::IMemoryResidentData;

std::string_view NameOf(ValueForm form) {
    switch (form) {
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

std::string PlainTypeName(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const std::uint32_t type = store.GetDbType(format, field);
    if ((type & TypeBit::kFreeString) != 0) {
        return "button";
    }
    const std::string_view entry = NameOf(FormOfField(store, format, field));
    if ((type & TypeBit::kMatrix) == 0) {
        return std::string(entry);
    }
    const std::string_view whole = store.ClassDefined(format, field, Classes::kList) ? "list" : "matrix";
    return type == TypeBit::kMatrix ? std::string(whole) : fmt::format("{} of {}s", whole, entry);
}

} // namespace

std::string TypeName(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    std::string name = PlainTypeName(store, format, field);
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
    if (HasUnset(form) && value == kUnset) {
        return {};
    }
    return form == ValueForm::Date ? IsoDate(value) : fmt::format("{}", value);
}

// Data slot 0 holds a field or a format for some keywords.
std::string LengthText(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const std::int32_t length = store.GetDbData(format, field, DataSlot::kMaxTextLength);
    const bool is_length = FormOfField(store, format, field) == ValueForm::Text && length > 0 &&
                           !store.ClassDefined(format, field, Classes::kAssociate) &&
                           !store.ClassDefined(format, field, Classes::kUpdateReference);
    return is_length ? std::to_string(length) : std::string();
}

std::string ReferenceText(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    std::string text;
    for (const FieldLink& link : FieldLinks(store, format, field)) {
        if (link.kind == LinkKind::Reference || (link.kind == LinkKind::List && text.empty())) {
            text = TargetText(store, link);
        }
    }
    return text;
}

std::string DimensionText(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    std::string text;
    for (const FieldLink& link : FieldLinks(store, format, field)) {
        if (link.kind == LinkKind::Dimension) {
            text += (text.empty() ? "" : " x ") + TargetText(store, link);
        }
    }
    const field_info* info = store.GetFieldInfo(format, field);
    if (!text.empty() && info != nullptr && info->matrixXLabel && info->matrixYLabel) {
        text += fmt::format(" ({}, {})", ToUtf8(info->matrixXLabel.get()), ToUtf8(info->matrixYLabel.get()));
    }
    return text;
}

std::string LinksText(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    std::string text;
    for (const FieldLink& link : FieldLinks(store, format, field)) {
        if (link.kind == LinkKind::Other) {
            text += fmt::format("{}{} {}", text.empty() ? "" : "; ", link.keyword, TargetText(store, link, format));
        }
    }
    return text;
}

std::string ClassesText(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return fmt::format("{}", fmt::join(ClassNames(store, format, field), ", "));
}

std::string ReferredFormats(IMemoryResidentData& store, std::int32_t format) {
    std::set<std::int32_t> seen;
    std::string text;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        for (const FieldLink& link : FieldLinks(store, format, field)) {
            const bool refers = link.kind == LinkKind::Reference || link.kind == LinkKind::List;
            if (refers && link.format != format && seen.insert(link.format).second) {
                text += (text.empty() ? "" : ", ") + FormatName(store, link.format);
            }
        }
    }
    return text;
}

} // namespace Kestrona::Tool
