// Cells and key lookups through the shared library, each beside the same access written out by hand.
//
// "ByHand" takes two array steps and one virtual call into another library; "Vector" reads or writes a bare vector.
// Patterns: one column of a million records in order, the same at random, and cells at random over eight formats of ten
// fields. Every figure "each" is the time of one access.
#include "fixtures/schema.h"
#include "measure.h"
#include "peer_column.h"

#include <kestrona/store.h>

#include <boost/unordered/unordered_flat_map.hpp>

#include <algorithm>
#include <map>
#include <numeric>
#include <random>

namespace {

using namespace Kestrona;
using namespace Kestrona::Bench;
using namespace Kestrona::Data::MemoryResident;

enum class Pattern {
    InOrder,
    RandomRecords,
    RandomCells
};

// One format with a long column, then the small formats.
constexpr std::int32_t kSmallFormats = 8;
constexpr std::int32_t kSmallFields = 10;
constexpr std::int32_t kSmallRecords = 20000;
constexpr std::int32_t kLongFields = 2;
constexpr std::int32_t kLongRecords = 1000000;
constexpr std::int32_t kFormats = 1 + kSmallFormats;
constexpr std::size_t kAccesses = std::size_t{1} << 18;

// Where the formats of the store begin that are not tracked, and those that are.
constexpr std::int32_t kUntracked = 0;
constexpr std::int32_t kTracked = kFormats;

std::int32_t FieldsOf(std::int32_t format) {
    return format == 0 ? kLongFields : kSmallFields;
}

std::int32_t RecordsOf(std::int32_t format) {
    return format == 0 ? kLongRecords : kSmallRecords;
}

struct Cell {
    std::int32_t format;
    std::int32_t field;
    std::int32_t record;
};

std::vector<Cell> Cells(Pattern pattern) {
    std::mt19937 generator(7);
    const auto draw = [&](std::int32_t bound) {
        return static_cast<std::int32_t>(generator() % static_cast<std::uint32_t>(bound));
    };
    std::vector<Cell> cells(kAccesses);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (pattern == Pattern::InOrder) {
            cells[i] = {0, 1, static_cast<std::int32_t>(i)};
        } else if (pattern == Pattern::RandomRecords) {
            cells[i] = {0, 1, draw(kLongRecords)};
        } else {
            cells[i] = {1 + draw(kSmallFormats), 1 + draw(kSmallFields - 1), draw(kSmallRecords)};
        }
    }
    return cells;
}

// The place of a cell in one long vector of all cells.
std::size_t PlaceOf(const Cell& cell) {
    const std::int32_t place = cell.format == 0
                                   ? cell.field * kLongRecords + cell.record
                                   : kLongFields * kLongRecords +
                                         ((cell.format - 1) * kSmallFields + cell.field) * kSmallRecords + cell.record;
    return static_cast<std::size_t>(place);
}

constexpr std::size_t kAllCells =
    std::size_t{kLongFields} * kLongRecords + std::size_t{kSmallFormats} * kSmallFields * kSmallRecords;

void AddFormat(MemoryResidentData& store, std::int32_t fields, std::int32_t records, bool tracked) {
    Fixtures::Field field;
    if (!tracked) {
        field.classes = {Classes::kExcludeFromDb};
    }
    Fixtures::AddTable(store, L"Format " + std::to_wstring(store.GetFormatCount()),
                       std::vector(static_cast<std::size_t>(fields), field), records);
}

// The untracked formats first, then the tracked ones; every cell but the keys holds 1.0.
MemoryResidentData& Store() {
    static const std::unique_ptr<MemoryResidentData> store = [] {
        auto made = CreateMemoryResidentData();
        for (std::int32_t number = 0; number < 2 * kFormats; ++number) {
            const std::int32_t format = number % kFormats;
            AddFormat(*made, FieldsOf(format), RecordsOf(format), number >= kTracked);
            for (std::int32_t field = 1; field < FieldsOf(format); ++field) {
                for (std::int32_t record = 0; record < RecordsOf(format); ++record) {
                    made->SetDbValue(number, field, record, 1.0);
                }
            }
        }
        return made;
    }();
    return *store;
}

using MakeColumn = std::unique_ptr<PeerColumn> (*)();

std::vector<PeerFormat> MakePeers(MakeColumn make) {
    std::vector<PeerFormat> formats(static_cast<std::size_t>(kFormats));
    for (std::int32_t format = 0; format < kFormats; ++format) {
        PeerFormat& peer = formats[static_cast<std::size_t>(format)];
        for (std::int32_t field = 0; field < FieldsOf(format); ++field) {
            peer.fields.push_back(make());
            for (std::int32_t record = 0; record < RecordsOf(format); ++record) {
                peer.fields.back()->SetValue(record, 1.0);
            }
        }
    }
    return formats;
}

// Made once, like the store: memory that is allocated anew for every run is laid out more kindly.
const std::vector<PeerFormat>& Peers(MakeColumn make) {
    static std::map<MakeColumn, std::vector<PeerFormat>> peers;
    std::vector<PeerFormat>& found = peers[make];
    if (found.empty()) {
        found = MakePeers(make);
    }
    return found;
}

