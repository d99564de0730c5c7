// Sorting records to a list, beside std::stable_sort on keys that were taken out of the store, and SQLite's ORDER BY in
// memory over the same values. The argument is the number of records; "each" is the time of one.
//
// "Extracted" takes the keys and sorts them. For free texts the keys are ICU sort keys: "IcuKeys" makes and sorts them,
// "IcuKeysMade" sorts keys made beforehand.
#include <kestrona/classes.h>
#include <kestrona/process.h>
#include <kestrona/sorting.h>
#include <kestrona/store.h>
#include <kestrona/unicode.h>
#include <kestrona/value_text.h>

#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unicode/ucol.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using namespace Kestrona;
using namespace Kestrona::Data::MemoryResident;

constexpr std::int32_t kProducts = 0;
constexpr std::int32_t kOrders = 1;
constexpr std::int32_t kProductCount = 1000;

// The fields of the orders; a product has a key and a name.
enum OrderField : std::int32_t {
    kKey,
    kQuantity,
    kPriority,
    kProduct,
    kNote,
    kFieldCount
};

constexpr std::int32_t kName = 1;
constexpr const char* kLocale = "en_US";
constexpr const wchar_t* kWords[] = {L"Pillar", L"taper", L"Votive", L"lantern", L"Crème", L"ivory", L"Red", L"honey"};

std::wstring RandomText(std::mt19937& random) {
    return std::wstring(kWords[random() % std::size(kWords)]) + L' ' + kWords[random() % std::size(kWords)] + L' ' +
           std::to_wstring(random() % 100000);
}

void Declare(MemoryResidentData& store, std::int32_t format, const wchar_t* name, std::int32_t fields) {
    store.SetFormatCount(format + 1);
    store.SetDbName(format, KSDLL_AddText(name));
    store.SetDbFields(format, fields);
    store.CreateDbFieldInfo(format, fields);
    store.SetDbKey(format, kKey);
}

void MakeText(MemoryResidentData& store, std::int32_t format, std::int32_t field) {
    store.SetDbType(format, field, TypeBit::kReference);
    store.AddDbClass(format, field, Classes::kFreeFormat);
    store.CreateDbValues(format, field);
    store.CreateDbStrings(format, field);
}

void MakeNumbers(MemoryResidentData& store, std::int32_t format, std::int32_t field, std::uint32_t type) {
    store.SetDbType(format, field, type);
    store.CreateDbValues(format, field);
}

// Orders in no order.
class Plant {
public:
    explicit Plant(std::int32_t records) : records_(records), store_(CreateMemoryResidentData()) {
        Declare(*store_, kProducts, L"Products", 2);
        MakeNumbers(*store_, kProducts, kKey, TypeBit::kInteger);
        MakeText(*store_, kProducts, kName);
        Declare(*store_, kOrders, L"Orders", kFieldCount);
        MakeNumbers(*store_, kOrders, kKey, TypeBit::kInteger);
        MakeNumbers(*store_, kOrders, kQuantity, TypeBit::kReal);
        MakeNumbers(*store_, kOrders, kPriority, TypeBit::kInteger);
        MakeNumbers(*store_, kOrders, kProduct, TypeBit::kReference);
        store_->AddDbClass(kOrders, kProduct, Classes::kDatabase);
        store_->SetDbTable(kOrders, kProduct, kProducts);
        store_->SetDbSource(kOrders, kProduct, kName);
        MakeText(*store_, kOrders, kNote);
        Fill();
    }

    [[nodiscard]] MemoryResidentData& Store() const { return *store_; }

    [[nodiscard]] std::int32_t Records() const { return records_; }

    [[nodiscard]] double Number(OrderField field, std::int32_t record) const {
        return store_->GetDbValue(kOrders, field, record);
    }

private:
    void Fill() {
        std::mt19937 random(23);
        store_->SetCurrentDbSize(kProducts, kProductCount);
        for (std::int32_t product = 0; product < kProductCount; ++product) {
            store_->SetDbValue(kProducts, kKey, product, product + 1.0);
            store_->SetDbString(kProducts, kName, product, RandomText(random));
        }
        store_->AddIndexToColumn(kProducts, kKey);
        store_->SetCurrentDbSize(kOrders, records_);
        for (std::int32_t record = 0; record < records_; ++record) {
            store_->SetDbValue(kOrders, kKey, record, record + 1.0);
            store_->SetDbValue(kOrders, kQuantity, record, static_cast<double>(random()) / 1000.0);
            store_->SetDbValue(kOrders, kPriority, record, static_cast<double>(random() % 100));
            store_->SetDbValue(kOrders, kProduct, record, 1.0 + static_cast<double>(random() % kProductCount));
            store_->SetDbString(kOrders, kNote, record, RandomText(random));
        }
    }

