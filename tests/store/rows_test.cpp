// Rows that are copied, swapped and compared, and records that come: KSDLL_InsertDbItem, KSDLL_CreateRecord.
#include "fixtures/record_snapshot.h"
#include "fixtures/store_test.h"
#include "store/row_shuffle.h"

#include <kestrona/host_settings.h>

#include <set>
#include <sstream>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

constexpr std::int32_t kOther = 0;
constexpr std::int32_t kRows = 1;

// A format with a field of every kind that moves with its row in a way of its own.
class Rows : public StoreTest {
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
        kList,
        kGrid,
        kSharedGrid,
        kMore // those that a test adds
    };

    explicit Rows(const std::vector<Field>& more) {
        AddTable(*store, L"Other", {Number(L"Key", 1.0)}, 3);
        Field shared_grid = Shared(L"Shared grid", kGrid);
        shared_grid.type = TypeBit::kMatrix;
        std::vector<Field> fields{Number(L"Key", 1.0),
                                  Override(L"Top", kMiddle),
                                  Override(L"Middle", kBottom),
                                  Number(L"Bottom", 4.0),
                                  Integer(L"Count", 7.0),
                                  Toggle(L"Toggle"),
                                  Text(L"Text"),
                                  Shared(L"Shared", kCount),
                                  Calculated(L"Sum"),
                                  Matrix(L"List", {Classes::kList}, kOther, -1, 0.5),
                                  Matrix(L"Grid", {}, -1, kOther, 0.5),
                                  shared_grid};
        fields.insert(fields.end(), more.begin(), more.end());
        AddFormat(*store, L"Rows", fields);
        MakeColumns(*store, kRows);
        store->CreateDbValues(kRows, kTop); // after what it overrides
    }

    double Get(std::int32_t field, std::int32_t record) { return store->GetDbValue(kRows, field, record); }

    void Set(std::int32_t field, std::int32_t record, double value) { store->SetDbValue(kRows, field, record, value); }

    std::int32_t Id(std::int32_t field, std::int32_t record) { return KSDLL_GetDbMatrix(*store, kRows, field, record); }
};

class Copies : public Rows {
protected:
    enum : std::int32_t {
        kNote = kMore,
        kBelow // overrides kKey from behind
    };

    Copies() : Rows({{.name = L"Note", .type = TypeBit::kFreeString}, Override(L"Below", kKey)}) {
        store->CreateDbStrings(kRows, kNote);
        store->SetCurrentDbSize(kRows, kRecords);
    }

    static constexpr std::int32_t kRecords = 8;
};

TEST_F(Copies, RowsAreTheSumOfTheirCellsButForTheNote) {
    Set(kTop, 1, 7.0);
    Set(kBottom, 1, 2.0);
    Set(kBelow, 1, 5.0);
    store->SetDbString(kRows, kText, 1, L"text");
    store->SetDbString(kRows, kNote, 1, L"note");
    Fill(kRows, kGrid, 1, {1.0, 2.0});
    Fill(kRows, kList, 1, {3.0});
    const auto numbers = [&](std::int32_t record) {
        Doubles row;
        for (const std::int32_t field : {+kKey, +kTop, +kMiddle, +kBottom, +kBelow}) {
            row.push_back(Get(field, record));
        }
        return row;
    };
    const Doubles empty = numbers(2);
    store->CopyItemInfo(1, kFirstScratchRecord, kRows);
    store->SwapItemInfo(kFirstScratchRecord, 6, kRows);
    store->SwapItemInfo(1, 4, kRows);
    for (const std::int32_t record : {4, 6}) {
        EXPECT_EQ(numbers(record), (Doubles{5.0, 7.0, 7.0, 2.0, 5.0})) << record;
        EXPECT_EQ(store->GetDbString(kRows, kText, record), L"text") << record;
        EXPECT_EQ(Cells(kRows, kGrid, record), (Doubles{1.0, 2.0})) << record;
        EXPECT_EQ(Id(kSharedGrid, record), Id(kGrid, record)) << record;
    }
    EXPECT_EQ(Id(kList, 4), Id(kList, 6));
    EXPECT_NE(Id(kGrid, 4), Id(kGrid, 6));
    EXPECT_EQ(numbers(1), empty);
    EXPECT_EQ(numbers(kFirstScratchRecord), empty);
    EXPECT_EQ(store->GetDbString(kRows, kNote, 1), L"note");
    EXPECT_EQ(store->GetDbString(kRows, kNote, 4), L"");
}

