#include "configuration/compiled/shared_columns.h"

#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>

#include <cstdint>
#include <string>
#include <unordered_map>

namespace Kestrona::Configuration::Compiled {

using Data::MemoryResident::MemoryResidentData;
using Parsers::ClassificationMatch;

namespace {

// The fields of one format by name; the first one counts.
using FieldNames = std::unordered_map<std::wstring, std::int32_t>;

FieldNames NamesOf(MemoryResidentData& store, std::int32_t format) {
    FieldNames names;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        names.emplace(store.GetColumnName(format, field), field);
    }
    return names;
}

template <typename Parser>
void PointAtNamed(MemoryResidentData& store, std::int32_t format, std::int32_t field, const Parser& parser,
                  const FieldNames& names) {
    const ClassificationMatch match = parser.MatchFirst(store.GetDbClassString(format, field));
    if (!match.Matched) {
        return;
    }
    const auto found = names.find(match.Values.at(parser.get_FirstKey()));
    if (found != names.end() && found->second != field) {
        store.SetDbTableY(format, field, found->second);
    }
}

bool Leans(MemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return store.ClassDefined(format, field, Classes::kAdditionalReference) ||
           store.ClassDefined(format, field, Classes::kOverride);
}

void SetSharedColumnsOf(MemoryResidentData& store, std::int32_t format) {
    static const Parsers::ClassificationParser_ADDITIONAL_REFERENCE additional_reference;
    static const Parsers::ClassificationParser_OVERRIDE override_field;
    FieldNames names;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        if (!Leans(store, format, field)) {
            continue;
        }
        if (names.empty()) {
            names = NamesOf(store, format);
        }
        store.SetDbTableY(format, field, -1);
        if (store.ClassDefined(format, field, Classes::kAdditionalReference)) {
            PointAtNamed(store, format, field, additional_reference, names);
        }
        if (store.ClassDefined(format, field, Classes::kOverride)) {
            PointAtNamed(store, format, field, override_field, names);
        }
    }
}

} // namespace

void SetSharedColumns(MemoryResidentData& store) {
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        SetSharedColumnsOf(store, format);
    }
}

} // namespace Kestrona::Configuration::Compiled