    std::int32_t records_;
    std::unique_ptr<MemoryResidentData> store_;
};

const Plant& DataOf(const benchmark::State& state) {
    static std::unique_ptr<Plant> data;
    const auto records = static_cast<std::int32_t>(state.range(0));
    if (!data || data->Records() != records) {
        data.reset();
        data = std::make_unique<Plant>(records);
    }
    return *data;
}

void Report(benchmark::State& state) {
    state.counters["each"] =
        benchmark::Counter(static_cast<double>(state.range(0)),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void Sort(benchmark::State& state, std::vector<SortDetails> details) {
    const Plant& data = DataOf(state);
    std::vector<std::int32_t> records;
    for (auto _ : state) {
        KSDLL_SortToVector(data.Store(), kOrders, details, records);
        benchmark::DoNotOptimize(records.data());
    }
    Report(state);
}

// `key_of` gives the key of a record; the records follow in the order of their keys.
template <typename KeyOf>
void SortExtracted(benchmark::State& state, KeyOf key_of) {
    const Plant& data = DataOf(state);
    std::vector<std::int32_t> records(static_cast<std::size_t>(data.Records()));
    for (auto _ : state) {
        std::vector<std::pair<decltype(key_of(data, 0)), std::int32_t>> keys;
        keys.reserve(records.size());
        for (std::int32_t record = 0; record < data.Records(); ++record) {
            keys.emplace_back(key_of(data, record), record);
        }
        std::ranges::stable_sort(
            keys, {}, [](const auto& key) -> const auto& { return key.first; });
        std::ranges::transform(keys, records.begin(), [](const auto& key) { return key.second; });
        benchmark::DoNotOptimize(records.data());
    }
    Report(state);
}

struct CloseCollator {
    void operator()(UCollator* collator) const { ucol_close(collator); }
};

std::string MakeIcuKey(const UCollator& collator, const std::wstring& text) {
    const std::u16string units = ToUtf16(text);
    std::string key(units.size() * 4 + 16, '\0');
    key.resize(static_cast<std::size_t>(
        ucol_getSortKey(&collator, units.data(), static_cast<std::int32_t>(units.size()),
                        reinterpret_cast<std::uint8_t*>(key.data()), static_cast<std::int32_t>(key.size()))));
    return key;
}

std::unique_ptr<UCollator, CloseCollator> OpenCollator() {
    UErrorCode error = U_ZERO_ERROR;
    std::unique_ptr<UCollator, CloseCollator> collator(ucol_open(kLocale, &error));
    ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, UCOL_ON, &error);
    if (U_FAILURE(error) != 0) {
        throw std::runtime_error(u_errorName(error));
    }
    return collator;
}

class Database {
public:
    explicit Database(const Plant& data) {
        Check(sqlite3_open(":memory:", &handle_));
        Execute("create table products (key integer primary key, name text)");
        Execute("create table orders (key integer primary key, quantity real, priority real, product integer, "
                "note text)");
        Execute("begin");
        MemoryResidentData& store = data.Store();
        sqlite3_stmt* insert = Prepare("insert into products values (?, ?)");
        for (std::int32_t product = 0; product < kProductCount; ++product) {
            sqlite3_bind_int(insert, 1, product + 1);
            BindText(insert, 2, store.GetDbString(kProducts, kName, product));
            Step(insert);
        }
        sqlite3_finalize(insert);
        insert = Prepare("insert into orders values (?, ?, ?, ?, ?)");
        for (std::int32_t record = 0; record < data.Records(); ++record) {
            for (const OrderField field : {kKey, kQuantity, kPriority, kProduct}) {
                sqlite3_bind_double(insert, 1 + field, data.Number(field, record));
            }
            BindText(insert, 1 + kNote, store.GetDbString(kOrders, kNote, record));
            Step(insert);
        }
        sqlite3_finalize(insert);
        Execute("commit");
    }

    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    ~Database() { sqlite3_close(handle_); }

    sqlite3_stmt* Prepare(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        Check(sqlite3_prepare_v2(handle_, sql.c_str(), -1, &statement, nullptr));
        return statement;
    }

private:
    static void BindText(sqlite3_stmt* statement, int place, const std::wstring& text) {
        sqlite3_bind_text(statement, place, ToUtf8(text).c_str(), -1, SQLITE_TRANSIENT);
    }

    static void Step(sqlite3_stmt* statement) {
        sqlite3_step(statement);
        sqlite3_reset(statement);
    }

    static void Check(int code) {
        if (code != SQLITE_OK) {
            throw std::runtime_error(sqlite3_errstr(code));
        }
    }

    void Execute(const char* sql) { Check(sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr)); }

    sqlite3* handle_ = nullptr;
};

