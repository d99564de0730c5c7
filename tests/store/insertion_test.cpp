// Records that come: KSDLL_InsertDbItem, KSDLL_CreateRecord, and the defaults of new records.
#include "fixtures/record_snapshot.h"
#include "fixtures/store_test.h"
#include "store/row_shuffle.h"

#include <kestrona/host_settings.h>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

using Log = std::vector<std::string>;
using InsertFunction = void (*)(MemoryResidentData&, std::int32_t, std::int32_t);

constexpr std::int32_t kOther = 0;
constexpr std::int32_t kRows = 1;

Field Untracked(const std::wstring& name) {
    Field field = Number(name, 2.0);
    field.classes = {Classes::kExcludeFromDb};
    return field;
}

// A format with one field of every kind that rows, matrices and other formats treat in a way of its own.
void Build(MemoryResidentData& store) {
    Field grown = Matrix(L"Own", {Classes::kMatrixDefault}, kRows, kRows, 0.5);
    Field automatic = Number(L"Automatic", 9.0);
    automatic.classes = {Classes::kAutomaticKey};
    AddTable(store, L"Other",
             {Number(L"Key", 1.0), Matrix(L"Rates", {Classes::kMatrixDefault}, kOther, kRows, 0.5),
              Matrix(L"Grid", {Classes::k3DMatrix}, kRows, kRows, 0.5),
              Matrix(L"Half", {Classes::k3DMatrix, Classes::kCommonMatrix}, kOther, kRows, 0.5)},
             3);
    AddFormat(store, L"Rows",
              {Number(L"Key", 1.0),
               Override(L"Top", 2),
               Override(L"Middle", 3),
               Number(L"Bottom", 4.0),
               Integer(L"Count", 7.0),
               Toggle(L"Odd", 5.0),
               Toggle(L"Flag"),
               Text(L"Text", 3),
               Shared(L"Same", 4),
               Untracked(L"Quiet"),
               Calculated(L"Sum"),
               {.name = L"Note", .type = TypeBit::kFreeString},
               automatic,
               Matrix(L"List", {Classes::kList}, kOther, -1, 0.5),
               Matrix(L"Beside", {Classes::kParallelList, Classes::kAssociate}, -1, -1, 0.5),
               Matrix(L"Costs", {}, kRows, kOther, 0.5),
               Matrix(L"Plan", {Classes::k3DMatrix}, kOther, kRows, 0.5),
               Matrix(L"Common", {Classes::kCommonMatrix}, kRows, kOther, 0.5),
               Matrix(L"Once", {Classes::kAssociate}, kRows, kOther, 0.5),
               grown});
    MakeColumns(store, kRows);
    store.CreateDbValues(kRows, 1); // after what it overrides
    store.CreateDbStrings(kRows, 11);
    store.SetDbData(kOther, 1, DataSlot::kMatrixDefaultField, 3);
    store.SetDbData(kRows, 19, DataSlot::kMatrixDefaultField, 4);
    store.AddIndexToColumn(kRows, 4);
    store.AddIndexToColumn(kRows, 7);
}

void InsertAsTold(MemoryResidentData& store, std::int32_t format, std::int32_t record);

void Insert(MemoryResidentData& store, std::int32_t format, std::int32_t record) {
    KSDLL_InsertDbItem(store, format, record);
}

// The same random history with either way of inserting.
class History {
public:
    History(unsigned seed, InsertFunction insert) : random_(seed), insert_(insert) { Build(*store_); }

    Log Run() {
        constexpr int kSteps = 60;
        for (int step = 0; step < kSteps; ++step) {
            Change();
            Note(step);
        }
        return std::move(log_);
    }

private:
    std::int32_t Draw(std::int32_t bound) {
        return static_cast<std::int32_t>(random_() % static_cast<std::uint32_t>(bound));
    }

    std::int32_t Size() { return store_->GetCurrentDbSize(kRows); }

