// Schema operations answer neutrally, and change nothing, whatever numbers they are given.
#include "fixtures/store_test.h"

#include <sstream>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

// No field stands at any of these; format 7 is unused, format 0 has two fields.
constexpr TableColumn kNowhere[] = {{-1, 0}, {kLowest, 0}, {1000, 0},     {kHighest, 0}, {7, 0},  {0, -1},
                                    {0, 2},  {0, 300},     {0, kHighest}, {0, kLowest},  {-1, -1}};
constexpr std::int32_t kNoFormat[] = {-1, kLowest, 1000, kHighest};

class Totality : public StoreTest {
protected:
    Totality() {
        AddTable(*store, L"Only", {Number(L"Key"), Text(L"Note")}, 3);
        store->SetDbValue(0, 0, 1, 7.5);
        store->SetDbString(0, 1, 2, L"kept");
    }

    // Everything that the setters could have changed.
    std::wstring Describe() {
        std::wostringstream out;
        const auto tell = [&](const auto&... values) {
            ((out << values << ' '), ...);
        };
        for (const field_info& info : store->GetFormatInfo(0)->fields) {
            tell(info.name, info.table, info.current.classString, info.parentSortEnabled, info.column,
                 info.stringColumn, info.matrixColumn, info.evaluateExpression.get());
            std::ranges::for_each(info.data, tell);
            std::ranges::for_each(info.current.classWords, tell);
        }
        tell(store->GetDbValue(0, 0, 1), store->GetDbString(0, 1, 2), store->GetDbKey(0), store->GetDbFields(0),
             store->GetCurrentDbSize(0), store->GetFormatCount(), store->GetDbName(0),
             store->GetFormatInfo(0)->childTables.size());
        return out.str();
    }
};

TEST_F(Totality, GettersAreNeutralOutOfRange) {
    MemoryResidentData& s = *store;
    for (const auto [f, x] : kNowhere) {
        SCOPED_TRACE(testing::Message() << f << ' ' << x);
        EXPECT_EQ(s.GetColumnName(f, x) + s.GetDbClassString(f, x) + s.GetDbString(f, x, 0), L"");
        EXPECT_TRUE(s.GetDbType(f, x) == 0 && s.GetDbTable(f, x) == -1 && s.GetDbData(f, x, 0) == 0);
        EXPECT_FALSE(s.ClassDefined(f, x, Class{0, 0}) || s.GetParentSortEnabled(f, x) || s.HasStorage(f, x));
        EXPECT_TRUE(s.GetDbEvaluateExpression(f, x) == nullptr && s.GetDbHiddenIfExpression(f, x) == nullptr);
        EXPECT_TRUE(s.GetMaxValueForColumn(f, x, false) == 0.0 && s.GetMinValueForColumn(f, x, true) == 0.0);
        EXPECT_TRUE(Take(s.DistinctRecords(f, x)).empty() && Take(s.GetRecordsMatchingRow(f, x, 0)).empty());
        EXPECT_TRUE(Take(s.LookupRecords(f, x, 0.0, FindOperator::Equal)).empty());
        EXPECT_TRUE(Take(s.LookupRecords(f, x, nullptr, FindOperator::Equal)).empty());
    }
    for (const std::int32_t f : kNoFormat) {
        SCOPED_TRACE(f);
        EXPECT_TRUE(s.GetDbName(f) == nullptr && s.GetDbCurrentDatasetName(f) == nullptr);
        EXPECT_TRUE(s.GetDbFields(f) == 0 && s.GetCurrentDbSize(f) == 0 && s.GetTimestamp(f) == 0);
        EXPECT_TRUE(s.GetDbKey(f) == -1 && s.GetAssociateTableNumber(f) == -1 && !s.GetDbChanged(f));
        EXPECT_TRUE(s.GetRecordChanged(f, 0) == 0 && s.GetDbUpdate(f, 0) == 0);
        EXPECT_FALSE(s.IsAssociatedTable(f) || s.IsFormatChildOfParent(f, 0) || s.IsFormatChildOfParent(0, f));
        EXPECT_TRUE(s.GetDbKeyValue(f, 0) == -1.0 && s.LookupKeyRecord(f, 0.0) == -1);
        EXPECT_EQ(KSDLL_GetRootTable(s, f), f);
        EXPECT_EQ(FindFirstColumnWithClassification(s, f, Classes::kDatabase), -1);
    }
}

