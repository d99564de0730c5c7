#pragma once

#include <kestrona/host/definition.h>

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

// Formats and fields of a definition by name.

namespace Kestrona::Host::Language {

// Of several formats or fields with one name, the first one counts. Requires: the definition lives on unchanged.
class SchemaIndex {
public:
    explicit SchemaIndex(const Definition& definition);

    // Expected constant time; -1 when there is none.
    [[nodiscard]] std::int32_t FindFormat(std::wstring_view name) const;
    [[nodiscard]] std::int32_t FindField(std::int32_t format, std::wstring_view name) const;

private:
    using Names = std::unordered_map<std::wstring_view, std::int32_t>;

    Names formats_;
    std::vector<Names> fields_;
};

// The parents of all formats, -1 where there is none: formats that the associated table means by name, or by a text
// that the classification of one of their fields holds ("BY CLASSIFICATION(text)").
[[nodiscard]] std::vector<std::int32_t> FindParents(const Definition& definition, const SchemaIndex& index);

// Whether the associated table is given by a classification, so that it may be absent.
[[nodiscard]] bool IsParentByClassification(const FormatDefinition& format);

} // namespace Kestrona::Host::Language
