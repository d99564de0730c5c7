#include "platform/clock.h"

#include <time.h>

#include <chrono>

namespace Kestrona::Platform {

std::int64_t UtcMillisecondsNow() {
    using namespace std::chrono;
    return floor<milliseconds>(system_clock::now()).time_since_epoch().count();
}

std::int64_t LocalOffsetMillisecondsNow() {
    const time_t now = time(nullptr); // cppcheck-suppress unreadVariable ; by its address
    tm local{};
    return localtime_r(&now, &local) != nullptr ? std::int64_t{local.tm_gmtoff} * 1000 : 0;
}

} // namespace Kestrona::Platform
