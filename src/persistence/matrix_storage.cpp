#include "persistence/matrix_storage.h"

#include "columns/column_file.h"
#include "columns/matrix_table.h"
#include "platform/file_reading.h"

#include <kestrona/classes.h>
#include <kestrona/data_storage.h>
#include <kestrona/matrices.h>

#include <boost/unordered/unordered_flat_set.hpp>

#include <algorithm>
#include <vector>

namespace Kestrona::Persistence {

using Data::MemoryResident::DataStorage;
using Data::MemoryResident::field_info;
using Data::MemoryResident::IColumn;
using Data::MemoryResident::MatrixCells;
using Data::MemoryResident::MatrixEntry;
using Data::MemoryResident::MatrixTable;
using Data::MemoryResident::MemoryResidentData;

namespace {

// A file with a larger matrix is damaged.
constexpr std::int32_t kMaxMatrixSize = 1 << 26;
// Calculated matrices take no bytes in a file. So many a file of any size may have; each further one needs a record,
// and a record takes the bytes of its key at least.
constexpr std::size_t kFreeMatrices = std::size_t{1} << 16;
constexpr std::size_t kKeySize = sizeof(double);

using Ids = std::vector<std::int32_t>;

bool HasCommonMatrix(MemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return store.ClassDefined(format, field, Classes::kCommonMatrix);
}

const MatrixEntry* EntryOf(const IColumn<std::int32_t>* identities, std::int32_t record) {
    const MatrixEntry* const entry =
        identities != nullptr ? MatrixTable::Instance().Find(identities->GetValue(record)) : nullptr;
    return entry != nullptr && entry->cells.IsMatrix() ? entry : nullptr;
}

void WriteMatrix(const MatrixEntry* entry, std::FILE* file) {
    const std::int32_t size = entry != nullptr ? static_cast<std::int32_t>(entry->size) : 0;
    std::fwrite(&size, sizeof size, 1, file);
    if (size > 0) {
        entry->cells.WriteToFile(file);
    }
}

// The cells let go of their ids, so that the file can have them.
void ReleaseMatricesOf(const IColumn<std::int32_t>& identities) {
    const auto count = static_cast<std::int32_t>(identities.GetCurrentSize());
    for (std::int32_t record = 0; record < count; ++record) {
        MatrixTable::Instance().Release(identities.GetValue(record));
    }
}

// Claims the ids of a file in the table of matrices. The table makes a page of entries for ids that are close
// together, so that a few ids of a damaged file, far from one another, could fill the memory: the number of pages is
// bounded by the number of ids, and ids beyond that are not claimed.
class IdClaims {
public:
    explicit IdClaims(std::size_t ids) : pages_left_(kFreePages + ids / kIdsForPage) {}

    // True when the id is the caller's from now on; false for one that a cell of the process may hold.
    bool Claim(std::int32_t id) {
        return id >= 0 && id < kMaxFileMatrixIds && TakePage(id / MatrixTable::kPageEntries) &&
               MatrixTable::Instance().ClaimId(id);
    }

private:
    static constexpr std::size_t kFreePages = 128;
    static constexpr std::size_t kIdsForPage = 32;

    bool TakePage(std::int32_t page) {
        const bool is_open = pages_.contains(page);
        if (!is_open && pages_left_ > 0) {
            pages_.insert(page);
            --pages_left_;
            return true;
        }
        return is_open;
    }

