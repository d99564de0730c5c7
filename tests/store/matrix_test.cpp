#include "fixtures/store_test.h"

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

constexpr double kDefault = 7.5;
constexpr std::uint32_t kLimit = 0x7fffffff;
constexpr auto kHighestId = std::numeric_limits<std::int32_t>::max();

Field Plan(const std::wstring& name, std::vector<Class> classes = {}) {
    return Matrix(name, std::move(classes), 0, -1, kDefault);
}

class Matrices : public StoreTest {
protected:
    enum : std::int32_t {
        kKey,
        kList,
        kGrid,
        kCommon,
        kParallel,
        kPlain
    };

    Matrices() {
        format = AddTable(*store, L"Plant",
                          {Number(L"Key", -1.0), Plan(L"List", {Classes::kList}), Plan(L"Grid", {Classes::k3DMatrix}),
                           Plan(L"Common", {Classes::kCommonMatrix}), Plan(L"Parallel", {Classes::kParallelList}),
                           Number(L"Plain")},
                          10);
        store->ResetDbChanged(format);
    }

    std::int32_t Create(std::uint32_t size, std::int32_t record, std::int32_t field = kList) {
        return KSDLL_CreateMatrix(*store, size, format, field, record);
    }

    double Get(std::int32_t record, std::uint32_t index, std::int32_t field = kList) {
        return KSDLL_GetMatrixValue(*store, format, field, record, index);
    }

    IColumn<std::int32_t>& Identities(std::int32_t field = kList) {
        return *store->GetFieldInfo(format, field)->matrixColumn;
    }

    std::int32_t format = -1;
};

TEST_F(Matrices, TheElementBehindTheLastOneIsReadAndWritten) {
    const std::int32_t id = Create(3, 2);
    EXPECT_EQ(KSDLL_GetDbMatrix(*store, format, kList, 2), id);
    EXPECT_EQ(Get(2, 2), kDefault);
    EXPECT_EQ(Get(2, 3), kDefault);
    EXPECT_EQ(Get(2, 4), 0.0);
    KSDLL_SetMatrixValue(id, 3, 1.0);
    EXPECT_EQ(KSDLL_GetMatrixSize(id), 3);
    EXPECT_EQ(Get(2, 3), 1.0);
    EXPECT_EQ(KSDLL_GetMatrixValueFromId(id, 9, 3), 1.0);
}

TEST_F(Matrices, SizesAndIndicesBeyondTheLimitAreRefused) {
    for (const std::uint32_t size : {kLimit, kLimit + 1, std::numeric_limits<std::uint32_t>::max()}) {
        EXPECT_EQ(KSDLL_GetMatrixSize(Create(size, 0)), 0) << size;
        const std::int32_t id = Create(2, 1);
        KSDLL_SetMatrixValue(id, size, 1.0);
        KSDLL_ResizeMatrix(id, size, 0, 0);
        EXPECT_EQ(KSDLL_GetMatrixSize(id), 2) << size;
        EXPECT_EQ(Get(1, size), 0.0) << size;
    }
    KSDLL_SetMatrixValue(Create(0, 2), kLimit - 1, 1.0);
    EXPECT_EQ(Get(2, kLimit - 1), kDefault);
}

TEST_F(Matrices, WhatIsNoMatrixReadsNothingAndTakesNothing) {
    const std::int32_t freed = Create(3, 0);
    KSDLL_FreeMatrix(freed);
    for (const std::int32_t id : {-1, -7, freed, 77, 1 << 30, kHighestId, std::numeric_limits<std::int32_t>::min()}) {
        KSDLL_FreeMatrix(id);
        KSDLL_ZeroMatrixSize(id);
        KSDLL_ResizeMatrix(id, 5, 0, 0);
        KSDLL_SetMatrixValue(id, 0, 1.0);
        KSDLL_DeleteMatrixRow(id, 0);
        EXPECT_EQ(KSDLL_GetMatrixSize(id), 0) << id;
        EXPECT_EQ(KSDLL_GetMatrixValueFromId(id, 0, 0), 0.0) << id;
        Identities().SetValue(1, id);
        EXPECT_EQ(Get(1, 0), 0.0) << id;
        EXPECT_EQ(KSDLL_GetMatrixRecordState(*store, format, kList, 1), 0) << id;
    }
    for (const auto& [of, field, record] :
         {std::tuple{-1, 1, 0}, {format, 99, 0}, {format, +kPlain, 0}, {format, +kList, kLastScratchRecord + 1}}) {
        EXPECT_EQ(KSDLL_CreateMatrix(*store, 3, of, field, record), -1) << of << ' ' << field << ' ' << record;
        EXPECT_EQ(KSDLL_GetDbMatrix(*store, of, field, record), -1);
        EXPECT_EQ(KSDLL_GetMatrixValue(*store, of, field, record, 0), 0.0);
    }
    EXPECT_EQ(Create(0, 5), freed + 1); // nothing of this used up an id
}

