#include "store/list_cleaning.h"

#include "columns/matrix_table.h"
#include "store/cell_removal.h"
#include "store/class_test.h"
#include "store/dimensioned_fields.h"
#include "store/record_matrices.h"

#include <kestrona/classes.h>

#include <boost/unordered/unordered_flat_map.hpp>
#include <boost/unordered/unordered_flat_set.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <iterator>
#include <limits>
#include <utility>
#include <vector>

namespace Kestrona::Data::MemoryResident {

namespace {

using Positions = std::vector<std::int32_t>;

constexpr double kNoKey = -1.0;
constexpr std::int32_t kBlock = 256;

// The deleted keys. A key that does not equal itself stands in no list.
class KeySet {
public:
    explicit KeySet(std::span<const double> keys) {
        if (keys.size() == 1) {
            single_ = keys.front();
        } else {
            std::ranges::copy_if(keys, std::inserter(keys_, keys_.end()), [](double key) { return key == key; });
        }
    }

    [[nodiscard]] bool Contains(double key) const { return keys_.empty() ? key == single_ : keys_.contains(key); }

private:
    struct Hash {
        std::size_t operator()(double key) const { return std::bit_cast<std::uint64_t>(key + 0.0); } // one zero
    };

    double single_ = std::numeric_limits<double>::quiet_NaN();
    boost::unordered_flat_set<double, Hash> keys_; // empty for a single key
};

bool LosesKeys(const field_info& field, std::int32_t format) {
    return field.table == format && HasClass(field, Classes::kList) && OwnsMatrices(field) &&
           !HasClass(field, Classes::kKeepKeys) && !HasClass(field, Classes::kKeepDeletedKeys);
}

// The fields whose lists run beside those of the field `list`.
std::vector<const field_info*> ParallelFields(const formats_info& format, std::int32_t list) {
    std::vector<const field_info*> fields;
    for (const field_info& field : format.fields) {
        if (HasClass(field, Classes::kParallelList) && field.data[DataSlot::kAssociateField] == list &&
            OwnsMatrices(field)) {
            fields.push_back(&field);
        }
    }
    return fields;
}

Positions FindKeys(const MatrixEntry& list, const KeySet& keys) {
    Positions found;
    std::array<double, kBlock> block;
    const auto size = static_cast<std::int32_t>(list.size);
    for (std::int32_t first = 0; first < size; first += kBlock) {
        const std::int32_t length = std::min(kBlock, size - first);
        list.cells.ReadBlock(first, length, block.data());
        for (std::int32_t i = 0; i < length; ++i) {
            if (keys.Contains(block[static_cast<std::size_t>(i)])) {
                found.push_back(first + i);
            }
        }
    }
    return found;
}

void RemoveEntries(std::int32_t id, std::span<const std::int32_t> positions) {
    MatrixEntry* const entry = FindMatrixEntry(id);
    if (entry == nullptr || entry->isCalculated) {
        return;
    }
    const auto end = std::ranges::lower_bound(positions, static_cast<std::int64_t>(entry->size));
    const std::span<const std::int32_t> gone(positions.begin(), end);
    if (!gone.empty()) {
        const std::uint32_t left = entry->size - static_cast<std::uint32_t>(gone.size());
        RemoveCells<double>(entry->cells, gone, [](std::size_t) { return kNoKey; });
        MatrixTable::Instance().SetSize(id, left);
    }
}

// The lists of one field. Several records may have one list: it is cleaned once, but each record has its own lists
// beside it.
class FieldCleaning {
public:
    FieldCleaning(const field_info& field, std::vector<const field_info*> parallels, const KeySet& keys)
        : field_(field),
          parallels_(std::move(parallels)),
          keys_(keys) {}

    void Run(std::int32_t records) {
        std::array<std::int32_t, kBlock> ids;
        for (std::int32_t first = 0; first < records; first += kBlock) {
            const std::int32_t length = std::min(kBlock, records - first);
            field_.matrixColumn->ReadBlock(first, length, ids.data());
            for (std::int32_t i = 0; i < length; ++i) {
                Clean(first + i, ids[static_cast<std::size_t>(i)]);
            }
        }
    }

private:
    void Clean(std::int32_t record, std::int32_t id) {
        if (const auto earlier = cleaned_.find(id); earlier != cleaned_.end()) {
            CleanBeside(record, earlier->second);
            return;
        }
        const MatrixEntry* const entry = FindMatrixEntry(id);
        if (entry == nullptr || entry->isCalculated || entry->size == 0) {
            return;
        }
        if (Positions positions = FindKeys(*entry, keys_); !positions.empty()) {
            RemoveEntries(id, positions);
            CleanBeside(record, positions);
            cleaned_.emplace(id, std::move(positions));
        }
    }

    void CleanBeside(std::int32_t record, const Positions& positions) {
        for (const field_info* const parallel : parallels_) {
            const std::int32_t id = MatrixIdOf(*parallel, record);
            if (beside_.insert(id).second) {
                RemoveEntries(id, positions);
            }
        }
    }

    const field_info& field_;
    std::vector<const field_info*> parallels_;
    const KeySet& keys_;
    boost::unordered_flat_map<std::int32_t, Positions> cleaned_; // the lists that lost entries
    boost::unordered_flat_set<std::int32_t> beside_;
};

} // namespace

void RemoveKeysFromLists(IMemoryResidentData& store, std::int32_t format, std::span<const double> keys) {
    const KeySet gone(keys);
    ForEachFollowingField(store, [&](std::int32_t owner, std::int32_t field, const field_info& info) {
        if (LosesKeys(info, format)) {
            FieldCleaning(info, ParallelFields(*store.GetFormatInfo(owner), field), gone)
                .Run(store.GetCurrentDbSize(owner));
        }
    });
}

} // namespace Kestrona::Data::MemoryResident
