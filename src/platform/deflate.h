#pragma once

#include <cstdint>
#include <cstdio>

// zlib streams between open files, in pieces of 16 KiB.
namespace Kestrona::Platform {

inline constexpr std::int32_t kDeflateDone = 0;
inline constexpr std::int32_t kDeflateFileFailed = -1;
inline constexpr std::int32_t kDeflateDataDamaged = -3;
inline constexpr std::int32_t kDeflateOutOfMemory = -4;

// Compresses what is left of `source`. One of the constants, or what zlib answers when it cannot begin.
std::int32_t DeflateFile(std::FILE* source, std::FILE* target);

// Takes a stream apart up to its end. One that is cut short gives what it holds and is no failure.
std::int32_t InflateFile(std::FILE* source, std::FILE* target);

} // namespace Kestrona::Platform
