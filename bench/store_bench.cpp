// Cells and key lookups through the shared library, each beside the same access written out by hand.
//
// "ByHand" takes two array steps and one virtual call into another library; "Vector" reads or writes a bare vector.
// The random order of cells is over all formats, fields and records; every figure is the time of one access.
#include "peer_column.h"

#include <kestrona/classes.h>
#include <kestrona/process.h>
#include <kestrona/store.h>

#include <benchmark/benchmark.h>
#include <boost/unordered/unordered_flat_map.hpp>

#include <algorithm>
#include <numeric>
#include <random>

namespace {

using namespace Kestrona;
using namespace Kestrona::Data::MemoryResident;

constexpr std::int32_t kFormats = 8;
constexpr std::int32_t kFields = 10;
constexpr std::int32_t kRecords = 20000;
constexpr std::int32_t kUntracked = 0; // formats of the store
constexpr std::int32_t kTracked = kFormats;
constexpr std::size_t kAccesses = std::size_t{1} << 18;

struct Cell {
    std::int32_t format;
    std::int32_t field;
    std::int32_t record;
};

std::vector<Cell> Cells(bool random) {
    std::mt19937 generator(7);
    std::vector<Cell> cells(kAccesses);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const auto record = static_cast<std::int32_t>(i % kRecords);
        cells[i] = {0, 1, record};
        if (random) {
            cells[i] = {static_cast<std::int32_t>(generator() % kFormats),
                        static_cast<std::int32_t>(1 + generator() % (kFields - 1)),
                        static_cast<std::int32_t>(generator() % kRecords)};
        }
    }
    return cells;
}

void AddFormat(MemoryResidentData& store, std::int32_t fields, std::int32_t records, bool tracked) {
    const std::int32_t format = store.GetFormatCount();
    store.SetFormatCount(format + 1);
    store.SetDbName(format, KSDLL_AddText((L"Format " + std::to_wstring(format)).c_str()));
    store.SetDbFields(format, fields);
    store.CreateDbFieldInfo(format, fields);
    store.SetDbKey(format, 0);
    for (std::int32_t field = 0; field < fields; ++field) {
        store.SetDbType(format, field, TypeBit::kReal);
        if (!tracked) {
            store.AddDbClass(format, field, Classes::kExcludeFromDb);
        }
    }
    for (std::int32_t field = 0; field < fields; ++field) {
        store.CreateDbValues(format, field);
    }
    store.SetCurrentDbSize(format, records);
}

// Untracked formats first, then as many tracked ones; every cell but the keys holds 1.0.
MemoryResidentData& Store() {
    static const std::unique_ptr<MemoryResidentData> store = [] {
        auto made = CreateMemoryResidentData();
        for (std::int32_t format = 0; format < 2 * kFormats; ++format) {
            AddFormat(*made, kFields, kRecords, format >= kTracked);
            for (std::int32_t field = 1; field < kFields; ++field) {
                for (std::int32_t record = 0; record < kRecords; ++record) {
                    made->SetDbValue(format, field, record, 1.0);
                }
            }
        }
        return made;
    }();
    return *store;
}

std::vector<PeerFormat> MakePeers(std::unique_ptr<PeerColumn> (*make)()) {
    std::vector<PeerFormat> formats(static_cast<std::size_t>(kFormats));
    for (PeerFormat& format : formats) {
        for (std::int32_t field = 0; field < kFields; ++field) {
            format.fields.push_back(make());
            for (std::int32_t record = 0; record < kRecords; ++record) {
                format.fields.back()->SetValue(record, 1.0);
            }
        }
    }
    return formats;
}

PeerColumn& At(const std::vector<PeerFormat>& formats, const Cell& cell) {
    return *formats[static_cast<std::size_t>(cell.format)].fields[static_cast<std::size_t>(cell.field)];
}

