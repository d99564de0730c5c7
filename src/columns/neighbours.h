#pragma once

#include <cstdint>
#include <cstring>

// Comparing neighbours in an array, many at a time.
namespace Kestrona::Data::MemoryResident {

// Bit i tells whether values[i] differs from values[i - 1]. Requires: `count` at most 64, a value before the first.
template <typename T, typename Equal>
std::uint64_t DifferentFromBefore(const T* values, std::int32_t count, Equal equal) {
    std::uint64_t different = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        different |= std::uint64_t{!equal(values[i], values[i - 1])} << i;
    }
    return different;
}

// Two numbers in one step, which the compiler does not find by itself.
template <typename Equal>
std::uint64_t DifferentFromBefore(const double* values, std::int32_t count, Equal equal) {
    using Pair [[gnu::vector_size(16)]] = double;
    using Bits [[gnu::vector_size(16)]] = std::int64_t;
    Bits bits{1, 2};
    Bits found{0, 0};
    std::int32_t i = 0;
    for (; i + 2 <= count; i += 2) {
        Pair present;
        Pair before;
        std::memcpy(&present, values + i, sizeof present);
        std::memcpy(&before, values + i - 1, sizeof before);
        found |= (present != before) & bits;
        bits <<= 2;
    }
    auto different = static_cast<std::uint64_t>(found[0] | found[1]);
    if (i < count) {
        different |= std::uint64_t{!equal(values[i], values[i - 1])} << i;
    }
    return different;
}

} // namespace Kestrona::Data::MemoryResident
