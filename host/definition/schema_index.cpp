#include "definition/schema_index.h"

#include "definition/arguments.h"
#include "definition/classification.h"

#include <algorithm>
#include <cstddef>

namespace Kestrona::Host::Language {

namespace {

constexpr std::wstring_view kByClassification = L"BY CLASSIFICATION";

std::int32_t Find(const std::unordered_map<std::wstring_view, std::int32_t>& names, std::wstring_view name) {
    const auto found = names.find(name);
    return found == names.end() ? -1 : found->second;
}

bool HasClassification(const FormatDefinition& format, std::wstring_view text) {
    return std::any_of(format.fields.begin(), format.fields.end(), [&](const FieldDefinition& field) {
        return field.classification.find(text) != std::wstring::npos;
    });
}

// A format is not its own parent, though its fields may hold the text as well.
std::int32_t FindParentByClassification(const Definition& definition, const FormatDefinition& child) {
    const std::wstring_view text = FindFieldName(ArgumentsOf(child.associated_table), false);
    const auto found =
        std::find_if(definition.formats.begin(), definition.formats.end(), [&](const FormatDefinition& format) {
            return &format != &child && !text.empty() && HasClassification(format, text);
        });
    return found == definition.formats.end() ? -1 : static_cast<std::int32_t>(found - definition.formats.begin());
}

} // namespace

SchemaIndex::SchemaIndex(const Definition& definition) {
    fields_.resize(definition.formats.size());
    for (std::size_t f = 0; f < definition.formats.size(); ++f) {
        const FormatDefinition& format = definition.formats[f];
        formats_.emplace(format.name, static_cast<std::int32_t>(f));
        for (std::size_t i = 0; i < format.fields.size(); ++i) {
            fields_[f].emplace(format.fields[i].name, static_cast<std::int32_t>(i));
        }
    }
}

std::int32_t SchemaIndex::FindFormat(std::wstring_view name) const {
    return Find(formats_, name);
}

std::int32_t SchemaIndex::FindField(std::int32_t format, std::wstring_view name) const {
    return format < 0 ? -1 : Find(fields_[static_cast<std::size_t>(format)], name);
}

bool IsParentByClassification(const FormatDefinition& format) {
    return KeywordOf(format.associated_table) == kByClassification;
}

std::vector<std::int32_t> FindParents(const Definition& definition, const SchemaIndex& index) {
    std::vector<std::int32_t> parents;
    for (const FormatDefinition& format : definition.formats) {
        parents.push_back(IsParentByClassification(format) ? FindParentByClassification(definition, format)
                                                           : index.FindFormat(format.associated_table));
    }
    return parents;
}

} // namespace Kestrona::Host::Language
