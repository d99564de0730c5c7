#include "store/stored_strings.h"

#include "store/class_test.h"
#include "store/dimensioned_fields.h"
#include "store/record_lists.h"
#include "store/record_matrices.h"

#include <kestrona/classes.h>
#include <kestrona/matrices.h>

#include <boost/unordered/unordered_flat_set.hpp>

#include <algorithm>
#include <utility>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr std::int32_t kNoRecord = -1;

// Follows ownership from record to record, each once.
class OwnedRecordSearch {
public:
    explicit OwnedRecordSearch(IMemoryResidentData& store) : store_(store) {}

    void Start(std::int32_t format, const std::vector<std::int32_t>& records) {
        for (const std::int32_t record : records) {
            seen_.insert({format, record});
        }
        for (const std::int32_t record : records) {
            AppendStoredKeys(store_, format, record, keys_);
            Follow();
        }
    }

    std::map<std::int32_t, std::vector<std::int32_t>> Take() {
        for (auto& [format, records] : found_) {
            std::ranges::sort(records);
        }
        return std::move(found_);
    }

private:
    void Follow() {
        while (!keys_.empty()) {
            const StoredKey next = keys_.back();
            keys_.pop_back();
            const std::int32_t record = Find(next);
            if (record != kNoRecord && seen_.insert({next.format, record}).second) {
                found_[next.format].push_back(record);
                AppendStoredKeys(store_, next.format, record, keys_);
            }
        }
    }

    // Nothing changes meanwhile, so an index pays off when there is more than a little to look up.
    std::int32_t Find(StoredKey key) {
        constexpr std::int32_t kFewQuestions = 32;
        return ++questions_ > kFewQuestions ? store_.LookupKeyRecord(key.format, key.key)
                                            : FindRecordOfKey(store_, key.format, key.key);
    }

    IMemoryResidentData& store_;
    std::vector<StoredKey> keys_;
    boost::unordered_flat_set<std::pair<std::int32_t, std::int32_t>> seen_;
    std::map<std::int32_t, std::vector<std::int32_t>> found_;
    std::int32_t questions_ = 0;
};

bool StoresStrings(const field_info& field) {
    return HasClass(field, Classes::kStringStorage) && OwnsMatrices(field) && !HasClass(field, Classes::kCommonMatrix);
}

} // namespace

bool OwnsRecords(const formats_info& format) {
    return std::ranges::any_of(format.fields, StoresStrings);
}

void AppendStoredKeys(IMemoryResidentData& store, std::int32_t format, std::int32_t record,
                      std::vector<StoredKey>& keys) {
    const std::vector<field_info>& fields = store.GetFormatInfo(format)->fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::int32_t storage = fields[i].data[DataSlot::kStorageFormat];
        if (!StoresStrings(fields[i]) || store.GetFormatInfo(storage) == nullptr) {
            continue;
        }
        const auto field = static_cast<std::int32_t>(i);
        const auto size =
            static_cast<std::uint32_t>(KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(store, format, field, record)));
        for (std::uint32_t index = 0; index < size; ++index) {
            keys.push_back({storage, KSDLL_GetMatrixValue(store, format, field, record, index)});
        }
    }
}

void EmptyStoredLists(IMemoryResidentData& store, std::int32_t format, const std::vector<std::int32_t>& records) {
    for (const field_info& field : store.GetFormatInfo(format)->fields) {
        if (StoresStrings(field)) {
            for (const std::int32_t record : records) {
                KSDLL_ZeroMatrixSize(MatrixIdOf(field, record));
            }
        }
    }
}

std::map<std::int32_t, std::vector<std::int32_t>> FindOwnedRecords(IMemoryResidentData& store, std::int32_t format,
                                                                   const std::vector<std::int32_t>& records) {
    if (!OwnsRecords(*store.GetFormatInfo(format))) {
        return {};
    }
    OwnedRecordSearch search(store);
    search.Start(format, records);
    return search.Take();
}

} // namespace Kestrona::Data::MemoryResident
