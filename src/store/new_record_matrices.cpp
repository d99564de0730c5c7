#include "store/new_record_matrices.h"

#include "columns/matrix_identities.h"
#include "columns/matrix_table.h"
#include "platform/format_text.h"
#include "store/class_test.h"
#include "store/dimensioned_fields.h"

#include <kestrona/classes.h>
#include <kestrona/matrices.h>
#include <kestrona/services.h>

#include <algorithm>
#include <array>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr const wchar_t* kBeforeGrid = L"About to Create Matrix";
constexpr const wchar_t* kAfterGrid = L"Matrix Created";
constexpr const wchar_t* kListMade = L"ARRAY ID is %li";
constexpr std::int32_t kBlock = 512;

// Sizes the matrices of one field of every record.
class MatrixSizing {
public:
    MatrixSizing(IMemoryResidentData& store, std::int32_t format, std::int32_t field)
        : store_(store),
          format_(format),
          field_(field),
          info_(*store.GetFieldInfo(format, field)),
          size_(FullSize(store, info_)),
          is_grid_(HasClass(info_, Classes::k3DMatrix)),
          is_common_(HasClass(info_, Classes::kCommonMatrix)) {}

    // Nothing is called for a matrix that is as it must be, and those that an earlier run has found so are not looked
    // at again until one of them changes.
    void Run() {
        auto* const identities = dynamic_cast<MatrixIdentityColumn*>(info_.matrixColumn);
        const std::int32_t in_order = identities != nullptr ? identities->InOrder(size_) : 0;
        const std::uint64_t order_breaks = MatrixTable::Instance().OrderBreaks();
        ForEachFrom(in_order, [this](std::int32_t record, std::int32_t id) {
            if (!IsDone(record, id)) {
                Create(record);
            }
            return true;
        });
        if (identities != nullptr) {
            Note(*identities, order_breaks == MatrixTable::Instance().OrderBreaks() ? in_order : 0);
        }
    }

private:
    // Calls `action` with each record and its id, until it answers false.
    template <typename Action>
    void ForEachFrom(std::int32_t start, Action action) const {
        const std::int32_t records = store_.GetCurrentDbSize(format_);
        std::array<std::int32_t, kBlock> ids;
        for (std::int32_t first = start; first < records; first += kBlock) {
            const std::int32_t length = std::min(kBlock, records - first);
            info_.matrixColumn->ReadBlock(first, length, ids.data());
            for (std::int32_t i = 0; i < length; ++i) {
                if (!action(first + i, ids[static_cast<std::size_t>(i)])) {
                    return;
                }
            }
        }
    }

    void Note(MatrixIdentityColumn& identities, std::int32_t start) const {
        std::int32_t in_order = start;
        ForEachFrom(start, [&](std::int32_t record, std::int32_t id) {
            const bool is_done = IsDone(record, id);
            if (is_done && !(is_common_ && record != 0)) {
                MatrixTable::Instance().Find(id)->isNotedInOrder = true;
            }
            in_order += is_done ? 1 : 0;
            return is_done;
        });
        identities.NoteInOrder(in_order, size_);
    }

    [[nodiscard]] bool IsDone(std::int32_t record, std::int32_t id) const {
        if (is_common_ && record != 0) {
            return id == info_.matrixColumn->GetValue(0);
        }
        const MatrixEntry* const entry = MatrixTable::Instance().Find(id);
        return entry != nullptr && entry->size == size_ && (entry->IsMatrix() || entry->isCalculated);
    }

    void Create(std::int32_t record) {
        if (is_grid_) {
            KSDLL_WriteDebug(kBeforeGrid);
        }
        KSDLL_CreateMatrix(store_, size_, format_, field_, record);
        if (is_grid_) {
            KSDLL_WriteDebug(kAfterGrid);
        }
    }

    IMemoryResidentData& store_;
    std::int32_t format_;
    std::int32_t field_;
    const field_info& info_;
    std::uint32_t size_;
    bool is_grid_;
    bool is_common_;
};

void MakeList(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record) {
    const std::int32_t id = KSDLL_CreateMatrix(store, 0, format, field, record);
    if (IsDebugLogEnabled()) {
        KSDLL_WriteDebug(Platform::FormatText(kListMade, id));
    }
}

} // namespace

void MakeMatricesOfNewRecord(IMemoryResidentData& store, std::int32_t format) {
    const std::vector<field_info>& fields = store.GetFormatInfo(format)->fields;
    const std::int32_t last = store.GetCurrentDbSize(format) - 1;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (!OwnsMatrices(fields[i])) {
            continue;
        }
        const auto field = static_cast<std::int32_t>(i);
        if (IsAnyList(fields[i])) {
            MakeList(store, format, field, last);
        } else if (HasClass(fields[i], Classes::kAssociate) && !HasClass(fields[i], Classes::k3DMatrix)) {
            KSDLL_CreateMatrix(store, FullSize(store, fields[i]), format, field, last);
        } else {
            MatrixSizing(store, format, field).Run();
        }
    }
}

} // namespace Kestrona::Data::MemoryResident
