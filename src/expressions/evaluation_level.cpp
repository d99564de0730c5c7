#include "expressions/evaluation_level.h"

#include <kestrona/services.h>

namespace Kestrona::Expressions {

namespace {

constexpr const wchar_t* kTooDeep = L"Evaluation Error: Calculated fields read each other without end";

} // namespace

constinit thread_local EvaluationLevel::State EvaluationLevel::state_;

void EvaluationLevel::Refuse() {
    if (!state_.exhausted) {
        state_.exhausted = true;
        KSDLL_WriteDebug(kTooDeep);
    }
}

} // namespace Kestrona::Expressions
