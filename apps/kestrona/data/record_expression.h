#pragma once

#include "output/message.h"

#include <kestrona/expression.h>
#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Expressions of the command line, evaluated for records.

namespace Kestrona::Tool {

/// Whether an expression's text is the expression or the inside of a text with fields in it.
enum class ExpressionText {
    Expression,
    InsideOfText
};

/// A compiled expression of one format. It borrows the store, which must outlive it with its schema unchanged.
class RecordExpression {
public:
    /// Returns what is wrong through `problem`, a caret below the place, with an empty result.
    [[nodiscard]] static std::optional<RecordExpression> Parse(Data::MemoryResident::IMemoryResidentData& store,
                                                               std::int32_t format, std::string_view text,
                                                               ExpressionText kind, Problem& problem);

    /// Tells whether it yields a text; its number is then 0 for all records.
    [[nodiscard]] bool IsText() const { return is_text_; }

    /// Returns the numbers for these records, in this order. Runs of neighbours are evaluated at once.
    [[nodiscard]] std::vector<double> Numbers(const std::vector<std::int32_t>& records) const;
    /// Returns the text for a record, as UTF-8. Requires: `IsText()`.
    [[nodiscard]] std::string Text(std::int32_t record) const;

private:
    RecordExpression(Data::MemoryResident::IMemoryResidentData& store, std::unique_ptr<INativeExpression> expression);

    Data::MemoryResident::IMemoryResidentData* store_;
    std::unique_ptr<INativeExpression> expression_;
    bool is_text_;
};

} // namespace Kestrona::Tool