TEST_F(Matrices, IdsFromElsewhereNeitherComeAgainNorReachFarOut) {
    for (const std::int32_t bad : {-7, 1 << 30, kHighestId}) {
        Identities().SetValue(0, bad);
        const std::int32_t id = Create(2, 0);
        EXPECT_LT(id, 128);
        EXPECT_GE(id, 0);
        EXPECT_EQ(Identities().GetValue(0), id);
    }
    Identities().SetValue(1, 5000);
    EXPECT_EQ(Create(2, 1), 5000);
    EXPECT_EQ(GetTotalMatrixCount(), 5001);
    EXPECT_EQ(Create(2, 2), 5001);
}

TEST_F(Matrices, FreedOnesComeAgainEmptyUnderTheirId) {
    const std::int32_t id = Create(3, 0);
    for (const bool all : {false, true}) {
        KSDLL_SetMatrixValue(id, 1, 4.0);
        all ? KSDLL_FreeMatrixMemory() : KSDLL_FreeMatrix(id);
        EXPECT_EQ(KSDLL_GetMatrixSize(id), all ? 3 : 0); // without the elements of all, sizes stay
        EXPECT_EQ(Get(0, 1), 0.0);
        EXPECT_EQ(Create(3, 0), id);
        EXPECT_EQ(Get(0, 1), kDefault);
    }
}

TEST_F(Matrices, EmptyingAFormatLeavesNoOldElements) {
    for (const std::int32_t field : {+kList, +kCommon}) {
        for (std::int32_t record = 0; record < 10; ++record) {
            KSDLL_SetMatrixValue(Create(3, record, field), 1, 4.0);
        }
    }
    const std::int32_t scratch = Create(3, kFirstScratchRecord);
    const std::int32_t common = KSDLL_GetDbMatrix(*store, format, kCommon, 0);
    const std::int32_t last = KSDLL_GetDbMatrix(*store, format, kList, 9);
    store->SetCurrentDbSize(format, 0);
    EXPECT_EQ(KSDLL_GetMatrixSize(last), 0);
    EXPECT_EQ(KSDLL_GetMatrixSize(scratch), 3);
    KSDLL_ResizeMatrix(common, 3, 0, 0);
    EXPECT_EQ(Get(0, 1, kCommon), 4.0); // only sized away
    KSDLL_FreeMatrices(*store, format);
    store->SetCurrentDbSize(format, 10);
    EXPECT_EQ(Create(3, 9), last);
    EXPECT_EQ(Get(9, 1), kDefault);
    EXPECT_EQ(Get(0, 1, kCommon), 0.0);
    EXPECT_EQ(KSDLL_GetMatrixSize(scratch), 3);
}

TEST_F(Matrices, GoWithTheColumnThatNamesThem) {
    std::int32_t id = Create(3, 1);
    store->CreateDbMatrix(format, kList);
    EXPECT_EQ(KSDLL_GetMatrixSize(id), 0);
    id = Create(3, 1);
    store->AssignDbMatrix(format, kGrid, kList);
    store->FreeFieldMemory(format, kList);
    EXPECT_EQ(KSDLL_GetMatrixSize(id), 3); // the other field still holds it
    store->FreeFieldMemory(format, kGrid);
    EXPECT_EQ(KSDLL_GetMatrixSize(id), 0);

    const std::unique_ptr<MemoryResidentData> other = CreateMemoryResidentData();
    AddTable(*other, L"Other", {Number(L"Key"), Plan(L"List")}, 3);
    const std::int32_t kept = KSDLL_CreateMatrix(*other, 5, 0, 1, 0);
    EXPECT_EQ(Create(3, kLastScratchRecord, kCommon), -1); // the first record has none yet
    id = Create(3, 0, kCommon);
    store->DestroyFormat(format);
    EXPECT_EQ(KSDLL_GetMatrixSize(id), 0);
    store->FreeDbMemory();
    EXPECT_EQ(KSDLL_GetMatrixSize(kept), 5); // another store's
}

