// Searches of one format from several threads, with a writer in between. To be run under the thread sanitizer.
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

} // namespace

} // namespace Kestrona::Model
