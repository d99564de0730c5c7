#include "platform/random.h"

#include <openssl/rand.h>

#include <algorithm>
#include <limits>

namespace Kestrona::Platform {

bool RandomBytes(std::span<unsigned char> bytes) {
    // The generator counts in int.
    constexpr std::size_t kMostAtOnce = std::numeric_limits<int>::max();
    while (!bytes.empty()) {
        const std::size_t count = std::min(bytes.size(), kMostAtOnce);
        if (RAND_bytes(bytes.data(), static_cast<int>(count)) != 1) {
            return false;
        }
        bytes = bytes.subspan(count);
    }
    return true;
}

} // namespace Kestrona::Platform
