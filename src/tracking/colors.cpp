// Implements: values at the end of a path as colours.
#include "platform/numbers.h"
#include "tracking/steps.h"

#include <kestrona/classes.h>
#include <kestrona/tracked_values.h>

#include <cmath>
#include <cstddef>
#include <iterator>

namespace Kestrona::Tracking {

using Data::MemoryResident::IMemoryResidentData;

namespace {

constexpr std::uint32_t kWhite = 0xffffff;
constexpr std::int32_t kLastUnset = -2; // the colours of the user lie below
constexpr std::int32_t kUserColorBase = -10;

// The colours of the indexes from 1 on.
constexpr std::uint32_t kPalette[] = {
    0xff0000, 0xff,   0xff00ff, 0xff00, 0xffff00, 0xffff,   0,        0x808080, 0x800000, 0x80,     0x800080, 0x8000,
    0x808000, 0x8080, 0xc0c0c0, 0x80ff, 0x8000ff, 0x8080ff, 0x80ff00, 0xff80,   0x80ff80, 0xff8000, 0xff0080, 0xff8080,
};

std::uint32_t PaletteColor(double value) {
    if (std::isnan(value)) {
        return kWhite;
    }
    const std::int32_t index = Platform::TruncateToInt32(value);
    if (index < kLastUnset) {
        // Unsigned, since the smallest index has no positive counterpart.
        return static_cast<std::uint32_t>(kUserColorBase) - static_cast<std::uint32_t>(index);
    }
    const bool is_in_palette = index >= 1 && static_cast<std::size_t>(index) <= std::size(kPalette);
    return is_in_palette ? kPalette[index - 1] : kWhite;
}

// Colours above 0x7fffffff are stored as they are or as negative numbers.
std::uint32_t DirectColor(double value) {
    constexpr double kTwoTo31 = 2147483648.0;
    constexpr double kTwoTo32 = 4294967296.0;
    const double whole = std::trunc(value);
    return static_cast<std::uint32_t>(
        Platform::TruncateToInt32(whole >= kTwoTo31 && whole < kTwoTo32 ? whole - kTwoTo32 : whole));
}

std::uint32_t ToColor(IMemoryResidentData& store, const TrackingPath& path, double value) {
    const TrackingStep& target = GetTargetStep(path);
    return store.ClassDefined(target.format, target.field, Classes::kDirectColour) ? DirectColor(value)
                                                                                   : PaletteColor(value);
}

} // namespace

std::uint32_t TrackForColor(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record) {
    return TrackForColor(store, path, record, nullptr);
}

std::uint32_t TrackForColor(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
                            std::int32_t* raw) {
    const double value = TrackForValue(store, path, record);
    const std::uint32_t color = ToColor(store, path, value);
    if (raw != nullptr) {
        *raw = Platform::TruncateToInt32(value);
    }
    return color;
}

std::uint32_t TrackForListColor(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
                                std::int32_t index) {
    return ToColor(store, path, TrackForListValue(store, path, record, index));
}

} // namespace Kestrona::Tracking
