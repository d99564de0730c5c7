#include "store/matrix_growth.h"

#include "columns/matrix_table.h"
#include "platform/format_text.h"
#include "store/class_test.h"
#include "store/dimensioned_fields.h"
#include "store/growing_fields.h"
#include "store/record_matrices.h"

#include <kestrona/classes.h>
#include <kestrona/matrices.h>
#include <kestrona/services.h>

#include <vector>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr const wchar_t* kGrows = L"Grow matrix for field %li in db %li";
constexpr const wchar_t* kChanged = L"Changed Format id %li, Table %li, Table Y %li";

// Copies `count` cells from `from` on to `to`, whichever way they overlap.
void MoveCells(MatrixCells& cells, std::int32_t from, std::int32_t to, std::int32_t count,
               std::vector<double>& buffer) {
    buffer.resize(static_cast<std::size_t>(count));
    cells.ReadBlock(from, count, buffer.data());
    for (std::int32_t i = count - 1; i >= 0; --i) {
        cells.SetValue(to + i, buffer[static_cast<std::size_t>(i)]);
    }
}

void FillCells(MatrixCells& cells, std::int32_t from, std::int32_t count, double value) {
    for (std::int32_t i = 0; i < count; ++i) {
        cells.SetValue(from + i, value);
    }
}

// The matrices of one field, while a record of the format `grown` comes in at `record`.
class FieldGrowth {
public:
    FieldGrowth(IMemoryResidentData& store, TableColumn place, std::int32_t grown, std::int32_t record)
        : store_(store),
          place_(place),
          grown_(grown),
          record_(record),
          info_(*store.GetFieldInfo(place.format, place.field)),
          size_x_(store.GetCurrentDbSize(info_.table)),
          size_y_(store.GetCurrentDbSize(info_.tableY)),
          size_(FullSize(store, info_)),
          default_(store.GetDbDefaultValue(place.format, place.field)) {}

    void Run() {
        const bool logs = IsDebugLogEnabled();
        if (logs) {
            KSDLL_WriteDebug(Platform::FormatText(kGrows, place_.field, place_.format));
        }
        const std::int32_t owners = MatrixOwners(store_, place_.format, info_);
        for (std::int32_t owner = 0; owner < owners; ++owner) {
            Grow(owner);
            if (logs) {
                KSDLL_WriteDebug(Platform::FormatText(kChanged, place_.format, info_.table, info_.tableY));
            }
        }
    }

private:
    // A calculated matrix keeps no cells.
    void Grow(std::int32_t owner) {
        const std::int32_t id = KSDLL_CreateMatrix(store_, size_, place_.format, place_.field, owner);
        MatrixEntry* const entry = FindMatrixEntry(id);
        if (entry == nullptr || entry->isCalculated || size_ == 0) {
            return;
        }
        if (HasClass(info_, Classes::k3DMatrix)) {
            GrowGrid(entry->cells);
        } else {
            GrowRow(entry->cells, owner);
        }
    }

    void GrowGrid(MatrixCells& cells) {
        if (info_.tableY == grown_) {
            OpenColumn(cells);
        }
        if (info_.table == grown_) {
            OpenRow(cells);
        }
    }

    // From the back to the front: a row never lands on one that has still to be read.
    void OpenColumn(MatrixCells& cells) {
        const std::int32_t behind = size_y_ - 1 - record_;
        for (std::int32_t x = size_x_ - 1; x >= 0; --x) {
            const std::int32_t from = x * (size_y_ - 1);
            const std::int32_t to = x * size_y_;
            MoveCells(cells, from + record_, to + record_ + 1, behind, buffer_);
            cells.SetValue(to + record_, default_);
            MoveCells(cells, from, to, record_, buffer_);
        }
    }

    void OpenRow(MatrixCells& cells) {
        for (std::int32_t x = size_x_ - 1; x > record_; --x) {
            MoveCells(cells, (x - 1) * size_y_, x * size_y_, size_y_, buffer_);
        }
        FillCells(cells, record_ * size_y_, size_y_, default_);
    }

    void GrowRow(MatrixCells& cells, std::int32_t owner) {
        if (info_.tableY == grown_) {
            MoveCells(cells, record_, record_ + 1, size_y_ - 1 - record_, buffer_);
            cells.SetValue(record_, NewCell(owner));
        }
        // The matrix of a new first record is new as a whole. Where the record came in elsewhere, that of the first
        // record holds values that stay.
        if (owner == 0 && record_ == 0 && info_.table == grown_ && place_.format == grown_) {
            FillCells(cells, 0, size_y_, NewCell(owner));
        }
    }

    // The value of a field of the format along the matrix, at the owner's number as far as it has such a record.
    [[nodiscard]] double NewCell(std::int32_t owner) {
        const std::int32_t field = info_.data[DataSlot::kMatrixDefaultField];
        if (!HasClass(info_, Classes::kMatrixDefault) || owner >= size_y_ ||
            store_.GetFieldInfo(info_.tableY, field) == nullptr) {
            return default_;
        }
        return store_.GetDbValue(info_.tableY, field, owner);
    }

    IMemoryResidentData& store_;
    TableColumn place_;
    std::int32_t grown_;
    std::int32_t record_;
    const field_info& info_;
    std::int32_t size_x_;
    std::int32_t size_y_;
    std::uint32_t size_;
    double default_;
    std::vector<double> buffer_;
};

} // namespace

void GrowMatrices(IMemoryResidentData& store, std::int32_t format, std::int32_t record) {
    for (const TableColumn place : GrowingFields(store, format)) {
        FieldGrowth(store, place, format, record).Run();
    }
}

} // namespace Kestrona::Data::MemoryResident
