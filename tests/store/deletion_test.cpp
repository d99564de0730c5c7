// Records that go: KSDLL_DeleteDbItem, KSDLL_DeleteDbItems, EraseDbRow, EraseDbRows, and what follows them.
#include "fixtures/store_test.h"

#include <kestrona/host_settings.h>

#include <numeric>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

using Records = std::vector<std::int32_t>;

using Deletion = StoreTest;

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
    for (const std::int32_t left : {2, 1, 0, 0}) { // what is no record counts all the same
        KSDLL_DeleteDbItem(*store, format, left == 2 ? kFirstScratchRecord : -1);
        EXPECT_EQ(store->GetCurrentDbSize(format), left);
    }
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

// A store of owners: each record owns those whose keys stand in its list.
class StoredStrings : public Deletion {
protected:
    StoredStrings() {
        AddTable(*store, L"Nodes",
                 {Number(L"Key", 1.0), Matrix(L"Owns", {Classes::kList, Classes::kStringStorage}, kNodes, -1, -1.0)});
        store->SetDbData(kNodes, 1, DataSlot::kStorageFormat, kNodes);
    }

    static constexpr std::int32_t kNodes = 0;
};

TEST_F(StoredStrings, ALongChainOfOwnersGoesWhole) {
    constexpr std::int32_t kLength = 20000;
    store->SetCurrentDbSize(kNodes, kLength);
    for (std::int32_t record = 0; record < kLength; ++record) {
        store->SetDbKeyValue(kNodes, record, record);
        Fill(kNodes, 1, record, {record + 1.0});
    }
    KSDLL_DeleteDbItem(*store, kNodes, 1);
    EXPECT_EQ(Keys(kNodes), Doubles{0});
}

TEST_F(StoredStrings, ErasingARowErasesTheCellsOfWhatItOwns) {
    Create(kNodes, 6);
    Fill(kNodes, 1, 5, {2, 4});
    Fill(kNodes, 1, 1, {2, 5});
    store->EraseDbRow(kNodes, 5);
    EXPECT_EQ(store->GetCurrentDbSize(kNodes), 6);
    store->SetCurrentDbSize(kNodes, 2);
    EXPECT_EQ(Keys(kNodes), (Doubles{1, 3}));
}

TEST_F(Deletion, FreesTheMatricesOfTheRecordOnly) {
    const std::int32_t format =
        AddTable(*store, L"F", {Number(L"Key", 1.0), Matrix(L"List", {Classes::kList}, -1, -1, -1.0)});
    Create(format, 9);
    Records ids;
    for (std::int32_t record = 0; record < 9; ++record) {
        ids.push_back(Fill(format, 1, record, {record * 1.0}));
    }
    KSDLL_DeleteDbItems(*store, format, {0, 1, 2, 5, 7});
    KSDLL_DeleteDbItem(*store, format, 0);
    EXPECT_EQ(KSDLL_GetDbMatrix(*store, format, 1, 0), ids[4]);
    EXPECT_EQ(KSDLL_GetDbMatrix(*store, format, 1, 1), ids[6]);
    EXPECT_EQ(KSDLL_GetDbMatrix(*store, format, 1, 2), ids[8]);
    EXPECT_EQ(KSDLL_GetMatrixSize(ids[3]), 0);
    KSDLL_Clear(*store, format);
    for (const std::int32_t id : ids) {
        EXPECT_EQ(KSDLL_GetMatrixSize(id), 0) << id;
    }
}

std::vector<Records> deletion_calls;

TEST_F(Deletion, HooksHearOfTheOrdersBeforeAndAfter) {
    const std::int32_t format = AddTable(*store, L"Orders", {Number(L"Key", 1.0)});
    Create(format, 8);
    SetSequencerFunctions(
        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
        [](std::int32_t record) {
            deletion_calls.push_back({1, record});
        },
        [](Records& records) {
            deletion_calls.push_back(records);
            records = {0, 1, 2, 3, 4};
        },
        [](std::int32_t record) {
            deletion_calls.push_back({2, record});
        },
        [](Records& records) { deletion_calls.push_back(records); }, nullptr,
        [](std::int32_t asked) { return asked == 0; }, nullptr, nullptr);
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
    const auto resized = [&](std::int32_t field, std::int32_t record, std::int32_t by, const Records& gone) {
        Doubles cells(field == 1 ? 3 : field == 2 ? 6 : 9);
        std::iota(cells.begin(), cells.end(), 1.0);
        Fill(format, field, 0, cells);
        if (field == 1) {
            ResizeOneDMatrix(*store, format, field, record, by, gone);
        } else {
            ResizeTwoDMatrix(*store, format, field, record, by, gone);
        }
        return Cells(format, field, 0);
    };
    EXPECT_EQ(resized(1, 0, rows, {1}), (Doubles{1, 2, 3}));
    EXPECT_EQ(resized(1, 0, columns, {0, 2, 0, 9, -4}), Doubles{2});
    EXPECT_EQ(resized(2, 0, columns, {2, 0}), (Doubles{2, 5}));
    EXPECT_EQ(resized(2, 0, rows, {0}), (Doubles{4, 5, 6}));
    EXPECT_EQ(resized(3, 0, columns, {1}), (Doubles{1, 3, 7, 9}));
    EXPECT_EQ(resized(3, 1, columns, {1}).size(), 9u); // not the first record
    ResizeTwoDMatrix(*store, 99, 1, 0, columns, {0});
}

} // namespace

} // namespace Kestrona
