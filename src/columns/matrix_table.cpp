#include "columns/matrix_table.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

namespace Kestrona::Data::MemoryResident {

struct MatrixTable::Page {
    std::array<MatrixEntry, kPageEntries> entries;
    std::int32_t columns = 0; // entries with a column
};

MatrixTable::MatrixTable() = default;

// Never destroyed: a store that lives until the process ends may still free its matrices then.
MatrixTable& MatrixTable::Instance() {
    static MatrixTable& table = *new MatrixTable();
    return table;
}

MatrixEntry* MatrixTable::FindEntry(std::int32_t id) const {
    const std::size_t page = static_cast<std::uint32_t>(id) >> kPageShift; // beyond all pages for a negative id
    if (page >= pages_.size() || pages_[page] == nullptr) {
        return nullptr;
    }
    return &pages_[page]->entries[static_cast<std::uint32_t>(id) % kPageEntries];
}

MatrixTable::Page& MatrixTable::NeedPage(std::int32_t id) {
    assert(id >= 0 && id < kMaxIds);
    const auto page = static_cast<std::size_t>(id >> kPageShift);
    if (page >= pages_.size()) {
        pages_.resize(page + 1);
    }
    if (pages_[page] == nullptr) {
        pages_[page] = std::make_unique<Page>();
    }
    return *pages_[page];
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
    const std::int32_t id = nextId_++;
    HeldMark(id) = true;
    if (nextId_ > capacity_) {
        capacity_ = std::min(capacity_ + kCapacityStep, capacity_ * 2);
    }
    return id;
}

void MatrixTable::NoteId(std::int32_t id) {
    assert(id >= 0 && id < kMaxIds);
    nextId_ = std::max(nextId_, id + 1);
    capacity_ = std::max(capacity_, nextId_);
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

void MatrixTable::Put(std::int32_t id, std::unique_ptr<MatrixColumn> column, std::uint32_t size, bool is_calculated) {
    Page& page = NeedPage(id);
    MatrixEntry& entry = page.entries[static_cast<std::uint32_t>(id) % kPageEntries];
    page.columns += (column != nullptr ? 1 : 0) - (entry.column != nullptr ? 1 : 0);
    entry = {std::move(column), size, is_calculated};
    HeldMark(id) = true;
}

void MatrixTable::SetSize(std::int32_t id, std::uint32_t size) {
    if (MatrixEntry* const entry = FindEntry(id)) {
        entry->size = size;
    }
}

void MatrixTable::Free(std::int32_t id) {
    MatrixEntry* const entry = FindEntry(id);
    if (entry == nullptr) {
        return;
    }
    const auto page = static_cast<std::size_t>(id >> kPageShift);
    const bool had_column = entry->column != nullptr;
    *entry = {};
    if (had_column) {
        --pages_[page]->columns;
        ReleasePageIfSpent(page);
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
    MatrixEntry* const entry = FindEntry(id);
    if (entry != nullptr && entry->otherCells != MatrixEntry::kUnknownCells) {
        ++entry->otherCells;
    }
}

void MatrixTable::NoteUnknownSharing(std::int32_t id) {
    if (MatrixEntry* const entry = FindEntry(id)) {
        entry->otherCells = MatrixEntry::kUnknownCells;
    }
}

void MatrixTable::Leave(std::int32_t id) {
    MatrixEntry* const entry = FindEntry(id);
    if (entry == nullptr || entry->column == nullptr || entry->otherCells == MatrixEntry::kUnknownCells) {
        return;
    }
    if (entry->otherCells > 0) {
        --entry->otherCells;
    } else {
        Release(id);
    }
}

void MatrixTable::ReleasePageIfSpent(std::size_t page) {
    const bool has_new_ids = page >= static_cast<std::size_t>(nextId_ >> kPageShift);
    if (has_new_ids || pages_[page]->columns > 0) {
        return;
    }
    const bool keeps_sizes =
        std::ranges::any_of(pages_[page]->entries, [](const MatrixEntry& entry) { return entry.size > 0; });
    if (!keeps_sizes) {
        pages_[page].reset();
    }
}

void MatrixTable::FreeColumns() {
    for (const std::unique_ptr<Page>& page : pages_) {
        if (page != nullptr) {
            std::ranges::for_each(page->entries, [](MatrixEntry& entry) { entry.column.reset(); });
            page->columns = 0;
        }
    }
}

void MatrixTable::Reset() {
    pages_.clear();
    held_.clear();
    nextId_ = 0;
    capacity_ = kFirstCapacity;
}

} // namespace Kestrona::Data::MemoryResident