TEST_F(Matrices, ElementsMarkTheRecordsOfTheirNumber) {
    const auto marks = [&] {
        std::string records;
        for (const auto& [record, changed] : store->GetFormatInfo(format)->changedRecords.Entries()) {
            records += changed ? std::to_string(record) + ' ' : "";
        }
        store->GetFormatInfo(format)->changedRecords.Clear();
        return records;
    };
    const std::int32_t id = Create(2, 1);
    EXPECT_EQ(marks(), "1 "); // of the column that names the matrices
    KSDLL_SetMatrixValue(id, 1, 3.0);
    EXPECT_EQ(KSDLL_GetMatrixRecordState(*store, format, kList, 1), 2);
    EXPECT_EQ(KSDLL_GetMatrixRecordState(*store, format, kList, 2), 0); // no matrix
    EXPECT_EQ(marks(), "1 ");
    KSDLL_SetMatrixValue(id, 0, 3.0);
    KSDLL_SetMatrixValue(id, 1, 3.0); // stands there
    EXPECT_EQ(marks(), "0 ");
    Create(5, 1);
    EXPECT_EQ(marks(), "2 3 4 ");
    KSDLL_ResizeMatrix(id, 1, 0, 0);
    EXPECT_EQ(marks(), "1 2 3 4 ");
    KSDLL_ZeroMatrixSize(id);
    KSDLL_SetMatrixValue(id, 8, 1.0);
    EXPECT_EQ(marks(), ""); // the size alone
    KSDLL_SetMatrixValue(Create(2, kFirstScratchRecord), 0, 3.0);
    EXPECT_EQ(marks(), "");
}

TEST_F(Matrices, ChangesAreToldAndForgotten) {
    const auto is_changed = [&] {
        EXPECT_EQ(store->GetDbChanged(format), KSDLL_GetMatrixChanged(*store, format, kList));
        return store->GetDbChanged(format);
    };
    EXPECT_FALSE(KSDLL_GetMatrixChanged(*store, format, kPlain));
    EXPECT_FALSE(KSDLL_GetMatrixChanged(*store, -1, 0));
    EXPECT_FALSE(is_changed());
    const std::int32_t id = Create(2, 4);
    EXPECT_TRUE(is_changed());
    KSDLL_ResetMatrixChanged(*store, format, kList);
    EXPECT_FALSE(is_changed());
    KSDLL_SetMatrixValue(id, 1, 1.0);
    EXPECT_TRUE(is_changed());
    store->ResetColumnChanged(format, kList);
    EXPECT_FALSE(is_changed());
    store->SetCurrentDbSize(format, 0);
    EXPECT_TRUE(KSDLL_GetMatrixChanged(*store, format, kList));
    for (const std::int32_t excluded : {0, 1}) {
        std::vector<Field> fields{Number(L"Key"), Plan(L"List")};
        fields[static_cast<std::size_t>(excluded)].classes = {Classes::kExcludeFromDb};
        const std::int32_t table = AddTable(*store, L"Table", fields, 3);
        KSDLL_SetMatrixValue(KSDLL_CreateMatrix(*store, 3, table, 1, 0), 1, 2.0);
        EXPECT_FALSE(store->GetDbChanged(table) || KSDLL_GetMatrixChanged(*store, table, 1)) << excluded;
    }
}

TEST_F(Matrices, ATransactionTakesBackTheMarksOfTheNamedRecordsMatrix) {
    const std::int32_t ids[] = {Create(4, 2), Create(4, 3)};
    store->ResetDbChanged(format);
    const std::string transaction = store->StartRecordStateTransaction(format, 2);
    KSDLL_SetMatrixValue(ids[0], 0, 1.0);
    KSDLL_SetMatrixValue(ids[1], 1, 1.0);
    store->RevertRecordState(format, transaction, 2);
    EXPECT_EQ(store->GetFormatInfo(format)->changedRecords.Entries(), (std::vector{std::pair{1, true}}));
}

