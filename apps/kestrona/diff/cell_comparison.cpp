#include "diff/cell_comparison.h"

#include <kestrona/matrices.h>

#include <cmath>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

bool Measures(ValueForm form) {
    return form == ValueForm::Number || form == ValueForm::Integer || form == ValueForm::Date ||
           form == ValueForm::Duration;
}

bool IsUnset(double value, ValueForm form) {
    return HasUnset(form) && value == kUnset;
}

bool SameValue(double old_value, double new_value, const FieldPair& pair, double tolerance) {
    if (old_value == new_value || (std::isnan(old_value) && std::isnan(new_value))) {
        return true;
    }
    return tolerance > 0.0 && Measures(pair.old_field.form) && Measures(pair.new_field.form) &&
           !IsUnset(old_value, pair.old_field.form) && !IsUnset(new_value, pair.new_field.form) &&
           std::abs(old_value - new_value) <= tolerance;
}

std::int32_t MatrixSize(IMemoryResidentData& store, const ExactField& field, std::int32_t record) {
    return KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(store, field.format, field.field, record));
}

double Element(IMemoryResidentData& store, const ExactField& field, std::int32_t record, std::int32_t index) {
    return KSDLL_GetMatrixValue(store, field.format, field.field, record, static_cast<std::uint32_t>(index));
}

bool SameMatrix(const DiffSides& sides, const FieldPair& pair, std::int32_t old_record, std::int32_t new_record) {
    const std::int32_t size = MatrixSize(sides.old_store, pair.old_field, old_record);
    if (size != MatrixSize(sides.new_store, pair.new_field, new_record)) {
        return false;
    }
    for (std::int32_t index = 0; index < size; ++index) {
        if (!SameValue(Element(sides.old_store, pair.old_field, old_record, index),
                       Element(sides.new_store, pair.new_field, new_record, index), pair, sides.tolerance)) {
            return false;
        }
    }
    return true;
}

bool IsText(const ExactField& field) {
    return !field.matrix && field.form == ValueForm::Text;
}

} // namespace

bool SameCell(const DiffSides& sides, const FieldPair& pair, std::int32_t old_record, std::int32_t new_record) {
    const auto& [old_field, new_field] = pair;
    if (old_field.matrix && new_field.matrix) {
        return SameMatrix(sides, pair, old_record, new_record);
    }
    if (IsText(old_field) && IsText(new_field)) {
        return sides.old_store.GetDbString(old_field.format, old_field.field, old_record) ==
               sides.new_store.GetDbString(new_field.format, new_field.field, new_record);
    }
    if (old_field.matrix || new_field.matrix || IsText(old_field) || IsText(new_field)) {
        return ExactCell(sides.old_store, old_field, old_record) == ExactCell(sides.new_store, new_field, new_record);
    }
    return SameValue(sides.old_store.GetDbValue(old_field.format, old_field.field, old_record),
                     sides.new_store.GetDbValue(new_field.format, new_field.field, new_record), pair, sides.tolerance);
}

} // namespace Kestrona::Tool
