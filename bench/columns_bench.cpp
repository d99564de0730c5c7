// Columns beside what one would write by hand: plain vectors, one virtual call, hash maps, sorted arrays.
//
// Every peer runs in the same program, so compare the ratios of one run. "each" is the time of one operation.
#include "measure.h"

#include <kestrona/change_set.h>
#include <kestrona/concrete_columns.h>
#include <kestrona/indexed_column.h>
#include <kestrona/record_state.h>
#include <kestrona/schema_records.h>

#include <boost/unordered/unordered_flat_map.hpp>

#include <algorithm>
#include <cstdint>
#include <latch>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace Kestrona;
using namespace Kestrona::Bench;
using namespace Kestrona::Data::MemoryResident;

constexpr std::int32_t kColumns = 20;
constexpr std::int32_t kMillion = 1000000;
constexpr std::size_t kProbes = std::size_t{1} << 20;

enum class Order : std::int64_t {
    Random,
    Sequential
};

struct Cell {
    std::int32_t field;
    std::int32_t record;
};

std::vector<Cell> Cells(std::int32_t rows, Order order) {
    std::vector<Cell> cells(kProbes);
    std::mt19937 random(1);
    for (std::size_t i = 0; i < kProbes; ++i) {
        const auto step = static_cast<std::int32_t>(i);
        cells[i] = order == Order::Random ? Cell{static_cast<std::int32_t>(random() % kColumns),
                                                 static_cast<std::int32_t>(random() % static_cast<unsigned>(rows))}
                                          : Cell{step / rows % kColumns, step % rows};
    }
    return cells;
}

double ValueAt(std::int32_t field, std::int32_t record) {
    return record * 0.5 + field + 1;
}

// Keeps the compiler from seeing through a call, as the border of a library does.
#if defined(__clang__)
#define KS_OPAQUE __attribute__((noinline))
#else
#define KS_OPAQUE __attribute__((noipa))
#endif

// The least that a column behind an interface can cost.
class HandWritten {
public:
    virtual ~HandWritten() = default;
    virtual double GetValue(std::int32_t record) const = 0;
    virtual void SetValue(std::int32_t record, const double& value) = 0;
};

class HandWrittenDoubles : public HandWritten {
public:
    explicit HandWrittenDoubles(std::vector<double> values) : values_(std::move(values)) {}

    KS_OPAQUE double GetValue(std::int32_t record) const override { return values_[static_cast<std::size_t>(record)]; }

    KS_OPAQUE void SetValue(std::int32_t record, const double& value) override {
        values_[static_cast<std::size_t>(record)] = value;
    }

protected:
    std::vector<double> values_;
};

// Tests what every column must test: whether there is such a record, and whether the write changes anything.
class HandWrittenTests : public HandWrittenDoubles {
public:
    using HandWrittenDoubles::HandWrittenDoubles;

    KS_OPAQUE double GetValue(std::int32_t record) const override {
        return static_cast<std::size_t>(record) < values_.size() ? values_[static_cast<std::size_t>(record)] : 0.0;
    }

    KS_OPAQUE void SetValue(std::int32_t record, const double& value) override {
        if (static_cast<std::size_t>(record) < values_.size()) {
            double& cell = values_[static_cast<std::size_t>(record)];
            if (cell != value) {
                cell = value;
                ++changes_;
            }
        }
    }

private:
    std::int64_t changes_ = 0;
};

template <typename Column>
struct Field {
    std::unique_ptr<Column> column;
    double more[8] = {};
};

// A format with its fields, reached by two array steps.
template <typename Column>
struct Plant {
    std::vector<std::vector<Field<Column>>> formats{1};

    Column& At(std::int32_t format, std::int32_t field) {
        return *formats[static_cast<std::size_t>(format)][static_cast<std::size_t>(field)].column;
    }
};

template <typename Column>
Plant<HandWritten> HandWrittenPlant(std::int32_t rows) {
    Plant<HandWritten> plant;
    for (std::int32_t field = 0; field < kColumns; ++field) {
        std::vector<double> values;
        for (std::int32_t i = 0; i < rows; ++i) {
            values.push_back(ValueAt(field, i));
        }
        plant.formats[0].push_back({std::make_unique<Column>(std::move(values))});
    }
    return plant;
}

template <typename MakeColumn>
Plant<IColumn<double>> LibraryPlant(std::int32_t rows, MakeColumn make) {
    Plant<IColumn<double>> plant;
    for (std::int32_t field = 0; field < kColumns; ++field) {
        std::unique_ptr<IColumn<double>> column = make();
        column->Resize(static_cast<std::uint32_t>(rows));
        for (std::int32_t i = 0; i < rows; ++i) {
            column->SetValue(i, ValueAt(field, i));
        }
        plant.formats[0].push_back({std::move(column)});
    }
    return plant;
}

std::unique_ptr<IColumn<double>> MakeDoubles() {
    return std::make_unique<DoubleColumn>(new NullRecordStateStrategy, 0.0);
}