TEST_F(Matrices, AreFoundThroughAReference) {
    const std::int32_t orders = AddTable(*store, L"Orders", {Number(L"Key"), Reference(L"Plant", format, kKey)}, 2);
    store->SetDbKeyValue(format, 4, 40.0);
    store->SetDbValue(orders, 1, 0, 40.0);
    store->SetDbValue(orders, 1, 1, 41.0);
    const std::int32_t id = Create(2, 4);
    for (const auto& [record, field, found] :
         {std::tuple{0, +kList, id}, {0, +kPlain, -1}, {0, 99, -1}, {1, +kList, -1}}) {
        EXPECT_EQ(KSDLL_LocateMatrixId(*store, orders, 1, format, record, field), found) << record << ' ' << field;
    }
    EXPECT_EQ(KSDLL_LocateMatrixId(*store, orders, 1, -1, 0, kList), -1);
    EXPECT_EQ(KSDLL_LocateMatrixId(*store, 99, 1, format, 0, kList), -1);
}

TEST_F(Matrices, KeepLabelsAndLinksOfTheField) {
    EXPECT_EQ(KSDLL_GetMatrixXLabel(*store, format, kGrid), nullptr);
    wchar_t* const label = KSDLL_AddText(L"From");
    KSDLL_SetMatrixXLabel(*store, format, kGrid, label);
    KSDLL_SetMatrixYLabel(*store, format, kGrid, KSDLL_AddText(L"To"));
    EXPECT_EQ(KSDLL_GetMatrixXLabel(*store, format, kGrid), label);
    EXPECT_STREQ(KSDLL_GetMatrixYLabel(*store, format, kGrid), L"To");
    KSDLL_SetMatrixXLabel(*store, format, 99, KSDLL_AddText(L"freed")); // the leak sanitizer tells
    KSDLL_SetDbMatrixField(*store, format, kParallel, kList);
    EXPECT_EQ(KSDLL_GetDbMatrixField(*store, format, kParallel), kList);
    EXPECT_EQ(KSDLL_GetDbMatrixField(*store, format, 99), -1);
}

TEST_F(Matrices, AnOpenDialogNamesTheElement) {
    KSDLL_SetMatrixValue(Create(3, 1, kGrid), 1, 11.0);
    KSDLL_SetMatrixValue(Create(3, 1, kParallel), 2, 22.0);
    const auto read = [&] {
        Doubles values;
        for (const std::int32_t field : {+kGrid, +kParallel, +kPlain, +kList}) {
            values.push_back(GetReferencedValue(*store, format, field, 1));
        }
        return values;
    };
    const auto write = [&](double value) {
        for (const std::int32_t field : {+kGrid, +kParallel, +kPlain}) {
            SetReferencedValue(*store, format, field, 1, value);
        }
    };
    write(5.0); // no dialog: of a matrix nothing
    EXPECT_EQ(read(), (Doubles{kDefault, kDefault, 5.0, kDefault}));
    matrixDialogInfo = {.active = true, .xIndex = 1, .yIndex = 2};
    EXPECT_EQ(read(), (Doubles{11.0, 22.0, 5.0, 0.0}));
    write(12.0);
    EXPECT_EQ(read(), (Doubles{12.0, 12.0, 12.0, 0.0}));
    matrixDialogInfo = {.active = true};
    write(13.0); // no element
    EXPECT_EQ(read(), (Doubles{0.0, 0.0, 13.0, 0.0}));
    EXPECT_EQ(Cells(format, kGrid, 1), (Doubles{kDefault, 12.0, kDefault}));

    store->SetDbData(format, kParallel, DataSlot::kAssociateField, kList);
    EXPECT_TRUE(TreatMatrixAsDialog(*store, format, kList));
    EXPECT_FALSE(TreatMatrixAsDialog(*store, format, kPlain));
    EXPECT_FALSE(TreatMatrixAsDialog(*store, format, 99));
    matrixDialogInfo.dialogField = kList;
    EXPECT_FALSE(TreatMatrixAsDialog(*store, format, kList));
    EXPECT_FALSE(TreatMatrixAsDialog(*store, format, kParallel)); // stands beside it
    EXPECT_TRUE(TreatMatrixAsDialog(*store, format, kGrid));
}

} // namespace

} // namespace Kestrona
