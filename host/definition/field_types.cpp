#include "definition/field_types.h"

#include "definition/classification.h"
#include "definition/values.h"
#include "definition/words.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace Kestrona::Host::Language {

namespace {

// Words that give a matrix its dimensions.
constexpr std::array<std::wstring_view, 6> kDimensions{L"AUTO LIST", L"DATA LIST",      L"RELATED LIST",
                                                       L"ASSOCIATE", L"AUTO DIMENSION", L"DATABASE"};

bool HasDimensions(const FieldDefinition& field) {
    return std::any_of(field.words.begin(), field.words.end(), [](const ClassificationWord& word) {
        return std::find(kDimensions.begin(), kDimensions.end(), KeywordOf(word.text)) != kDimensions.end();
    });
}

std::string TypeWords() {
    std::string words;
    for (const Word& word : AllWords()) {
        if (word.kind == WordKind::Type) {
            words += (words.empty() ? "" : ", ") + ToUtf8(word.text);
        }
    }
    return words;
}

Place FirstPlace(const FieldDefinition& field) {
    return field.words.empty() ? field.place : field.words.front().place;
}

std::string FirstWord(const FieldDefinition& field) {
    return field.words.empty() ? "no word" : Quoted(field.words.front().text);
}

bool Defines(const FieldDefinition& field, const Class& c) {
    return (field.classes[static_cast<std::size_t>(c.word)] & c.mask) == c.mask;
}

} // namespace

bool HasSeveralTypes(std::uint32_t type) {
    return std::popcount(type & ~TypeBit::kMatrix) > 1;
}

void CheckFieldType(const FieldDefinition& field, Reporter& reporter) {
    if (field.type == 0) {
        reporter.Error(FirstPlace(field), {"field " + Quoted(field.name) + " has no type", FirstWord(field),
                                           "a type word: " + TypeWords(), ""});
        return;
    }
    if (HasSeveralTypes(field.type)) {
        reporter.Error(FirstPlace(field), {"field " + Quoted(field.name) + " has several types",
                                           Quoted(field.classification), "one type word, or MATRIX and one more", ""});
    }
    if ((field.type & TypeBit::kMatrix) != 0 && !HasDimensions(field)) {
        reporter.Warning(FirstPlace(field),
                         {"matrix " + Quoted(field.name) + " has no dimensions", Quoted(field.classification),
                          "AUTO LIST, DATA LIST, RELATED LIST, ASSOCIATE, AUTO DIMENSION or DATABASE", ""});
    }
}

double ImpliedDefault(const FieldDefinition& field, bool is_key) {
    const bool is_text = Defines(field, Classes::kFreeFormat);
    if (is_key && (field.type & TypeBit::kMatrix) == 0 && !is_text) {
        return 1.0;
    }
    const bool is_reference = (field.type & TypeBit::kReference) != 0 && !is_text;
    return is_reference || (field.type & (TypeBit::kDateTime | TypeBit::kDuration)) != 0 ? -1.0 : 0.0;
}

void CheckDefault(const FieldDefinition& field, Reporter& reporter) {
    const double value = field.default_value;
    const bool is_whole = value == std::trunc(value) && value >= INT32_MIN && value <= INT32_MAX;
    if ((field.type & TypeBit::kInteger) != 0 && !is_whole) {
        reporter.Warning(field.place, {"default of field " + Quoted(field.name) + " is cut", PrintValue(value),
                                       "a whole number of 32 bits", ""});
    } else if ((field.type & TypeBit::kToggle) != 0 && value != 0.0 && value != 1.0) {
        reporter.Warning(field.place,
                         {"default of field " + Quoted(field.name) + " is no toggle", PrintValue(value), "0 or 1", ""});
    }
}

} // namespace Kestrona::Host::Language