    void Change() {
        switch (Draw(8)) {
        case 0:
            insert_(*store_, kOther, Draw(store_->GetCurrentDbSize(kOther) + 1));
            break;
        case 1:
        case 2:
            insert_(*store_, kRows, Draw(Size() + 1));
            break;
        case 3:
            insert_(*store_, kRows, Size());
            break;
        case 4:
            ChangeTransaction();
            break;
        case 5:
            store_->LookupKeyRecord(kRows, 1.0); // makes the index valid
            store_->ResetDbChanged(kRows);
            break;
        default:
            for (int i = 0; Size() > 0 && i < 6; ++i) {
                WriteCell(Draw(Size()));
            }
        }
    }

    void ChangeTransaction() {
        if (transaction_.empty()) {
            transaction_ = store_->StartRecordStateTransaction(kRows, Size() > 0 ? 0 : -1);
        } else if (Draw(2) == 0) {
            store_->EndRecordStateTransaction(kRows, std::exchange(transaction_, {}), -1);
        } else {
            store_->RevertRecordState(kRows, std::exchange(transaction_, {}), -1);
        }
    }

    void WriteCell(std::int32_t record) {
        const std::int32_t field = Draw(store_->GetDbFields(kRows));
        if (store_->GetFieldInfo(kRows, field)->matrixColumn != nullptr) {
            const std::int32_t id = KSDLL_GetDbMatrix(*store_, kRows, field, record);
            KSDLL_SetMatrixValue(id, static_cast<std::uint32_t>(Draw(4)), Draw(5));
        } else if (store_->GetFieldInfo(kRows, field)->stringColumn != nullptr) {
            store_->SetDbString(kRows, field, record, std::wstring(static_cast<std::size_t>(Draw(4)), L'x'));
        } else {
            store_->SetDbValue(kRows, field, record, Draw(4) - 1.0);
        }
        store_->SetDbUpdate(kRows, record, Draw(3));
    }

    void Note(int step) {
        for (const std::int32_t format : {kOther, kRows}) {
            log_.push_back("step " + std::to_string(step) + '\n' + DescribeRecords(*store_, format) +
                           DescribeIdentities(*store_, format) + DescribeChanges(*store_, format));
        }
    }

    FreshProcess process_;
    std::unique_ptr<MemoryResidentData> store_ = CreateMemoryResidentData();
    std::mt19937 random_;
    InsertFunction insert_;
    std::string transaction_;
    Log log_;
};

class InsertionTwin : public testing::TestWithParam<unsigned> {};

TEST_P(InsertionTwin, LeavesWhatCopiesOfRowsWouldLeave) {
    const Log expected = History(GetParam(), InsertAsTold).Run();
    const Log found = History(GetParam(), Insert).Run();
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        ASSERT_EQ(found[i], expected[i]) << "before it:\n" << (i > 1 ? expected[i - 2] : "");
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, InsertionTwin, testing::Range(1u, 41u));

double Cell(MemoryResidentData& store, TableColumn place, std::int32_t record, std::int32_t index) {
    return KSDLL_GetMatrixValue(store, place.format, place.field, record, static_cast<std::uint32_t>(index));
}

void ToldMatrices(MemoryResidentData& store, std::int32_t format) {
    const std::int32_t last = store.GetCurrentDbSize(format) - 1;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        const field_info& info = *store.GetFieldInfo(format, field);
        if (info.matrixColumn == nullptr) {
            continue;
        }
        const bool is_grid = store.ClassDefined(format, field, Classes::k3DMatrix);
        const bool is_list = store.ClassDefined(format, field, Classes::kList) ||
                             store.ClassDefined(format, field, Classes::kParallelList);
        const bool is_associate = store.ClassDefined(format, field, Classes::kAssociate);
        const std::int32_t size =
            is_list ? 0 : store.GetCurrentDbSize(info.tableY) * (is_grid ? store.GetCurrentDbSize(info.table) : 1);
        for (std::int32_t r = is_list || is_associate ? last : 0; r <= last; ++r) {
            KSDLL_CreateMatrix(store, static_cast<std::uint32_t>(size), format, field, r);
        }
    }
}

