#include "commands/record_source.h"

#include "data/matrix_text.h"

#include <kestrona/unicode.h>

#include <utility>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

CellKind KindOf(ValueForm form, bool matrix) {
    if (matrix) {
        return CellKind::Matrix;
    }
    return form == ValueForm::Text || form == ValueForm::Date ? CellKind::Text : CellKind::Number;
}

} // namespace

RecordSource::RecordSource(IMemoryResidentData& store, std::int32_t format, const std::vector<std::int32_t>& fields,
                           std::vector<std::int32_t> records)
    : store_(store),
      format_(format),
      records_(std::move(records)) {
    for (const std::int32_t field : fields) {
        const ValueForm form = FormOfField(store, format, field);
        const bool matrix = KeepsMatrices(store, format, field);
        fields_.push_back({field, form, matrix});
        columns_.push_back({ToUtf8(store.GetColumnName(format, field)), KindOf(form, matrix)});
    }
}

std::string RecordSource::Cell(std::size_t row, std::size_t column) const {
    const auto& [field, form, matrix] = fields_[column];
    return matrix ? MatrixText(store_, format_, field, records_[row])
                  : CellText(store_, format_, field, records_[row], form);
}

bool IsShown(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return HasCells(store, format, field) || KeepsMatrices(store, format, field);
}

} // namespace Kestrona::Tool
