// Records that come and go, beside plain vectors and SQLite in memory that do the same, and beside copying the memory
// that must move. The argument is the number of records there are; "each" is the time of one.
#include "fixtures/schema.h"
#include "measure.h"
#include "number_store.h"
#include "sqlite_database.h"

#include <kestrona/process.h>
#include <kestrona/records.h>
#include <kestrona/store.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace Kestrona::Bench {
namespace {

constexpr std::int32_t kFields = 20;
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

// A format of tracked fields, the key first.
std::unique_ptr<MemoryResidentData> MakeStore(std::int64_t count) {
    const auto records = static_cast<std::int32_t>(count);
    auto store = CreateMemoryResidentData();
    std::vector<Fixtures::Field> fields(kFields);
    fields[0].default_value = 1.0;
    Fixtures::AddTable(*store, L"Records", fields, records);
    FillNumbers(*store, kFields, records);
    for (std::int32_t record = 0; record < records; ++record) {
        store->SetDbValue(0, 0, record, record + 1.0);
    }
    return store;
}

Columns MakeVectors(std::int64_t records) {
    return MakeColumns(kFields, static_cast<std::int32_t>(records));
}

// The same records in a table with an index over the key.
std::unique_ptr<Database> MakeDatabase(std::int64_t count) {
    const auto records = static_cast<std::int32_t>(count);
    auto database = std::make_unique<Database>();
    std::string columns = "key REAL";
    std::string marks = "?";
    for (std::int32_t field = 1; field < kFields; ++field) {
        columns += ", f" + std::to_string(field) + " REAL";
        marks += ", ?";
    }
    database->Execute("CREATE TABLE records(" + columns + "); CREATE UNIQUE INDEX keys ON records(key); BEGIN");
    const Statement insert = database->Prepare("INSERT INTO records VALUES(" + marks + ")");
    for (std::int32_t record = 0; record < records; ++record) {
        sqlite3_bind_double(insert.get(), 1, record + 1.0);
        for (std::int32_t field = 1; field < kFields; ++field) {
            sqlite3_bind_double(insert.get(), field + 1, CellValue(field, record));
        }
        RunOnce(insert);
    }
    database->Execute("COMMIT");
    return database;
}

// One of ten records, ascending.
std::vector<std::int32_t> RecordsToErase(std::int32_t records) {
    std::vector<std::int32_t> all = ShuffledNumbers(records, 0);
    all.resize(all.size() / kErasedShare);
    std::sort(all.begin(), all.end());
    return all;
}

void CreateRecords(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    MeasureFresh(
        state, [] { return MakeStore(0); },
        [&](const auto& store) {
            for (std::int32_t i = 0; i < count; ++i) {
                KSDLL_CreateRecord(*store, 0);
            }
        });
    CountEach(state, count);
}

void AppendToVectors(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    for (auto _ : state) {
        Columns columns(kFields);
        for (std::int32_t i = 0; i < count; ++i) {
            for (Column& column : columns) {
                column.push_back(i);
            }
        }
        benchmark::DoNotOptimize(columns);
    }
    CountEach(state, count);
}

void InsertIntoDatabase(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(MakeDatabase(state.range(0)));
    }
    CountEach(state, static_cast<double>(state.range(0)));
}

void InsertRecords(benchmark::State& state, Place place) {
    MemoryResidentData& store = *OfSize<MakeStore>(state.range(0));
    for (auto _ : state) {
        KSDLL_InsertDbItem(store, 0, At(place, store.GetCurrentDbSize(0)));
    }
    CountEach(state, 1);
}

void InsertIntoVectors(benchmark::State& state, Place place) {
    Columns& columns = OfSize<MakeVectors>(state.range(0));
    for (auto _ : state) {
        for (Column& column : columns) {
            column.insert(column.begin() + At(place, static_cast<std::int32_t>(column.size())), 0.0);
        }
    }
    CountEach(state, 1);
}

// The bytes of all columns, one place further.
void MoveMemory(benchmark::State& state) {
    Columns& columns = OfSize<MakeVectors>(state.range(0));
    for (auto _ : state) {
        for (Column& column : columns) {
            std::memmove(column.data() + 1, column.data(), (column.size() - 1) * sizeof(double));
        }
        benchmark::ClobberMemory();
    }
    CountEach(state, 1);
}

// Takes the records away from what `make` makes of so many.
template <typename Make, typename Erase>
void MeasureErasure(benchmark::State& state, Make make, Erase erase) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const std::vector<std::int32_t> records = RecordsToErase(count);
    MeasureFresh(
        state, [&] { return make(count); }, [&](auto& subject) { erase(subject, records); });
    CountEach(state, static_cast<double>(records.size()));
}

void DeleteAsList(benchmark::State& state) {
    MeasureErasure(state, MakeStore,
                   [](const auto& store, const auto& records) { KSDLL_DeleteDbItems(*store, 0, records); });
}

