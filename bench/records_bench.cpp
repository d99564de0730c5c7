// Records that come and go, beside plain vectors and SQLite in memory that do the same. Every peer runs in the same
// program, so compare the ratios of one run. "each" is the time of one record.

#include <kestrona/classes.h>
#include <kestrona/process.h>
#include <kestrona/records.h>
#include <kestrona/store.h>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace Kestrona;
using namespace Kestrona::Data::MemoryResident;

constexpr std::int32_t kFields = 20;
constexpr std::int32_t kInsertions = 100;
constexpr std::int32_t kErasedShare = 10;

enum class Place {
    Front,
    Middle,
    End
};

std::int32_t At(Place place, std::int32_t count) {
    switch (place) {
    case Place::Front:
        return 0;
    case Place::Middle:
        return count / 2;
    case Place::End:
        break;
    }
    return count;
}

double ValueAt(std::int32_t field, std::int32_t record) {
    return record * 0.5 + field + 1.0;
}

// A format of tracked fields, the key first.
std::unique_ptr<MemoryResidentData> MakeStore(std::int32_t records) {
    auto store = CreateMemoryResidentData();
    store->SetFormatCount(1);
    store->SetDbName(0, KSDLL_AddText(L"Records"));
    store->SetDbFields(0, kFields);
    store->CreateDbFieldInfo(0, kFields);
    store->SetDbKey(0, 0);
    for (std::int32_t field = 0; field < kFields; ++field) {
        store->SetDbType(0, field, TypeBit::kReal);
        store->SetDbDefaultValue(0, field, field == 0 ? 1.0 : 0.0);
    }
    for (std::int32_t field = 0; field < kFields; ++field) {
        store->CreateDbValues(0, field);
    }
    store->CreateDbUpdate(0);
    store->SetCurrentDbSize(0, records);
    for (std::int32_t record = 0; record < records; ++record) {
        for (std::int32_t field = 0; field < kFields; ++field) {
            store->SetDbValue(0, field, record, field == 0 ? record + 1.0 : ValueAt(field, record));
        }
    }
    return store;
}

using Columns = std::vector<std::vector<double>>;

Columns MakeColumns(std::int32_t records) {
    Columns columns(kFields, std::vector<double>(static_cast<std::size_t>(records)));
    for (std::int32_t field = 0; field < kFields; ++field) {
        for (std::int32_t record = 0; record < records; ++record) {
            columns[static_cast<std::size_t>(field)][static_cast<std::size_t>(record)] = ValueAt(field, record);
        }
    }
    return columns;
}

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};

struct FinishStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

using Database = std::unique_ptr<sqlite3, CloseDatabase>;
using Statement = std::unique_ptr<sqlite3_stmt, FinishStatement>;

Statement Prepare(sqlite3* database, const std::string& text) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, text.c_str(), -1, &statement, nullptr);
    return Statement(statement);
}

void Execute(sqlite3* database, const char* text) {
    sqlite3_exec(database, text, nullptr, nullptr, nullptr);
}

// The same records in a table with an index over the key.
Database MakeDatabase(std::int32_t records) {
    sqlite3* opened = nullptr;
    sqlite3_open(":memory:", &opened);
    Database database(opened);
    std::string columns = "key REAL";
    std::string marks = "?";
    for (std::int32_t field = 1; field < kFields; ++field) {
        columns += ", f" + std::to_string(field) + " REAL";
        marks += ", ?";
    }
    Execute(opened, ("CREATE TABLE records(" + columns + "); CREATE UNIQUE INDEX keys ON records(key)").c_str());
    Execute(opened, "BEGIN");
    const Statement insert = Prepare(opened, "INSERT INTO records VALUES(" + marks + ")");
    for (std::int32_t record = 0; record < records; ++record) {
        sqlite3_bind_double(insert.get(), 1, record + 1.0);
        for (std::int32_t field = 1; field < kFields; ++field) {
            sqlite3_bind_double(insert.get(), field + 1, ValueAt(field, record));
        }
        sqlite3_step(insert.get());
        sqlite3_reset(insert.get());
    }
    Execute(opened, "COMMIT");
    return database;
}

// One of ten records, ascending.
std::vector<std::int32_t> RecordsToErase(std::int32_t records) {
    std::vector<std::int32_t> all(static_cast<std::size_t>(records));
    std::iota(all.begin(), all.end(), 0);
    std::shuffle(all.begin(), all.end(), std::mt19937(3));
    all.resize(all.size() / kErasedShare);
    std::sort(all.begin(), all.end());
    return all;
}

void CountRecords(benchmark::State& state, double each_iteration) {
    state.counters["each"] =
        benchmark::Counter(each_iteration, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void CreateRecords(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        auto store = MakeStore(0);
        state.ResumeTiming();
        for (std::int32_t i = 0; i < count; ++i) {
            KSDLL_CreateRecord(*store, 0);
        }
        state.PauseTiming();
        store.reset();
        state.ResumeTiming();
    }
    CountRecords(state, count);
}

void AppendToVectors(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    for (auto _ : state) {
        Columns columns(kFields);
        for (std::int32_t i = 0; i < count; ++i) {
            for (std::vector<double>& column : columns) {
                column.push_back(i);
            }
        }
        benchmark::DoNotOptimize(columns);
    }
    CountRecords(state, count);
}

void InsertRecords(benchmark::State& state, Place place) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const auto store = MakeStore(count);
    for (auto _ : state) {
        KSDLL_InsertDbItem(*store, 0, At(place, store->GetCurrentDbSize(0)));
    }
    CountRecords(state, 1);
}

