// Display texts of cells through the shared library, field by field.
//
// "Field" reads the cell and makes its text; "Snprintf" and "ToChars" print the same numbers into a buffer of narrow
// characters. The argument is the number of records; "each" is the time of one cell.
#include "fixtures/schema.h"
#include "measure.h"

#include <kestrona/services.h>
#include <kestrona/store.h>
#include <kestrona/value_text.h>

#include <charconv>
#include <cstdio>
#include <memory>
#include <random>

namespace Kestrona::Bench {
namespace {

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

void Fill(MemoryResidentData& store, std::int32_t format, std::int32_t records) {
    std::mt19937 generator(1);
    const auto draw = [&](std::uint32_t bound) {
        return static_cast<double>(generator() % bound);
    };
    for (std::int32_t record = 0; record < records; ++record) {
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

Table MakeTable(std::int64_t count) {
    const auto records = static_cast<std::int32_t>(count);
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
    table.format = Fixtures::AddTable(store, L"Cells", fields, records);
    Fill(store, table.format, records);
    return table;
}

// `make` makes the text of the cell of a record.
template <typename MakeText>
void MeasureTexts(benchmark::State& state, MakeText make) {
    const Table& table = OfSize<MakeTable>(state.range(0));
    const auto records = static_cast<std::int32_t>(state.range(0));
    for (auto _ : state) {
        for (std::int32_t record = 0; record < records; ++record) {
            make(table, record);
        }
    }
    CountEach(state, static_cast<double>(records));
}

void Field(benchmark::State& state, Column column) {
    MeasureTexts(state, [&](const Table& table, std::int32_t record) {
        std::wstring text;
        KSDLL_FieldToTString(*table.store, table.format, column, record, &text);
        benchmark::DoNotOptimize(text.data());
    });
}

void Snprintf(benchmark::State& state, Column column, const char* format) {
    MeasureTexts(state, [&](const Table& table, std::int32_t record) {
        char text[64];
        std::snprintf(text, sizeof text, format, table.store->GetDbValue(table.format, column, record));
        benchmark::DoNotOptimize(text);
    });
}

void ToChars(benchmark::State& state, Column column, int decimals) {
    MeasureTexts(state, [&](const Table& table, std::int32_t record) {
        char text[64];
        const double value = table.store->GetDbValue(table.format, column, record);
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
        benchmark::DoNotOptimize(text);
    });
}

#define KS_NUMBERS(column, format, decimals)                                                                           \
    BENCHMARK_CAPTURE(Field, column, column)->Apply(PeerSizes);                                                        \
    BENCHMARK_CAPTURE(Snprintf, column, column, format)->Apply(PeerSizes);                                             \
    BENCHMARK_CAPTURE(ToChars, column, column, decimals)->Apply(PeerSizes)

KS_NUMBERS(Real, "%.2f", 2);
KS_NUMBERS(Formatted, "%10.3f", 3);
KS_NUMBERS(Integer, "%.0f", 0);
BENCHMARK_CAPTURE(Field, Real, Real)->Apply(OtherGrowthSizes);
BENCHMARK_CAPTURE(Field, Date, Date)->Apply(PeerSizes);
BENCHMARK_CAPTURE(Field, Duration, Duration)->Apply(PeerSizes);
BENCHMARK_CAPTURE(Field, Substituted, Substituted)->Apply(PeerSizes);
BENCHMARK_CAPTURE(Field, Reference, Reference)->Apply(PeerSizes);

} // namespace
} // namespace Kestrona::Bench