// Arguments: rows, order.
template <typename Column>
void ReadCells(benchmark::State& state, Plant<Column> plant) {
    const auto cells = Cells(static_cast<std::int32_t>(state.range(0)), static_cast<Order>(state.range(1)));
    for (auto _ : state) {
        double sum = 0;
        for (const Cell cell : cells) {
            sum += plant.At(0, cell.field).GetValue(cell.record);
        }
        benchmark::DoNotOptimize(sum);
    }
    CountEach(state, static_cast<double>(kProbes));
}

template <typename Column>
void WriteCells(benchmark::State& state, Plant<Column> plant) {
    const auto cells = Cells(static_cast<std::int32_t>(state.range(0)), static_cast<Order>(state.range(1)));
    double value = 0;
    for (auto _ : state) {
        value += 1e-3; // so that every write changes its cell
        for (const Cell cell : cells) {
            value += 1e-9;
            plant.At(0, cell.field).SetValue(cell.record, value);
        }
    }
    CountEach(state, static_cast<double>(kProbes));
}

template <typename Column>
void ReadHandWritten(benchmark::State& state) {
    ReadCells(state, HandWrittenPlant<Column>(static_cast<std::int32_t>(state.range(0))));
}

void ReadDoubleColumns(benchmark::State& state) {
    ReadCells(state, LibraryPlant(static_cast<std::int32_t>(state.range(0)), MakeDoubles));
}

template <typename Column>
void WriteHandWritten(benchmark::State& state) {
    WriteCells(state, HandWrittenPlant<Column>(static_cast<std::int32_t>(state.range(0))));
}

void WriteDoubleColumns(benchmark::State& state) {
    WriteCells(state, LibraryPlant(static_cast<std::int32_t>(state.range(0)), MakeDoubles));
}

void WriteTrackedColumns(benchmark::State& state) {
    formats_info format;
    const auto make = [&format] {
        return std::make_unique<DoubleColumn>(new RecordStateStrategy(&format, 0), 0.0);
    };
    WriteCells(state, LibraryPlant(static_cast<std::int32_t>(state.range(0)), make));
}

void ReadBlocks(benchmark::State& state) {
    DoubleColumn column(new NullRecordStateStrategy, 0.0);
    for (std::int32_t i = 0; i < kMillion; ++i) {
        column.SetValue(i, ValueAt(0, i));
    }
    const IColumn<double>& cells = column;
    std::vector<double> block(1000);
    for (auto _ : state) {
        double sum = 0;
        for (std::int32_t first = 0; first < kMillion; first += 1000) {
            cells.ReadBlock(first, 1000, block.data());
            sum = std::accumulate(block.begin(), block.end(), sum);
        }
        benchmark::DoNotOptimize(sum);
    }
    CountEach(state, kMillion);
}

void CellArguments(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"rows", "sequential"});
    for (const std::int64_t rows : {1000, kMillion}) {
        bench->Args({rows, static_cast<std::int64_t>(Order::Random)});
        bench->Args({rows, static_cast<std::int64_t>(Order::Sequential)});
    }
    bench->Unit(benchmark::kMillisecond);
}

BENCHMARK(ReadHandWritten<HandWrittenDoubles>)->Apply(CellArguments);
BENCHMARK(ReadHandWritten<HandWrittenTests>)->Apply(CellArguments);
BENCHMARK(ReadDoubleColumns)->Apply(CellArguments);
BENCHMARK(ReadBlocks)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteHandWritten<HandWrittenDoubles>)->Apply(CellArguments);
BENCHMARK(WriteHandWritten<HandWrittenTests>)->Apply(CellArguments);
BENCHMARK(WriteDoubleColumns)->Apply(CellArguments);
BENCHMARK(WriteTrackedColumns)->Apply(CellArguments);

std::vector<std::int32_t> Shuffled(std::int32_t count) {
    std::vector<std::int32_t> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 0);
    std::shuffle(numbers.begin(), numbers.end(), std::mt19937(2));
    return numbers;
}

struct PagedMarks {
    ChangedRecords marks;

    void Mark(std::int32_t record) { marks.Mark(record); }
};

struct TreeMarks {
    std::map<std::int32_t, bool> marks;

    void Mark(std::int32_t record) { marks[record] = true; }
};

// Argument: marks, each on another of 1 million records.
template <typename Marks>
void MarkRecords(benchmark::State& state) {
    auto records = Shuffled(kMillion);
    records.resize(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        Marks marks;
        for (const std::int32_t record : records) {
            marks.Mark(record);
        }
        benchmark::DoNotOptimize(marks);
    }
    CountEach(state, static_cast<double>(records.size()));
}

BENCHMARK(MarkRecords<PagedMarks>)->Arg(10000)->Arg(100000)->Arg(kMillion)->Unit(benchmark::kMillisecond);
BENCHMARK(MarkRecords<TreeMarks>)->Arg(10000)->Arg(100000)->Arg(kMillion)->Unit(benchmark::kMillisecond);

