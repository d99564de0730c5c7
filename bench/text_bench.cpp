// Display texts of a million cells through the shared library, field by field.
//
// "Field" reads the cell and makes its text; "Snprintf" prints the same numbers into a buffer of narrow characters, and
// "Wformat" through a format object of the format library that is made for each number. Every figure "each" is the time
// of one cell.
#include <kestrona/classes.h>
#include <kestrona/process.h>
#include <kestrona/services.h>
#include <kestrona/store.h>
#include <kestrona/value_text.h>

#include <benchmark/benchmark.h>
#include <boost/format.hpp>

#include <cstdio>
#include <memory>
#include <random>

namespace {

using namespace Kestrona;
using namespace Kestrona::Data::MemoryResident;

constexpr std::int32_t kRecords = 1000000;
constexpr std::int32_t kTargets = 1000;

enum Column : std::int32_t {
    Key,
    Real,
    Formatted,
    Integer,
    Date,
    Duration,
    Substituted,
    Reference,
    Columns
};

class Words : public CoreMessage {
public:
    std::wstring GetMessage(std::int32_t) override { return L"Word"; }
};

std::int32_t AddFormat(MemoryResidentData& store, std::int32_t fields, std::int32_t records) {
    const std::int32_t format = store.GetFormatCount();
    store.SetFormatCount(format + 1);
    store.SetDbName(format, KSDLL_AddText((L"Format " + std::to_wstring(format)).c_str()));
    store.SetDbFields(format, fields);
    store.CreateDbFieldInfo(format, fields);
    store.SetDbKey(format, Key);
    for (std::int32_t field = 0; field < fields; ++field) {
        store.SetDbType(format, field, TypeBit::kReal);
        store.AddDbClass(format, field, Classes::kExcludeFromDb);
    }
    store.SetCurrentDbSize(format, records);
    return format;
}

void MakeColumns(MemoryResidentData& store, std::int32_t format) {
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        store.CreateDbValues(format, field);
        if (store.ClassDefined(format, field, Classes::kFreeFormat)) {
            store.CreateDbStrings(format, field);
        }
    }
}

// What a reference points at: keys from 0 on and a text.
std::int32_t AddTargets(MemoryResidentData& store) {
    const std::int32_t format = AddFormat(store, 2, kTargets);
    store.SetDbType(format, 1, TypeBit::kReference);
    store.AddDbClass(format, 1, Classes::kFreeFormat);
    MakeColumns(store, format);
    for (std::int32_t record = 0; record < kTargets; ++record) {
        store.SetDbValue(format, Key, record, record);
        store.SetDbString(format, 1, record, L"Target number " + std::to_wstring(record));
    }
    return format;
}

void Fill(MemoryResidentData& store, std::int32_t format) {
    std::mt19937 generator(1);
    const auto draw = [&](std::uint32_t bound) {
        return static_cast<double>(generator() % bound);
    };
    for (std::int32_t record = 0; record < kRecords; ++record) {
        store.SetDbValue(format, Key, record, record);
        store.SetDbValue(format, Real, record, draw(100000000) / 1000.0);
        store.SetDbValue(format, Formatted, record, draw(100000000) / 1000.0);
        store.SetDbValue(format, Integer, record, draw(100000000));
        store.SetDbValue(format, Date, record, 40000.0 + draw(10000000) / 1440.0);
        store.SetDbValue(format, Duration, record, draw(100000) / 1440.0);
        store.SetDbValue(format, Substituted, record, draw(10));
        store.SetDbValue(format, Reference, record, draw(kTargets));
    }
}

struct Table {
    std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
    std::int32_t format = -1;
};

Table MakeTable() {
    MessageManager::setInstance(new Words);
    Table table;
    MemoryResidentData& store = *table.store;
    const std::int32_t targets = AddTargets(store);
    table.format = AddFormat(store, Columns, kRecords);
    store.SetDbClassString(table.format, Formatted, L"FORMAT(MAX 10.3)");
    store.SetDbType(table.format, Integer, TypeBit::kInteger);
    store.SetDbType(table.format, Date, TypeBit::kDateTime);
    store.SetDbType(table.format, Duration, TypeBit::kDuration);
    store.AddDbClass(table.format, Substituted, Classes::kSubstitute);
    std::wstring substitutes;
    for (int value = 0; value < 10; ++value) {
        substitutes += L"SUBSTITUTE(" + std::to_wstring(value) + L"->\"Text of " + std::to_wstring(value) + L"\") ";
    }
    store.SetDbClassString(table.format, Substituted, substitutes);
    store.SetDbType(table.format, Reference, TypeBit::kReference);
    store.AddDbClass(table.format, Reference, Classes::kDatabase);
    store.SetDbTable(table.format, Reference, targets);
    store.SetDbSource(table.format, Reference, 1);
    MakeColumns(store, table.format);
    Fill(store, table.format);
    return table;
}

const Table& TheTable() {
    static const Table table = MakeTable();
    return table;
}

void CountCells(benchmark::State& state, std::int32_t cells) {
    state.counters["each"] =
        benchmark::Counter(cells, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void Field(benchmark::State& state, Column column) {
    const Table& table = TheTable();
    for (auto _ : state) {
        for (std::int32_t record = 0; record < kRecords; ++record) {
            std::wstring text;
            KSDLL_FieldToTString(*table.store, table.format, column, record, &text);
            benchmark::DoNotOptimize(text.data());
        }
    }
    CountCells(state, kRecords);
}

void Snprintf(benchmark::State& state, Column column, const char* format) {
    const Table& table = TheTable();
    for (auto _ : state) {
        for (std::int32_t record = 0; record < kRecords; ++record) {
            char text[64];
            std::snprintf(text, sizeof text, format, table.store->GetDbValue(table.format, column, record));
            benchmark::DoNotOptimize(text);
        }
    }
    CountCells(state, kRecords);
}

void Wformat(benchmark::State& state, Column column, const wchar_t* format) {
    constexpr std::int32_t kCells = kRecords / 10;
    const Table& table = TheTable();
    for (auto _ : state) {
        for (std::int32_t record = 0; record < kCells; ++record) {
            const std::wstring text =
                (boost::wformat(format) % table.store->GetDbValue(table.format, column, record)).str();
            benchmark::DoNotOptimize(text.data());
        }
    }
    CountCells(state, kCells);
}

BENCHMARK_CAPTURE(Field, Real, Real)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Snprintf, Real, Real, "%.2f")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Wformat, Real, Real, L"%.2lf")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Field, Formatted, Formatted)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Snprintf, Formatted, Formatted, "%10.3f")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Wformat, Formatted, Formatted, L"%10.3lf")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Field, Integer, Integer)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Snprintf, Integer, Integer, "%.0f")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Wformat, Integer, Integer, L"%.0lf")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Field, Date, Date)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Field, Duration, Duration)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Field, Substituted, Substituted)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Field, Reference, Reference)->Unit(benchmark::kMillisecond);

} // namespace
