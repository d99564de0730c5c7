// Sorting records to a list, beside std::stable_sort on keys that were taken out of the store, and SQLite's ORDER BY in
// memory over the same values. The argument is the number of records; "each" is the time of one.
//
// "Extracted" takes the keys and sorts them; "Radix" only distributes the bits of keys that are already there. For free
// texts the keys are ICU sort keys: "IcuKeys" makes and sorts them, "IcuKeysMade" sorts keys made beforehand.
#include "fixtures/schema.h"
#include "measure.h"
#include "sqlite_database.h"

#include <kestrona/sorting.h>
#include <kestrona/store.h>
#include <kestrona/unicode.h>
#include <kestrona/value_text.h>

#include <unicode/ucol.h>

#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace Kestrona::Bench {
namespace {

constexpr std::int32_t kProducts = 0;
constexpr std::int32_t kOrders = 1;
constexpr std::int32_t kProductCount = 1000;

// The fields of the orders; a product has a key and a name.
enum OrderField : std::int32_t {
    kKey,
    kQuantity,
    kPriority,
    kProduct,
    kNote
};

constexpr std::int32_t kName = 1;
constexpr const char* kLocale = "en_US";
constexpr const wchar_t* kWords[] = {L"Pillar", L"taper", L"Votive", L"lantern", L"Crème", L"ivory", L"Red", L"honey"};

std::wstring RandomText(std::mt19937& random) {
    return std::wstring(kWords[random() % std::size(kWords)]) + L' ' + kWords[random() % std::size(kWords)] + L' ' +
           std::to_wstring(random() % 100000);
}

// Orders in no order.
class Plant {
public:
    explicit Plant(std::int32_t records) : records_(records), store_(CreateMemoryResidentData()) {
        using namespace Fixtures;
        AddTable(*store_, L"Products", {Integer(L"Key"), Text(L"Name")}, kProductCount);
        AddTable(*store_, L"Orders",
                 {Integer(L"Key"), Fixtures::Number(L"Quantity"), Integer(L"Priority"),
                  Reference(L"Product", kProducts, kName), Text(L"Note")},
                 records_);
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
        for (std::int32_t product = 0; product < kProductCount; ++product) {
            store_->SetDbValue(kProducts, kKey, product, product + 1.0);
            store_->SetDbString(kProducts, kName, product, RandomText(random));
        }
        store_->AddIndexToColumn(kProducts, kKey);
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

std::unique_ptr<Plant> MakePlant(std::int64_t records) {
    return std::make_unique<Plant>(static_cast<std::int32_t>(records));
}

const Plant& DataOf(const benchmark::State& state) {
    return *OfSize<MakePlant>(state.range(0));
}

void Sort(benchmark::State& state, std::vector<SortDetails> details) {
    const Plant& data = DataOf(state);
    std::vector<std::int32_t> records;
    for (auto _ : state) {
        KSDLL_SortToVector(data.Store(), kOrders, details, records);
        benchmark::DoNotOptimize(records.data());
    }
    CountEach(state, static_cast<double>(state.range(0)));
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
    CountEach(state, static_cast<double>(state.range(0)));
}

using RadixKey = std::pair<std::uint64_t, std::int32_t>;

constexpr std::uint64_t kRadixBits = 11;
constexpr std::uint64_t kRadixMask = (std::uint64_t{1} << kRadixBits) - 1;

// One round over some bits of the keys, which keeps the order of those that agree in them.
void Distribute(const std::vector<RadixKey>& from, std::vector<RadixKey>& to, std::uint64_t shift) {
    std::array<std::size_t, kRadixMask + 2> starts{};
    for (const RadixKey& key : from) {
        ++starts[((key.first >> shift) & kRadixMask) + 1];
    }
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    for (const RadixKey& key : from) {
        to[starts[(key.first >> shift) & kRadixMask]++] = key;
    }
}

// Sorts by numbers that are not negative, whose bits have their order; the last field first.
void SortByRadix(benchmark::State& state, const std::vector<OrderField>& fields) {
    const Plant& data = DataOf(state);
    std::vector<std::vector<std::uint64_t>> bits;
    for (const OrderField field : fields) {
        std::vector<std::uint64_t> of_field;
        of_field.reserve(static_cast<std::size_t>(data.Records()));
        for (std::int32_t record = 0; record < data.Records(); ++record) {
            of_field.push_back(std::bit_cast<std::uint64_t>(data.Number(field, record)));
        }
        bits.push_back(std::move(of_field));
    }
    for (auto _ : state) {
        std::vector<RadixKey> keys(bits[0].size());
        std::vector<RadixKey> other(keys.size());
        for (std::size_t i = 0; i < keys.size(); ++i) {
            keys[i].second = static_cast<std::int32_t>(i);
        }
        for (const std::vector<std::uint64_t>& of_field : bits) {
            for (RadixKey& key : keys) {
                key.first = of_field[static_cast<std::size_t>(key.second)];
            }
            for (std::uint64_t shift = 0; shift < 64; shift += kRadixBits) {
                Distribute(keys, other, shift);
                keys.swap(other);
            }
        }
        benchmark::DoNotOptimize(keys.data());
    }
    CountEach(state, static_cast<double>(state.range(0)));
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

void BindText(const Statement& statement, int place, const std::wstring& text) {
    sqlite3_bind_text(statement.get(), place, ToUtf8(text).c_str(), -1, SQLITE_TRANSIENT);
}

void FillDatabase(Database& database, const Plant& data) {
    database.Execute("create table products (key integer primary key, name text);"
                     "create table orders (key integer primary key, quantity real, priority real, product integer, "
                     "note text); begin");
    const Statement products = database.Prepare("insert into products values (?, ?)");
    for (std::int32_t product = 0; product < kProductCount; ++product) {
        sqlite3_bind_int(products.get(), 1, product + 1);
        BindText(products, 2, data.Store().GetDbString(kProducts, kName, product));
        RunOnce(products);
    }
    const Statement orders = database.Prepare("insert into orders values (?, ?, ?, ?, ?)");
    for (std::int32_t record = 0; record < data.Records(); ++record) {
        for (const OrderField field : {kKey, kQuantity, kPriority, kProduct}) {
            sqlite3_bind_double(orders.get(), 1 + field, data.Number(field, record));
        }
        BindText(orders, 1 + kNote, data.Store().GetDbString(kOrders, kNote, record));
        RunOnce(orders);
    }
    database.Execute("commit");
}

void Select(benchmark::State& state, const char* order) {
    Database database;
    FillDatabase(database, DataOf(state));
    const Statement select = database.Prepare(std::string("select orders.key from orders ") + order);
    for (auto _ : state) {
        std::int64_t sum = 0;
        while (sqlite3_step(select.get()) == SQLITE_ROW) {
            sum += sqlite3_column_int64(select.get(), 0);
        }
        sqlite3_reset(select.get());
        benchmark::DoNotOptimize(sum);
    }
    CountEach(state, static_cast<double>(state.range(0)));
}

void NumberSort(benchmark::State& state) {
    Sort(state, {{kQuantity, true}});
}

void NumberExtracted(benchmark::State& state) {
    SortExtracted(state, [](const Plant& data, std::int32_t record) { return data.Number(kQuantity, record); });
}

void NumberRadix(benchmark::State& state) {
    SortByRadix(state, {kQuantity});
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

void TwoColumnsRadix(benchmark::State& state) {
    SortByRadix(state, {kQuantity, kPriority});
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
    made.reserve(static_cast<std::size_t>(data.Records()));
    for (std::int32_t record = 0; record < data.Records(); ++record) {
        made.emplace_back(MakeIcuKey(*collator, data.Store().GetDbString(kOrders, kNote, record)), record);
    }
    for (auto _ : state) {
        std::vector<const std::pair<std::string, std::int32_t>*> sorted(made.size());
        std::ranges::transform(made, sorted.begin(), [](const auto& key) { return &key; });
        std::ranges::stable_sort(sorted, {}, [](const auto* key) -> const std::string& { return key->first; });
        benchmark::DoNotOptimize(sorted.data());
    }
    CountEach(state, static_cast<double>(state.range(0)));
}

void FreeTextSqlite(benchmark::State& state) {
    Select(state, "order by note");
}

BENCHMARK(NumberSort)->Apply(GrowthSizes);
BENCHMARK(TwoColumnsSort)->Apply(GrowthSizes);
BENCHMARK(ReferenceTextSort)->Apply(GrowthSizes);
BENCHMARK(FreeTextSort)->Apply(GrowthSizes);
BENCHMARK(NumberExtracted)->Apply(PeerSizes);
BENCHMARK(NumberRadix)->Apply(PeerSizes);
BENCHMARK(NumberSqlite)->Apply(PeerSizes);
BENCHMARK(TwoColumnsExtracted)->Apply(PeerSizes);
BENCHMARK(TwoColumnsRadix)->Apply(PeerSizes);
BENCHMARK(TwoColumnsSqlite)->Apply(PeerSizes);
BENCHMARK(ReferenceTextExtracted)->Apply(PeerSizes);
BENCHMARK(ReferenceTextSqlite)->Apply(PeerSizes);
BENCHMARK(FreeTextIcuKeys)->Apply(PeerSizes);
BENCHMARK(FreeTextIcuKeysMade)->Apply(PeerSizes);
BENCHMARK(FreeTextSqlite)->Apply(PeerSizes);

} // namespace
} // namespace Kestrona::Bench