TEST_F(Copies, EqualRowsMayDifferInWhatIsNotCompared) {
    const auto equal = [&] {
        return store->ItemInfoIsEqual(0, 1, kRows);
    };
    Set(kBottom, 1, 9.0);
    EXPECT_FALSE(equal());
    Set(kBottom, 0, 9.0);
    EXPECT_TRUE(equal());
    store->SetDbString(kRows, kText, 0, L"text");
    EXPECT_FALSE(equal());
    store->SetDbString(kRows, kText, 1, L"text");
    store->SetDbString(kRows, kNote, 1, L"note");
    store->SetDbUpdate(kRows, 1, 7);
    Fill(kRows, kGrid, 1, {1.0});
    EXPECT_TRUE(equal());
    Set(kBottom, 1, std::numeric_limits<double>::quiet_NaN());
    EXPECT_FALSE(store->ItemInfoIsEqual(1, 1, kRows));
}

TEST_F(Copies, OneFieldIsCopiedWhateverItsType) {
    store->SetDbString(kRows, kNote, 1, L"note");
    Fill(kRows, kGrid, 1, {1.0});
    for (std::int32_t field = 0; field < store->GetDbFields(kRows); ++field) {
        store->CopyField(kRows, field, 1, 2);
    }
    EXPECT_EQ(store->GetDbString(kRows, kNote, 2), L"note");
    EXPECT_EQ(Id(kGrid, 2), -1);
    Set(kTop, 3, 8.0); // a single copy of an override writes through, as a write does
    Set(kBottom, 3, 1.0);
    store->CopyField(kRows, kTop, 3, 4);
    EXPECT_EQ(Get(kBottom, 4), 8.0);
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

// But not while rows are moved about, and neither to a scratch record nor from one.
TEST_F(Copies, AMissingStoredStringTakesItsTextAlong) {
    const std::int32_t storage = AddTable(*store, L"Strings", {Number(L"Key", -1.0)}, 2);
    store->SetDbKeyValue(storage, 1, 50.0);
    const std::int32_t owner =
        AddTable(*store, L"Owner", {Number(L"Key"), Matrix(L"Strings", {Classes::kStringStorage}, 0)}, 4);
    store->SetDbData(owner, 1, DataSlot::kStorageFormat, storage);
    store->CreateDbStrings(owner, 1);
    store->SetDbString(owner, 1, 0, L"text");
    Fill(owner, 1, 0, {50.0, 60.0});
    store->CopyMatrix(owner, 1, 0, owner, 1, 1);
    EXPECT_EQ(Cells(owner, 1, 1), (Doubles{50.0, 0.0}));
    EXPECT_EQ(store->GetDbString(owner, 1, 1), L"text");
    {
        const RowShuffle shuffle;
        store->CopyMatrix(owner, 1, 0, owner, 1, 2);
    }
    store->CopyMatrix(owner, 1, 0, owner, 1, kFirstScratchRecord);
    store->CopyMatrix(owner, 1, kFirstScratchRecord, owner, 1, 3);
    for (const std::int32_t target : {2, kFirstScratchRecord, 3}) {
        EXPECT_EQ(Cells(owner, 1, target), (Doubles{50.0, 60.0})) << target;
        EXPECT_EQ(store->GetDbString(owner, 1, target), L"") << target;
    }
    EXPECT_FALSE(RowShuffle::IsRunning());
}

class MovingRows : public Rows, public testing::WithParamInterface<unsigned> {
protected:
    MovingRows()
        : Rows({Matrix(L"Beside", {Classes::kParallelList, Classes::kAssociate}, -1, -1, 0.5),
                Matrix(L"Once", {Classes::kAssociate}, kRows, kOther, 0.5)}) {
        store->AddIndexToColumn(kRows, kCount);
        store->AddIndexToColumn(kRows, kText);
    }

    std::int32_t Draw(std::int32_t bound) {
        return static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(bound));
    }

    // A text for each row, and the ids of the lists.
    std::pair<std::vector<std::string>, std::vector<std::int32_t>> Describe() {
        std::vector<std::string> rows;
        std::vector<std::int32_t> lists;
        std::istringstream lines(DescribeRecords(*store, kRows));
        for (std::string line; std::getline(lines, line);) {
            lists.push_back(Id(kList, static_cast<std::int32_t>(rows.size())));
            rows.push_back(line.substr(line.find(' ')));
        }
        return {rows, lists};
    }

    void WriteCell(std::int32_t record) {
        const std::int32_t field = 1 + Draw(store->GetDbFields(kRows) - 1);
        if (store->GetFieldInfo(kRows, field)->matrixColumn != nullptr) {
            KSDLL_SetMatrixValue(Id(field, record), static_cast<std::uint32_t>(Draw(4)), Draw(5));
        } else if (store->GetFieldInfo(kRows, field)->stringColumn != nullptr) {
            store->SetDbString(kRows, field, record, std::wstring(static_cast<std::size_t>(Draw(4)), L'x'));
        } else {
            Set(field, record, Draw(4) - 1.0);
        }
        store->SetDbUpdate(kRows, record, Draw(3));
    }

    static constexpr std::int32_t kMatrixSize = 4; // at most; elements mark the records of their numbers
    std::mt19937 random{GetParam()};
};