// Values 0 to distinct - 1, in random order where each occurs once.
std::vector<double> Keys(std::int32_t rows, std::int32_t distinct) {
    std::vector<double> keys;
    for (const std::int32_t number : Shuffled(rows)) {
        keys.push_back(number % distinct);
    }
    return keys;
}

std::unique_ptr<IColumn<double>> IndexedKeys(const std::vector<double>& keys) {
    auto column = std::make_unique<DoubleColumn>(new NullRecordStateStrategy, -1.0);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        column->SetValue(static_cast<std::int32_t>(i), keys[i]);
    }
    return std::unique_ptr<IColumn<double>>(column.release()->CreateIndexedColumn());
}

using MapOfVectors = boost::unordered_flat_map<double, std::vector<std::int32_t>>;

// Argument: distinct values among 1 million rows.
void BuildIndex(benchmark::State& state) {
    const auto column = IndexedKeys(Keys(kMillion, static_cast<std::int32_t>(state.range(0))));
    for (auto _ : state) {
        column->BeginBulkUpdate();
        column->EndBulkUpdate();
    }
    CountEach(state, kMillion);
}

void BuildMapOfVectors(benchmark::State& state) {
    const auto keys = Keys(kMillion, static_cast<std::int32_t>(state.range(0)));
    MeasureFresh(
        state, [] { return MapOfVectors(); },
        [&](MapOfVectors& map) {
            for (std::size_t i = 0; i < keys.size(); ++i) {
                map[keys[i]].push_back(static_cast<std::int32_t>(i));
            }
        });
    CountEach(state, kMillion);
}

void DistinctCounts(benchmark::internal::Benchmark* bench) {
    bench->ArgName("distinct")->Arg(kMillion)->Arg(kMillion / 3)->Arg(1000)->Arg(2)->Unit(benchmark::kMillisecond);
}

BENCHMARK(BuildIndex)->Apply(DistinctCounts);
BENCHMARK(BuildMapOfVectors)->Apply(DistinctCounts);

// Argument: rows, all with different keys.
std::vector<double> AllKeys(const benchmark::State& state) {
    const auto rows = static_cast<std::int32_t>(state.range(0));
    return Keys(rows, rows);
}

std::vector<double> Probes(const std::vector<double>& keys) {
    std::vector<double> probes(kProbes);
    std::mt19937 random(4);
    std::generate(probes.begin(), probes.end(), [&] { return keys[random() % keys.size()]; });
    return probes;
}

void LookUpInIndex(benchmark::State& state) {
    const auto keys = AllKeys(state);
    const auto probes = Probes(keys);
    const auto column = IndexedKeys(keys);
    std::int64_t sum = column->Find(keys.front());
    for (auto _ : state) {
        for (const double probe : probes) {
            sum += column->Find(probe);
        }
    }
    benchmark::DoNotOptimize(sum);
    CountEach(state, static_cast<double>(kProbes));
}

void LookUpInFlatMap(benchmark::State& state) {
    const auto keys = AllKeys(state);
    const auto probes = Probes(keys);
    boost::unordered_flat_map<double, std::int32_t> map;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        map.emplace(keys[i], static_cast<std::int32_t>(i));
    }
    std::int64_t sum = 0;
    for (auto _ : state) {
        for (const double probe : probes) {
            sum += map.find(probe)->second;
        }
    }
    benchmark::DoNotOptimize(sum);
    CountEach(state, static_cast<double>(kProbes));
}

BENCHMARK(LookUpInIndex)->Arg(10000)->Arg(kMillion)->Unit(benchmark::kMillisecond);
BENCHMARK(LookUpInFlatMap)->Arg(10000)->Arg(kMillion)->Unit(benchmark::kMillisecond);

// 1 million rows with the values 0 and 1 in equal number; moves random rows from one value to the other.
// The argument is the number of moves before each search.
void MoveRows(benchmark::State& state) {
    const auto column = IndexedKeys(Keys(kMillion, 2));
    const auto count_ones = [&] {
        return std::unique_ptr<FindResult>(column->FindAll(1.0))->Size();
    };
    const auto moves = static_cast<std::int32_t>(state.range(0));
    std::mt19937 random(3);
    std::size_t ones = count_ones();
    for (auto _ : state) {
        for (std::int32_t i = 0; i < moves; ++i) {
            const auto record = static_cast<std::int32_t>(random() % kMillion);
            column->SetValue(record, 1.0 - column->GetValue(record));
        }
        ones += count_ones();
    }
    benchmark::DoNotOptimize(ones);
    CountEach(state, moves);
}

BENCHMARK(MoveRows)->Arg(1)->Arg(10)->Arg(1000)->Arg(kMillion)->Unit(benchmark::kMillisecond);

// The same lookups where the index must take its lock. Last of all: a process that has had a second thread may count as
// one with threads from then on.
void LookUpInLockedIndex(benchmark::State& state) {
    std::latch done(1);
    std::thread other([&done] { done.wait(); });
    LookUpInIndex(state);
    done.count_down();
    other.join();
}

BENCHMARK(LookUpInLockedIndex)->Arg(10000)->Arg(kMillion)->Unit(benchmark::kMillisecond);

} // namespace
