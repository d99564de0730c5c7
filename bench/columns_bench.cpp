// Columns beside what one would write by hand: plain vectors, one virtual call, hash maps, sorted arrays.
//
// Every peer runs in the same program, so compare the ratios of one run. "each" is the time of one operation.
#include "measure.h"
#include "number_store.h"

#include <kestrona/change_set.h>
#include <kestrona/concrete_columns.h>
#include <kestrona/indexed_column.h>
#include <kestrona/record_state.h>
#include <kestrona/schema_records.h>

#include <boost/unordered/unordered_flat_map.hpp>
#include <boost/unordered/unordered_flat_set.hpp>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

namespace Kestrona::Bench {
namespace {

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
        values.reserve(static_cast<std::size_t>(rows));
        for (std::int32_t i = 0; i < rows; ++i) {
            values.push_back(CellValue(field, i));
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
            column->SetValue(i, CellValue(field, i));
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
        column.SetValue(i, CellValue(0, i));
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
}

BENCHMARK(ReadHandWritten<HandWrittenDoubles>)->Apply(CellArguments);
BENCHMARK(ReadHandWritten<HandWrittenTests>)->Apply(CellArguments);
BENCHMARK(ReadDoubleColumns)->Apply(CellArguments);
BENCHMARK(ReadBlocks);
BENCHMARK(WriteHandWritten<HandWrittenDoubles>)->Apply(CellArguments);
BENCHMARK(WriteHandWritten<HandWrittenTests>)->Apply(CellArguments);
BENCHMARK(WriteDoubleColumns)->Apply(CellArguments);
BENCHMARK(WriteTrackedColumns)->Apply(CellArguments);

struct PagedMarks {
    ChangedRecords marks;

    void Mark(std::int32_t record) { marks.Mark(record); }
};

struct TreeMarks {
    std::map<std::int32_t, bool> marks;

    void Mark(std::int32_t record) { marks[record] = true; }
};

struct HashMarks {
    boost::unordered_flat_set<std::int32_t> marks;

    void Mark(std::int32_t record) { marks.insert(record); }
};

struct BitMarks {
    std::vector<bool> marks = std::vector<bool>(5 * static_cast<std::size_t>(kMillion));

