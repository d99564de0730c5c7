#pragma once

#include <kestrona/data_extraction.h>

#include <cstddef>

// What the parts of the snapshot reader share.
namespace Kestrona::DataExtraction {

// Stands for a value that is not there.
inline constexpr const wchar_t* kNoValue = L"-----";

// Records, and elements of matrices, that are taken from a file beyond as many as it has bytes. These can only be
// values left at their default, which take no byte: a file tells their number in four bytes, and a false one would fill
// the memory. Few records are without a key of their own; matrices that nobody has filled yet are common.
inline constexpr std::size_t kFreeRecords = std::size_t{1} << 12;
inline constexpr std::size_t kFreeElements = std::size_t{1} << 16;

// What came of loading a block, with sizes in bytes.
struct DataExtractReader::LoadedBlock {
    bool is_open = false;
    std::size_t file_size = 0;
    std::size_t size = 0;
};

} // namespace Kestrona::DataExtraction
