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
        kSum,
        kParallel,
        kPlain
    };

    Matrices() {
        format = AddTable(*store, L"Plant",
                          {Number(L"Key", -1.0), Plan(L"List", {Classes::kList}), Plan(L"Grid", {Classes::k3DMatrix}),
                           Plan(L"Common", {Classes::kCommonMatrix}), Plan(L"Sum", {Classes::kEvaluate}),
                           Plan(L"Parallel", {Classes::kParallelList}), Number(L"Plain")},
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
    const std::int32_t id = Create(0, 2);
    KSDLL_SetMatrixValue(id, kLimit - 1, 1.0);
    EXPECT_EQ(KSDLL_GetMatrixSize(id), static_cast<std::int32_t>(kLimit - 1));
    EXPECT_EQ(Get(2, kLimit - 1), kDefault);
}

TEST_F(Matrices, TheTableGrowsByDoublingThenBySteps) {
    ASSERT_EQ(GetTotalMatrixCount(), 128);
    std::int32_t made = 0;
    for (const auto& [count, capacity] :
         {std::pair{128, 128}, {129, 256}, {256, 256}, {257, 512}, {4096, 4096}, {4097, 8192}, {8193, 12288}}) {
        for (; made < count; ++made) {
            Create(0, made);
        }
        EXPECT_EQ(GetTotalMatrixCount(), capacity) << count;
    }
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
    for (const auto& [of, field, record] : {std::tuple{-1, 1, 0},
                                            {1000, 1, 0},
                                            {format, -1, 0},
                                            {format, 99, 0},
                                            {format, +kPlain, 0},
                                            {format, +kList, -1},
                                            {format, +kList, kLastScratchRecord + 1}}) {
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

TEST_F(Matrices, AFreedMatrixComesAgainEmptyUnderItsId) {
    const std::int32_t id = Create(3, 0);
    KSDLL_SetMatrixValue(id, 1, 4.0);
    KSDLL_FreeMatrix(id);
    EXPECT_EQ(Create(3, 0), id);
    EXPECT_EQ(Get(0, 1), kDefault);
}

TEST_F(Matrices, FreeingTheElementsOfAllKeepsTheSizes) {
    const std::int32_t id = Create(3, 0);
    KSDLL_SetMatrixValue(id, 1, 4.0);
    for (int i = 0; i < 2; ++i) {
        KSDLL_FreeMatrixMemory();
        EXPECT_EQ(KSDLL_GetMatrixSize(id), 3);
        EXPECT_EQ(Get(0, 1), 0.0);
    }
    EXPECT_EQ(Create(3, 0), id);
    EXPECT_EQ(Get(0, 1), kDefault);
}

TEST_F(Matrices, EveryRecordHasTheCommonMatrixOfTheFirst) {
    EXPECT_EQ(Create(4, 3, kCommon), -1); // the first record has none yet
    const std::int32_t id = Create(4, 0, kCommon);
    EXPECT_EQ(Create(9, 3, kCommon), id);
    EXPECT_EQ(KSDLL_GetMatrixSize(id), 4);
    EXPECT_EQ(KSDLL_GetDbMatrix(*store, format, kCommon, 3), id);
}

TEST_F(Matrices, ACalculatedMatrixWithoutAnEngineKeepsItsSizeOnly) {
    const std::int32_t id = Create(4, 1, kSum);
    KSDLL_SetMatrixValue(id, 0, 1.0);
    EXPECT_EQ(Get(1, 0, kSum), 0.0);
    EXPECT_EQ(KSDLL_GetMatrixSize(id), 4);
    EXPECT_EQ(Create(6, 1, kSum), id);
    EXPECT_EQ(KSDLL_GetMatrixSize(id), 6);
}

TEST_F(Matrices, EmptyingAFormatLeavesNoOldElements) {
    for (const std::int32_t field : {+kList, +kGrid, +kCommon}) {
        for (std::int32_t record = 0; record < 10; ++record) {
            KSDLL_SetMatrixValue(Create(3, record, field), 1, 4.0);
        }
    }
    const std::int32_t scratch = Create(3, kFirstScratchRecord);
    const std::int32_t first = KSDLL_GetDbMatrix(*store, format, kCommon, 0);
    store->SetCurrentDbSize(format, 0);
    for (const std::int32_t field : {+kList, +kGrid, +kCommon}) {
        EXPECT_EQ(KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(*store, format, field, 9)), 0) << field;
    }
    EXPECT_EQ(KSDLL_GetMatrixSize(scratch), 3);
    KSDLL_ResizeMatrix(first, 3, 0, 0);
    EXPECT_EQ(Get(0, 1, kCommon), 4.0); // only sized away
    KSDLL_FreeMatrices(*store, format);
    store->SetCurrentDbSize(format, 10);
    EXPECT_EQ(Create(3, 9), KSDLL_GetDbMatrix(*store, format, kList, 9));
    EXPECT_EQ(Get(9, 1), kDefault);
    EXPECT_EQ(Get(0, 1, kCommon), 0.0);
    EXPECT_EQ(KSDLL_GetMatrixSize(scratch), 3);
}

TEST_F(Matrices, GoWithTheColumnThatNamesThem) {
    const auto fill = [&](std::int32_t record) {
        const std::int32_t id = Create(3, record);
        EXPECT_EQ(KSDLL_GetMatrixSize(id), 3);
        return id;
    };
    std::int32_t id = fill(1);
    store->CreateDbMatrix(format, kList);
    EXPECT_EQ(KSDLL_GetMatrixSize(id), 0);
    id = fill(1);
    store->AssignDbMatrix(format, kGrid, kList);
    store->FreeFieldMemory(format, kList);
    EXPECT_EQ(KSDLL_GetMatrixSize(id), 3); // the other field still holds it
    store->FreeFieldMemory(format, kGrid);
    EXPECT_EQ(KSDLL_GetMatrixSize(id), 0);

    const std::unique_ptr<MemoryResidentData> other = CreateMemoryResidentData();
    AddTable(*other, L"Other", {Number(L"Key"), Plan(L"List")}, 3);
    const std::int32_t kept = KSDLL_CreateMatrix(*other, 5, 0, 1, 0);
    id = Create(3, kLastScratchRecord, kCommon);
    EXPECT_EQ(id, -1);
    id = Create(3, 0, kCommon);
    Create(3, kLastScratchRecord, kCommon);
    store->DestroyFormat(format);
    EXPECT_EQ(KSDLL_GetMatrixSize(id), 0);
    store->FreeDbMemory();
    EXPECT_EQ(KSDLL_GetMatrixSize(kept), 5); // another store's
}

TEST_F(Matrices, ElementsMarkTheRecordsOfTheirNumber) {
    const auto expect_marks = [&](std::initializer_list<std::int32_t> marks, const char* after) {
        for (std::int32_t record = 0; record < 10; ++record) {
            const bool marked = std::ranges::find(marks, record) != marks.end();
            EXPECT_EQ(store->GetFormatInfo(format)->changedRecords.Lookup(record), marked) << after << ' ' << record;
        }
        store->GetFormatInfo(format)->changedRecords.Clear();
    };
    const std::int32_t id = Create(2, 1);
    expect_marks({1}, "create"); // the identity column's mark
    KSDLL_SetMatrixValue(id, 1, 3.0);
    EXPECT_EQ(KSDLL_GetMatrixRecordState(*store, format, kList, 1), 2);
    EXPECT_EQ(KSDLL_GetMatrixRecordState(*store, format, kList, 2), 0); // no matrix
    expect_marks({1}, "write");
    KSDLL_SetMatrixValue(id, 1, kDefault);
    KSDLL_SetMatrixValue(id, 0, 3.0);
    store->GetFormatInfo(format)->changedRecords.Erase(1);
    KSDLL_SetMatrixValue(id, 1, kDefault);
    expect_marks({0}, "write of what stands there");
    Create(5, 1);
    expect_marks({2, 3, 4}, "grow");
    KSDLL_ResizeMatrix(id, 1, 0, 0);
    expect_marks({1, 2, 3, 4}, "shrink");
    KSDLL_ZeroMatrixSize(id);
    KSDLL_SetMatrixValue(id, 8, 1.0);
    expect_marks({}, "size alone");
    KSDLL_SetMatrixValue(Create(2, kFirstScratchRecord), 0, 3.0);
    expect_marks({}, "scratch");
}

TEST_F(Matrices, AMatrixOfAnExcludedFormatIsNotTracked) {
    Field excluded = Number(L"Key");
    excluded.classes = {Classes::kExcludeFromDb};
    for (const auto& [key, list] :
         {std::pair{excluded, Plan(L"List")}, {Number(L"Key"), Plan(L"List", {Classes::kExcludeFromDb})}}) {
        const std::int32_t table = AddTable(*store, L"T" + std::to_wstring(store->GetFormatCount()), {key, list}, 3);
        const std::int32_t id = KSDLL_CreateMatrix(*store, 3, table, 1, 0);
        KSDLL_SetMatrixValue(id, 1, 2.0);
        EXPECT_FALSE(store->GetDbChanged(table));
        EXPECT_FALSE(KSDLL_GetMatrixChanged(*store, table, 1));
    }
}

TEST_F(Matrices, ChangesAreToldAndForgotten) {
    EXPECT_FALSE(KSDLL_GetMatrixChanged(*store, format, kPlain));
    EXPECT_FALSE(KSDLL_GetMatrixChanged(*store, -1, 0));
    EXPECT_FALSE(KSDLL_GetMatrixChanged(*store, format, kList));
    const std::int32_t id = Create(2, 4);
    KSDLL_SetMatrixValue(id, 0, 1.0);
    EXPECT_TRUE(KSDLL_GetMatrixChanged(*store, format, kList));
    KSDLL_ResetMatrixChanged(*store, format, kList);
    EXPECT_FALSE(KSDLL_GetMatrixChanged(*store, format, kList));
    EXPECT_FALSE(store->GetDbChanged(format));
    KSDLL_SetMatrixValue(id, 1, 1.0);
    store->ResetColumnChanged(format, kList);
    EXPECT_FALSE(store->GetDbChanged(format));
    store->SetCurrentDbSize(format, 0);
    EXPECT_TRUE(KSDLL_GetMatrixChanged(*store, format, kList));
}

TEST_F(Matrices, ATransactionTakesBackTheMarksOfTheNamedRecordsMatrix) {
    const std::int32_t id = Create(4, 2);
    const std::int32_t other = Create(4, 3);
    store->ResetDbChanged(format);
    const std::string transaction = store->StartRecordStateTransaction(format, 2);
    KSDLL_SetMatrixValue(id, 0, 1.0);
    KSDLL_SetMatrixValue(other, 1, 1.0);
    store->RevertRecordState(format, transaction, 2);
    EXPECT_FALSE(store->GetFormatInfo(format)->changedRecords.Lookup(0));
    EXPECT_TRUE(store->GetFormatInfo(format)->changedRecords.Lookup(1));
}

TEST_F(Matrices, AreFoundThroughAReference) {
    const std::int32_t orders = AddTable(*store, L"Orders", {Number(L"Key"), Reference(L"Plant", format, kKey)}, 2);
    store->SetDbKeyValue(format, 4, 40.0);
    store->SetDbValue(orders, 1, 0, 40.0);
    store->SetDbValue(orders, 1, 1, 41.0);
    const std::int32_t id = Create(2, 4);
    const auto locate = [&](std::int32_t record, std::int32_t field) {
        return KSDLL_LocateMatrixId(*store, orders, 1, format, record, field);
    };
    EXPECT_EQ(locate(0, kList), id);
    EXPECT_EQ(locate(0, kPlain), -1);
    EXPECT_EQ(locate(0, 99), -1);
    EXPECT_EQ(locate(1, kList), -1);
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
    store->SetDbValue(format, kPlain, 1, 5.0);
    const auto get = [&](std::int32_t field) {
        return GetReferencedValue(*store, format, field, 1);
    };
    EXPECT_EQ(get(kGrid), kDefault);
    SetReferencedValue(*store, format, kGrid, 1, 99.0);
    EXPECT_EQ(Get(1, 1, kGrid), 11.0);

    matrixDialogInfo = {.active = true, .xIndex = 1, .yIndex = 2};
    EXPECT_EQ(get(kGrid), 11.0);
    EXPECT_EQ(get(kParallel), 22.0);
    EXPECT_EQ(get(kPlain), 5.0);
    EXPECT_EQ(get(kList), 0.0); // without a matrix, as the cell reads
    SetReferencedValue(*store, format, kGrid, 1, 12.0);
    SetReferencedValue(*store, format, kParallel, 1, 23.0);
    SetReferencedValue(*store, format, kPlain, 1, 6.0);
    EXPECT_EQ(Get(1, 1, kGrid), 12.0);
    EXPECT_EQ(Get(1, 2, kParallel), 23.0);
    EXPECT_EQ(store->GetDbValue(format, kPlain, 1), 6.0);

    matrixDialogInfo = {.active = true};
    EXPECT_EQ(get(kGrid), 0.0);
    SetReferencedValue(*store, format, kGrid, 1, 13.0); // no element: dropped
    EXPECT_EQ(KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(*store, format, kGrid, 1)), 3);
}

TEST_F(Matrices, TheFieldOfADialogAndItsCompanionsGetNoneOfTheirOwn) {
    store->SetDbData(format, kParallel, DataSlot::kAssociateField, kList);
    EXPECT_TRUE(TreatMatrixAsDialog(*store, format, kList));
    EXPECT_FALSE(TreatMatrixAsDialog(*store, format, kPlain));
    EXPECT_FALSE(TreatMatrixAsDialog(*store, format, 99));
    matrixDialogInfo.dialogField = kList;
    EXPECT_FALSE(TreatMatrixAsDialog(*store, format, kList));
    EXPECT_FALSE(TreatMatrixAsDialog(*store, format, kParallel));
    EXPECT_TRUE(TreatMatrixAsDialog(*store, format, kGrid));
}

} // namespace

} // namespace Kestrona
