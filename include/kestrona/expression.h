#pragma once

#include <kestrona/export.h>

#include <cstdint>
#include <string>

/// \file
/// The compiled expression as the rest of the system sees it, and its evaluation.

namespace Kestrona::Data::MemoryResident {
class IMemoryResidentData;
}

/// A compiled expression. It keeps no state of an evaluation, so one object serves all records of a format.
class KS_API INativeExpression {
public:
    INativeExpression() = default;
    INativeExpression(const INativeExpression&) = delete;
    INativeExpression& operator=(const INativeExpression&) = delete;
    virtual ~INativeExpression() = default;
    /// Evaluates for one record. A text expression writes `text` and returns 0. `matrix_index` is -1 for an ordinary
    /// evaluation, else every field read takes that element of a matrix field of the record.
    virtual double Evaluate(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t record,
                            std::int32_t matrix_index, std::wstring* text) = 0;

    /// Evaluates the records `first` to `first + count - 1` into `out`: `Evaluate` of each, for its number, in one call
    /// that costs a fraction of the single ones.
    virtual void EvaluateBlock(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t first,
                               std::int32_t count, double* out) {
        for (std::int32_t i = 0; i < count; ++i) {
            out[i] = Evaluate(store, first + i, -1, nullptr);
        }
    }

    /// Nodes on the longest way down its tree, at least 1. Calculated fields that read each other are evaluated within
    /// a bound on the sum.
    [[nodiscard]] virtual std::int32_t Depth() const { return 1; }
};

/// Evaluates for one record; 0.0 for a null expression. `text` may be null.
KS_API double KSDLL_EvaluateExpression(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t record,
                                       INativeExpression* expression, std::wstring* text);
/// Likewise, and reads this element of every matrix field that has a matrix in the record.
KS_API double KSDLL_MatrixEvaluateExpression(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                             std::int32_t record, std::int32_t matrix_index,
                                             INativeExpression* expression, std::wstring* text);
