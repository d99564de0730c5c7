// Implements: the reads of calculated fields.
#include "text/read_level.h"

#include <kestrona/evaluate_columns.h>

#include <algorithm>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr std::int32_t kNoMatrixIndex = -1;
constexpr std::int32_t kBlock = 512;

// Returns false where the outermost read went beyond the bound: that holds for some of the records, not for the block.
bool ReadTogether(INativeExpression& expression, IMemoryResidentData& store, std::int32_t first, std::int32_t count,
                  double* out) {
    const Text::ReadLevel level(expression.Depth());
    if (level.IsGranted()) {
        expression.EvaluateBlock(store, first, count, out);
    } else {
        std::fill_n(out, count, 0.0);
    }
    return level.IsSound() || !level.IsOutermost();
}

} // namespace

double EvaluateColumn::GetValue(std::int32_t record) const {
    INativeExpression* const expression = Calculation();
    if (expression == nullptr) {
        return 0.0;
    }
    const Text::ReadLevel level(expression->Depth());
    const double value = level.IsGranted() ? expression->Evaluate(Store(), record, kNoMatrixIndex, nullptr) : 0.0;
    return level.IsSound() ? value : 0.0;
}

double EvaluateColumn::GetDefaultValue() const {
    return Store().GetDbDefaultValue(Format(), Field());
}

void EvaluateColumn::ReadBlock(std::int32_t first, std::int32_t count, double* out) const {
    INativeExpression* const expression = Calculation();
    if (expression == nullptr) {
        std::fill_n(out, std::max(count, 0), 0.0);
        return;
    }
    for (std::int32_t done = 0; done < count;) {
        const std::int32_t block = std::min(kBlock, count - done);
        if (!ReadTogether(*expression, Store(), first + done, block, out + done)) {
            for (std::int32_t i = done; i < done + block; ++i) {
                out[i] = GetValue(first + i);
            }
        }
        done += block;
    }
}

std::wstring StringEvaluateColumn::GetValue(std::int32_t record) const {
    std::wstring text;
    if (INativeExpression* const expression = Calculation()) {
        const Text::ReadLevel level(expression->Depth());
        if (level.IsGranted()) {
            expression->Evaluate(Store(), record, kNoMatrixIndex, &text);
        }
        if (!level.IsSound()) {
            text.clear();
        }
    }
    return text;
}

std::wstring StringEvaluateColumn::GetDefaultValue() const {
    return {};
}

} // namespace Kestrona::Data::MemoryResident
