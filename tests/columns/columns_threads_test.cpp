// Searches on one index from several threads, with a writer in between. To be run under the thread sanitizer.

#include <kestrona/concrete_columns.h>
#include <kestrona/indexed_column.h>

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <memory>
#include <random>
#include <thread>
#include <vector>

namespace Kestrona::Testing {
namespace {

using namespace Kestrona::Data::MemoryResident;

constexpr std::int32_t kRecords = 4000;
constexpr int kSearchers = 3;

// The lowest record of value 0 is 0 at all times; the others change.
std::unique_ptr<IColumn<double>> MakeColumn() {
    auto column = std::make_unique<DoubleColumn>(new NullRecordStateStrategy, 0.0);
    for (std::int32_t i = 0; i < kRecords; ++i) {
        column->SetValue(i, i % 2);
    }
    return std::unique_ptr<IColumn<double>>(column.release()->CreateIndexedColumn());
}

void Search(IColumn<double>& column, unsigned seed, std::latch& started, std::atomic<bool>& done) {
    std::mt19937 random(seed);
    started.count_down();
    while (!done.load()) {
        EXPECT_EQ(column.Find(0.0), 0);
        EXPECT_EQ(column.Find(-7.0), -1);
        const std::int32_t one = column.Find(1.0);
        EXPECT_TRUE(one >= -1 && one < kRecords + 10);
        if (random() % 8 == 0) {
            const std::unique_ptr<FindResult> distinct(column.DistinctValues());
            EXPECT_FALSE(distinct->IsEmpty());
        }
        if (random() % 8 == 0) {
            // The records of the result belong to the index, so only the search itself may run beside a writer.
            delete column.FindAll(1.0);
            delete column.FindAll(0.5, FindOperator::GreaterThan);
        }
    }
}

TEST(IndexedColumnThreads, SearchesRunBesideAWriter) {
    const auto column = MakeColumn();
    std::atomic<bool> done = false;
    std::latch started(kSearchers);
    std::vector<std::thread> searchers;
    for (unsigned i = 0; i < kSearchers; ++i) {
        searchers.emplace_back([&, i] { Search(*column, i, started, done); });
    }
    started.wait();
    std::mt19937 random(77);
    for (int i = 0; i < 2000; ++i) {
        const auto record = static_cast<std::int32_t>(1 + random() % (kRecords - 1));
        column->SetValue(record, static_cast<double>(random() % 2));
        if (i % 500 == 499) {
            column->Erase(record, 0.0);
            column->Resize(kRecords);
        }
    }
    done = true;
    for (std::thread& searcher : searchers) {
        searcher.join();
    }
    std::int32_t first = 1;
    while (column->GetValue(first) != 1.0) {
        ++first;
    }
    EXPECT_EQ(column->Find(1.0), first);
}

// Writes are over before the searches begin: then views may be walked, also while another search settles its set.
TEST(IndexedColumnThreads, ResultsCanBeWalkedBesideOtherSearches) {
    const auto column = MakeColumn();
    std::mt19937 random(78);
    for (int round = 0; round < 20; ++round) {
        EXPECT_EQ(column->Find(0.0), 0);
        for (int i = 0; i < 200; ++i) {
            column->SetValue(static_cast<std::int32_t>(1 + random() % (kRecords - 1)),
                             static_cast<double>(random() % 3));
        }
        std::atomic<std::size_t> found = 0;
        std::vector<std::thread> searchers;
        for (int i = 0; i < kSearchers; ++i) {
            searchers.emplace_back([&] {
                for (const double value : {0.0, 1.0, 2.0}) {
                    const std::unique_ptr<FindResult> records(column->FindAll(value));
                    for (const std::int32_t record : *records) {
                        found += column->GetValue(record) == value ? 1 : 0;
                    }
                }
            });
        }
        for (std::thread& searcher : searchers) {
            searcher.join();
        }
        EXPECT_EQ(found, static_cast<std::size_t>(kSearchers) * kRecords);
    }
}

} // namespace
} // namespace Kestrona::Testing