    void Mark(std::int32_t record) { marks[static_cast<std::size_t>(record)] = true; }
};

// Argument: marks, each on another of 1 million records, or of as many as there are marks.
template <typename Marks>
void MarkRecords(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    auto records = ShuffledNumbers(std::max(count, kMillion), 0);
    records.resize(static_cast<std::size_t>(count));
    for (auto _ : state) {
        Marks marks;
        for (const std::int32_t record : records) {
            marks.Mark(record);
        }
        benchmark::DoNotOptimize(marks);
    }
    CountEach(state, static_cast<double>(records.size()));
}

BENCHMARK(MarkRecords<PagedMarks>)->Apply(GrowthSizes);
BENCHMARK(MarkRecords<HashMarks>)->Apply(PeerSizes);
BENCHMARK(MarkRecords<TreeMarks>)->Apply(PeerSizes);
BENCHMARK(MarkRecords<BitMarks>)->Apply(PeerSizes);

// Values 0 to distinct - 1, in random order where each occurs once.
std::vector<double> Keys(std::int32_t rows, std::int32_t distinct) {
    std::vector<double> keys;
    for (const std::int32_t number : ShuffledNumbers(rows, 0)) {
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

// As many distinct values as rows.
constexpr std::int32_t kAllDistinct = 0;

// Argument: rows.
std::vector<double> IndexKeys(const benchmark::State& state, std::int32_t distinct) {
    const auto rows = static_cast<std::int32_t>(state.range(0));
    return Keys(rows, distinct == kAllDistinct ? rows : distinct);
}

void BuildIndex(benchmark::State& state, std::int32_t distinct) {
    const auto column = IndexedKeys(IndexKeys(state, distinct));
    for (auto _ : state) {
        column->BeginBulkUpdate();
        column->EndBulkUpdate();
    }
    CountEach(state, static_cast<double>(state.range(0)));
}

void BuildMapOfVectors(benchmark::State& state, std::int32_t distinct) {
    const auto keys = IndexKeys(state, distinct);
    MeasureFresh(
        state, [] { return MapOfVectors(); },
        [&](MapOfVectors& map) {
            for (std::size_t i = 0; i < keys.size(); ++i) {
                map[keys[i]].push_back(static_cast<std::int32_t>(i));
            }
        });
    CountEach(state, static_cast<double>(state.range(0)));
}

// What is left where the values are known to be numbered without gaps: count them, then put each row in its place.
void BuildByCounting(benchmark::State& state, std::int32_t distinct) {
    const auto keys = IndexKeys(state, distinct);
    for (auto _ : state) {
        std::vector<std::int32_t> ends(keys.size() + 1);
        std::vector<std::int32_t> rows(keys.size());
        for (const double key : keys) {
            ++ends[static_cast<std::size_t>(key) + 1];
        }
        std::partial_sum(ends.begin(), ends.end(), ends.begin());
        for (std::size_t i = 0; i < keys.size(); ++i) {
            rows[static_cast<std::size_t>(ends[static_cast<std::size_t>(keys[i])]++)] = static_cast<std::int32_t>(i);
        }
        benchmark::DoNotOptimize(rows.data());
    }
    CountEach(state, static_cast<double>(state.range(0)));
}

#define KS_INDEXES(name, distinct)                                                                                     \
    BENCHMARK_CAPTURE(BuildIndex, name, distinct)->Apply(PeerSizes);                                                   \
    BENCHMARK_CAPTURE(BuildMapOfVectors, name, distinct)->Apply(PeerSizes);                                            \
    BENCHMARK_CAPTURE(BuildByCounting, name, distinct)->Apply(PeerSizes)

KS_INDEXES(distinct, kAllDistinct);
KS_INDEXES(1000_values, 1000);
KS_INDEXES(2_values, 2);
BENCHMARK_CAPTURE(BuildIndex, distinct, kAllDistinct)->Apply(OtherGrowthSizes);
BENCHMARK_CAPTURE(BuildIndex, 1000_values, 1000)->Apply(OtherGrowthSizes);

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

BENCHMARK(LookUpInIndex)->Apply(PeerSizes);

// Moves random rows from one to the other of two values that half of the rows have each. Arguments: rows, and moves
// before each search.
void MoveAndSearch(benchmark::State& state, std::int64_t rows, std::int64_t moves) {
    const auto count = static_cast<std::int32_t>(rows);
    const auto column = IndexedKeys(Keys(count, 2));
    const auto count_ones = [&] {
        return std::unique_ptr<FindResult>(column->FindAll(1.0))->Size();
    };
    std::mt19937 random(3);
    std::size_t ones = count_ones();
    for (auto _ : state) {
        for (std::int64_t i = 0; i < moves; ++i) {
            const auto record = static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(count));
            column->SetValue(record, 1.0 - column->GetValue(record));
        }
        ones += count_ones();
    }
    benchmark::DoNotOptimize(ones);
    CountEach(state, static_cast<double>(moves));
}

void MoveRows(benchmark::State& state) {
    MoveAndSearch(state, state.range(0), state.range(0));
}

void MoveFewRows(benchmark::State& state) {
    MoveAndSearch(state, kMillion, state.range(0));
}

struct HashRows {
    boost::unordered_flat_set<std::int32_t> rows;

    void Add(std::int32_t row) { rows.insert(row); }

    void Remove(std::int32_t row) { rows.erase(row); }
};

struct BitRows {
    std::vector<bool> rows = std::vector<bool>(static_cast<std::size_t>(kMillion));

    void Add(std::int32_t row) { rows[static_cast<std::size_t>(row)] = true; }

    void Remove(std::int32_t row) { rows[static_cast<std::size_t>(row)] = false; }
};

template <typename Rows>
void MoveRowsByHand(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    std::vector<std::int8_t> values(static_cast<std::size_t>(count));
    Rows rows_of[2];
    for (std::int32_t row = 0; row < count; ++row) {
        values[static_cast<std::size_t>(row)] = static_cast<std::int8_t>(row % 2);
        rows_of[row % 2].Add(row);
    }
    std::mt19937 random(3);
    for (auto _ : state) {
        for (std::int32_t i = 0; i < count; ++i) {
            const auto row = static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(count));
            std::int8_t& value = values[static_cast<std::size_t>(row)];
            rows_of[value].Remove(row);
            value = static_cast<std::int8_t>(1 - value);
            rows_of[value].Add(row);
        }
        benchmark::DoNotOptimize(rows_of);
    }
    CountEach(state, static_cast<double>(count));
}

BENCHMARK(MoveRows)->Apply(GrowthSizes);
BENCHMARK(MoveRowsByHand<HashRows>)->Apply(PeerSizes);
BENCHMARK(MoveRowsByHand<BitRows>)->Apply(PeerSizes);
BENCHMARK(MoveFewRows)->Arg(1)->Arg(10)->Arg(1000);

} // namespace
} // namespace Kestrona::Bench
