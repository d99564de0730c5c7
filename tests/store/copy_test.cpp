// Copying, swapping and comparing of rows and their matrices.
#include "fixtures/store_test.h"
#include "store/row_shuffle.h"

#include <array>
#include <random>
#include <set>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

constexpr std::int32_t kRecords = 8;
constexpr double kUnset = -1.0;

Field FreeString(const std::wstring& name) {
    return {.name = name, .type = TypeBit::kFreeString};
}

class Copies : public StoreTest {
protected:
    enum : std::int32_t {
        kKey,
        kTop, // overrides kMiddle, which overrides kBottom
        kMiddle,
        kBottom,
        kCount,
        kToggle,
        kText,
        kShared,
        kSum,
        kNote,
        kList,
        kGrid,
        kCommon,
        kSharedGrid,
        kBelow, // overrides kKey from behind
        kFields
    };

    Copies() {
        Field shared_grid = Shared(L"Shared grid", kGrid);
        shared_grid.type = TypeBit::kMatrix;
        format = AddFormat(*store, L"Rows",
                           {Number(L"Key", kUnset), Override(L"Top", kMiddle), Override(L"Middle", kBottom),
                            Number(L"Bottom"), Integer(L"Count"), Toggle(L"Toggle"), Text(L"Text"),
                            Shared(L"Shared", kCount), Calculated(L"Sum"), FreeString(L"Note"),
                            Matrix(L"List", {Classes::kList}, 0), Matrix(L"Grid", {}, 0),
                            Matrix(L"Common", {Classes::kCommonMatrix}, 0), shared_grid, Override(L"Below", kKey)});
        MakeColumns(*store, format);
        store->CreateDbValues(format, kTop); // after what it overrides
        store->CreateDbStrings(format, kNote);
        store->SetCurrentDbSize(format, kRecords);
    }

    double Get(std::int32_t field, std::int32_t record) { return store->GetDbValue(format, field, record); }

    void Set(std::int32_t field, std::int32_t record, double value) { store->SetDbValue(format, field, record, value); }

    std::int32_t Id(std::int32_t field, std::int32_t record) {
        return KSDLL_GetDbMatrix(*store, format, field, record);
    }

    std::int32_t format = -1;
};

TEST_F(Copies, RowsAreTheSumOfTheirCellsButForTheNote) {
    Set(kTop, 1, 7.0);
    Set(kBottom, 1, 2.0);
    Set(kBelow, 1, 5.0);
    store->SetDbString(format, kText, 1, L"text");
    store->SetDbString(format, kNote, 1, L"note");
    store->SetDbUpdate(format, 1, 3);
    Fill(format, kGrid, 1, {1.0, 2.0});
    Fill(format, kList, 1, {3.0});
    const auto row = [&](std::int32_t record) {
        return Doubles{Get(kKey, record), Get(kTop, record), Get(kMiddle, record), Get(kBottom, record),
                       Get(kBelow, record)};
    };
    const Doubles full{5.0, 7.0, 7.0, 2.0, 5.0};
    const Doubles empty = row(2);
    store->CopyItemInfo(1, kFirstScratchRecord, format);
    store->SwapItemInfo(kFirstScratchRecord, 6, format);
    store->SwapItemInfo(1, 4, format);
    for (const std::int32_t record : {4, 6}) {
        EXPECT_EQ(row(record), full) << record;
        EXPECT_EQ(store->GetDbString(format, kText, record), L"text") << record;
        EXPECT_EQ(store->GetDbUpdate(format, record), 3) << record;
        EXPECT_EQ(Cells(format, kGrid, record), (Doubles{1.0, 2.0})) << record;
        EXPECT_EQ(Id(kSharedGrid, record), Id(kGrid, record)) << record;
    }
    EXPECT_EQ(Id(kList, 4), Id(kList, 6));
    EXPECT_NE(Id(kGrid, 4), Id(kGrid, 6));
    EXPECT_EQ(row(1), empty);
    EXPECT_EQ(row(kFirstScratchRecord), empty);
    EXPECT_EQ(store->GetDbString(format, kNote, 1), L"note");
    EXPECT_EQ(store->GetDbString(format, kNote, 4), L"");
}

