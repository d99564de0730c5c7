#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

// Columns as blocks of a saved file. All numbers are little-endian.
//
//   numbers   int32 count, then the values as they lie in memory: 8, 4 or 1 bytes each
//   texts     int32 count, then for each text: int32 length in UTF-16 code units, 2 bytes for each unit
//
// A file may be damaged at any place. Nothing here allocates more than what the file really holds; a negative count or
// length reads as 0; a block that the file's end cuts short gives what stands before the cut, and sets feof(file).
// Failed writes show in ferror(file).
namespace Kestrona::Data::MemoryResident {

template <typename T>
void WriteNumbers(std::FILE* file, const std::vector<T>& values);

// At most `limit` values; the others are passed over.
template <typename T>
std::vector<T> ReadNumbers(std::FILE* file, std::size_t limit);

void WriteTexts(std::FILE* file, const std::vector<std::wstring>& texts);

// The count that stands in front of a block.
std::int32_t ReadCount(std::FILE* file);

// Reads one text, cut at its first zero unit. False, and `text` unchanged, when the file does not hold all of it.
bool ReadText(std::FILE* file, std::wstring& text);

extern template void WriteNumbers(std::FILE*, const std::vector<double>&);
extern template void WriteNumbers(std::FILE*, const std::vector<char>&);
extern template void WriteNumbers(std::FILE*, const std::vector<std::int32_t>&);
extern template std::vector<double> ReadNumbers(std::FILE*, std::size_t);
extern template std::vector<char> ReadNumbers(std::FILE*, std::size_t);
extern template std::vector<std::int32_t> ReadNumbers(std::FILE*, std::size_t);

} // namespace Kestrona::Data::MemoryResident
