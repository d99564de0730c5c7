#include "output/peak_memory.h"

#include <fmt/format.h>
#include <sys/resource.h>

namespace Kestrona::Tool {

namespace {

constexpr double kBytesPerKibibyte = 1024.0;
constexpr double kBytesPerMegabyte = 1.0e6;

} // namespace

std::string PeakMemoryText() {
    rusage usage{};
    const double kibibytes = getrusage(RUSAGE_SELF, &usage) == 0 ? static_cast<double>(usage.ru_maxrss) : 0.0;
    return fmt::format("peak memory {:.1f} MB", kibibytes * kBytesPerKibibyte / kBytesPerMegabyte);
}

} // namespace Kestrona::Tool
