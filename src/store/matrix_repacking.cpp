// Implements: ResizeOneDMatrix, ResizeTwoDMatrix.
#include "store/matrix_repacking.h"

#include "columns/matrix_table.h"
#include "store/cell_removal.h"
#include "store/class_test.h"
#include "store/dimensioned_fields.h"
#include "store/record_lists.h"
#include "store/record_matrices.h"

#include <kestrona/classes.h>
#include <kestrona/matrices.h>
#include <kestrona/records.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace Kestrona::Data::MemoryResident {

namespace {

using Positions = std::span<const std::int32_t>;

constexpr double kNoKey = -1.0;

// One dimension of a grid: how many positions it has, and which of them go.
struct Axis {
    std::int32_t size;
    Positions gone;

    [[nodiscard]] std::int32_t Left() const { return size - static_cast<std::int32_t>(gone.size()); }
};

// Walks positions in ascending order and tells which of them go.
class GoneCursor {
public:
    explicit GoneCursor(Positions gone) : next_(gone.begin()), end_(gone.end()) {}

    bool IsGone(std::int32_t position) {
        const bool is_gone = next_ != end_ && *next_ == position;
        next_ += is_gone ? 1 : 0;
        return is_gone;
    }

private:
    Positions::iterator next_;
    Positions::iterator end_;
};

// Moves what is left to the front, row by row. Cells only ever move forward. `size` is that of the matrix.
void Repack(MatrixCells& cells, std::uint32_t size, const Axis& x_axis, const Axis& y_axis) {
    const auto held = static_cast<std::int32_t>(size);
    std::vector<double> row(static_cast<std::size_t>(y_axis.size));
    GoneCursor rows(x_axis.gone);
    std::int32_t to = 0;
    for (std::int32_t x = 0, from = 0; x < x_axis.size && from < held; ++x, from += y_axis.size) {
        if (rows.IsGone(x)) {
            continue;
        }
        cells.ReadBlock(from, y_axis.size, row.data());
        GoneCursor columns(y_axis.gone);
        for (std::int32_t y = 0; y < y_axis.size && from + y < held; ++y) {
            if (!columns.IsGone(y)) {
                cells.SetValue(to++, row[static_cast<std::size_t>(y)]);
            }
        }
    }
}

// The matrices of one field that lose cells.
class FieldRepacking {
public:
    FieldRepacking(IMemoryResidentData& store, TableColumn place, const DeletedRecords& deleted)
        : store_(store),
          place_(place),
          info_(*store.GetFieldInfo(place.format, place.field)),
          is_grid_(HasClass(info_, Classes::k3DMatrix)),
          x_axis_(is_grid_ ? MakeAxis(info_.table, deleted) : Axis{1, {}}),
          y_axis_(MakeAxis(info_.tableY, deleted)),
          size_left_(GridSize(x_axis_.Left(), y_axis_.Left())) {}

    // The record's matrix gets the size that is left, whatever it had.
    void Close(std::int32_t record) {
        const std::int32_t id = MatrixIdOf(info_, record);
        MatrixEntry* const entry = FindOwnMatrix(id);
        if (entry != nullptr && !(x_axis_.gone.empty() && y_axis_.gone.empty())) {
            Repack(entry->cells, entry->size, x_axis_, y_axis_);
        }
        if (!HasMatrixOfSize(info_, record, size_left_)) {
            KSDLL_CreateMatrix(store_, size_left_, place_.format, place_.field, record);
        }
    }

    // The cells of a one-dimensional matrix go as if erased one by one.
    void EraseCells(std::int32_t record) {
        const std::int32_t id = MatrixIdOf(info_, record);
        MatrixEntry* const entry = FindOwnMatrix(id);
        if (entry == nullptr) {
            return;
        }
        const auto end = std::ranges::lower_bound(y_axis_.gone, static_cast<std::int64_t>(entry->size));
        const Positions gone(y_axis_.gone.begin(), end);
        if (!gone.empty()) {
            const std::uint32_t left = entry->size - static_cast<std::uint32_t>(gone.size());
            RemoveCells<double>(entry->cells, gone, [](std::size_t) { return kNoKey; });
            MatrixTable::Instance().SetSize(id, left);
        }
    }

    // `erases` tells how a one-dimensional matrix loses its cells.
    void CloseAll(bool erases) {
        const std::int32_t owners = MatrixOwners(store_, place_.format, info_);
        for (std::int32_t owner = 0; owner < owners; ++owner) {
            if (erases && !is_grid_) {
                EraseCells(owner);
            } else {
                Close(owner);
            }
        }
    }

private:
    [[nodiscard]] Axis MakeAxis(std::int32_t format, const DeletedRecords& deleted) const {
        return {store_.GetCurrentDbSize(format), format == deleted.format ? deleted.ascending : Positions()};
    }

    // A calculated matrix keeps no cells.
    static MatrixEntry* FindOwnMatrix(std::int32_t id) {
        MatrixEntry* const entry = FindMatrixEntry(id);
        return entry != nullptr && !entry->isCalculated ? entry : nullptr;
    }

    IMemoryResidentData& store_;
    TableColumn place_;
    const field_info& info_;
    bool is_grid_;
    Axis x_axis_;
    Axis y_axis_;
    std::uint32_t size_left_;
};

bool HasMatrices(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const field_info* const info = store.GetFieldInfo(format, field);
    return info != nullptr && HoldsMatrices(*info);
}

} // namespace

void CloseMatrices(IMemoryResidentData& store, const DeletedRecords& deleted) {
    const bool is_list = deleted.ascending.size() > 1;
    ForEachFollowingField(store, [&](std::int32_t format, std::int32_t field, const field_info& info) {
        if (IsDimensionedBy(info, deleted.format)) {
            FieldRepacking(store, {format, field}, deleted).CloseAll(is_list);
        }
    });
}

} // namespace Kestrona::Data::MemoryResident

using namespace Kestrona::Data::MemoryResident;

void ResizeOneDMatrix(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record,
                      std::int32_t deleted_from, std::vector<std::int32_t> records) {
    if (HasMatrices(store, format, field)) {
        const std::vector<std::int32_t> gone = AscendingRecords(store, deleted_from, std::move(records));
        FieldRepacking(store, {format, field}, {deleted_from, gone}).EraseCells(record);
    }
}

void ResizeTwoDMatrix(MemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record,
                      std::int32_t deleted_from, std::vector<std::int32_t> records) {
    if (HasMatrices(store, format, field) &&
        (record == 0 || !store.ClassDefined(format, field, Kestrona::Classes::kCommonMatrix))) {
        const std::vector<std::int32_t> gone = AscendingRecords(store, deleted_from, std::move(records));
        FieldRepacking(store, {format, field}, {deleted_from, gone}).Close(record);
    }
}
