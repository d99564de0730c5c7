#include "configuration/parsers/field_caches.h"

#include <kestrona/classes.h>
#include <kestrona/classification_readers.h>

#include <cstddef>
#include <memory>

namespace Kestrona::Configuration::Parsers {

using Data::MemoryResident::field_info;

namespace {

bool IsSubstituted(const field_info& field) {
    constexpr Class kClass = Classes::kSubstitute;
    return (field.current.classWords[static_cast<std::size_t>(kClass.word)] & kClass.mask) == kClass.mask;
}

std::wstring StringTableName(const std::wstring& text) {
    const ClassificationParser_TABLE parser;
    const ClassificationMatch match = parser.MatchFirst(text);
    return match.Matched ? match.Values.at(parser.get_FirstKey()) : std::wstring();
}

} // namespace

void EnsureFieldCaches(field_info& field) {
    if (field.substituteCache == nullptr) {
        field.substituteCache = std::make_unique<SubstituteCache>();
        field.substitutxCache = std::make_unique<SubstituteCache>();
        field.numberFormatCache = std::make_unique<NumberFormatCache>();
        field.stringTableNameCache = std::make_unique<StringTableNameCache>();
    }
}

const std::vector<SubstPair>& KeptSubstitutes(field_info& field) {
    static const std::vector<SubstPair> none;
    if (!IsSubstituted(field)) {
        return none;
    }
    EnsureFieldCaches(field);
    if (!field.substituteCache->HasValue) {
        field.substituteCache->Set(Parse_SUBSTITUTE(field.current.classString));
    }
    return field.substituteCache->Peek();
}

const NumberFormat& KeptNumberFormat(field_info& field) {
    EnsureFieldCaches(field);
    if (!field.numberFormatCache->HasValue) {
        field.numberFormatCache->Set(MatchFormat(field.current.classString));
    }
    return field.numberFormatCache->Peek();
}

const std::wstring& KeptStringTableName(field_info& field) {
    EnsureFieldCaches(field);
    if (!field.stringTableNameCache->HasValue) {
        field.stringTableNameCache->Set(StringTableName(field.current.classString));
    }
    return field.stringTableNameCache->Peek();
}

} // namespace Kestrona::Configuration::Parsers
