#include <kestrona/change_set.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr std::int32_t kPageShift = 12;
constexpr std::int32_t kPageRecords = 1 << kPageShift;
constexpr std::int32_t kWordBits = 64;
// Pages of records below 67 million are found by one array step; the array grows to at most 128 KiB.
constexpr std::int32_t kNearPages = 1 << 14;

constexpr std::int32_t PageOf(std::int32_t record) {
    return record >> kPageShift; // rounds down, also below 0
}

constexpr bool IsNear(std::int32_t page) {
    return page >= 0 && page < kNearPages;
}

constexpr std::uint64_t LowBits(std::int32_t count) {
    return count >= kWordBits ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

} // namespace

struct ChangedRecords::Page {
    // A record is changed only if it is known. Both bits of a record share a cache line.
    struct Word {
        std::uint64_t known = 0;
        std::uint64_t changed = 0;
    };

    std::array<Word, kPageRecords / kWordBits> words;

    static std::uint64_t BitOf(std::int32_t record) {
        return std::uint64_t{1} << (static_cast<std::uint32_t>(record) % kWordBits);
    }

    Word& WordOf(std::int32_t record) { return words[static_cast<std::uint32_t>(record) % kPageRecords / kWordBits]; }

    // Enters the first `count` records as changed and returns how many of them are new.
    std::size_t Fill(std::int32_t count) {
        std::size_t entered = 0;
        for (std::size_t i = 0; count > 0; ++i, count -= kWordBits) {
            const std::uint64_t bits = LowBits(count);
            entered += static_cast<std::size_t>(std::popcount(bits & ~words[i].known));
            words[i].known |= bits;
            words[i].changed |= bits;
        }
        return entered;
    }

    void AppendTo(std::vector<std::pair<std::int32_t, bool>>& entries, std::int32_t page) const {
        for (std::int32_t first = 0; first < kPageRecords; first += kWordBits) {
            const Word& word = words[static_cast<std::size_t>(first / kWordBits)];
            for (std::uint64_t rest = word.known; rest != 0; rest &= rest - 1) {
                const std::int32_t bit = std::countr_zero(rest);
                entries.emplace_back(page * kPageRecords + first + bit, ((word.changed >> bit) & 1U) != 0);
            }
        }
    }
};

ChangedRecords::ChangedRecords() = default;

ChangedRecords::ChangedRecords(ChangedRecords&& other) noexcept
    : near_(std::move(other.near_)),
      far_(std::move(other.far_)),
      count_(std::exchange(other.count_, 0)) {}

ChangedRecords& ChangedRecords::operator=(ChangedRecords&& other) noexcept {
    if (this != &other) {
        near_ = std::exchange(other.near_, {});
        far_ = std::exchange(other.far_, {});
        count_ = std::exchange(other.count_, 0);
    }
    return *this;
}

ChangedRecords::~ChangedRecords() = default;

ChangedRecords::Page* ChangedRecords::FindPage(std::int32_t page) const {
    if (IsNear(page)) [[likely]] {
        const auto place = static_cast<std::size_t>(page);
        return place < near_.size() ? near_[place].get() : nullptr;
    }
    return FindFarPage(page);
}

[[gnu::noinline]] ChangedRecords::Page* ChangedRecords::FindFarPage(std::int32_t page) const {
    const auto found = far_.find(page);
    return found != far_.end() ? found->second.get() : nullptr;
}

ChangedRecords::Page& ChangedRecords::NeedPage(std::int32_t page) {
    Page* const found = FindPage(page);
    return found != nullptr ? *found : AddPage(page);
}

ChangedRecords::Page& ChangedRecords::AddPage(std::int32_t page) {
    if (!IsNear(page)) {
        return *(far_[page] = std::make_unique<Page>());
    }
    const auto place = static_cast<std::size_t>(page);
    if (near_.size() <= place) {
        near_.resize(place + 1);
    }
    near_[place] = std::make_unique<Page>();
    return *near_[place];
}

// A mark of a known page needs no stack frame and, where it is already made, no store: tracked writes pay for both.
void ChangedRecords::Mark(std::int32_t record) {
    Page* const page = FindPage(PageOf(record));
    if (page == nullptr) [[unlikely]] {
        return MarkOnNewPage(record);
    }
    Page::Word& word = page->WordOf(record);
    const std::uint64_t bit = Page::BitOf(record);
    if ((word.changed & bit) == 0) {
        count_ += (word.known & bit) == 0 ? 1 : 0;
        word.known |= bit;
        word.changed |= bit;
    }
}

[[gnu::noinline]] void ChangedRecords::MarkOnNewPage(std::int32_t record) {
    AddPage(PageOf(record));
    Mark(record);
}

void ChangedRecords::MarkRange(std::int32_t count) {
    for (std::int32_t page = 0; count > 0; ++page, count -= kPageRecords) {
        count_ += NeedPage(page).Fill(std::min(count, kPageRecords));
    }
}

void ChangedRecords::MarkMany(std::int32_t first, std::uint64_t bits) {
    assert(first >= 0 && first % kWordBits == 0);
    Page::Word& word = NeedPage(PageOf(first)).WordOf(first);
    count_ += static_cast<std::size_t>(std::popcount(bits & ~word.known));
    word.known |= bits;
    word.changed |= bits;
}

bool ChangedRecords::Lookup(std::int32_t record) {
    Page::Word& word = NeedPage(PageOf(record)).WordOf(record);
    const std::uint64_t bit = Page::BitOf(record);
    count_ += (word.known & bit) == 0 ? 1 : 0;
    word.known |= bit;
    return (word.changed & bit) != 0;
}

bool ChangedRecords::Contains(std::int32_t record) const {
    Page* const page = FindPage(PageOf(record));
    return page != nullptr && (page->WordOf(record).known & Page::BitOf(record)) != 0;
}

void ChangedRecords::Erase(std::int32_t record) {
    if (!Contains(record)) {
        return;
    }
    Page::Word& word = FindPage(PageOf(record))->WordOf(record);
    word.known &= ~Page::BitOf(record);
    word.changed &= ~Page::BitOf(record);
    --count_;
}

void ChangedRecords::Clear() {
    near_.clear();
    far_.clear();
    count_ = 0;
}

std::vector<std::pair<std::int32_t, bool>> ChangedRecords::Entries() const {
    std::vector<std::pair<std::int32_t, bool>> entries;
    entries.reserve(count_);
    const auto first_behind = far_.lower_bound(kNearPages);
    for (auto far = far_.begin(); far != first_behind; ++far) {
        far->second->AppendTo(entries, far->first);
    }
    for (std::size_t page = 0; page < near_.size(); ++page) {
        if (near_[page] != nullptr) {
            near_[page]->AppendTo(entries, static_cast<std::int32_t>(page));
        }
    }
    for (auto far = first_behind; far != far_.end(); ++far) {
        far->second->AppendTo(entries, far->first);
    }
    return entries;
}

} // namespace Kestrona::Data::MemoryResident
