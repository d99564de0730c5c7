#pragma once

#include <kestrona/classes.h>
#include <kestrona/expression_tree.h>
#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <optional>
#include <string>

// How nodes read the cells that they refer to.
namespace Kestrona::Expressions {

// The element of the record's matrix, or the plain value where the record has none.
double ReadElement(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record,
                   std::int32_t matrix_index);

// The stored number.
inline double ReadRaw(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record,
                      std::int32_t matrix_index) {
    if (matrix_index == -1) [[likely]] {
        return store.GetDbValue(format, field, record);
    }
    return ReadElement(store, format, field, record, matrix_index);
}

// `ReadRaw` of the records `first` to `first + count - 1`, without a matrix index.
void ReadRawBlock(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t first,
                  std::int32_t count, double* out);

// Tells whether a reference reads the field's text.
inline bool ReadsText(IMemoryResidentData& store, const FieldReference& reference) {
    if (reference.type != ExpressionFieldType::Unmarked) {
        return reference.type == ExpressionFieldType::Text;
    }
    return (store.GetDbType(reference.format, reference.field) | TypeBit::kReference) == TypeBit::kReference;
}

// The value of a reference as a number.
double ReadNumber(IMemoryResidentData& store, const FieldReference& reference, std::int32_t record,
                  std::int32_t matrix_index);

// The value of a reference as a text, which replaces `text`.
void ReadText(IMemoryResidentData& store, const FieldReference& reference, std::int32_t record,
              std::int32_t matrix_index, std::wstring* text);

// The number that a text is. Nothing, and a debug line, for a text that is no number.
std::optional<double> ToNumber(const std::wstring& text);

} // namespace Kestrona::Expressions
