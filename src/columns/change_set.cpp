#include "columns/change_page.h"

#include <kestrona/change_set.h>

#include <algorithm>
#include <cassert>

namespace Kestrona::Data::MemoryResident {

using namespace Marks;

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

void ChangedRecords::Mark(std::int32_t record) {
    MarkInPlace(record);
}

// Where the page is not at hand: it is made, or far.
[[gnu::noinline]] void ChangedRecords::MarkOnNewPage(std::int32_t record) {
    count_ += NeedPage(PageOf(record)).Mark(record);
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
