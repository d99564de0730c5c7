// Implements: what happens when the library is loaded.
#include "store/process_state.h"

#include <kestrona/process.h>

#include <cstdint>

namespace {

constexpr std::int32_t kProcessAttach = 1;
constexpr std::int32_t kThreadAttach = 2;

constinit std::uint16_t attach_count = 0;

std::int32_t AttachProcess() {
    if (attach_count > 0) {
        return 0;
    }
    ClearSequencerFunctions();
    ++attach_count;
    return 1;
}

[[gnu::constructor]] void OnLoad() {
    LibraryEntry(kProcessAttach);
}

} // namespace

std::int32_t LibraryEntry(std::int32_t reason) {
    if (reason == kProcessAttach) {
        return AttachProcess();
    }
    if (reason == kThreadAttach) {
        ++attach_count;
    }
    return 1;
}

namespace Kestrona {

void ResetLibraryEntry() {
    attach_count = 1;
}

} // namespace Kestrona
