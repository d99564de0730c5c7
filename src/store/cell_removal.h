#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Kestrona::Data::MemoryResident {

// Removes the cells at `positions`, ascending and each once, and reports each as erased with the key that `key_of`
// gives for its place in `positions`. Like `Erase` of each, but in one pass. The column's announced size counts for
// nothing afterwards.
template <typename T, typename Column, typename KeyOf>
void RemoveCells(Column& column, std::span<const std::int32_t> positions, KeyOf key_of) {
    constexpr std::size_t kFew = 8;
    constexpr std::int32_t kNoCell = -1;
    if (positions.size() <= kFew) {
        for (std::size_t i = positions.size(); i-- > 0;) {
            column.Erase(positions[i], key_of(i));
        }
        return;
    }
    // The first cell stays for the end: a size of 0 would be a change of its own.
    const std::int32_t first = positions.front();
    const std::int32_t end = static_cast<std::int32_t>(column.GetCurrentSize());
    std::vector<T> behind(static_cast<std::size_t>(end > first + 1 ? end - first - 1 : 0));
    column.ReadBlock(first + 1, static_cast<std::int32_t>(behind.size()), behind.data());
    column.Resize(static_cast<std::uint32_t>(first) + 1);
    auto next = positions.begin() + 1;
    std::int32_t to = first + 1;
    for (std::size_t i = 0; i < behind.size(); ++i) {
        if (next != positions.end() && *next == first + 1 + static_cast<std::int32_t>(i)) {
            ++next;
        } else {
            column.Insert(to++, behind[i]);
        }
    }
    for (std::size_t i = positions.size() - 1; i > 0; --i) {
        column.Erase(kNoCell, key_of(i));
    }
    column.Erase(first, key_of(0));
}

} // namespace Kestrona::Data::MemoryResident
