// Memory that records and matrices take, counted by the allocator: columns of several kinds, their indexes and change
// marks beside plain vectors and a hash map. The argument is the number of records, or of matrices; "bytes" is what one
// of them takes. Times mean nothing here.
#include "fixtures/schema.h"
#include "measure.h"
#include "number_store.h"

#include <kestrona/memory_resident_data.h>
#include <kestrona/store.h>

#include <boost/unordered/unordered_flat_map.hpp>
#include <malloc.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Kestrona::Bench {
namespace {

double AllocatedBytes() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

// What is allocated while `make` runs and lives on in its result.
template <typename Make>
double BytesOf(Make make, std::int32_t records) {
    const double before = AllocatedBytes();
    const auto made = make(records);
    return AllocatedBytes() - before;
}

// What an empty one takes, and what the library allocates once, does not count.
template <typename Make>
void CountBytes(benchmark::State& state, Make make) {
    BytesOf(make, 0);
    const double empty = BytesOf(make, 0);
    double bytes = 0.0;
    for (auto _ : state) {
        bytes = BytesOf(make, static_cast<std::int32_t>(state.range(0))) - empty;
    }
    state.counters["bytes"] = bytes / static_cast<double>(state.range(0));
}

// A store with one field, whose cells `fill` writes.
template <typename Fill>
auto MakeStore(Fixtures::Field field, bool tracked, std::int32_t records, Fill fill) {
    if (!tracked) {
        field.classes.push_back(Classes::kExcludeFromDb);
    }
    auto store = CreateMemoryResidentData();
    Fixtures::AddTable(*store, L"Records", {field}, records, -1);
    for (std::int32_t record = 0; record < records; ++record) {
        fill(*store, record);
    }
    return store;
}

void FillNumber(MemoryResidentData& store, std::int32_t record) {
    store.SetDbValue(0, 0, record, record + 1.0);
}

void NumberColumn(benchmark::State& state) {
    CountBytes(state,
               [](std::int32_t records) { return MakeStore(Fixtures::Number(L"Number"), false, records, FillNumber); });
}

void IntegerColumn(benchmark::State& state) {
    CountBytes(state, [](std::int32_t records) {
        return MakeStore(Fixtures::Integer(L"Number"), false, records, FillNumber);
    });
}

void ToggleColumn(benchmark::State& state) {
    CountBytes(state, [](std::int32_t records) {
        return MakeStore(Fixtures::Toggle(L"Toggle"), false, records,
                         [](auto& store, std::int32_t record) { store.SetDbValue(0, 0, record, record % 2); });
    });
}

// Every record is marked.
void TrackedColumn(benchmark::State& state) {
    CountBytes(state,
               [](std::int32_t records) { return MakeStore(Fixtures::Number(L"Number"), true, records, FillNumber); });
}

void IndexedColumn(benchmark::State& state, std::int32_t distinct) {
    CountBytes(state, [&](std::int32_t records) {
        auto store = MakeStore(Fixtures::Number(L"Number"), false, records, [&](auto& of, std::int32_t record) {
            of.SetDbValue(0, 0, record, record % (distinct == 0 ? records : distinct));
        });
        store->AddIndexToColumn(0, 0);
        const std::unique_ptr<FindResult> found(store->LookupRecords(0, 0, 0.0, FindOperator::Equal)); // builds it
        return store;
    });
}

// Texts of twelve characters.
std::wstring TextOf(std::int32_t record) {
    return L"Part " + std::to_wstring(1000000 + record);
}

void TextColumn(benchmark::State& state) {
    CountBytes(state, [](std::int32_t records) {
        return MakeStore(Fixtures::Text(L"Name"), false, records,
                         [](auto& store, std::int32_t record) { store.SetDbString(0, 0, record, TextOf(record)); });
    });
}

void VectorOfNumbers(benchmark::State& state) {
    CountBytes(state, [](std::int32_t records) { return Column(static_cast<std::size_t>(records), 1.0); });
}

void VectorOfTexts(benchmark::State& state) {
    CountBytes(state, [](std::int32_t records) {
        std::vector<std::wstring> texts;
        texts.reserve(static_cast<std::size_t>(records));
        for (std::int32_t record = 0; record < records; ++record) {
            texts.push_back(TextOf(record));
        }
        return texts;
    });
}

void VectorAndFlatMap(benchmark::State& state) {
    CountBytes(state, [](std::int32_t records) {
        std::pair<Column, boost::unordered_flat_map<double, std::int32_t>> made;
        made.first.resize(static_cast<std::size_t>(records));
        for (std::int32_t record = 0; record < records; ++record) {
            made.second.emplace(record, record);
        }
        return made;
    });
}

void SmallMatrix(benchmark::State& state, std::size_t cells) {
    const std::vector<double> values(cells, 1.0);
    CountBytes(state, [&](std::int32_t records) {
        return MakeStore(Fixtures::Matrix(L"Matrix"), false, records,
                         [&](auto& store, std::int32_t record) { Fixtures::FillMatrix(store, 0, 0, record, values); });
    });
}

void VectorOfVectors(benchmark::State& state, std::size_t cells) {
    CountBytes(state, [&](std::int32_t records) {
        return std::vector<Column>(static_cast<std::size_t>(records), Column(cells, 1.0));
    });
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
    GrowthSizes(benchmark->Iterations(1));
}

BENCHMARK(NumberColumn)->Apply(Sizes);
BENCHMARK(IntegerColumn)->Apply(Sizes);
BENCHMARK(ToggleColumn)->Apply(Sizes);
BENCHMARK(TrackedColumn)->Apply(Sizes);
BENCHMARK_CAPTURE(IndexedColumn, distinct, 0)->Apply(Sizes);
BENCHMARK_CAPTURE(IndexedColumn, 1000_values, 1000)->Apply(Sizes);
BENCHMARK(TextColumn)->Apply(Sizes);
BENCHMARK(VectorOfNumbers)->Apply(Sizes);
BENCHMARK(VectorOfTexts)->Apply(Sizes);
BENCHMARK(VectorAndFlatMap)->Apply(Sizes);
BENCHMARK_CAPTURE(SmallMatrix, 0_values, 0)->Apply(PeerSizes)->Iterations(1);
BENCHMARK_CAPTURE(SmallMatrix, 10_values, 10)->Apply(PeerSizes)->Iterations(1);
BENCHMARK_CAPTURE(VectorOfVectors, 10_values, 10)->Apply(PeerSizes)->Iterations(1);

} // namespace
} // namespace Kestrona::Bench