void CountAccesses(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kAccesses));
    state.counters["each"] =
        benchmark::Counter(static_cast<double>(kAccesses),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void ReadStore(benchmark::State& state, bool random) {
    MemoryResidentData& store = Store();
    const std::vector<Cell> cells = Cells(random);
    for (auto _ : state) {
        double sum = 0.0;
        for (const Cell& cell : cells) {
            sum += store.GetDbValue(cell.format, cell.field, cell.record);
        }
        benchmark::DoNotOptimize(sum);
    }
    CountAccesses(state);
}

void ReadByHand(benchmark::State& state, bool random) {
    const std::vector<PeerFormat> formats = MakePeers(MakePeerColumn);
    const std::vector<Cell> cells = Cells(random);
    for (auto _ : state) {
        double sum = 0.0;
        for (const Cell& cell : cells) {
            sum += At(formats, cell).GetValue(cell.record);
        }
        benchmark::DoNotOptimize(sum);
    }
    CountAccesses(state);
}

void ReadVector(benchmark::State& state, bool random) {
    const std::vector<double> values(static_cast<std::size_t>(kFormats * kFields * kRecords), 1.0);
    const std::vector<Cell> cells = Cells(random);
    for (auto _ : state) {
        double sum = 0.0;
        for (const Cell& cell : cells) {
            sum += values[static_cast<std::size_t>((cell.format * kFields + cell.field) * kRecords + cell.record)];
        }
        benchmark::DoNotOptimize(sum);
    }
    CountAccesses(state);
}

// Every write changes its cell: the value differs from round to round.
void WriteStore(benchmark::State& state, bool random, std::int32_t first_format) {
    MemoryResidentData& store = Store();
    const std::vector<Cell> cells = Cells(random);
    static double value = 1.0;
    for (auto _ : state) {
        value += 1.0;
        for (const Cell& cell : cells) {
            store.SetDbValue(first_format + cell.format, cell.field, cell.record, value);
        }
    }
    CountAccesses(state);
}

void WriteByHand(benchmark::State& state, bool random, std::unique_ptr<PeerColumn> (*make)()) {
    const std::vector<PeerFormat> formats = MakePeers(make);
    const std::vector<Cell> cells = Cells(random);
    double value = 1.0;
    for (auto _ : state) {
        value += 1.0;
        for (const Cell& cell : cells) {
            At(formats, cell).SetValue(cell.record, value);
        }
    }
    CountAccesses(state);
}

void WriteVector(benchmark::State& state, bool random) {
    std::vector<double> values(static_cast<std::size_t>(kFormats * kFields * kRecords), 1.0);
    const std::vector<Cell> cells = Cells(random);
    double value = 1.0;
    for (auto _ : state) {
        value += 1.0;
        for (const Cell& cell : cells) {
            values[static_cast<std::size_t>((cell.format * kFields + cell.field) * kRecords + cell.record)] = value;
        }
        benchmark::ClobberMemory();
    }
    CountAccesses(state);
}

BENCHMARK_CAPTURE(ReadStore, sequential, false);
BENCHMARK_CAPTURE(ReadByHand, sequential, false);
BENCHMARK_CAPTURE(ReadVector, sequential, false);
BENCHMARK_CAPTURE(ReadStore, random, true);
BENCHMARK_CAPTURE(ReadByHand, random, true);
BENCHMARK_CAPTURE(ReadVector, random, true);
BENCHMARK_CAPTURE(WriteStore, untracked_sequential, false, kUntracked);
BENCHMARK_CAPTURE(WriteStore, tracked_sequential, false, kTracked);
BENCHMARK_CAPTURE(WriteByHand, sequential, false, MakePeerColumn);
BENCHMARK_CAPTURE(WriteByHand, marking_sequential, false, MakeMarkingPeerColumn);
BENCHMARK_CAPTURE(WriteVector, sequential, false);
BENCHMARK_CAPTURE(WriteStore, untracked_random, true, kUntracked);
BENCHMARK_CAPTURE(WriteStore, tracked_random, true, kTracked);
BENCHMARK_CAPTURE(WriteByHand, random, true, MakePeerColumn);
BENCHMARK_CAPTURE(WriteByHand, marking_random, true, MakeMarkingPeerColumn);
BENCHMARK_CAPTURE(WriteVector, random, true);

// Changes n records of one field in random order, from a state without marks.
void MarkRecords(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
    AddFormat(*store, 2, count, true);
    std::vector<std::int32_t> records(static_cast<std::size_t>(count));
    std::iota(records.begin(), records.end(), 0);
    std::shuffle(records.begin(), records.end(), std::mt19937(3));
    double value = 1.0;
    for (auto _ : state) {
        state.PauseTiming();
        store->ResetDbChanged(0);
        value += 1.0;
        state.ResumeTiming();
        for (const std::int32_t record : records) {
            store->SetDbValue(0, 1, record, value);
        }
    }
    state.counters["each"] = benchmark::Counter(
        static_cast<double>(count), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

BENCHMARK(MarkRecords)->Arg(10000)->Arg(100000)->Arg(1000000);

std::vector<double> KeysInRandomOrder(std::int32_t count) {
    std::vector<double> keys(static_cast<std::size_t>(count));
    std::iota(keys.begin(), keys.end(), 1.0);
    std::shuffle(keys.begin(), keys.end(), std::mt19937(5));
    return keys;
}

void CountLookups(benchmark::State& state, std::size_t count) {
    state.counters["each"] = benchmark::Counter(
        static_cast<double>(count), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void LookupKey(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
    AddFormat(*store, 1, count, true);
    const std::vector<double> keys = KeysInRandomOrder(count);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        store->SetDbKeyValue(0, static_cast<std::int32_t>(i), static_cast<double>(i) + 1.0);
    }
    store->LookupKeyRecord(0, 1.0); // builds the index
    for (auto _ : state) {
        std::int64_t sum = 0;
        for (const double key : keys) {
            sum += store->LookupKeyRecord(0, key);
        }
        benchmark::DoNotOptimize(sum);
    }
    CountLookups(state, keys.size());
}

void LookupFlatMap(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const std::vector<double> keys = KeysInRandomOrder(count);
    boost::unordered_flat_map<double, std::int32_t> map;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        map.emplace(static_cast<double>(i) + 1.0, static_cast<std::int32_t>(i));
    }
    for (auto _ : state) {
        std::int64_t sum = 0;
        for (const double key : keys) {
            sum += map.find(key)->second;
        }
        benchmark::DoNotOptimize(sum);
    }
    CountLookups(state, keys.size());
}

BENCHMARK(LookupKey)->Arg(10000)->Arg(100000)->Arg(1000000);
BENCHMARK(LookupFlatMap)->Arg(10000)->Arg(100000)->Arg(1000000);

void MakeStore(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(CreateMemoryResidentData());
    }
}

BENCHMARK(MakeStore)->Unit(benchmark::kMicrosecond);

} // namespace
