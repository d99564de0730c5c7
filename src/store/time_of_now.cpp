#include "store/time_of_now.h"

#include <kestrona/process.h>

#include <chrono>
#include <ctime>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr double kNotFixed = -1.0;
constexpr double kMillisecondsOfDay = 86400000.0;
constexpr double kFirstDayOfUnixTime = 25569.0; // counted from 30 December 1899

} // namespace

double TimeOfNow() {
    const double fixed = KSDLL_GetDoubleSv(kSvFixedNow);
    if (fixed != kNotFixed) {
        return fixed;
    }
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    std::tm local{};
    localtime_r(&seconds, &local);
    const auto local_now = now.time_since_epoch() + std::chrono::seconds(local.tm_gmtoff);
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(local_now).count();
    return kFirstDayOfUnixTime + static_cast<double>(milliseconds) / kMillisecondsOfDay +
           KSDLL_GetDoubleSv(kSvTimeShift);
}

} // namespace Kestrona::Data::MemoryResident