void InsertIntoVectors(benchmark::State& state, Place place) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    Columns columns = MakeColumns(count);
    for (auto _ : state) {
        for (std::vector<double>& column : columns) {
            column.insert(column.begin() + At(place, static_cast<std::int32_t>(column.size())), 0.0);
        }
    }
    CountRecords(state, 1);
}

void DeleteAsList(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const std::vector<std::int32_t> records = RecordsToErase(count);
    for (auto _ : state) {
        state.PauseTiming();
        auto store = MakeStore(count);
        state.ResumeTiming();
        KSDLL_DeleteDbItems(*store, 0, records);
        state.PauseTiming();
        store.reset();
        state.ResumeTiming();
    }
    CountRecords(state, static_cast<double>(records.size()));
}

void DeleteOneByOne(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const std::vector<std::int32_t> records = RecordsToErase(count);
    for (auto _ : state) {
        state.PauseTiming();
        auto store = MakeStore(count);
        state.ResumeTiming();
        std::for_each(records.rbegin(), records.rend(),
                      [&](std::int32_t record) { KSDLL_DeleteDbItem(*store, 0, record); });
        state.PauseTiming();
        store.reset();
        state.ResumeTiming();
    }
    CountRecords(state, static_cast<double>(records.size()));
}

void CompactVectors(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const std::vector<std::int32_t> records = RecordsToErase(count);
    for (auto _ : state) {
        state.PauseTiming();
        Columns columns = MakeColumns(count);
        state.ResumeTiming();
        std::vector<bool> erased(static_cast<std::size_t>(count));
        for (const std::int32_t record : records) {
            erased[static_cast<std::size_t>(record)] = true;
        }
        for (std::vector<double>& column : columns) {
            std::size_t kept = 0;
            for (std::size_t record = 0; record < column.size(); ++record) {
                if (!erased[record]) {
                    column[kept++] = column[record];
                }
            }
            column.resize(kept);
        }
        benchmark::DoNotOptimize(columns);
    }
    CountRecords(state, static_cast<double>(records.size()));
}

void EraseFromVectors(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const std::vector<std::int32_t> records = RecordsToErase(count);
    for (auto _ : state) {
        state.PauseTiming();
        Columns columns = MakeColumns(count);
        state.ResumeTiming();
        for (auto record = records.rbegin(); record != records.rend(); ++record) {
            for (std::vector<double>& column : columns) {
                column.erase(column.begin() + *record);
            }
        }
        benchmark::DoNotOptimize(columns);
    }
    CountRecords(state, static_cast<double>(records.size()));
}

void DeleteFromDatabase(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const std::vector<std::int32_t> records = RecordsToErase(count);
    for (auto _ : state) {
        state.PauseTiming();
        Database database = MakeDatabase(count);
        state.ResumeTiming();
        Execute(database.get(), "BEGIN");
        const Statement erase = Prepare(database.get(), "DELETE FROM records WHERE key = ?");
        for (const std::int32_t record : records) {
            sqlite3_bind_double(erase.get(), 1, record + 1.0);
            sqlite3_step(erase.get());
            sqlite3_reset(erase.get());
        }
        Execute(database.get(), "COMMIT");
    }
    CountRecords(state, static_cast<double>(records.size()));
}

std::vector<double> ShuffledKeys(std::int32_t records) {
    std::vector<double> keys(static_cast<std::size_t>(records));
    std::iota(keys.begin(), keys.end(), 1.0);
    std::shuffle(keys.begin(), keys.end(), std::mt19937(5));
    return keys;
}

void LookUpKeys(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const auto store = MakeStore(count);
    const std::vector<double> keys = ShuffledKeys(count);
    store->LookupKeyRecord(0, 1.0); // builds the index
    for (auto _ : state) {
        for (const double key : keys) {
            benchmark::DoNotOptimize(store->LookupKeyRecord(0, key));
        }
    }
    CountRecords(state, count);
}

void LookUpInDatabase(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const Database database = MakeDatabase(count);
    const std::vector<double> keys = ShuffledKeys(count);
    const Statement find = Prepare(database.get(), "SELECT rowid FROM records WHERE key = ?");
    for (auto _ : state) {
        for (const double key : keys) {
            sqlite3_bind_double(find.get(), 1, key);
            sqlite3_step(find.get());
            benchmark::DoNotOptimize(sqlite3_column_int(find.get(), 0));
            sqlite3_reset(find.get());
        }
    }
    CountRecords(state, count);
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
}

void InsertionSizes(benchmark::internal::Benchmark* benchmark) {
    Sizes(benchmark->Iterations(kInsertions));
}

BENCHMARK(CreateRecords)->Apply(Sizes);
BENCHMARK(AppendToVectors)->Apply(Sizes);
BENCHMARK_CAPTURE(InsertRecords, front, Place::Front)->Apply(InsertionSizes);
BENCHMARK_CAPTURE(InsertIntoVectors, front, Place::Front)->Apply(InsertionSizes);
BENCHMARK_CAPTURE(InsertRecords, middle, Place::Middle)->Apply(InsertionSizes);
BENCHMARK_CAPTURE(InsertIntoVectors, middle, Place::Middle)->Apply(InsertionSizes);
BENCHMARK_CAPTURE(InsertRecords, end, Place::End)->Apply(InsertionSizes);
BENCHMARK_CAPTURE(InsertIntoVectors, end, Place::End)->Apply(InsertionSizes);
BENCHMARK(DeleteAsList)->Apply(Sizes);
BENCHMARK(CompactVectors)->Apply(Sizes);
BENCHMARK(DeleteFromDatabase)->Apply(Sizes);
BENCHMARK(DeleteOneByOne)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(EraseFromVectors)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(LookUpKeys)->Apply(Sizes);
BENCHMARK(LookUpInDatabase)->Apply(Sizes);

} // namespace
