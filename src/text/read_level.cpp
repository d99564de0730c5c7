#include "text/read_level.h"

#include <kestrona/services.h>

namespace Kestrona::Text {

namespace {

constexpr const wchar_t* kTooDeep = L"Evaluation Error: Fields read each other without end";

} // namespace

constinit thread_local ReadLevel::State ReadLevel::state_;

void ReadLevel::Refuse() {
    if (!state_.exhausted) {
        state_.exhausted = true;
        KSDLL_WriteDebug(kTooDeep);
    }
}

} // namespace Kestrona::Text
