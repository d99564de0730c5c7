#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

// Reading from open files whose lengths and counts may be false.
namespace Kestrona::Platform {

// Bytes from here to the end of the file, which stays where it stands; 0 when the file cannot tell, and where reading
// has met the end: feof(file) stays.
std::size_t BytesLeft(std::FILE* file);

// Bytes of the whole file; 0 when it cannot tell. feof(file) stays.
std::size_t BytesOf(std::FILE* file);

// Replaces `bytes` by the next `count` bytes. False, with what there was, where the file ends too early. Memory follows
// what the file holds, not what is asked for.
bool ReadBytes(std::FILE* file, std::size_t count, std::string& bytes);

} // namespace Kestrona::Platform
