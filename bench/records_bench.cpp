// Records that come and go, beside plain vectors and SQLite in memory that do the same. Every peer runs in the same
// program, so compare the ratios of one run. "each" is the time of one record.
#include "fixtures/schema.h"
#include "measure.h"
#include "sqlite_database.h"

#include <kestrona/process.h>
#include <kestrona/records.h>
#include <kestrona/store.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace Kestrona;
using namespace Kestrona::Bench;
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
    std::vector<Fixtures::Field> fields(kFields);
    fields[0].default_value = 1.0;
    Fixtures::AddTable(*store, L"Records", fields, records);
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

// The same records in a table with an index over the key.
std::unique_ptr<Database> MakeDatabase(std::int32_t records) {
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
            sqlite3_bind_double(insert.get(), field + 1, ValueAt(field, record));
        }
        RunOnce(insert);
    }
    database->Execute("COMMIT");
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
            for (std::vector<double>& column : columns) {
                column.push_back(i);
            }
        }
        benchmark::DoNotOptimize(columns);
    }
    CountEach(state, count);
}

void InsertRecords(benchmark::State& state, Place place) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const auto store = MakeStore(count);
    for (auto _ : state) {
        KSDLL_InsertDbItem(*store, 0, At(place, store->GetCurrentDbSize(0)));
    }
    CountEach(state, 1);
}

void InsertIntoVectors(benchmark::State& state, Place place) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    Columns columns = MakeColumns(count);
    for (auto _ : state) {
        for (std::vector<double>& column : columns) {
            column.insert(column.begin() + At(place, static_cast<std::int32_t>(column.size())), 0.0);
        }
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
    MeasureErasure(state, MakeColumns, [](Columns& columns, const auto& records) {
        std::vector<bool> erased(columns[0].size());
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
    });
}

void EraseFromVectors(benchmark::State& state) {
    MeasureErasure(state, MakeColumns, [](Columns& columns, const auto& records) {
        for (auto record = records.rbegin(); record != records.rend(); ++record) {
            for (std::vector<double>& column : columns) {
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
    CountEach(state, count);
}

void LookUpInDatabase(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const std::unique_ptr<Database> database = MakeDatabase(count);
    const std::vector<double> keys = ShuffledKeys(count);
    const Statement find = database->Prepare("SELECT rowid FROM records WHERE key = ?");
    for (auto _ : state) {
        for (const double key : keys) {
            sqlite3_bind_double(find.get(), 1, key);
            sqlite3_step(find.get());
            benchmark::DoNotOptimize(sqlite3_column_int(find.get(), 0));
            sqlite3_reset(find.get());
        }
    }
    CountEach(state, count);
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
