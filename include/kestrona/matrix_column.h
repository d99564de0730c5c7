#pragma once

#include <kestrona/concrete_columns.h>

#include <cstdint>

/// \file
/// The column behind one matrix.

namespace Kestrona::Data::MemoryResident {

/// The elements of one matrix. An element is one record of this column, so defaults, growth, scratch cells and changes
/// are those of every other column.
///
/// A column that computes its elements derives from here and overrides `GetElement`; its cells stay unused.
class KS_API MatrixColumn : public virtual DoubleColumn {
public:
    /// Takes ownership of `record_state`.
    MatrixColumn(IRecordStateStrategy* record_state, double default_value);
    ~MatrixColumn() override;

    /// Returns an element of the matrix that `record` owns. Here the record does not matter.
    virtual double GetElement(std::int32_t record, std::uint32_t index) const;
    bool IsMatrix() override;

    /// Reports every element from the smaller of two sizes up to the larger one as changed.
    void ReportResize(std::uint32_t from, std::uint32_t to);
};

} // namespace Kestrona::Data::MemoryResident
