#pragma once

#include <kestrona/export.h>

#include <cstdint>
#include <string>

/// \file
/// The compiled expression as the rest of the system sees it.

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
};