// Everything that a setter could be given ownership of is made anew for each call: the leak checker sees to it that it
// is freed.
TEST_F(Totality, SettersAreDroppedOutOfRange) {
    struct Expression : INativeExpression {
        double Evaluate(IMemoryResidentData&, std::int32_t, std::int32_t, std::wstring*) override { return 0.0; }
    };

    const std::wstring before = Describe();
    for (const auto [f, x] : kNowhere) {
        store->AddDbClass(f, x, Classes::kList);
        store->RemoveDbClass(f, x, Classes::kFreeFormat);
        store->SetDbTable(f, x, 9);
        store->SetDbData(f, x, 0, 9);
        store->SetDbClassString(f, x, L"no");
        store->SetDbString(f, x, 0, L"no");
        store->SetDbEvaluateExpression(f, x, new Expression());
        store->SetDbHiddenIfExpression(f, x, new Expression());
        store->CreateDbValues(f, x);
        store->CreateSpecialisedDataStorage(f, x);
        store->CreateDbStrings(f, x);
        store->CreateDbMatrix(f, x);
        store->AssignDbMatrix(f, x, 0);
        store->AssignDbMatrix(0, 0, x);
        KSDLL_SetMatrixXLabel(*store, f, x, KSDLL_AddText(L"no"));
        store->ClearStringColumn(f, x);
        store->AddIndexToColumn(f, x);
        store->CopyField(f, x, 0, 1);
        store->CopyMatrix(f, x, 0, 0, 0, 1);
        store->CopyMatrix(0, 0, 0, f, x, 1);
        store->SwapMatrix(f, x, 0, 1);
        store->FreeFieldMemory(f, x);
    }
    for (const std::int32_t f : kNoFormat) {
        store->SetDbName(f, KSDLL_AddText(L"no"));
        store->SetDbExtension(f, KSDLL_AddText(L"no"));
        store->SetDefaultDatasetName(f, KSDLL_AddText(L"no"));
        store->SetAssociatedTable(f, KSDLL_AddText(L"no"), true);
        store->AddChildTable(f, 0);
        store->AddChildTable(0, f);
        store->CreateDbFieldInfo(f, 9);
        store->SetDbKey(f, 1);
        store->SetDbUpdate(f, 0, 9);
        store->CopyItemInfo(0, 1, f);
        store->SwapItemInfo(0, 1, f);
        EXPECT_TRUE(store->ItemInfoIsEqual(0, 1, f));
        store->ResizeTable(f, 0);
        store->ChangeCurrentDbSize(f, 9);
        store->SuspendTimestampChangeTracking(f);
        store->ResumeTimestampChangeTracking(f);
        store->RebuildIndexes(f);
        store->EndRecordStateTransaction(f, store->StartRecordStateTransaction(f, 0), 0);
        store->RevertRecordState(f, "unknown", 0);
        store->DestroyFormat(f);
    }
    EXPECT_EQ(Describe(), before);
}

TEST_F(Totality, WordsAndSlotsOutOfRangeReadAsNothingAndTakeNothing) {
    const std::wstring before = Describe();
    for (const std::int32_t number : {-1, 20, 32767, -32768, kLowest, kHighest}) {
        const Class c{static_cast<std::int16_t>(number), 5};
        store->SetDbData(0, 0, number, 5);
        store->SetDbClass(0, 0, number, 5);
        EXPECT_EQ(store->GetDbData(0, 0, number), 0) << number;
        EXPECT_EQ(store->GetDbClass(0, 0, number), 0u) << number;
        if (c.word == number) {
            store->AddDbClass(0, 0, c);
            store->RemoveDbClass(0, 0, c);
            EXPECT_FALSE(store->ClassDefined(0, 0, Class{c.word, 0})) << number;
        }
    }
    store->AddDbClass(0, 0, Class{12, 5}); // the first word behind the last
    EXPECT_EQ(Describe(), before);
}

TEST_F(Totality, CountsAreKeptWithinTheirLimits) {
    for (const auto& [given, kept] : {std::pair{-5, 0}, {1001, 1000}, {1, 1}}) {
        store->SetFormatCount(given);
        EXPECT_EQ(store->GetFormatCount(), kept);
    }
    for (const auto& [given, kept] : {std::pair{kLowest, 0}, {kHighest, kFirstScratchRecord}, {3, 3}}) {
        store->ChangeCurrentDbSize(0, given);
        EXPECT_EQ(store->GetCurrentDbSize(0), kept);
        store->SetCurrentDbSize(0, 0);
    }
    store->SetDbFields(0, -1);
    EXPECT_EQ(store->GetDbFields(0), 0);
}

} // namespace

} // namespace Kestrona
