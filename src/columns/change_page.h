#pragma once

#include <kestrona/change_set.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

// The pages of ChangedRecords, and the mark of one record, which stands here so that a tracked write makes it without
// a call.
namespace Kestrona::Data::MemoryResident {

namespace Marks {

inline constexpr std::int32_t kPageShift = 12;
inline constexpr std::int32_t kPageRecords = 1 << kPageShift;
inline constexpr std::int32_t kWordBits = 64;
// Pages of records below 67 million are found by one array step; the array grows to at most 128 KiB.
inline constexpr std::int32_t kNearPages = 1 << 14;

constexpr std::int32_t PageOf(std::int32_t record) {
    return record >> kPageShift; // rounds down, also below 0
}

constexpr bool IsNear(std::int32_t page) {
    return page >= 0 && page < kNearPages;
}

constexpr std::uint64_t LowBits(std::int32_t count) {
    return count >= kWordBits ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

} // namespace Marks

struct ChangedRecords::Page {
    // A record is changed only if it is known. Both bits of a record share a cache line.
    struct Word {
        std::uint64_t known = 0;
        std::uint64_t changed = 0;
    };

    std::array<Word, Marks::kPageRecords / Marks::kWordBits> words;

    static std::uint64_t BitOf(std::int32_t record) {
        return std::uint64_t{1} << (static_cast<std::uint32_t>(record) % Marks::kWordBits);
    }

    Word& WordOf(std::int32_t record) {
        return words[static_cast<std::uint32_t>(record) % Marks::kPageRecords / Marks::kWordBits];
    }

    // Enters the record as changed and returns 1 if it is new. The two words are written apart, lest they are put
    // together for one store that the next mark has to wait for.
    std::size_t Mark(std::int32_t record) {
        Word& word = WordOf(record);
        const std::uint64_t bit = BitOf(record);
        if ((word.changed & bit) != 0) {
            return 0;
        }
        word.changed |= bit;
        if ((word.known & bit) != 0) {
            return 0;
        }
        word.known |= bit;
        return 1;
    }

    // Enters the first `count` records as changed and returns how many of them are new.
    std::size_t Fill(std::int32_t count) {
        std::size_t entered = 0;
        for (std::size_t i = 0; count > 0; ++i, count -= Marks::kWordBits) {
            const std::uint64_t bits = Marks::LowBits(count);
            entered += static_cast<std::size_t>(std::popcount(bits & ~words[i].known));
            words[i].known |= bits;
            words[i].changed |= bits;
        }
        return entered;
    }

    void AppendTo(std::vector<std::pair<std::int32_t, bool>>& entries, std::int32_t page) const {
        for (std::int32_t first = 0; first < Marks::kPageRecords; first += Marks::kWordBits) {
            const Word& word = words[static_cast<std::size_t>(first / Marks::kWordBits)];
            for (std::uint64_t rest = word.known; rest != 0; rest &= rest - 1) {
                const std::int32_t bit = std::countr_zero(rest);
                entries.emplace_back(page * Marks::kPageRecords + first + bit, ((word.changed >> bit) & 1U) != 0);
            }
        }
    }
};

inline ChangedRecords::Page* ChangedRecords::FindPage(std::int32_t page) const {
    if (Marks::IsNear(page)) [[likely]] {
        const auto place = static_cast<std::size_t>(page);
        return place < near_.size() ? near_[place].get() : nullptr;
    }
    return FindFarPage(page);
}

// A mark of a page that is near and there needs no stack frame and, where it is already made, no store: tracked writes
// pay for both.
inline void ChangedRecords::MarkInPlace(std::int32_t record) {
    const std::int32_t page = Marks::PageOf(record);
    const auto place = static_cast<std::size_t>(page);
    if (!Marks::IsNear(page) || place >= near_.size() || near_[place] == nullptr) [[unlikely]] {
        return MarkOnNewPage(record);
    }
    count_ += near_[place]->Mark(record);
}

} // namespace Kestrona::Data::MemoryResident
