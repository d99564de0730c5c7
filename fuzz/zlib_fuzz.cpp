#include "fuzz.h"
#include "platform/deflate.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>

// Any bytes taken apart as a compressed file, and compressed and taken apart again.

namespace {

using namespace Kestrona::Fuzz;
using namespace Kestrona::Platform;

// zlib makes at most about a thousand bytes of one.
constexpr std::size_t kMostOfOne = 1040;

struct Result {
    std::int32_t code;
    std::string bytes;
};

template <typename Convert>
Result Run(Convert convert, const void* data, std::size_t size) {
    const File source(fmemopen(const_cast<void*>(data), size, "rb"));
    std::int32_t code = 0;
    std::string bytes = BytesOf([&](std::FILE* target) { code = convert(source.get(), target); });
    return {code, std::move(bytes)};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const Result apart = Run(InflateFile, data, size);
    Require(apart.code == kDeflateDone || apart.code == kDeflateDataDamaged);
    Require(apart.bytes.size() <= size * kMostOfOne);
    const Result compressed = Run(DeflateFile, data, size);
    Require(compressed.code == kDeflateDone);
    const Result back = Run(InflateFile, compressed.bytes.data(), compressed.bytes.size());
    Require(back.code == kDeflateDone && back.bytes == std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