TEST_P(MovingRows, AnInsertionOpensARowAndMarksItAndThoseThatMove) {
    std::string blank;
    for (std::int32_t size = 0; size < 40; ++size) {
        auto [rows, lists] = Describe();
        const std::int32_t place = Draw(3) == 0 ? size : Draw(size + 1);
        store->ResetDbChanged(kRows);
        KSDLL_InsertDbItem(*store, kRows, place);
        const auto [new_rows, new_lists] = Describe();
        blank = size == 0 ? new_rows.front() : blank;
        rows.insert(rows.begin() + place, blank);
        ASSERT_EQ(new_rows, rows) << place;
        lists.insert(lists.begin() + place, new_lists[static_cast<std::size_t>(place)]);
        ASSERT_EQ(new_lists, lists) << place;
        EXPECT_EQ(Id(kList, KSDLL_GetScratchRecord()), -1);
        store->SetDbKeyValue(kRows, place, 100.0 + size);
        for (std::int32_t record = 0; record <= size; ++record) {
            const bool is_marked = store->GetFormatInfo(kRows)->changedRecords.Contains(record);
            ASSERT_TRUE(record < kMatrixSize || is_marked == (record >= place)) << record << ' ' << place;
            ASSERT_EQ(store->LookupKeyRecord(kRows, Get(kKey, record)), record);
        }
        for (std::int32_t writes = Draw(12); writes > 0; --writes) {
            WriteCell(Draw(size + 1));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, MovingRows, testing::Range(1u, 21u));

using Insertion = StoreTest;

// A toggle whose default is neither 0 nor 1 keeps it only as long as nobody writes it; a note stays at its number.
TEST_F(Insertion, MovingWritesOddTogglesAndLeavesNotes) {
    AddFormat(*store, L"Rows",
              {Number(L"Key", 1.0), Toggle(L"Odd", 5.0), {.name = L"Note", .type = TypeBit::kFreeString}});
    MakeColumns(*store, 0);
    store->CreateDbStrings(0, 2);
    store->SetCurrentDbSize(0, 3);
    store->SetDbString(0, 2, 1, L"note");
    KSDLL_InsertDbItem(*store, 0, 1);
    EXPECT_EQ(DescribeRecords(*store, 0), "0 0:1 1:5 2:0 update:0\n"
                                          "1 0:1 1:1 2:0'110'111'116'101 update:0\n"
                                          "2 0:1 1:1 2:0 update:0\n"
                                          "3 0:1 1:1 2:0 update:0\n");
}

std::vector<std::int32_t> hook_calls;

TEST_F(Insertion, ImpossiblePlacesMeanTheEndAndHooksHearOfThePlace) {
    const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key", 1.0)}, 2);
    SetSequencerFunctions(
        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
        [](std::int32_t record) { hook_calls.push_back(record); },
        [](std::int32_t record) { hook_calls.push_back(record + 100); }, nullptr, nullptr, nullptr, nullptr, nullptr,
        nullptr, nullptr, nullptr);
    hook_calls.clear();
    KSDLL_InsertDbItem(*store, format, 0);
    SetCurrentModule(KestronaModule::Sequencer);
    KSDLL_InsertDbItem(*store, format, 1);
    EXPECT_TRUE(hook_calls.empty()); // not the format of the orders
    SetSequencerOrderFormat(format);
    for (const std::int32_t record : {1, -1, 77, -2147483647 - 1, 2147483647, kFirstScratchRecord}) {
        KSDLL_InsertDbItem(*store, format, record);
    }
    EXPECT_EQ(hook_calls, (std::vector<std::int32_t>{1, 101, 5, 105, 6, 106, 7, 107, 8, 108, 9, 109}));
    EXPECT_EQ(store->GetCurrentDbSize(format), 10);
    for (const std::int32_t none : {-1, 1000, 2147483647}) {
        EXPECT_EQ(KSDLL_InsertDbItem(*store, none, 0), 0);
        EXPECT_EQ(KSDLL_CreateRecord(*store, none), -1);
    }
}

TEST_F(Insertion, NewKeysMayGoDownwards) {
    AddTable(*store, L"F", {Number(L"Key", -1.0)});
    Create(0, 1);
    EXPECT_EQ(Keys(0), Doubles{-1.0});
    store->SetDbKeyValue(0, 0, 4.0);
    Create(0, 1);
    EXPECT_EQ(Keys(0), (Doubles{4.0, 3.0}));
}

// What grows is remembered; whatever changes it must show at the next insertion.
TEST_F(Insertion, RememberedGrowthFollowsTheSchema) {
    const std::vector<Field> fields{Number(L"Key", 1.0), Matrix(L"M", {}, -1, 0)};
    const auto sizes_after_one_more = [&] {
        KSDLL_CreateRecord(*store, 0);
        std::vector<std::int32_t> sizes;
        for (std::int32_t format = 0; format < store->GetFormatCount(); ++format) {
            sizes.push_back(KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(*store, format, 1, 0)));
        }
        return sizes;
    };
    AddTable(*store, L"Rows", {Number(L"Key", 1.0), Number(L"None")});
    KSDLL_CreateRecord(*store, 0);
    AddTable(*store, L"First", fields, 1);
    EXPECT_EQ(sizes_after_one_more(), (std::vector{0, 2}));
    AddTable(*store, L"Second", fields, 1);
    EXPECT_EQ(sizes_after_one_more(), (std::vector{0, 3, 3}));
    store->SetDbExtension(1, KSDLL_AddText(L"dat"));
    EXPECT_EQ(sizes_after_one_more(), (std::vector{0, 3, 4}));

    store.reset(); // the next store is likely to stand in the same place
    store = CreateMemoryResidentData();
    AddTable(*store, L"Rows", fields);
    for (std::int32_t size = 1; size <= 3; ++size) {
        EXPECT_EQ(sizes_after_one_more(), std::vector{size});
    }
}

TEST_F(Insertion, RememberedGrowthFollowsDimensionsClassesAndColumns) {
    const std::int32_t rows = AddTable(*store, L"Rows", {Number(L"Key", 1.0)});
    const std::int32_t other = AddTable(*store, L"Other", {Number(L"Key", 1.0), Matrix(L"M", {}, -1, -1)}, 1);
    const auto size_after_one_more = [&] {
        KSDLL_CreateRecord(*store, rows);
        return KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(*store, other, 1, 0));
    };
    EXPECT_EQ(size_after_one_more(), 0);
    store->SetDbTableY(other, 1, rows);
    EXPECT_EQ(size_after_one_more(), 2);
    store->AddDbClass(other, 1, Classes::kList);
    EXPECT_EQ(size_after_one_more(), 2);
    store->RemoveDbClass(other, 1, Classes::kList);
    EXPECT_EQ(size_after_one_more(), 4);
    store->SetDbType(other, 1, TypeBit::kReal);
    EXPECT_EQ(size_after_one_more(), 4);
    store->SetDbType(other, 1, TypeBit::kMatrix);
    store->CreateDbMatrix(other, 1);
    EXPECT_EQ(size_after_one_more(), 6);
}

TEST_F(Insertion, SizesBeyondAllBoundsMakeEmptyMatrices) {
    const std::int32_t wide = AddTable(*store, L"Wide", {Number(L"Key", 1.0)}, 70000);
    const std::int32_t format =
        AddTable(*store, L"Format",
                 {Number(L"Key", 1.0), Matrix(L"Huge", {Classes::k3DMatrix}, wide, wide),
                  Matrix(L"None", {Classes::k3DMatrix}, 5000, wide), Matrix(L"Bad", {}, -1, -7)});
    KSDLL_CreateRecord(*store, format);
    KSDLL_InsertDbItem(*store, wide, 5);
    KSDLL_DeleteDbItems(*store, wide, {1, 5});
    for (std::int32_t field = 1; field < 4; ++field) {
        EXPECT_EQ(KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(*store, format, field, 0)), 0) << field;
    }
}

} // namespace

} // namespace Kestrona
