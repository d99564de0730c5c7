// Records that go: KSDLL_DeleteDbItem, KSDLL_DeleteDbItems, EraseDbRow, EraseDbRows, and what follows them.
#include "fixtures/store_test.h"

#include <kestrona/host_settings.h>

#include <functional>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

using Records = std::vector<std::int32_t>;

using Deletion = StoreTest;

TEST_F(Deletion, OneAndManyTakeTheSameRowsWhateverTheNumbers) {
    struct Case {
        Records records;
        Doubles left;
        std::int32_t count_one_by_one;
    };

    for (const auto& [records, left, count] :
         {Case{{0}, {2, 3, 4, 5, 6}, 5},
          {{5}, {1, 2, 3, 4, 5}, 5},
          {{1, 3}, {1, 3, 5, 6}, 4},
          {{3, 1, 3, 1}, {1, 3, 5, 6}, 4},
          {{5, 4, 3, 2, 1, 0}, {}, 0},
          {{2, 3, 4}, {1, 2, 6}, 3},
          {{-1, 6, 2, kFirstScratchRecord, 2147483647, -2147483647 - 1}, {1, 2, 4, 5, 6}, 0},
          {{}, {1, 2, 3, 4, 5, 6}, 6}}) {
        const std::int32_t format =
            AddTable(*store, L"F", {Number(L"Key", 1.0), Number(L"Value"), Text(L"Text"), Shared(L"Same", 1)});
        Create(format, 6);
        for (std::int32_t record = 0; record < 6; ++record) {
            store->SetDbUpdate(format, record, record + 1);
            store->SetDbString(format, 2, record, std::to_wstring(record + 1));
        }
        store->LookupKeyRecord(format, 1.0);
        KSDLL_DeleteDbItems(*store, format, records);
        EXPECT_EQ(Keys(format), left);
        for (std::size_t i = 0; i < left.size(); ++i) {
            const auto record = static_cast<std::int32_t>(i);
            EXPECT_EQ(store->GetDbUpdate(format, record), left[i]);
            EXPECT_EQ(store->GetDbString(format, 2, record), std::to_wstring(static_cast<std::int32_t>(left[i])));
            EXPECT_EQ(store->LookupKeyRecord(format, left[i]), record);
        }

        const std::int32_t twin = AddTable(*store, L"Twin", {Number(L"Key", 1.0)});
        Create(twin, 6);
        Records descending = records;
        std::ranges::sort(descending, std::greater());
        descending.erase(std::unique(descending.begin(), descending.end()), descending.end());
        std::ranges::for_each(descending, [&](std::int32_t record) { KSDLL_DeleteDbItem(*store, twin, record); });
        EXPECT_EQ(store->GetCurrentDbSize(twin), count); // numbers that are no record count here
    }
}

TEST_F(Deletion, ErasingCellsLeavesTheCountAndRefusesWhatIsNoRecord) {
    RecordingMessages& messages = InstallRecordingMessages();
    const std::int32_t format = AddTable(*store, L"F", {Number(L"Key", 1.0)});
    Create(format, 4);
    for (const std::int32_t record : {-1, 4, kFirstScratchRecord, kFirstScratchRecord - 1, 2147483647}) {
        store->EraseDbRow(format, record);
        store->EraseDbRows(format, {record});
        store->EraseDbRow(77, record);
    }
    EXPECT_EQ(Keys(format), (Doubles{1, 2, 3, 4}));
    store->EraseDbRow(format, 1);
    EXPECT_EQ(Keys(format), (Doubles{1, 3, 4, 1}));
    store->ChangeCurrentDbSize(format, -1);
    KSDLL_DeleteDbItem(*store, format, kFirstScratchRecord);
    EXPECT_EQ(Keys(format), (Doubles{1, 3}));
    for (int i = 0; i < 5; ++i) {
        KSDLL_DeleteDbItem(*store, format, -1);
    }
    EXPECT_EQ(store->GetCurrentDbSize(format), 0);
    KSDLL_DeleteDbItem(*store, -1, 0);
    KSDLL_DeleteDbItems(*store, 1000, {0});
    EXPECT_TRUE(messages.boxes.empty());
}

TEST_F(Deletion, ErasedKeysAreThoseOfTheRecordsThatWent) {
    for (const std::size_t key : {0u, 1u}) { // the key may stand before or behind other fields
        const std::int32_t format =
            AddTable(*store, L"F", {Number(L"A", 1.0), Number(L"B", 1.0), Matrix(L"M", {}, -1, -1, -1.0)}, 0,
                     static_cast<std::int32_t>(key));
        Create(format, 12);
        store->ResetDbChanged(format);
        KSDLL_DeleteDbItems(*store, format, {0, 1, 2, 3, 4, 6, 8, 9, 10});
        Doubles erased;
        for (const auto& [value, flag] : store->GetFormatInfo(format)->erasedKeys) {
            erased.push_back(value);
        }
        EXPECT_EQ(erased, (Doubles{1, 2, 3, 4, 5, 7, 9, 10, 11})) << key;
    }
}

