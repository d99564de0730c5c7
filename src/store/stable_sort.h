#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

// Sorting record numbers by keys that were taken beforehand.
namespace Kestrona::Data::MemoryResident {

struct NumberedKey {
    std::uint64_t key;
    std::int32_t record;
};

// Sorts by key; equal keys keep their order. Linear: a radix sort that passes over digits that all keys share.
void SortStably(std::vector<NumberedKey>& keys);

// A number whose order among unsigned numbers is that of the value; both zeros are equal and what is not a number
// stands last.
std::uint64_t OrderedBits(double value);

struct NumberedText {
    std::uint64_t key; // eight bytes of the text at a time, for the sort
    std::string_view text;
    std::int32_t record;
};

// Sorts by text, byte by byte; equal texts keep their order. The key is overwritten.
void SortStably(std::vector<NumberedText>& texts, bool ascending);

} // namespace Kestrona::Data::MemoryResident
