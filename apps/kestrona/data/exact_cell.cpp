#include "data/exact_cell.h"

#include "data/matrix_text.h"
#include "encryption.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

/// An unset entry is told, so that a list of one such entry is no empty list.
std::string ExactMatrix(IMemoryResidentData& store, const ExactField& field, std::int32_t record) {
    if (field.common && record != 0) {
        return {};
    }
    return JoinMatrix(store, field.format, field.field, record, [&field](double value, std::int32_t) {
        return ValueText(value, value == kUnset ? ValueForm::Number : field.form);
    });
}

} // namespace

ExactField DescribeField(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    ExactField result{format, field};
    result.matrix = KeepsMatrices(store, format, field);
    result.form = result.matrix ? FormOfElement(store, format, field) : FormOfField(store, format, field);
    result.common = result.matrix && store.ClassDefined(format, field, Classes::kCommonMatrix);
    result.encrypted = IsEncrypted(store, format, field);
    return result;
}

std::string ExactCell(IMemoryResidentData& store, const ExactField& field, std::int32_t record) {
    if (field.matrix) {
        return ExactMatrix(store, field, record);
    }
    if (field.encrypted) {
        return ToUtf8(EncryptedCell(store, field.format, field.field, record));
    }
    if (field.form == ValueForm::Text) {
        // A calculated text can show an encrypted one.
        return ToUtf8(WithoutZeros(store.GetDbString(field.format, field.field, record)));
    }
    return ValueText(store.GetDbValue(field.format, field.field, record), field.form);
}

} // namespace Kestrona::Tool