TEST_F(Deletion, KeysGoFromListsAndTheCellsBesideThem) {
    const std::int32_t target = AddTable(*store, L"Target", {Number(L"Key", 1.0)});
    const std::int32_t lists =
        AddTable(*store, L"Lists",
                 {Number(L"Key", 1.0), Matrix(L"List", {Classes::kList}, target, -1, -1.0),
                  Matrix(L"Beside", {Classes::kParallelList, Classes::kAssociate}, -1, -1, -1.0),
                  Matrix(L"Kept", {Classes::kList, Classes::kKeepKeys}, target, -1, -1.0),
                  Matrix(L"Kept too", {Classes::kList, Classes::kKeepDeletedKeys}, target, -1, -1.0),
                  Matrix(L"Elsewhere", {Classes::kList}, 9, target, -1.0),
                  Matrix(L"Shared", {Classes::kList, Classes::kAdditionalReference}, target, 1, -1.0)});
    for (std::int32_t field = 1; field < 7; ++field) {
        store->SetDbData(lists, field, DataSlot::kAssociateField, field == 2 ? 1 : 0);
    }
    const Doubles entries{2, 3, 3, 9, 2, -0.0, 3};
    for (const bool many : {false, true}) {
        KSDLL_Clear(*store, target);
        KSDLL_Clear(*store, lists);
        Create(target, 5);
        Create(lists, 2);
        Fill(lists, 1, 0, {3, 4});
        for (const std::int32_t field : {1, 3, 4, 5}) {
            Fill(lists, field, 1, entries);
        }
        Fill(lists, 2, 1, {10, 11, 12, 13, 14, 15}); // shorter than its list
        store->SetDbKeyValue(target, 0, std::numeric_limits<double>::quiet_NaN());
        store->SetDbKeyValue(target, 4, 0.0);
        if (many) {
            KSDLL_DeleteDbItems(*store, target, {0, 2, 4});
        } else {
            KSDLL_DeleteDbItem(*store, target, 4);
            KSDLL_DeleteDbItem(*store, target, 2);
            KSDLL_DeleteDbItem(*store, target, 0);
        }
        EXPECT_EQ(Cells(lists, 1, 0), Doubles{4}) << many;
        EXPECT_EQ(Cells(lists, 1, 1), (Doubles{2, 9, 2})) << many;
        EXPECT_EQ(Cells(lists, 2, 1), (Doubles{10, 13, 14})) << many;
        for (const std::int32_t field : {3, 4, 5}) {
            EXPECT_EQ(Cells(lists, field, 1), entries) << field;
        }
    }
}

// A store of owners: each record owns those whose keys stand in its list.
class StoredStrings : public Deletion {
protected:
    StoredStrings() {
        nodes =
            AddTable(*store, L"Nodes",
                     {Number(L"Key", 1.0), Matrix(L"Owns", {Classes::kList, Classes::kStringStorage}, 1, -1, -1.0)});
        notes = AddTable(*store, L"Notes",
                         {Number(L"Key", 1.0), Matrix(L"Owns", {Classes::kList, Classes::kStringStorage}, 0, -1, -1.0),
                          Matrix(L"Loads", {}, -1, 1, -1.0)});
        store->SetDbData(nodes, 1, DataSlot::kStorageFormat, nodes);
        store->SetDbData(notes, 1, DataSlot::kStorageFormat, nodes);
    }

    std::int32_t nodes = -1;
    std::int32_t notes = -1;
};

TEST_F(StoredStrings, ALongChainOfOwnersGoesWhole) {
    constexpr std::int32_t kLength = 20000;
    store->SetCurrentDbSize(nodes, kLength);
    for (std::int32_t record = 0; record < kLength; ++record) {
        store->SetDbKeyValue(nodes, record, record);
        Fill(nodes, 1, record, {(record + 1.0)});
    }
    KSDLL_DeleteDbItem(*store, nodes, 1);
    EXPECT_EQ(Keys(nodes), Doubles{0});
}

TEST_F(StoredStrings, ErasingARowErasesTheCellsOfWhatItOwns) {
    Create(nodes, 5);
    Create(notes, 2);
    Fill(notes, 1, 1, {2, 4});
    Fill(nodes, 1, 1, {2, 5});
    store->EraseDbRow(notes, 1);
    EXPECT_EQ(store->GetCurrentDbSize(nodes), 5);
    store->SetCurrentDbSize(nodes, 2);
    EXPECT_EQ(Keys(nodes), (Doubles{1, 3}));
}