    std::size_t pages_left_;
    boost::unordered_flat_set<std::int32_t> pages_;
};

// Keeps the ids that can be kept, each once, and gives the other records new ones.
void SettleIds(Ids& ids) {
    IdClaims claims(ids.size());
    std::ranges::replace_if(
        ids, [&](std::int32_t id) { return !claims.Claim(id); }, MatrixTable::kNoId);
    for (std::int32_t& id : ids) {
        if (id == MatrixTable::kNoId) {
            id = MatrixTable::Instance().TakeId();
        }
    }
}

// In a field with COMMON MATRIX every record that has a matrix has the one of record 0.
void SettleCommonIds(Ids& ids) {
    if (ids.empty()) {
        return;
    }
    Ids first(1, ids.front());
    SettleIds(first);
    ids.front() = first.front();
    std::ranges::replace_if(
        ids, [](std::int32_t id) { return id != MatrixTable::kNoId; }, first.front());
}

// Replaces the ids of the field's matrices by those of a file, one for each of the first `records` records. An id that
// cannot be kept, or is missing, becomes a new one.
void TakeIds(MemoryResidentData& store, std::int32_t format, std::int32_t field, Ids ids, std::size_t records) {
    auto* const identities = dynamic_cast<DataStorage<std::int32_t>*>(store.GetFieldInfo(format, field)->matrixColumn);
    if (identities == nullptr) {
        return;
    }
    ReleaseMatricesOf(*identities);
    ids.resize(records, MatrixTable::kNoId);
    if (HasCommonMatrix(store, format, field)) {
        SettleCommonIds(ids);
    } else {
        SettleIds(ids);
    }
    identities->ReplaceValues(std::move(ids));
}

// The stored elements of the record's matrix, made with this size; null in a field without a column of ids.
MatrixCells* MakeMatrix(MemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record,
                        std::int32_t size) {
    const std::int32_t id = KSDLL_CreateMatrix(store, static_cast<std::uint32_t>(size), format, field, record);
    MatrixEntry* const entry = MatrixTable::Instance().Find(id);
    return entry != nullptr && entry->cells.IsMatrix() ? &entry->cells : nullptr;
}

// False where the file ends, and for a size that no matrix has.
bool ReadSize(std::FILE* file, std::int32_t& size) {
    if (std::fread(&size, sizeof size, 1, file) != 1 || size > kMaxMatrixSize) {
        return false;
    }
    size = std::max(size, 0);
    return true;
}

std::int32_t MatricesOf(MemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t records) {
    return HasCommonMatrix(store, format, field) ? std::min(records, 1) : records;
}

} // namespace

void WriteMatrices(MemoryResidentData& store, std::int32_t format, std::int32_t field, std::FILE* file) {
    IColumn<std::int32_t>* const identities = store.GetFieldInfo(format, field)->matrixColumn;
    if (identities != nullptr) {
        identities->WriteToFile(file);
    } else {
        Data::MemoryResident::WriteNumbers<std::int32_t>(file, {});
    }
    const std::int32_t matrices = MatricesOf(store, format, field, store.GetCurrentDbSize(format));
    for (std::int32_t record = 0; record < matrices; ++record) {
        WriteMatrix(EntryOf(identities, record), file);
    }
}

void ReadMatrices(MemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t records,
                  std::FILE* file) {
    Ids ids = Data::MemoryResident::ReadNumbers<std::int32_t>(file, static_cast<std::size_t>(records));
    const std::int32_t matrices = MatricesOf(store, format, field, records);
    // Every matrix takes the bytes of its size at least.
    const std::size_t held = Platform::BytesLeft(file) / sizeof(std::int32_t);
    const std::size_t known = ids.size();
    TakeIds(store, format, field, std::move(ids), std::max(known, std::min(static_cast<std::size_t>(matrices), held)));
    std::int32_t size = 0;
    for (std::int32_t record = 0; record < matrices && ReadSize(file, size); ++record) {
        MatrixCells* const matrix = MakeMatrix(store, format, field, record, size);
        if (size > 0 && matrix != nullptr) {
            matrix->ReadFromFile(file);
        } else if (size > 0) {
            Data::MemoryResident::ReadNumbers<double>(file, kFirstScratchRecord);
        }
    }
}

void MakeCalculatedMatrices(MemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t records,
                            std::FILE* file) {
    const std::size_t bound = std::max(kFreeMatrices, Platform::BytesOf(file) / kKeySize);
    const std::int32_t matrices = MatricesOf(store, format, field, records);
    const auto made = static_cast<std::int32_t>(std::min(static_cast<std::size_t>(matrices), bound));
    TakeIds(store, format, field, {}, static_cast<std::size_t>(made));
    for (std::int32_t record = 0; record < made; ++record) {
        MakeMatrix(store, format, field, record, 0);
    }
}

} // namespace Kestrona::Persistence
