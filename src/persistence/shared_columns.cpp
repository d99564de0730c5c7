#include "persistence/shared_columns.h"

#include <kestrona/classification_parsers.h>

#include <cstdint>
#include <string>
#include <unordered_map>

namespace Kestrona::Persistence {

using Configuration::Parsers::ClassificationMatch;
using Configuration::Parsers::ClassificationParser_ADDITIONAL_REFERENCE;
using Configuration::Parsers::ClassificationParser_OVERRIDE;
using Configuration::Parsers::OneKeyClassificationParser;
using Data::MemoryResident::MemoryResidentData;

namespace {

// The fields of one format by name; the first of a name counts.
using FieldNumbers = std::unordered_map<std::wstring, std::int32_t>;

FieldNumbers NumbersOf(MemoryResidentData& store, std::int32_t format) {
    FieldNumbers numbers;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        numbers.emplace(store.GetColumnName(format, field), field);
    }
    return numbers;
}

bool Leans(MemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return store.ClassDefined(format, field, ClassificationParser_ADDITIONAL_REFERENCE::get_Class()) ||
           store.ClassDefined(format, field, ClassificationParser_OVERRIDE::get_Class());
}

// A field that overrides another one is one by its OVERRIDE, whatever else it is.
std::int32_t TargetOf(MemoryResidentData& store, std::int32_t format, std::int32_t field, const FieldNumbers& numbers) {
    static const ClassificationParser_ADDITIONAL_REFERENCE additional_reference;
    static const ClassificationParser_OVERRIDE override_field;
    const bool overrides = store.ClassDefined(format, field, ClassificationParser_OVERRIDE::get_Class());
    const OneKeyClassificationParser& parser =
        overrides ? static_cast<const OneKeyClassificationParser&>(override_field) : additional_reference;
    const ClassificationMatch match = parser.MatchFirst(store.GetDbClassString(format, field));
    if (!match.Matched) {
        return -1;
    }
    const auto target = numbers.find(match.Values.at(parser.get_FirstKey()));
    return target != numbers.end() && target->second != field ? target->second : -1;
}

} // namespace

void FindSharedColumns(MemoryResidentData& store) {
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        FieldNumbers numbers;
        for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
            if (!Leans(store, format, field)) {
                continue;
            }
            if (numbers.empty()) {
                numbers = NumbersOf(store, format);
            }
            store.SetDbTableY(format, field, TargetOf(store, format, field, numbers));
        }
    }
}

} // namespace Kestrona::Persistence
