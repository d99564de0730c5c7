// Implements: the elements of calculated matrices.
#include "text/read_level.h"

#include <kestrona/evaluate_columns.h>

namespace Kestrona::Data::MemoryResident {

MatrixEvaluateColumn::MatrixEvaluateColumn(IRecordStateStrategy* record_state, double default_value,
                                           std::int32_t format, std::int32_t field, IMemoryResidentData& store)
    : DataStorage<double>(record_state),
      ValueManagedDataStorage<double>(default_value, record_state),
      DoubleColumn(record_state, default_value),
      MatrixColumn(record_state, default_value),
      format_(format),
      field_(field),
      store_(&store) {}

double MatrixEvaluateColumn::GetElement(std::int32_t record, std::uint32_t index) const {
    INativeExpression* const expression = store_->GetDbEvaluateExpression(format_, field_);
    if (expression == nullptr) {
        return 0.0;
    }
    const Text::ReadLevel level(expression->Depth());
    const double value =
        level.IsGranted() ? expression->Evaluate(*store_, record, static_cast<std::int32_t>(index), nullptr) : 0.0;
    return level.IsSound() ? value : 0.0;
}

} // namespace Kestrona::Data::MemoryResident
