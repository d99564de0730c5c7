// Implements: dates that the machine gives: now, and when a file was written.
#include "platform/clock.h"
#include "platform/files.h"
#include "text/copy_out.h"

#include <kestrona/dates.h>
#include <kestrona/process.h>

namespace {

constexpr double kTimeRuns = -1.0;

double DateFromUnixTime(std::int64_t milliseconds) {
    constexpr double kBeginningOf1970 = 25569.0;
    constexpr double kMillisecondsPerDay = 86400000.0;
    return static_cast<double>(milliseconds) / kMillisecondsPerDay + kBeginningOf1970;
}

} // namespace

double KSDLL_KestronaTime() {
    const double fixed = KSDLL_GetDoubleSv(kSvFixedNow);
    if (fixed != kTimeRuns) {
        return fixed;
    }
    const std::int64_t local =
        Kestrona::Platform::UtcMillisecondsNow() + Kestrona::Platform::LocalOffsetMillisecondsNow();
    return DateFromUnixTime(local) + KSDLL_GetDoubleSv(kSvTimeShift);
}

void KSDLL_GetFileTime(const wchar_t* path, wchar_t* text) {
    const auto written = path == nullptr ? std::nullopt : Kestrona::Platform::LastWriteTime(path);
    if (!written) {
        Kestrona::Text::CopyOut({}, text);
        return;
    }
    KSDLL_StringFromOADate(DateFromUnixTime(*written + Kestrona::Platform::LocalOffsetMillisecondsNow()), text);
}