TEST_F(Copies, EqualRowsMayDifferInWhatIsNotCompared) {
    Set(kBottom, 1, 4.0);
    EXPECT_FALSE(store->ItemInfoIsEqual(0, 1, format));
    Set(kBottom, 0, 4.0);
    EXPECT_TRUE(store->ItemInfoIsEqual(0, 1, format));
    store->SetDbString(format, kText, 0, L"text");
    EXPECT_FALSE(store->ItemInfoIsEqual(0, 1, format));
    store->SetDbString(format, kText, 1, L"text");
    store->SetDbString(format, kNote, 1, L"note");
    store->SetDbUpdate(format, 1, 7);
    Fill(format, kGrid, 1, {1.0});
    EXPECT_TRUE(store->ItemInfoIsEqual(0, 1, format));
    Set(kBottom, 1, std::numeric_limits<double>::quiet_NaN());
    EXPECT_FALSE(store->ItemInfoIsEqual(1, 1, format));
}

TEST_F(Copies, OneFieldIsCopiedWhateverItsType) {
    store->SetDbString(format, kNote, 1, L"note");
    Set(kCount, 1, 3.0);
    Fill(format, kGrid, 1, {1.0});
    for (std::int32_t field = 0; field < kFields; ++field) {
        store->CopyField(format, field, 1, 2);
    }
    EXPECT_EQ(store->GetDbString(format, kNote, 2), L"note");
    EXPECT_EQ(Get(kShared, 2), 3.0);
    EXPECT_EQ(Id(kGrid, 2), -1);
    Set(kTop, 3, 8.0); // a single copy of an override writes through, as a write does
    Set(kBottom, 3, 1.0);
    store->CopyField(format, kTop, 3, 4);
    EXPECT_EQ(Get(kBottom, 4), 8.0);
}

TEST_F(Copies, NothingHappensOutOfRange) {
    for (const std::int32_t bad : {-1, 99, kMaxFormats}) {
        store->CopyItemInfo(0, 1, bad);
        store->SwapItemInfo(0, 1, bad);
        store->CopyMatrixItemInfo(0, 1, bad);
        store->SwapMatrixItemInfo(0, 1, bad);
        store->CopyField(bad, 0, 0, 1);
        store->CopyField(format, bad, 0, 1);
        store->CopyMatrix(bad, kGrid, 0, format, kGrid, 1);
        store->CopyMatrix(format, kGrid, 0, bad, kGrid, 1);
        store->SwapMatrix(format, bad, 0, 1);
        EXPECT_TRUE(store->ItemInfoIsEqual(0, 1, bad));
    }
    store->CopyMatrix(format, kGrid, 0, format, kBottom, 1);
    EXPECT_EQ(Id(kGrid, 1), -1);
    EXPECT_FALSE(store->GetDbChanged(format));
}

TEST_F(Copies, AListIsSharedWithinItsFormatAndCopiedToAnother) {
    const std::int32_t other = AddTable(*store, L"Other", {Number(L"Key"), Matrix(L"List", {Classes::kList}, 0)}, 2);
    Fill(format, kList, 1, {1.0, 2.0});
    store->CopyMatrix(format, kList, 1, format, kList, 2);
    store->CopyMatrix(format, kList, 1, other, 1, 0);
    store->CopyMatrix(format, kList, 7, other, 1, 1); // from no matrix at all
    KSDLL_SetMatrixValue(Id(kList, 1), 0, 9.0);
    EXPECT_EQ(Cells(format, kList, 2), (std::vector{9.0, 2.0}));
    EXPECT_EQ(Cells(other, 1, 0), (std::vector{1.0, 2.0}));
    EXPECT_NE(KSDLL_GetDbMatrix(*store, other, 1, 1), -1);
    store->DestroyFormat(other);
    EXPECT_EQ(Cells(format, kList, 1), (std::vector{9.0, 2.0}));
}

