// Cells and key lookups through the shared library, each beside the same access written out by hand.
//
// "ByHand" takes two array steps and one virtual call into another library; "Vector" reads or writes a bare vector.
// Patterns: one column in order, the same at random, and cells at random over eight formats of ten fields. The argument
// is the number of records of the one column, or of keys; "each" is the time of one access.
#include "fixtures/schema.h"
#include "measure.h"
#include "number_store.h"
#include "peer_column.h"

#include <kestrona/store.h>

#include <boost/unordered/unordered_flat_map.hpp>

#include <latch>
#include <thread>

namespace Kestrona::Bench {
namespace {

enum class Pattern {
    InOrder,
    RandomRecords,
    RandomCells
};

// One format with a long column, then the small formats, each with a fiftieth of the records.
constexpr std::int32_t kSmallFormats = 8;
constexpr std::int32_t kSmallFields = 10;
constexpr std::int32_t kSmallShare = 50;
constexpr std::int32_t kLongFields = 2;
constexpr std::int32_t kFormats = 1 + kSmallFormats;
constexpr std::size_t kAccesses = std::size_t{1} << 18;

// Where the formats of the store begin that are not tracked, and those that are.
constexpr std::int32_t kUntracked = 0;
constexpr std::int32_t kTracked = kFormats;

std::int32_t FieldsOf(std::int32_t format) {
    return format == 0 ? kLongFields : kSmallFields;
}

std::int32_t RecordsOf(std::int32_t format, std::int64_t records) {
    return static_cast<std::int32_t>(format == 0 ? records : records / kSmallShare);
}

struct Cell {
    std::int32_t format;
    std::int32_t field;
    std::int32_t record;
};

std::vector<Cell> Cells(Pattern pattern, std::int64_t records) {
    std::mt19937 generator(7);
    const auto draw = [&](std::int32_t bound) {
        return static_cast<std::int32_t>(generator() % static_cast<std::uint32_t>(bound));
    };
    const std::int32_t in_long = RecordsOf(0, records);
    std::vector<Cell> cells(kAccesses);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (pattern == Pattern::InOrder) {
            cells[i] = {0, 1, static_cast<std::int32_t>(i) % in_long};
        } else if (pattern == Pattern::RandomRecords) {
            cells[i] = {0, 1, draw(in_long)};
        } else {
            cells[i] = {1 + draw(kSmallFormats), 1 + draw(kSmallFields - 1), draw(RecordsOf(1, records))};
        }
    }
    return cells;
}

// The place of a cell in one long vector of all cells.
std::size_t PlaceOf(const Cell& cell, std::int32_t in_long, std::int32_t in_small) {
    const std::int32_t place =
        cell.format == 0
            ? cell.field * in_long + cell.record
            : kLongFields * in_long + ((cell.format - 1) * kSmallFields + cell.field) * in_small + cell.record;
    return static_cast<std::size_t>(place);
}

std::vector<double> MakeVector(std::int64_t records) {
    const std::int64_t cells = kLongFields * records + kSmallFormats * kSmallFields * (records / kSmallShare);
    return std::vector<double>(static_cast<std::size_t>(cells), 1.0);
}

void AddFormat(MemoryResidentData& store, std::int32_t fields, std::int32_t records, bool tracked) {
    Fixtures::Field field;
    if (!tracked) {
        field.classes = {Classes::kExcludeFromDb};
    }
    Fixtures::AddTable(store, L"Format " + std::to_wstring(store.GetFormatCount()),
                       std::vector(static_cast<std::size_t>(fields), field), records);
}

// The untracked formats first, then the tracked ones; every cell but the keys holds 1.0.
std::unique_ptr<MemoryResidentData> MakeStore(std::int64_t records) {
    auto made = CreateMemoryResidentData();
    for (std::int32_t number = 0; number < 2 * kFormats; ++number) {
        const std::int32_t format = number % kFormats;
        AddFormat(*made, FieldsOf(format), RecordsOf(format, records), number >= kTracked);
        for (std::int32_t field = 1; field < FieldsOf(format); ++field) {
            for (std::int32_t record = 0; record < RecordsOf(format, records); ++record) {
                made->SetDbValue(number, field, record, 1.0);
            }
        }
    }
    return made;
}

// Made once for a size, like the store: memory that is allocated anew for every run is laid out more kindly.
template <auto kMakeColumn>
std::vector<PeerFormat> MakePeers(std::int64_t records) {
    std::vector<PeerFormat> formats(static_cast<std::size_t>(kFormats));
    for (std::int32_t format = 0; format < kFormats; ++format) {
        PeerFormat& peer = formats[static_cast<std::size_t>(format)];
        for (std::int32_t field = 0; field < FieldsOf(format); ++field) {
            peer.fields.push_back(kMakeColumn());
            for (std::int32_t record = 0; record < RecordsOf(format, records); ++record) {
                peer.fields.back()->SetValue(record, 1.0);
            }
        }
    }
    return formats;
}

PeerColumn& At(const std::vector<PeerFormat>& formats, const Cell& cell) {
    return *formats[static_cast<std::size_t>(cell.format)].fields[static_cast<std::size_t>(cell.field)];
}

template <typename Read>
void MeasureReads(benchmark::State& state, Pattern pattern, Read read) {
    const std::vector<Cell> cells = Cells(pattern, state.range(0));
    for (auto _ : state) {
        double sum = 0.0;
        for (const Cell& cell : cells) {
            sum += read(cell);
        }
        benchmark::DoNotOptimize(sum);
    }
    CountEach(state, static_cast<double>(kAccesses));
}

// Every write changes its cell: the value differs from round to round.
template <typename Write>
void MeasureWrites(benchmark::State& state, Pattern pattern, Write write) {
    const std::vector<Cell> cells = Cells(pattern, state.range(0));
    static double value = 1.0;
    for (auto _ : state) {
        value += 1.0;
        for (const Cell& cell : cells) {
            write(cell, value);
        }
        benchmark::ClobberMemory();
    }
    CountEach(state, static_cast<double>(kAccesses));
}

void ReadStore(benchmark::State& state, Pattern pattern) {
    MemoryResidentData& store = *OfSize<MakeStore>(state.range(0));
    MeasureReads(state, pattern,
                 [&](const Cell& cell) { return store.GetDbValue(cell.format, cell.field, cell.record); });
}

void ReadByHand(benchmark::State& state, Pattern pattern) {
    const std::vector<PeerFormat>& formats = OfSize<MakePeers<MakePeerColumn>>(state.range(0));
    MeasureReads(state, pattern, [&](const Cell& cell) { return At(formats, cell).GetValue(cell.record); });
}

void ReadVector(benchmark::State& state, Pattern pattern) {
    const std::vector<double>& values = OfSize<MakeVector>(state.range(0));
    const std::int32_t in_long = RecordsOf(0, state.range(0));
    const std::int32_t in_small = RecordsOf(1, state.range(0));
    MeasureReads(state, pattern, [&](const Cell& cell) { return values[PlaceOf(cell, in_long, in_small)]; });
}

void WriteStore(benchmark::State& state, Pattern pattern, std::int32_t first_format) {
    MemoryResidentData& store = *OfSize<MakeStore>(state.range(0));
    MeasureWrites(state, pattern, [&](const Cell& cell, double value) {
        store.SetDbValue(first_format + cell.format, cell.field, cell.record, value);
    });
}

template <auto kMakeColumn>
void WritePeers(benchmark::State& state, Pattern pattern) {
    const std::vector<PeerFormat>& formats = OfSize<MakePeers<kMakeColumn>>(state.range(0));
    MeasureWrites(state, pattern,
                  [&](const Cell& cell, double value) { At(formats, cell).SetValue(cell.record, value); });
}

void WriteByHand(benchmark::State& state, Pattern pattern) {
    WritePeers<MakePeerColumn>(state, pattern);
}

void WriteAndMarkByHand(benchmark::State& state, Pattern pattern) {
    WritePeers<MakeMarkingPeerColumn>(state, pattern);
}

void WriteVector(benchmark::State& state, Pattern pattern) {
    std::vector<double>& values = OfSize<MakeVector>(state.range(0));
    const std::int32_t in_long = RecordsOf(0, state.range(0));
    const std::int32_t in_small = RecordsOf(1, state.range(0));
    MeasureWrites(state, pattern,
                  [&](const Cell& cell, double value) { values[PlaceOf(cell, in_long, in_small)] = value; });
}

#define KS_READS(name, pattern)                                                                                        \
    BENCHMARK_CAPTURE(ReadStore, name, pattern)->Apply(PeerSizes);                                                     \
    BENCHMARK_CAPTURE(ReadByHand, name, pattern)->Apply(PeerSizes);                                                    \
    BENCHMARK_CAPTURE(ReadVector, name, pattern)->Apply(PeerSizes)
#define KS_WRITES(name, pattern)                                                                                       \
    BENCHMARK_CAPTURE(WriteStore, untracked_##name, pattern, kUntracked)->Apply(PeerSizes);                            \
    BENCHMARK_CAPTURE(WriteStore, tracked_##name, pattern, kTracked)->Apply(PeerSizes);                                \
    BENCHMARK_CAPTURE(WriteByHand, name, pattern)->Apply(PeerSizes);                                                   \
    BENCHMARK_CAPTURE(WriteAndMarkByHand, name, pattern)->Apply(PeerSizes);                                            \
    BENCHMARK_CAPTURE(WriteVector, name, pattern)->Apply(PeerSizes)

KS_READS(in_order, Pattern::InOrder);
KS_READS(random_records, Pattern::RandomRecords);
KS_READS(random_cells, Pattern::RandomCells);
KS_WRITES(in_order, Pattern::InOrder);
KS_WRITES(random_records, Pattern::RandomRecords);
KS_WRITES(random_cells, Pattern::RandomCells);
BENCHMARK_CAPTURE(ReadStore, random_records, Pattern::RandomRecords)->Apply(OtherGrowthSizes);
BENCHMARK_CAPTURE(WriteStore, untracked_random_records, Pattern::RandomRecords, kUntracked)->Apply(OtherGrowthSizes);
BENCHMARK_CAPTURE(WriteStore, tracked_random_records, Pattern::RandomRecords, kTracked)->Apply(OtherGrowthSizes);

std::unique_ptr<MemoryResidentData> MakeKeyedStore(std::int64_t count) {
    std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
    const auto records = static_cast<std::int32_t>(count);
    AddFormat(*store, 1, records, true);
    for (std::int32_t record = 0; record < records; ++record) {
        store->SetDbKeyValue(0, record, record + 1.0);
    }
    store->LookupKeyRecord(0, 1.0); // builds the index
    return store;
}

boost::unordered_flat_map<double, std::int32_t> MakeFlatMap(std::int64_t count) {
    boost::unordered_flat_map<double, std::int32_t> map;
    for (std::int32_t record = 0; record < static_cast<std::int32_t>(count); ++record) {
        map.emplace(record + 1.0, record);
    }
    return map;
}

template <typename Find>
void MeasureLookups(benchmark::State& state, Find find) {
    const std::vector<double> keys = ShuffledNumbers(state.range(0), 1.0);
    for (auto _ : state) {
        std::int64_t sum = 0;
        for (const double key : keys) {
            sum += find(key);
        }
        benchmark::DoNotOptimize(sum);
    }
    CountEach(state, static_cast<double>(keys.size()));
}

void LookupKey(benchmark::State& state) {
    MemoryResidentData& store = *OfSize<MakeKeyedStore>(state.range(0));
    MeasureLookups(state, [&](double key) { return store.LookupKeyRecord(0, key); });
}

void LookupFlatMap(benchmark::State& state) {
    const auto& map = OfSize<MakeFlatMap>(state.range(0));
    MeasureLookups(state, [&](double key) { return map.find(key)->second; });
}

// Where the keys are numbered without gaps, a vector finds them.
void LookupVector(benchmark::State& state) {
    std::vector<std::int32_t> records(static_cast<std::size_t>(state.range(0)) + 1);
    std::iota(records.begin(), records.end(), -1);
    MeasureLookups(state, [&](double key) { return records[static_cast<std::size_t>(key)]; });
}

// The same lookups where the index must take its lock. Last of all: a process that has had a second thread may count as
// one with threads from then on.
void LookupKeyLocked(benchmark::State& state) {
    std::latch done(1);
    std::thread other([&done] { done.wait(); });
    LookupKey(state);
    done.count_down();
    other.join();
}

BENCHMARK(LookupKey)->Apply(GrowthSizes);
BENCHMARK(LookupFlatMap)->Apply(PeerSizes);
BENCHMARK(LookupVector)->Apply(PeerSizes);
BENCHMARK(LookupKeyLocked)->Apply(GrowthSizes);

} // namespace
} // namespace Kestrona::Bench
