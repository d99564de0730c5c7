#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

// Reading from open files whose lengths and counts may be false.
namespace Kestrona::Platform {

// Bytes from here to the end of the file, which stays where it stands; 0 when the file cannot tell.
std::size_t BytesLeft(std::FILE* file);

// Replaces `bytes` by the next `count` bytes. False, with what there was, where the file ends too early. Memory follows
// what the file holds, not what is asked for.
bool ReadBytes(std::FILE* file, std::size_t count, std::string& bytes);

} // namespace Kestrona::Platform