PeerColumn& At(const std::vector<PeerFormat>& formats, const Cell& cell) {
    return *formats[static_cast<std::size_t>(cell.format)].fields[static_cast<std::size_t>(cell.field)];
}

void ReadStore(benchmark::State& state, Pattern pattern) {
    MemoryResidentData& store = Store();
    const std::vector<Cell> cells = Cells(pattern);
    for (auto _ : state) {
        double sum = 0.0;
        for (const Cell& cell : cells) {
            sum += store.GetDbValue(cell.format, cell.field, cell.record);
        }
        benchmark::DoNotOptimize(sum);
    }
    CountEach(state, static_cast<double>(kAccesses));
}

void ReadByHand(benchmark::State& state, Pattern pattern) {
    const std::vector<PeerFormat>& formats = Peers(MakePeerColumn);
    const std::vector<Cell> cells = Cells(pattern);
    for (auto _ : state) {
        double sum = 0.0;
        for (const Cell& cell : cells) {
            sum += At(formats, cell).GetValue(cell.record);
        }
        benchmark::DoNotOptimize(sum);
    }
    CountEach(state, static_cast<double>(kAccesses));
}

void ReadVector(benchmark::State& state, Pattern pattern) {
    const std::vector<double> values(kAllCells, 1.0);
    const std::vector<Cell> cells = Cells(pattern);
    for (auto _ : state) {
        double sum = 0.0;
        for (const Cell& cell : cells) {
            sum += values[PlaceOf(cell)];
        }
        benchmark::DoNotOptimize(sum);
    }
    CountEach(state, static_cast<double>(kAccesses));
}

// Every write changes its cell: the value differs from round to round.
void WriteStore(benchmark::State& state, Pattern pattern, std::int32_t first_format) {
    MemoryResidentData& store = Store();
    const std::vector<Cell> cells = Cells(pattern);
    static double value = 1.0;
    for (auto _ : state) {
        value += 1.0;
        for (const Cell& cell : cells) {
            store.SetDbValue(first_format + cell.format, cell.field, cell.record, value);
        }
    }
    CountEach(state, static_cast<double>(kAccesses));
}

void WriteByHand(benchmark::State& state, Pattern pattern, MakeColumn make) {
    const std::vector<PeerFormat>& formats = Peers(make);
    const std::vector<Cell> cells = Cells(pattern);
    static double value = 1.0;
    for (auto _ : state) {
        value += 1.0;
        for (const Cell& cell : cells) {
            At(formats, cell).SetValue(cell.record, value);
        }
    }
    CountEach(state, static_cast<double>(kAccesses));
}

void WriteVector(benchmark::State& state, Pattern pattern) {
    std::vector<double> values(kAllCells, 1.0);
    const std::vector<Cell> cells = Cells(pattern);
    double value = 1.0;
    for (auto _ : state) {
        value += 1.0;
        for (const Cell& cell : cells) {
            values[PlaceOf(cell)] = value; // cppcheck-suppress unreadVariable ; the write is what is measured
        }
        benchmark::ClobberMemory();
    }
    CountEach(state, static_cast<double>(kAccesses));
}

#define KS_READS(name, pattern)                                                                                        \
    BENCHMARK_CAPTURE(ReadStore, name, pattern);                                                                       \
    BENCHMARK_CAPTURE(ReadByHand, name, pattern);                                                                      \
    BENCHMARK_CAPTURE(ReadVector, name, pattern)
#define KS_WRITES(name, pattern)                                                                                       \
    BENCHMARK_CAPTURE(WriteStore, untracked_##name, pattern, kUntracked);                                              \
    BENCHMARK_CAPTURE(WriteStore, tracked_##name, pattern, kTracked);                                                  \
    BENCHMARK_CAPTURE(WriteByHand, name, pattern, MakePeerColumn);                                                     \
    BENCHMARK_CAPTURE(WriteByHand, marking_##name, pattern, MakeMarkingPeerColumn);                                    \
    BENCHMARK_CAPTURE(WriteVector, name, pattern)

KS_READS(in_order, Pattern::InOrder);
KS_READS(random_records, Pattern::RandomRecords);
KS_READS(random_cells, Pattern::RandomCells);
KS_WRITES(in_order, Pattern::InOrder);
KS_WRITES(random_records, Pattern::RandomRecords);
KS_WRITES(random_cells, Pattern::RandomCells);

std::vector<double> KeysInRandomOrder(std::int32_t count) {
    std::vector<double> keys(static_cast<std::size_t>(count));
    std::iota(keys.begin(), keys.end(), 1.0);
    std::shuffle(keys.begin(), keys.end(), std::mt19937(5));
    return keys;
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
    CountEach(state, static_cast<double>(keys.size()));
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
    CountEach(state, static_cast<double>(keys.size()));
}

BENCHMARK(LookupKey)->Arg(10000)->Arg(100000)->Arg(1000000);
BENCHMARK(LookupFlatMap)->Arg(10000)->Arg(100000)->Arg(1000000);

} // namespace
