#include "columns/matrix_table.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <new>
#include <utility>

namespace Kestrona::Data::MemoryResident {

struct MatrixTable::Page {
    std::array<MatrixEntry, kPageEntries> entries;
    std::int32_t matrices = 0; // entries that are one
};

MatrixTable::MatrixTable() = default;

// Never destroyed: a store that lives until the process ends may still free its matrices then. Made without memory, as
// a store asks for it when it is destroyed, too.
MatrixTable& MatrixTable::Instance() {
    alignas(MatrixTable) static std::array<std::byte, sizeof(MatrixTable)> storage;
    static MatrixTable& table = *new (storage.data()) MatrixTable();
    return table;
}

// Beyond all pages for a negative id.
std::size_t MatrixTable::PageOf(std::int32_t id) {
    return static_cast<std::uint32_t>(id) >> kPageShift;
}

MatrixTable::Page* MatrixTable::FindPage(std::size_t page) const {
    return page < pages_.size() ? pages_[page].get() : nullptr;
}

MatrixEntry* MatrixTable::Find(std::int32_t id) {
    if (Page* const page = FindPage(PageOf(id))) {
        return &page->entries[static_cast<std::uint32_t>(id) % kPageEntries];
    }
    const auto place = scattered_.find(id);
    return place != scattered_.end() ? &place->second : nullptr;
}

MatrixTable::Page& MatrixTable::NeedPage(std::size_t page) {
    if (page >= pages_.size()) {
        pages_.resize(page + 1);
    }
    if (pages_[page] == nullptr) {
        pages_[page] = std::make_unique<Page>();
    }
    return *pages_[page];
}

MatrixTable::Place MatrixTable::NeedEntry(std::int32_t id) {
    assert(id >= 0 && id < kMaxIds);
    const std::size_t number = PageOf(id);
    if (number < scatteredOfPage_.size() && scatteredOfPage_[number] > 0) {
        const auto [place, is_new] = scattered_.try_emplace(id);
        if (is_new) {
            ++scatteredOfPage_[number];
        }
        if (scatteredOfPage_[number] <= kMostScattered) {
            return {&place->second, nullptr};
        }
        Gather(number);
    }
    Page& page = NeedPage(number);
    return {&page.entries[static_cast<std::uint32_t>(id) % kPageEntries], &page};
}

// The page takes its entries back.
void MatrixTable::Gather(std::size_t page) {
    Page& target = NeedPage(page);
    auto id = static_cast<std::int32_t>(page) * kPageEntries;
    for (MatrixEntry& entry : target.entries) {
        if (const auto place = scattered_.find(id++); place != scattered_.end()) {
            entry = std::move(place->second);
            target.matrices += entry.IsMatrix() ? 1 : 0;
            scattered_.erase(place);
        }
    }
    scatteredOfPage_[page] = 0;
}

// Makes an empty entry in the map for each that the page holds, or none: a matrix is freed where nothing may fail, so a
// lack of memory only means that the page stays.
bool MatrixTable::MakeRoomInMap(std::size_t page) {
    const auto first = static_cast<std::int32_t>(page) * kPageEntries;
    try {
        scatteredOfPage_.resize(std::max(scatteredOfPage_.size(), page + 1));
        for (std::int32_t i = 0; i < kPageEntries; ++i) {
            if (pages_[page]->entries[static_cast<std::size_t>(i)].HoldsAnything()) {
                scattered_.try_emplace(first + i);
            }
        }
        return true;
    } catch (const std::bad_alloc&) {
        for (std::int32_t i = 0; i < kPageEntries; ++i) {
            scattered_.erase(first + i);
        }
        return false;
    }
}

// Gives up a page that holds few entries and gets no new ones.
void MatrixTable::ThinOut(std::size_t page) {
    Page* const source = FindPage(page);
    const bool has_new_ids = page >= PageOf(nextId_);
    if (source == nullptr || has_new_ids || source->matrices > kFewEntries) {
        return;
    }
    const auto held = std::ranges::count_if(source->entries, &MatrixEntry::HoldsAnything);
    if (held > kFewEntries || (held > 0 && !MakeRoomInMap(page))) {
        return;
    }
    if (held > 0) {
        auto id = static_cast<std::int32_t>(page) * kPageEntries;
        for (MatrixEntry& entry : source->entries) {
            if (const auto place = scattered_.find(id++); place != scattered_.end()) {
                place->second = std::move(entry);
            }
        }
        scatteredOfPage_[page] = static_cast<std::uint8_t>(held);
    }
    pages_[page].reset();
}

MatrixTable::Marks::reference MatrixTable::HeldMark(std::int32_t id) {
    assert(id >= 0 && id < kMaxIds);
    const auto page = static_cast<std::size_t>(id >> kMarksShift);
    if (page >= held_.size()) {
        held_.resize(page + 1);
    }
    if (held_[page] == nullptr) {
        held_[page] = std::make_unique<Marks>();
    }
    return (*held_[page])[static_cast<std::uint32_t>(id) % kMarks];
}

std::int32_t MatrixTable::TakeId() {
    if (nextId_ == kMaxIds) {
        return kNoId;
    }
    const std::int32_t id = nextId_;
    HeldMark(id) = true;
    NoteNextId(id + 1);
    if (nextId_ > capacity_) {
        capacity_ = std::min(capacity_ + kCapacityStep, capacity_ * 2);
    }
    return id;
}

void MatrixTable::NoteId(std::int32_t id) {
    assert(id >= 0 && id < kMaxIds);
    NoteNextId(std::max(nextId_, id + 1));
    capacity_ = std::max(capacity_, nextId_);
}

// Pages that ids now lie behind may have lost their entries before.
void MatrixTable::NoteNextId(std::int32_t id) {
    std::size_t page = PageOf(nextId_);
    nextId_ = id;
    for (const std::size_t end = std::min(PageOf(id), pages_.size()); page < end; ++page) {
        ThinOut(page);
    }
}

bool MatrixTable::ClaimId(std::int32_t id) {
    Marks::reference held = HeldMark(id);
    if (held) {
        return false;
    }
    held = true;
    NoteId(id);
    return true;
}

void MatrixTable::Put(std::int32_t id, MatrixEntry matrix) {
    const auto [entry, page] = NeedEntry(id);
    BreakOrder(*entry);
    if (page != nullptr) {
        page->matrices += (matrix.IsMatrix() ? 1 : 0) - (entry->IsMatrix() ? 1 : 0);
    }
    *entry = std::move(matrix);
    HeldMark(id) = true;
}

void MatrixTable::BreakOrder(MatrixEntry& entry) {
    if (entry.isNotedInOrder) {
        entry.isNotedInOrder = false;
        ++orderBreaks_;
    }
}

void MatrixTable::SetSize(std::int32_t id, std::uint32_t size) {
    MatrixEntry* const entry = Find(id);
    if (entry != nullptr && entry->size != size) {
        BreakOrder(*entry);
        entry->size = size;
    }
}

void MatrixTable::Free(std::int32_t id) {
    MatrixEntry* const entry = Find(id);
    if (entry == nullptr) {
        return;
    }
    BreakOrder(*entry);
    const std::size_t number = PageOf(id);
    if (Page* const page = FindPage(number)) {
        page->matrices -= entry->IsMatrix() ? 1 : 0;
        *entry = {};
        ThinOut(number);
    } else {
        scattered_.erase(id);
        --scatteredOfPage_[number];
    }
}

void MatrixTable::Release(std::int32_t id) {
    Free(id);
    const std::size_t page = static_cast<std::uint32_t>(id) >> kMarksShift; // beyond all pages for a negative id
    if (page < held_.size() && held_[page] != nullptr) {
        HeldMark(id) = false;
    }
}

void MatrixTable::NoteSharing(std::int32_t id) {
    MatrixEntry* const entry = Find(id);
    if (entry != nullptr && entry->otherCells != MatrixEntry::kUnknownCells) {
        ++entry->otherCells;
    }
}

void MatrixTable::NoteUnknownSharing(std::int32_t id) {
    if (MatrixEntry* const entry = Find(id)) {
        entry->otherCells = MatrixEntry::kUnknownCells;
    }
}

void MatrixTable::Leave(std::int32_t id) {
    MatrixEntry* const entry = Find(id);
    if (entry == nullptr || !entry->IsMatrix() || entry->otherCells == MatrixEntry::kUnknownCells) {
        return;
    }
    if (entry->otherCells > 0) {
        --entry->otherCells;
    } else {
        Release(id);
    }
}

void MatrixTable::FreeColumns() {
    const auto free = [this](MatrixEntry& entry) {
        BreakOrder(entry);
        entry.FreeElements();
    };
    for (const std::unique_ptr<Page>& page : pages_) {
        if (page != nullptr) {
            std::ranges::for_each(page->entries, free);
            page->matrices = 0;
        }
    }
    for (auto& [id, entry] : scattered_) {
        free(entry);
    }
}

void MatrixTable::Reset() {
    pages_.clear();
    scattered_.clear();
    scatteredOfPage_.clear();
    held_.clear();
    ++orderBreaks_;
    nextId_ = 0;
    capacity_ = kFirstCapacity;
}

} // namespace Kestrona::Data::MemoryResident
