#include "snapshot/zlib_stream.h"

#include "snapshot/file_problem.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace Kestrona::Host::Snapshots {

namespace {

constexpr std::uint32_t kModulus = 65521;
// Bytes after which the sums must be reduced before 32 bits are too few.
constexpr std::size_t kMostUnreduced = 5552;
constexpr long kSumSize = 4;

// The checksum of everything in the file, as it stands at the end of a stream.
std::uint32_t Adler32(std::FILE* file) {
    std::rewind(file);
    std::array<unsigned char, kMostUnreduced * 16> block{};
    std::uint32_t sum = 1;
    std::uint32_t sum_of_sums = 0;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), file)) {
        for (std::size_t start = 0; start < count; start += kMostUnreduced) {
            const std::size_t end = std::min(count, start + kMostUnreduced);
            for (std::size_t i = start; i < end; ++i) {
                sum += block[i];
                sum_of_sums += sum;
            }
            sum %= kModulus;
            sum_of_sums %= kModulus;
        }
    }
    return sum_of_sums << 16 | sum;
}

// The last four bytes, 0 where there are fewer.
std::uint32_t LastWord(std::FILE* file) {
    std::array<unsigned char, kSumSize> bytes{};
    if (std::fseek(file, -kSumSize, SEEK_END) != 0 || std::fread(bytes.data(), bytes.size(), 1, file) != 1) {
        return 0;
    }
    std::uint32_t word = 0;
    for (const unsigned char byte : bytes) {
        word = word << 8 | byte;
    }
    return word;
}

// The place behind the first four bytes that are the checksum; -1 where there are none.
std::int64_t FindSum(std::FILE* file, std::uint32_t sum) {
    std::rewind(file);
    std::uint32_t word = 0;
    std::int64_t offset = 0;
    for (int byte = std::getc(file); byte != EOF; byte = std::getc(file)) {
        word = word << 8 | static_cast<std::uint32_t>(byte);
        ++offset;
        if (offset >= kSumSize && word == sum) {
            return offset;
        }
    }
    return -1;
}

} // namespace

bool LooksLikeZlib(std::string_view bytes) {
    if (bytes.size() < 2) {
        return false;
    }
    const auto method = static_cast<unsigned char>(bytes[0]);
    const auto flags = static_cast<unsigned char>(bytes[1]);
    const bool wants_dictionary = (flags & 0x20) != 0;
    return method == 0x78 && (method * 256 + flags) % 31 == 0 && !wants_dictionary;
}

bool CheckStreamEnd(std::FILE* file, const std::string& path, std::FILE* content, FileProblem& problem) {
    const std::uint32_t sum = Adler32(content);
    if (LastWord(file) == sum) {
        return true;
    }
    const std::int64_t end = FindSum(file, sum);
    std::fseek(file, 0, SEEK_END);
    const std::int64_t size = std::ftell(file);
    if (end >= 0) {
        problem = {FileFault::Damaged, path, end, Bytes(size - end) + " more", "the end of the compressed data"};
    } else {
        problem = {FileFault::Truncated, path, size, "its end", "more compressed data"};
    }
    return false;
}

} // namespace Kestrona::Host::Snapshots