void Select(benchmark::State& state, const char* order) {
    Database database(DataOf(state));
    sqlite3_stmt* const select = database.Prepare(std::string("select orders.key from orders ") + order);
    for (auto _ : state) {
        std::int64_t sum = 0;
        while (sqlite3_step(select) == SQLITE_ROW) {
            sum += sqlite3_column_int64(select, 0);
        }
        sqlite3_reset(select);
        benchmark::DoNotOptimize(sum);
    }
    sqlite3_finalize(select);
    Report(state);
}

void NumberSort(benchmark::State& state) {
    Sort(state, {{kQuantity, true}});
}

void NumberExtracted(benchmark::State& state) {
    SortExtracted(state, [](const Plant& data, std::int32_t record) { return data.Number(kQuantity, record); });
}

void NumberSqlite(benchmark::State& state) {
    Select(state, "order by quantity");
}

void TwoColumnsSort(benchmark::State& state) {
    Sort(state, {{kPriority, true}, {kQuantity, true}});
}

void TwoColumnsExtracted(benchmark::State& state) {
    SortExtracted(state, [](const Plant& data, std::int32_t record) {
        return std::pair(data.Number(kPriority, record), data.Number(kQuantity, record));
    });
}

void TwoColumnsSqlite(benchmark::State& state) {
    Select(state, "order by priority, quantity");
}

void ReferenceTextSort(benchmark::State& state) {
    Sort(state, {{kProduct, true}});
}

void ReferenceTextExtracted(benchmark::State& state) {
    SortExtracted(state, [](const Plant& data, std::int32_t record) {
        return KSDLL_FieldToTString(data.Store(), kOrders, kProduct, record);
    });
}

void ReferenceTextSqlite(benchmark::State& state) {
    Select(state, "join products on products.key = orders.product order by products.name");
}

void FreeTextSort(benchmark::State& state) {
    Sort(state, {{kNote, true}});
}

void FreeTextIcuKeys(benchmark::State& state) {
    const auto collator = OpenCollator();
    SortExtracted(state, [&](const Plant& data, std::int32_t record) {
        return MakeIcuKey(*collator, data.Store().GetDbString(kOrders, kNote, record));
    });
}

void FreeTextIcuKeysMade(benchmark::State& state) {
    const auto collator = OpenCollator();
    const Plant& data = DataOf(state);
    std::vector<std::pair<std::string, std::int32_t>> made;
    for (std::int32_t record = 0; record < data.Records(); ++record) {
        made.emplace_back(MakeIcuKey(*collator, data.Store().GetDbString(kOrders, kNote, record)), record);
    }
    for (auto _ : state) {
        std::vector<const std::pair<std::string, std::int32_t>*> sorted(made.size());
        std::ranges::transform(made, sorted.begin(), [](const auto& key) { return &key; });
        std::ranges::stable_sort(sorted, {}, [](const auto* key) -> const std::string& { return key->first; });
        benchmark::DoNotOptimize(sorted.data());
    }
    Report(state);
}

void FreeTextSqlite(benchmark::State& state) {
    Select(state, "order by note");
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Unit(benchmark::kMillisecond)->Arg(10000)->Arg(100000)->Arg(1000000);
}

BENCHMARK(NumberSort)->Apply(Sizes);
BENCHMARK(NumberExtracted)->Apply(Sizes);
BENCHMARK(NumberSqlite)->Apply(Sizes);
BENCHMARK(TwoColumnsSort)->Apply(Sizes);
BENCHMARK(TwoColumnsExtracted)->Apply(Sizes);
BENCHMARK(TwoColumnsSqlite)->Apply(Sizes);
BENCHMARK(ReferenceTextSort)->Apply(Sizes);
BENCHMARK(ReferenceTextExtracted)->Apply(Sizes);
BENCHMARK(ReferenceTextSqlite)->Apply(Sizes);
BENCHMARK(FreeTextSort)->Apply(Sizes);
BENCHMARK(FreeTextIcuKeys)->Apply(Sizes);
BENCHMARK(FreeTextIcuKeysMade)->Apply(Sizes);
BENCHMARK(FreeTextSqlite)->Apply(Sizes);

} // namespace
