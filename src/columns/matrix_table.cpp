#include "columns/matrix_table.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

namespace Kestrona::Data::MemoryResident {

struct MatrixTable::Page {
    std::array<MatrixEntry, kPageEntries> entries;
    std::int32_t matrices = 0; // entries that are one
};

MatrixTable::MatrixTable() = default;

// Never destroyed: a store that lives until the process ends may still free its matrices then.
MatrixTable& MatrixTable::Instance() {
    static MatrixTable& table = *new MatrixTable();
    return table;
}

MatrixEntry* MatrixTable::Find(std::int32_t id) const {
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

void MatrixTable::Put(std::int32_t id, MatrixEntry matrix) {
    Page& page = NeedPage(id);
    MatrixEntry& entry = page.entries[static_cast<std::uint32_t>(id) % kPageEntries];
    BreakOrder(entry);
    page.matrices += (matrix.IsMatrix() ? 1 : 0) - (entry.IsMatrix() ? 1 : 0);
    entry = std::move(matrix);
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
    const auto page = static_cast<std::size_t>(id >> kPageShift);
    const bool was_matrix = entry->IsMatrix();
    BreakOrder(*entry);
    *entry = {};
    if (was_matrix) {
        --pages_[page]->matrices;
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

void MatrixTable::ReleasePageIfSpent(std::size_t page) {
    const bool has_new_ids = page >= static_cast<std::size_t>(nextId_ >> kPageShift);
    if (has_new_ids || pages_[page]->matrices > 0) {
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
            std::ranges::for_each(page->entries, [this](MatrixEntry& entry) {
                BreakOrder(entry);
                entry.FreeElements();
            });
            page->matrices = 0;
        }
    }
}

void MatrixTable::Reset() {
    pages_.clear();
    held_.clear();
    ++orderBreaks_;
    nextId_ = 0;
    capacity_ = kFirstCapacity;
}

} // namespace Kestrona::Data::MemoryResident