void ToldShuffle(MemoryResidentData& store, std::int32_t format, std::int32_t record) {
    const RowShuffle shuffle;
    const std::int32_t last = store.GetCurrentDbSize(format) - 1;
    store.CopyItemInfo(last, KSDLL_GetScratchRecord(), format);
    for (std::int32_t i = last; i > record; --i) {
        store.CopyItemInfo(i - 1, i, format);
    }
    store.CopyItemInfo(KSDLL_GetScratchRecord(), record, format);
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        if (store.ClassDefined(format, field, Classes::kList)) {
            store.GetFieldInfo(format, field)->matrixColumn->SetValue(KSDLL_GetScratchRecord(), -1);
        }
    }
}

void ToldGrid(MemoryResidentData& store, TableColumn place, std::int32_t owner, std::int32_t id, bool grows_x,
              bool grows_y, std::int32_t record) {
    const field_info& info = *store.GetFieldInfo(place.format, place.field);
    const std::int32_t size_x = store.GetCurrentDbSize(info.table);
    const std::int32_t size_y = store.GetCurrentDbSize(info.tableY);
    const auto set = [&](std::int32_t index, double value) {
        KSDLL_SetMatrixValue(id, static_cast<std::uint32_t>(index), value);
    };
    std::int32_t source = size_x * (size_y - 1) - 1;
    for (std::int32_t index = size_x * size_y - 1; grows_y && index >= 0; --index) {
        set(index, index % size_y == record ? info.defaultValue : Cell(store, place, owner, source--));
    }
    for (std::int32_t index = size_x * size_y - 1; grows_x && index >= record * size_y; --index) {
        set(index, index >= (record + 1) * size_y ? Cell(store, place, owner, index - size_y) : info.defaultValue);
    }
}

void ToldGrowth(MemoryResidentData& store, TableColumn place, std::int32_t format, std::int32_t record) {
    const field_info& info = *store.GetFieldInfo(place.format, place.field);
    const bool is_grid = store.ClassDefined(place.format, place.field, Classes::k3DMatrix);
    const bool is_common = store.ClassDefined(place.format, place.field, Classes::kCommonMatrix);
    const std::int32_t size_y = store.GetCurrentDbSize(info.tableY);
    const std::int32_t size = size_y * (is_grid ? store.GetCurrentDbSize(info.table) : 1);
    const std::int32_t owners =
        is_common ? std::min(1, store.GetCurrentDbSize(place.format)) : store.GetCurrentDbSize(place.format);
    for (std::int32_t r = 0; r < owners; ++r) {
        const std::int32_t id =
            KSDLL_CreateMatrix(store, static_cast<std::uint32_t>(size), place.format, place.field, r);
        if (is_grid) {
            ToldGrid(store, place, r, id, info.table == format, info.tableY == format, record);
            continue;
        }
        const bool has_source = store.ClassDefined(place.format, place.field, Classes::kMatrixDefault) && r < size_y;
        const double value = has_source ? store.GetDbValue(info.tableY, info.data[1], r) : info.defaultValue;
        for (std::int32_t i = size_y - 1; info.tableY == format && i >= record; --i) {
            KSDLL_SetMatrixValue(id, static_cast<std::uint32_t>(i), i > record ? Cell(store, place, r, i - 1) : value);
        }
        for (std::int32_t i = 0; r == 0 && record == 0 && info.table == format && place.format == format && i < size_y;
             ++i) {
            KSDLL_SetMatrixValue(id, static_cast<std::uint32_t>(i), value);
        }
    }
}

