#pragma once

#include "store/class_test.h"

#include <kestrona/classes.h>
#include <kestrona/schema_records.h>

// What becomes of a field when rows are copied, exchanged or moved.
namespace Kestrona::Data::MemoryResident {

// A field whose cells go with the row. Matrices are dealt with apart from cells; free strings and calculated fields
// stay where they are.
inline bool MovesWithRow(const field_info& field) {
    return (field.type & (TypeBit::kMatrix | TypeBit::kFreeString)) == 0 && !HasClass(field, Classes::kEvaluate);
}

// Lists, and the one matrix of a whole field, move with their ids. The cells of other matrices are copied.
inline bool MovesByIdentity(const field_info& field) {
    return HasClass(field, Classes::kList) || HasClass(field, Classes::kCommonMatrix);
}

} // namespace Kestrona::Data::MemoryResident