// Whatever is shared, copied over, swapped and moved, a list stays as long as a cell holds it, and goes with the last.
TEST_F(Copies, AListThatNoRecordHoldsAnyMoreGoes) {
    std::mt19937 random(7);
    const auto draw = [&](std::int32_t end) {
        return static_cast<std::int32_t>(random() % static_cast<unsigned>(end));
    };
    const std::int32_t lists = AddTable(*store, L"Lists", {Number(L"Key"), Matrix(L"List", {Classes::kList}, 0)});
    std::set<std::int32_t> ids;
    for (std::int32_t step = 0; step < 2000; ++step) {
        const std::int32_t size = store->GetCurrentDbSize(lists);
        if (size < kRecords || draw(40) == 0) {
            const std::int32_t record = draw(size + 1);
            KSDLL_InsertDbItem(*store, lists, record);
            Fill(lists, 1, record, {step + 1.0});
        } else if (draw(3) == 0) {
            store->SwapItemInfo(draw(size), draw(size), lists);
        } else {
            store->CopyItemInfo(draw(size), draw(10) == 0 ? KSDLL_GetScratchRecord() : draw(size), lists);
        }
        std::set<std::int32_t> held{KSDLL_GetDbMatrix(*store, lists, 1, KSDLL_GetScratchRecord())};
        for (std::int32_t record = 0; record < store->GetCurrentDbSize(lists); ++record) {
            ASSERT_EQ(Cells(lists, 1, record).size(), 1U) << "record " << record << " step " << step;
            held.insert(KSDLL_GetDbMatrix(*store, lists, 1, record));
        }
        ids.insert(held.begin(), held.end());
        for (const std::int32_t id : ids) {
            ASSERT_TRUE(held.contains(id) || KSDLL_GetMatrixSize(id) == 0) << "list " << id << " step " << step;
        }
        if (held.size() < 3 && store->GetCurrentDbSize(lists) >= kRecords) {
            KSDLL_Clear(*store, lists);
            store->CreateDbMatrix(lists, 1); // a cell that held a freed matrix shares for ever
        }
    }
}

TEST_F(Copies, AMissingStoredStringTakesItsTextAlong) {
    const std::int32_t storage = AddTable(*store, L"Strings", {Number(L"Key", kUnset)}, 2);
    store->SetDbKeyValue(storage, 1, 50.0);
    Field strings = Matrix(L"Strings", {Classes::kStringStorage}, 0);
    const std::int32_t owner = AddTable(*store, L"Owner", {Number(L"Key"), strings}, 4);
    store->SetDbData(owner, 1, DataSlot::kStorageFormat, storage);
    store->CreateDbStrings(owner, 1);
    store->SetDbString(owner, 1, 0, L"text");
    Fill(owner, 1, 0, {50.0, 60.0});

    struct Case {
        std::int32_t target;
        bool shuffles;
        std::vector<double> elements;
        const wchar_t* text;
    };

    const std::vector<Case> cases = {
        {1, false, {50.0, 0.0}, L"text"},
        {2, true, {50.0, 60.0}, L""},
        {kFirstScratchRecord, false, {50.0, 60.0}, L""},
    };
    for (const Case& c : cases) {
        {
            const std::unique_ptr<RowShuffle> shuffle = c.shuffles ? std::make_unique<RowShuffle>() : nullptr;
            store->CopyMatrix(owner, 1, 0, owner, 1, c.target);
        }
        EXPECT_EQ(Cells(owner, 1, c.target), c.elements) << c.target;
        EXPECT_EQ(store->GetDbString(owner, 1, c.target), c.text) << c.target;
    }
    store->CopyMatrix(owner, 1, kFirstScratchRecord, owner, 1, 3);
    EXPECT_EQ(Cells(owner, 1, 3), (std::vector{50.0, 60.0}));
    EXPECT_FALSE(RowShuffle::IsRunning());
}

} // namespace

} // namespace Kestrona
