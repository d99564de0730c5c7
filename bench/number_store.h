#pragma once

#include "fixtures/schema.h"

#include <kestrona/store.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

// The same numbers in a store and in plain vectors.
namespace Kestrona::Bench {

using Column = std::vector<double>;
using Columns = std::vector<Column>;

inline double CellValue(std::int32_t field, std::int32_t record) {
    return record * 0.5 + field + 1.0;
}

// first, first + 1 ... in no order.
template <typename Number>
std::vector<Number> ShuffledNumbers(std::int64_t count, Number first) {
    std::vector<Number> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), first);
    std::shuffle(numbers.begin(), numbers.end(), std::mt19937(5));
    return numbers;
}

inline Columns MakeColumns(std::int32_t fields, std::int32_t records) {
    Columns columns(static_cast<std::size_t>(fields), Column(static_cast<std::size_t>(records)));
    for (std::int32_t field = 0; field < fields; ++field) {
        for (std::int32_t record = 0; record < records; ++record) {
            columns[static_cast<std::size_t>(field)][static_cast<std::size_t>(record)] = CellValue(field, record);
        }
    }
    return columns;
}

// Fills every cell of the first format.
inline void FillNumbers(Data::MemoryResident::MemoryResidentData& store, std::int32_t fields, std::int32_t records) {
    for (std::int32_t field = 0; field < fields; ++field) {
        for (std::int32_t record = 0; record < records; ++record) {
            store.SetDbValue(0, field, record, CellValue(field, record));
        }
    }
}

// A store with one format of `fields` numbers and no key.
inline std::unique_ptr<Data::MemoryResident::MemoryResidentData> MakeNumberStore(std::int32_t fields,
                                                                                 std::int32_t records = 0) {
    std::vector<Fixtures::Field> numbers;
    for (std::int32_t field = 0; field < fields; ++field) {
        numbers.push_back(Fixtures::Number(L"Field " + std::to_wstring(field)));
    }
    auto store = Data::MemoryResident::CreateMemoryResidentData();
    Fixtures::AddTable(*store, L"Records", numbers, records, -1);
    FillNumbers(*store, fields, records);
    return store;
}

} // namespace Kestrona::Bench
