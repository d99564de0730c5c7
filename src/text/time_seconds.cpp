#include "text/time_seconds.h"

#include <kestrona/classes.h>
#include <kestrona/dates.h>

#include <atomic>

using Kestrona::Data::MemoryResident::IMemoryResidentData;

namespace {

constinit std::atomic<bool> include_seconds = false;

} // namespace

bool IncludeSecondsGlobally() {
    return include_seconds.load(std::memory_order_relaxed);
}

void EnableIncludeSecondsGlobally() {
    include_seconds.store(true, std::memory_order_relaxed);
}

bool ColumnIncludeSeconds(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return IncludeSecondsGlobally() || store.ClassDefined(format, field, Kestrona::Classes::kIncludeSeconds);
}

void Kestrona::Text::ResetIncludeSeconds() {
    include_seconds.store(false, std::memory_order_relaxed);
}
