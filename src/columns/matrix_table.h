#pragma once

#include "columns/matrix_cells.h"

#include <kestrona/matrix_column.h>

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace Kestrona::Data::MemoryResident {

// One matrix. Without cells and column the id is free.
struct MatrixEntry {
    MatrixCells cells;
    std::unique_ptr<MatrixColumn> column; // instead of cells where the elements are calculated
    std::uint32_t size = 0;               // elements as announced; the cells may be more or fewer
    bool isCalculated = false;
    bool isNotedInOrder = false; // by a column of ids, which looks at `OrderBreaks`
    std::uint8_t otherCells = 0; // that hold the id beside one; kUnknownCells for many, or when nobody knows

    static constexpr std::uint8_t kUnknownCells = 255;

    [[nodiscard]] bool IsMatrix() const { return cells.IsMatrix() || column != nullptr; }

    // A size stays when the elements have gone.
    [[nodiscard]] bool HoldsAnything() const { return size > 0 || IsMatrix(); }

    void FreeElements() {
        cells = MatrixCells();
        column.reset();
    }
};

// Every matrix of the process, by id.
//
// The entries stand in pages of 512. A page is made with its first entry. Once ids behind it have been given out, it
// goes when few of its entries hold anything any more, since ids are not given out twice: those entries move to a map,
// until a page of them is worth while again. So a matrix that lasts costs little more than itself, however many came
// and went around it, and a far id costs one page. An entry keeps its place until a matrix is made or freed.
//
// A cell goes on holding the id of a matrix that was freed, and may get a matrix under it again. So the table remembers
// of each id whether a cell may hold it, in one bit, until the column of the cell goes: no file gets such an id.
//
// Invariant: 0 <= nextId_ <= capacity_. The capacity only tells for how many ids there is room; it holds no memory.
class MatrixTable {
public:
    static constexpr std::int32_t kNoId = -1;
    // Ids end here. The directories of pages take at most 18 MiB.
    static constexpr std::int32_t kMaxIds = 1 << 30;
    // Sizes and indices end here.
    static constexpr std::uint32_t kSizeLimit = 0x7fffffff;

    static constexpr std::int32_t kPageShift = 9;
    static constexpr std::int32_t kPageEntries = 1 << kPageShift;
    // So many entries are not worth a page.
    static constexpr std::int32_t kFewEntries = kPageEntries / 8;

    static MatrixTable& Instance();

    // Gives out the next id, `kNoId` when there are no more.
    std::int32_t TakeId();
    // An id that came from elsewhere is in use: no new one will equal it. Requires: 0 <= id < kMaxIds.
    void NoteId(std::int32_t id);
    // Takes this very id, which a file has. False when a cell may hold it already. Requires: 0 <= id < kMaxIds.
    [[nodiscard]] bool ClaimId(std::int32_t id);

    // Null for an id that never had an entry. Its size is changed by `SetSize` alone.
    [[nodiscard]] MatrixEntry* Find(std::int32_t id);

    // Replaces an entry. Requires: 0 <= id < kMaxIds.
    void Put(std::int32_t id, MatrixEntry matrix);
    // Drops what has no entry.
    void SetSize(std::int32_t id, std::uint32_t size);
    void Free(std::int32_t id);
    // Frees an id whose cell is about to go.
    void Release(std::int32_t id);
    // One more cell holds the id.
    void NoteSharing(std::int32_t id);
    // Nobody knows how many cells hold the id, as where it had been freed while they did.
    void NoteUnknownSharing(std::int32_t id);
    // A cell has got another id instead. The matrix goes with the last cell, unless nobody knows which that is.
    void Leave(std::int32_t id);
    // Frees every column; the sizes stay.
    void FreeColumns();
    // Back to the table of a process that has just started.
    void Reset();

    [[nodiscard]] std::int32_t Capacity() const { return capacity_; }

    // How often a matrix that was noted as in order got another size or went.
    [[nodiscard]] std::uint64_t OrderBreaks() const { return orderBreaks_; }

private:
    static constexpr std::int32_t kMarksShift = 12;
    static constexpr std::int32_t kMarks = 1 << kMarksShift;
    static constexpr std::int32_t kFirstCapacity = 128;
    static constexpr std::int32_t kCapacityStep = 4096;
    static constexpr std::int32_t kMostScattered = 2 * kFewEntries; // of one page

    struct Page;
    using Marks = std::bitset<kMarks>;

    MatrixTable();
    static std::size_t PageOf(std::int32_t id);
    [[nodiscard]] Page* FindPage(std::size_t page) const;
    Page& NeedPage(std::size_t page);

    // The entry, and its page unless it stands in the map.
    struct Place {
        MatrixEntry* entry;
        Page* page;
    };

    Place NeedEntry(std::int32_t id);
    Marks::reference HeldMark(std::int32_t id);
    void NoteNextId(std::int32_t id);
    void ThinOut(std::size_t page);
    bool MakeRoomInMap(std::size_t page);
    void Gather(std::size_t page);
    void BreakOrder(MatrixEntry& entry);

    std::vector<std::unique_ptr<Page>> pages_;
    std::unordered_map<std::int32_t, MatrixEntry> scattered_; // by id: entries of pages that went
    std::vector<std::uint8_t> scatteredOfPage_;
    std::vector<std::unique_ptr<Marks>> held_; // ids that a cell may hold, in pages likewise, of 4096
    std::int32_t nextId_ = 0;
    std::int32_t capacity_ = kFirstCapacity;
    std::uint64_t orderBreaks_ = 0;
};

} // namespace Kestrona::Data::MemoryResident