void InsertAsTold(MemoryResidentData& store, std::int32_t format, std::int32_t record) {
    store.ChangeCurrentDbSize(format, 1);
    ToldMatrices(store, format);
    if (record < store.GetCurrentDbSize(format) - 1) {
        ToldShuffle(store, format, record);
    }
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        const bool is_plain = (store.GetDbType(format, field) & (TypeBit::kMatrix | TypeBit::kFreeString)) == 0;
        if (is_plain && !store.ClassDefined(format, field, Classes::kFreeFormat) &&
            !store.ClassDefined(format, field, Classes::kEvaluate) &&
            !store.ClassDefined(format, field, Classes::kAutomaticKey)) {
            store.SetDbValue(format, field, record, store.GetDbDefaultValue(format, field));
        }
    }
    for (const std::int32_t q : {kOther, kRows}) {
        for (std::int32_t field = 0; field < store.GetDbFields(q); ++field) {
            const field_info& info = *store.GetFieldInfo(q, field);
            const bool is_list =
                store.ClassDefined(q, field, Classes::kList) || store.ClassDefined(q, field, Classes::kParallelList);
            const bool is_own_associate = q == format && store.ClassDefined(q, field, Classes::kAssociate);
            if (info.matrixColumn != nullptr && !is_list && !is_own_associate &&
                (info.table == format || info.tableY == format)) {
                ToldGrowth(store, {q, field}, format, record);
            }
        }
    }
}

using Insertion = StoreTest;

std::vector<std::int32_t> hook_calls;