void DeleteOneByOne(benchmark::State& state) {
    MeasureErasure(state, MakeStore, [](const auto& store, const auto& records) {
        std::for_each(records.rbegin(), records.rend(),
                      [&](std::int32_t record) { KSDLL_DeleteDbItem(*store, 0, record); });
    });
}

void CompactVectors(benchmark::State& state) {
    MeasureErasure(state, MakeVectors, [](Columns& columns, const auto& records) {
        std::vector<bool> erased(columns[0].size());
        for (const std::int32_t record : records) {
            erased[static_cast<std::size_t>(record)] = true;
        }
        for (Column& column : columns) {
            std::size_t kept = 0;
            for (std::size_t record = 0; record < column.size(); ++record) {
                if (!erased[record]) {
                    column[kept++] = column[record];
                }
            }
            column.resize(kept);
        }
    });
}

void EraseFromVectors(benchmark::State& state) {
    MeasureErasure(state, MakeVectors, [](Columns& columns, const auto& records) {
        for (auto record = records.rbegin(); record != records.rend(); ++record) {
            for (Column& column : columns) {
                column.erase(column.begin() + *record);
            }
        }
    });
}

void DeleteFromDatabase(benchmark::State& state) {
    MeasureErasure(state, MakeDatabase, [](const auto& database, const auto& records) {
        database->Execute("BEGIN");
        const Statement erase = database->Prepare("DELETE FROM records WHERE key = ?");
        for (const std::int32_t record : records) {
            sqlite3_bind_double(erase.get(), 1, record + 1.0);
            RunOnce(erase);
        }
        database->Execute("COMMIT");
    });
}

// The cells that stay, copied without a look at which ones go.
void CopyMemory(benchmark::State& state) {
    MeasureErasure(state, MakeVectors, [](Columns& columns, const auto& records) {
        for (Column& column : columns) {
            const std::size_t kept = column.size() - records.size();
            std::memmove(column.data(), column.data() + records.size(), kept * sizeof(double));
            column.resize(kept);
        }
    });
}

void LookUpInDatabase(benchmark::State& state) {
    Database& database = *OfSize<MakeDatabase>(state.range(0));
    const std::vector<double> keys = ShuffledNumbers(state.range(0), 1.0);
    const Statement find = database.Prepare("SELECT rowid FROM records WHERE key = ?");
    for (auto _ : state) {
        for (const double key : keys) {
            sqlite3_bind_double(find.get(), 1, key);
            sqlite3_step(find.get());
            benchmark::DoNotOptimize(sqlite3_column_int(find.get(), 0));
            sqlite3_reset(find.get());
        }
    }
    CountEach(state, static_cast<double>(keys.size()));
}

// As often as keeps making the records, which is not measured, short.
void FewRuns(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(10000)->Arg(100000)->Iterations(10);
}

void OneRun(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1000000)->Arg(5000000)->Iterations(1);
}

void UpTo100000(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(10000)->Arg(100000);
}

BENCHMARK(CreateRecords)->Apply(FewRuns);
BENCHMARK(CreateRecords)->Apply(OneRun);
BENCHMARK(AppendToVectors)->Apply(UpTo100000);
BENCHMARK(InsertIntoDatabase)->Apply(UpTo100000);
BENCHMARK_CAPTURE(InsertRecords, front, Place::Front)->Apply(GrowthSizes)->Iterations(20);
BENCHMARK_CAPTURE(InsertRecords, middle, Place::Middle)->Apply(GrowthSizes)->Iterations(20);
BENCHMARK_CAPTURE(InsertRecords, end, Place::End)->Apply(GrowthSizes)->Iterations(1000);
BENCHMARK_CAPTURE(InsertIntoVectors, front, Place::Front)->Apply(UpTo100000)->Iterations(20);
BENCHMARK_CAPTURE(InsertIntoVectors, middle, Place::Middle)->Apply(UpTo100000)->Iterations(20);
BENCHMARK_CAPTURE(InsertIntoVectors, end, Place::End)->Apply(UpTo100000)->Iterations(1000);
BENCHMARK(MoveMemory)->Apply(UpTo100000);
BENCHMARK(DeleteAsList)->Apply(FewRuns);
BENCHMARK(DeleteAsList)->Apply(OneRun);
BENCHMARK(CompactVectors)->Apply(FewRuns);
BENCHMARK(CopyMemory)->Apply(FewRuns);
BENCHMARK(DeleteFromDatabase)->Apply(FewRuns);
BENCHMARK(DeleteOneByOne)->Apply(UpTo100000)->Iterations(1);
BENCHMARK(EraseFromVectors)->Apply(UpTo100000)->Iterations(1);
BENCHMARK(LookUpInDatabase)->Apply(PeerSizes);

} // namespace
} // namespace Kestrona::Bench
