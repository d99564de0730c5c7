// Searches of one format from several threads, with a writer in between. To be run under the thread sanitizer.
#include "fixtures/recording_services.h"
#include "fixtures/schema.h"

#include <kestrona/record_search.h>
#include <kestrona/records.h>
#include <kestrona/store.h>

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <memory>
#include <random>
#include <thread>
#include <vector>

namespace Kestrona::Model {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

constexpr std::int32_t kRecords = 600;
constexpr unsigned kSearchers = 3;
constexpr std::int32_t kKey = 0;
constexpr std::int32_t kGroup = 1;
constexpr std::int32_t kText = 2;

class RecordThreads : public testing::Test {
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

    // Every search of one number and one text, by scanning the cells.
    RecordNumbers Scan(double group, const std::wstring& text) {
        RecordNumbers records;
        for (std::int32_t record = 0; record < store->GetCurrentDbSize(0); ++record) {
            if (store->GetDbValue(0, kGroup, record) == group && store->GetDbString(0, kText, record) == text) {
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
            const std::unique_ptr<FindResult> found(KSDLL_LookupRecordsIntersect(*store, 0, numbers, texts));
            differences += RecordNumbers(found->begin(), found->end()) != Scan(group, text) ? 1 : 0;
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

    FreshProcess process;
    std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
    std::mt19937 random{91};
};

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
        std::latch started(kSearchers);
        std::vector<std::thread> searchers;
        for (unsigned i = 0; i < kSearchers; ++i) {
            searchers.emplace_back([&] {
                started.arrive_and_wait();
                differences += SearchAll();
            });
        }
        for (std::thread& searcher : searchers) {
            searcher.join();
        }
        ASSERT_EQ(differences, 0) << "round " << round;
    }
}

// Group 0 is that of record 0 all the time, and every key stays where it is.
TEST_F(RecordThreads, SearchesRunBesideAWriter) {
    std::atomic<bool> done = false;
    std::atomic<int> differences = 0;
    std::latch started(kSearchers);
    std::vector<std::thread> searchers;
    for (unsigned i = 0; i < kSearchers; ++i) {
        searchers.emplace_back([&, i] {
            std::mt19937 own(i);
            started.count_down();
            while (!done) {
                const auto record = static_cast<std::int32_t>(own() % kRecords);
                differences += store->LookupKeyRecord(0, record + 1.0) != record ? 1 : 0;
                differences += KSDLL_GetRecordNumberFromPrimaryKey(*store, 0, -5.0) != -1 ? 1 : 0;
                // The records of a result belong to the index, so only the search itself may run beside a writer.
                delete store->LookupRecords(0, kGroup, 3.0, FindOperator::Equal);
                delete store->LookupRecords(0, kGroup, 3.0, FindOperator::LessThan);
                delete store->LookupRecords(0, kText, L"word 1", FindOperator::Equal);
            }
        });
    }
    started.wait();
    for (int i = 0; i < 1500; ++i) {
        const auto record = static_cast<std::int32_t>(1 + random() % (kRecords - 1));
        store->SetDbValue(0, kGroup, record, static_cast<double>(random() % 7));
        store->SetDbString(0, kText, record, Word(static_cast<std::int32_t>(random() % 5)));
        store->SetDbKeyValue(0, record, record + 1.0);
    }
    done = true;
    for (std::thread& searcher : searchers) {
        searcher.join();
    }
    EXPECT_EQ(differences, 0);
    EXPECT_EQ(SearchAll(), 0);
}

} // namespace

} // namespace Kestrona::Model
