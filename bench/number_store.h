#pragma once

#include "fixtures/schema.h"

#include <kestrona/store.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Kestrona::Bench {

// A store with one format of `fields` numbers and no key.
inline std::unique_ptr<Data::MemoryResident::MemoryResidentData> MakeNumberStore(std::int32_t fields) {
    std::vector<Fixtures::Field> numbers;
    for (std::int32_t field = 0; field < fields; ++field) {
        numbers.push_back(Fixtures::Number(L"Field " + std::to_wstring(field)));
    }
    auto store = Data::MemoryResident::CreateMemoryResidentData();
    Fixtures::AddTable(*store, L"Records", numbers, 0, -1);
    return store;
}

} // namespace Kestrona::Bench