TEST_F(Insertion, ImpossiblePlacesMeanTheEndAndHooksHearOfThePlace) {
    const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key", 1.0)}, 2);
    const auto first = [](std::int32_t record) {
        hook_calls.push_back(record);
    };
    const auto second = [](std::int32_t record) {
        hook_calls.push_back(record + 100);
    };
    SetSequencerFunctions(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, first, second,
                          nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    hook_calls.clear();
    EXPECT_EQ(KSDLL_InsertDbItem(*store, format, 0), 0);
    SetCurrentModule(KestronaModule::Sequencer);
    KSDLL_InsertDbItem(*store, format, 1);
    EXPECT_TRUE(hook_calls.empty()); // not the format of the orders
    SetSequencerOrderFormat(format);
    for (const std::int32_t record : {1, -1, 77, -2147483647 - 1, 2147483647, kFirstScratchRecord}) {
        KSDLL_InsertDbItem(*store, format, record);
    }
    EXPECT_EQ(hook_calls, (std::vector<std::int32_t>{1, 101, 5, 105, 6, 106, 7, 107, 8, 108, 9, 109}));
    EXPECT_EQ(store->GetCurrentDbSize(format), 10);
    for (const std::int32_t none : {-1, 1, 999, 1000, 2147483647}) {
        EXPECT_EQ(KSDLL_InsertDbItem(*store, none, 0), 0);
        EXPECT_EQ(KSDLL_CreateRecord(*store, none), none == 1 || none == 999 ? 1 : -1);
    }
}

TEST_F(Insertion, NewKeysFollowTheLargestByAtMostOne) {
    struct Case {
        double default_value;
        std::vector<double> keys;
        double next;
    };

    for (const auto& [default_value, keys, next] : {Case{1.0, {}, 1.0},
                                                    {1.0, {4.0, 2.0}, 5.0},
                                                    {0.5, {4.0}, 4.5},
                                                    {7.0, {4.0}, 5.0},
                                                    {-1.0, {4.0}, 3.0},
                                                    {-1.0, {}, -1.0}}) {
        const std::int32_t format =
            AddTable(*store, L"F", {Number(L"Key", default_value)}, static_cast<std::int32_t>(keys.size()));
        for (std::size_t i = 0; i < keys.size(); ++i) {
            store->SetDbKeyValue(format, static_cast<std::int32_t>(i), keys[i]);
        }
        double value = 0.0;
        find_next_value(*store, format, 0, &value);
        EXPECT_EQ(value, next);
        EXPECT_EQ(KSDLL_CreateRecord(*store, format), static_cast<std::int32_t>(keys.size()));
        EXPECT_EQ(store->GetDbKeyValue(format, static_cast<std::int32_t>(keys.size())), next);
    }
    double value = 5.0;
    find_next_value(*store, 0, 9, &value);
    EXPECT_EQ(value, 0.0);
}

TEST_F(Insertion, AnInsertionAtTheEndLeavesTheScratchRowAlone) {
    const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key", 1.0), Number(L"A")}, 3);
    store->SetDbValue(format, 1, kFirstScratchRecord, 42.0);
    KSDLL_InsertDbItem(*store, format, 3);
    EXPECT_EQ(store->GetDbValue(format, 1, kFirstScratchRecord), 42.0);
    KSDLL_InsertDbItem(*store, format, 0);
    EXPECT_EQ(store->GetDbValue(format, 1, kFirstScratchRecord), 0.0);
}

// What grows is remembered; whatever changes it must show at the next insertion.
TEST_F(Insertion, RememberedGrowthFollowsTheSchema) {
    const std::int32_t rows = AddTable(*store, L"Rows", {Number(L"Key", 1.0)});
    const auto add = [&](const wchar_t* name) {
        const std::int32_t format = AddTable(*store, name, {Number(L"Key", 1.0), Matrix(L"M", {}, -1, rows)}, 0);
        KSDLL_CreateRecord(*store, format);
        return format;
    };
    const auto size = [&](std::int32_t format) {
        return KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(*store, format, 1, 0));
    };
    KSDLL_CreateRecord(*store, rows);
    const std::int32_t first = add(L"First");
    KSDLL_CreateRecord(*store, rows);
    EXPECT_EQ(size(first), 2);
    const std::int32_t second = AddTable(*store, L"Second", {Number(L"Key", 1.0), Matrix(L"M", {}, -1, rows)}, 1);
    KSDLL_CreateRecord(*store, rows); // no other format was inserted into since
    EXPECT_EQ(size(second), 3);
    store->SetDbExtension(first, KSDLL_AddText(L"dat"));
    KSDLL_CreateRecord(*store, rows);
    EXPECT_EQ(size(first), 3);
    EXPECT_EQ(size(second), 4);

    store.reset(); // the next store is likely to stand in the same place
    store = CreateMemoryResidentData();
    AddTable(*store, L"Rows", {Number(L"Key", 1.0)});
    KSDLL_CreateRecord(*store, rows);
    store.reset();
    store = CreateMemoryResidentData();
    AddTable(*store, L"Rows", {Number(L"Key", 1.0), Matrix(L"M", {}, -1, rows)});
    for (std::int32_t i = 1; i <= 3; ++i) {
        KSDLL_CreateRecord(*store, rows);
        EXPECT_EQ(size(rows), i);
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

TEST_F(Insertion, TheDebugLogTellsOfSteps) {
    RecordingLogger& logger = InstallRecordingLogger();
    const std::int32_t other = AddTable(*store, L"Other", {Number(L"Key", 1.0)}, 1);
    const std::int32_t format = AddTable(*store, L"Format",
                                         {Number(L"Key", 1.0), Matrix(L"Grid", {Classes::k3DMatrix}, other, other),
                                          Matrix(L"List", {Classes::kList}, -1, -1)});
    KSDLL_CreateRecord(*store, format);
    const std::vector<std::wstring> plain{L"Inserting an Item", L"About to Create Matrix", L"Matrix Created",
                                          L"Array sizes adjusted", L"Field shuffle is done"};
    EXPECT_EQ(logger.lines, plain);
    EnableDebugLogging();
    logger.lines.clear();
    KSDLL_CreateRecord(*store, format);
    EXPECT_TRUE(std::ranges::any_of(logger.lines, [](const auto& line) { return line.starts_with(L"ARRAY ID is "); }));
    logger.lines.clear();
    KSDLL_CreateRecord(*store, other);
    const std::vector<std::wstring> grown{L"Inserting an Item",
                                          L"Array sizes adjusted",
                                          L"Field shuffle is done",
                                          L"Grow matrix for field 1 in db 1",
                                          L"Changed Format id 1, Table 0, Table Y 0",
                                          L"Changed Format id 1, Table 0, Table Y 0"};
    EXPECT_EQ(logger.lines, grown);
}

} // namespace

} // namespace Kestrona
