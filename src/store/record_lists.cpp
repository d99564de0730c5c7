#include "store/record_lists.h"

#include <algorithm>
#include <array>

namespace Kestrona::Data::MemoryResident {

namespace {

std::int32_t ScanFor(const IColumn<double>& keys, double key) {
    std::array<double, 512> block;
    const auto records = static_cast<std::int32_t>(keys.GetCurrentSize());
    for (std::int32_t first = 0; first < records;) {
        const std::int32_t length = std::min(static_cast<std::int32_t>(block.size()), records - first);
        keys.ReadBlock(first, length, block.data());
        const auto end = block.begin() + length;
        const auto found = std::find(block.begin(), end, key);
        if (found != end) {
            return first + static_cast<std::int32_t>(found - block.begin());
        }
        first += length;
    }
    return -1;
}

} // namespace

std::vector<std::int32_t> AscendingRecords(IMemoryResidentData& store, std::int32_t format,
                                           std::vector<std::int32_t> records) {
    const std::int32_t count = store.GetCurrentDbSize(format);
    std::erase_if(records, [count](std::int32_t record) { return record < 0 || record >= count; });
    std::ranges::sort(records);
    records.erase(std::unique(records.begin(), records.end()), records.end());
    return records;
}

std::int32_t FindRecordOfKey(IMemoryResidentData& store, std::int32_t format, double key) {
    IColumn<double>* const keys = store.GetDbColumn(format, store.GetDbKey(format));
    if (keys == nullptr) {
        return -1;
    }
    const std::int32_t record = keys->IsIndexValid() ? keys->Find(key) : ScanFor(*keys, key);
    return record < store.GetCurrentDbSize(format) ? record : -1;
}

} // namespace Kestrona::Data::MemoryResident
