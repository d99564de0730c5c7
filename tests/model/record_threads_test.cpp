// Searches of one format from several threads, beside a writer and in between writes. To be run under the thread
// sanitizer.
#include "fixtures/store_test.h"

#include <atomic>
#include <latch>
#include <thread>

namespace Kestrona::Model {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

constexpr std::int32_t kRecords = 600;
constexpr unsigned kSearchers = 3;
constexpr std::int32_t kKey = 0;
constexpr std::int32_t kGroup = 1;
constexpr std::int32_t kText = 2;

class RecordThreads : public StoreTest {
protected:
    RecordThreads() {
        AddTable(*store, L"Parts", {Number(L"Key", 1.0), Number(L"Group"), Text(L"Text")});
        for (std::int32_t i = 0; i < kRecords; ++i) {
            const std::int32_t record = KSDLL_CreateRecord(*store, 0);
            store->SetDbValue(0, kGroup, record, i % 7);
            store->SetDbString(0, kText, record, Word(i % 5));
        }
        for (const std::int32_t field : {kKey, kGroup, kText}) {
            store->AddIndexToColumn(0, field);
        }
    }

    static std::wstring Word(std::int32_t number) { return L"word " + std::to_wstring(number); }

    template <typename Condition>
    RecordNumbers Scan(Condition condition) {
        RecordNumbers records;
        for (std::int32_t record = 0; record < store->GetCurrentDbSize(0); ++record) {
            if (condition(record)) {
                records.push_back(record);
            }
        }
        return records;
    }

    // Returns how many of the searches differ from a scan.
    int SearchAll() {
        int differences = 0;
        for (std::int32_t group = 0; group < 7; ++group) {
            std::wstring text = Word(group % 5);
            std::vector<std::pair<FieldMatchCriteria, std::vector<double>>> numbers{{{kGroup}, {double(group)}}};
            std::vector<std::pair<FieldMatchCriteria, wchar_t*>> texts{{{kText}, text.data()}};
            const RecordNumbers both = Scan([&](std::int32_t record) {
                return store->GetDbValue(0, kGroup, record) == group && store->GetDbString(0, kText, record) == text;
            });
            differences += Take(KSDLL_LookupRecordsIntersect(*store, 0, numbers, texts)) != both ? 1 : 0;
            const RecordNumbers members = KSDLL_GetRecords(*store, 0, kGroup, group);
            const std::int32_t first = KSDLL_FindNextNumeric(*store, 0, kGroup, -1, group);
            differences += first != (members.empty() ? -1 : members.front()) ? 1 : 0;
            for (const std::int32_t record : members) {
                differences += store->GetDbValue(0, kGroup, record) != group ? 1 : 0;
                differences += store->LookupKeyRecord(0, store->GetDbKeyValue(0, record)) != record ? 1 : 0;
            }
            const std::unique_ptr<FindResult> words(store->DistinctRecords(0, kText));
            differences += words->Size() != 5 ? 1 : 0;
        }
        return differences;
    }

    // Returns when all of them run.
    template <typename Search>
    void StartSearchers(Search search) {
        const auto started = std::make_shared<std::latch>(kSearchers + 1);
        for (unsigned i = 0; i < kSearchers; ++i) {
            searchers.emplace_back([started, search] {
                started->arrive_and_wait();
                search();
            });
        }
        started->arrive_and_wait();
    }

    void JoinSearchers() {
        for (std::thread& searcher : searchers) {
            searcher.join();
        }
        searchers.clear();
    }

    std::mt19937 random{91};
    std::vector<std::thread> searchers;
};

// The first record is in group 0 at all times; the others change.
TEST_F(RecordThreads, SearchesRunBesideAWriter) {
    IColumn<double>& column = *store->GetDbColumn(0, kGroup);
    std::atomic<bool> done = false;
    StartSearchers([&column, &done] {
        while (!done.load()) {
            EXPECT_EQ(column.Find(0.0), 0);
            EXPECT_EQ(column.Find(-7.0), -1);
            const std::int32_t one = column.Find(1.0);
            EXPECT_TRUE(one >= -1 && one < kRecords + 10);
            const std::unique_ptr<FindResult> distinct(column.DistinctValues());
            EXPECT_FALSE(distinct->IsEmpty());
            // The records of the result belong to the index, so only the search itself may run beside a writer.
            delete column.FindAll(1.0);
            delete column.FindAll(0.5, FindOperator::GreaterThan);
        }
    });
    for (int i = 0; i < 500; ++i) {
        const auto record = static_cast<std::int32_t>(1 + random() % (kRecords - 1));
        column.SetValue(record, static_cast<double>(random() % 2));
        if (i % 100 == 99) {
            column.Erase(record, 0.0);
            column.Resize(kRecords);
        }
    }
    done = true;
    JoinSearchers();
    EXPECT_EQ(column.Find(1.0), Scan([&](std::int32_t record) { return column.GetValue(record) == 1.0; }).front());
}

// Each round the index is stale when the searches begin, and one of them builds it for all.
TEST_F(RecordThreads, SearchesAgreeWithAScanAfterRecordsCameAndWent) {
    for (int round = 0; round < 12; ++round) {
        KSDLL_DeleteDbItems(*store, 0, {1 + round, 50, 300, 301, 2 * round});
        for (int i = 0; i < 5; ++i) {
            const auto record = static_cast<std::int32_t>(random() % static_cast<unsigned>(kRecords - 10));
            KSDLL_InsertDbItem(*store, 0, record);
            store->SetDbKeyValue(0, record, 10000.0 + 10 * round + i);
            store->SetDbString(0, kText, record, Word(i));
        }
        std::atomic<int> differences = 0;
        StartSearchers([&] { differences += SearchAll(); });
        JoinSearchers();
        ASSERT_EQ(differences, 0) << "round " << round;
    }
}

} // namespace

} // namespace Kestrona::Model
