#include <kestrona/host/duplicate_log.h>

#include <utility>

namespace Kestrona::Host {

DuplicateLog::DuplicateLog(Duplicated duplicated, Destroyed destroyed)
    : duplicated_(std::move(duplicated)),
      destroyed_(std::move(destroyed)) {}

void DuplicateLog::FormatDuplicated(std::int32_t source, std::int32_t copy) {
    if (duplicated_) {
        duplicated_(source, copy);
    }
}

void DuplicateLog::FormatDestroyed(std::int32_t format) {
    if (destroyed_) {
        destroyed_(format);
    }
}

} // namespace Kestrona::Host