TEST_F(Deletion, FreesTheMatricesOfTheRecordOnly) {
    const std::int32_t format = AddTable(*store, L"F",
                                         {Number(L"Key", 1.0), Matrix(L"List", {Classes::kList}, -1, -1, -1.0),
                                          Matrix(L"Common", {Classes::kCommonMatrix}, -1, 0, -1.0)});
    Create(format, 20);
    Records ids;
    for (std::int32_t record = 0; record < 20; ++record) {
        Fill(format, 1, record, {record * 1.0});
        ids.push_back(KSDLL_GetDbMatrix(*store, format, 1, record));
    }
    KSDLL_DeleteDbItems(*store, format, {0, 1, 2, 3, 5, 7, 9, 11, 13, 15, 17, 19});
    KSDLL_DeleteDbItem(*store, format, 0);
    const Records left{6, 8, 10, 12, 14, 16, 18};
    for (std::size_t i = 0; i < left.size(); ++i) {
        const auto record = static_cast<std::int32_t>(i);
        EXPECT_EQ(KSDLL_GetDbMatrix(*store, format, 1, record), ids[static_cast<std::size_t>(left[i])]);
        EXPECT_EQ(Cells(format, 1, record), Doubles{left[i] * 1.0});
    }
    EXPECT_EQ(KSDLL_GetMatrixSize(ids[4]), 0);
    EXPECT_EQ(KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(*store, format, 2, 3)), 7);
    KSDLL_Clear(*store, format);
    EXPECT_EQ(store->GetCurrentDbSize(format), 0);
    EXPECT_EQ(KSDLL_GetMatrixSize(ids[6]), 0);
    Create(format, 2);
    EXPECT_EQ(Cells(format, 1, 1), Doubles{});
}

std::vector<Records> deletion_calls;

TEST_F(Deletion, HooksHearOfTheOrdersBeforeAndAfter) {
    const std::int32_t format = AddTable(*store, L"Orders", {Number(L"Key", 1.0)});
    Create(format, 8);
    const auto before = [](std::int32_t record) {
        deletion_calls.push_back({1, record});
    };
    const auto after = [](std::int32_t record) {
        deletion_calls.push_back({2, record});
    };
    const auto before_many = [](Records& records) {
        deletion_calls.push_back(records);
        records = {0, 1, 2, 3, 4};
    };
    const auto after_many = [](Records& records) {
        deletion_calls.push_back(records);
    };
    SetSequencerFunctions(
        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, before, before_many,
        after, after_many, nullptr, [](std::int32_t asked) { return asked == 0; }, nullptr, nullptr);
    deletion_calls.clear();
    KSDLL_DeleteDbItem(*store, format, 7);
    SetCurrentModule(KestronaModule::Sequencer);
    KSDLL_DeleteDbItem(*store, format, 6);
    KSDLL_DeleteDbItems(*store, format, {4, 2, 2, -1});
    KSDLL_DeleteDbItems(*store, format, {90});
    EXPECT_EQ(deletion_calls, (std::vector<Records>{{1, 6}, {2, 6}, {2, 4}, {2, 4}}));
    EXPECT_EQ(Keys(format), (Doubles{1, 2, 4, 6}));
}

TEST_F(Deletion, MatrixFunctionsTakeOutCellsOfOneMatrix) {
    const std::int32_t rows = AddTable(*store, L"Rows", {Number(L"Key", 1.0)});
    const std::int32_t columns = AddTable(*store, L"Columns", {Number(L"Key", 1.0)});
    const std::int32_t format =
        AddTable(*store, L"F",
                 {Number(L"Key", 1.0), Matrix(L"Line", {}, rows, columns, -1.0),
                  Matrix(L"Grid", {Classes::k3DMatrix}, rows, columns, -1.0),
                  Matrix(L"Square", {Classes::k3DMatrix, Classes::kCommonMatrix}, columns, columns, -1.0)});
    Create(rows, 2);
    Create(columns, 3);
    Create(format, 2);
    Fill(format, 1, 0, {1, 2, 3});
    Fill(format, 2, 0, {1, 2, 3, 4, 5, 6});
    Fill(format, 3, 0, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    ResizeOneDMatrix(*store, format, 1, 0, rows, {1});
    ResizeTwoDMatrix(*store, format, 3, 1, columns, {1}); // not the first record
    EXPECT_EQ(Cells(format, 1, 0), (Doubles{1, 2, 3}));
    EXPECT_EQ(Cells(format, 3, 0).size(), 9u);
    ResizeOneDMatrix(*store, format, 1, 0, columns, {0, 2, 0, 9, -4});
    EXPECT_EQ(Cells(format, 1, 0), Doubles{2});
    ResizeTwoDMatrix(*store, format, 2, 0, columns, {2, 0});
    EXPECT_EQ(Cells(format, 2, 0), (Doubles{2, 5}));
    Fill(format, 2, 0, {1, 2, 3, 4, 5, 6});
    ResizeTwoDMatrix(*store, format, 2, 0, rows, {0});
    EXPECT_EQ(Cells(format, 2, 0), (Doubles{4, 5, 6}));
    ResizeTwoDMatrix(*store, format, 3, 0, columns, {1});
    EXPECT_EQ(Cells(format, 3, 0), (Doubles{1, 3, 7, 9}));
    ResizeOneDMatrix(*store, format, 0, 0, columns, {0});
    ResizeTwoDMatrix(*store, 99, 1, 0, columns, {0});
    ResizeTwoDMatrix(*store, format, 2, 500, columns, {0});
}

} // namespace

} // namespace Kestrona
