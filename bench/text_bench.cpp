// Display texts of a million cells through the shared library, field by field.
//
// "Field" reads the cell and makes its text; "Snprintf" prints the same numbers into a buffer of narrow characters.
// Every figure "each" is the time of one cell.
#include "fixtures/schema.h"
#include "measure.h"

#include <kestrona/services.h>
#include <kestrona/store.h>
#include <kestrona/value_text.h>

#include <cstdio>
#include <memory>
#include <random>

namespace {

using namespace Kestrona;
using namespace Kestrona::Bench;
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

// What a reference points at: keys from 0 on and a text.
std::int32_t AddTargets(MemoryResidentData& store) {
    const std::int32_t format =
        Fixtures::AddTable(store, L"Targets", {Fixtures::Number(L"Key"), Fixtures::Text(L"Name")}, kTargets);
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
    std::wstring substitutes;
    for (int value = 0; value < 10; ++value) {
        substitutes += L"SUBSTITUTE(" + std::to_wstring(value) + L"->\"Text of " + std::to_wstring(value) + L"\") ";
    }
    std::vector<Fixtures::Field> fields(Columns);
    fields[Formatted].classification = L"FORMAT(MAX 10.3)";
    fields[Integer].type = TypeBit::kInteger;
    fields[Date].type = TypeBit::kDateTime;
    fields[Duration].type = TypeBit::kDuration;
    fields[Substituted].classes = {Classes::kSubstitute};
    fields[Substituted].classification = substitutes;
    fields[Reference] = Fixtures::Reference(L"Reference", targets, 1);
    for (Fixtures::Field& field : fields) {
        field.classes.push_back(Classes::kExcludeFromDb);
    }
    table.format = Fixtures::AddTable(store, L"Cells", fields, kRecords);
    Fill(store, table.format);
    return table;
}

const Table& TheTable() {
    static const Table table = MakeTable();
    return table;
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
    CountEach(state, kRecords);
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
    CountEach(state, kRecords);
}

BENCHMARK_CAPTURE(Field, Real, Real)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Snprintf, Real, Real, "%.2f")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Field, Formatted, Formatted)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Snprintf, Formatted, Formatted, "%10.3f")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Field, Integer, Integer)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Snprintf, Integer, Integer, "%.0f")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Field, Date, Date)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Field, Duration, Duration)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Field, Substituted, Substituted)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Field, Reference, Reference)->Unit(benchmark::kMillisecond);

} // namespace
