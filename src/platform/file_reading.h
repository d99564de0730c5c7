#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

// Reading from open files whose lengths and counts may be false.
namespace Kestrona::Platform {

// Bytes from the file's position to its end; 0 when the file cannot tell. The position does not change. Where reading
// has met the end (feof), the result is 0 and the file is not touched, so that feof(file) goes on telling it.
std::size_t BytesLeft(std::FILE* file);

// Bytes of the whole file; 0 when it cannot tell. Neither the position nor feof(file) changes.
std::size_t BytesOf(std::FILE* file);

// Replaces `bytes` by the next `count` bytes. False, with what there was, where the file ends too early. Memory follows
// what the file holds, not what is asked for.
bool ReadBytes(std::FILE* file, std::size_t count, std::string& bytes);

} // namespace Kestrona::Platform
