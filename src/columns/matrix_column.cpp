#include <kestrona/matrix_column.h>

#include <algorithm>

namespace Kestrona::Data::MemoryResident {

MatrixColumn::MatrixColumn(IRecordStateStrategy* record_state, double default_value)
    : DataStorage<double>(record_state),
      ValueManagedDataStorage<double>(default_value, record_state),
      DoubleColumn(record_state, default_value) {}

MatrixColumn::~MatrixColumn() = default;

double MatrixColumn::GetElement(std::int32_t /*record*/, std::uint32_t index) const {
    return GetValue(static_cast<std::int32_t>(index));
}

bool MatrixColumn::IsMatrix() {
    return true;
}

void MatrixColumn::ReportResize(std::uint32_t from, std::uint32_t to) {
    const auto [first, end] = std::minmax(from, to);
    for (std::uint32_t index = first; index < end; ++index) {
        RecordState().RecordChanged(static_cast<std::int32_t>(index));
    }
}

} // namespace Kestrona::Data::MemoryResident
