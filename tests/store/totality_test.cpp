// Schema operations answer neutrally, and change nothing, whatever numbers they are given.
#include "fixtures/store_test.h"

#include <functional>
#include <sstream>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

struct Place {
    std::int32_t format;
    std::int32_t field;
};

// No field stands at any of these; format 7 is unused, format 0 has two fields.
constexpr Place kNowhere[] = {{-1, 0}, {kLowest, 0}, {1000, 0},     {kHighest, 0}, {7, 0},  {0, -1},
                              {0, 2},  {0, 300},     {0, kHighest}, {0, kLowest},  {-1, -1}};
constexpr Place kNoFormat[] = {{-1, 0}, {kLowest, 0}, {1000, 0}, {kHighest, 0}};

class Totality : public StoreTest {
protected:
    Totality() {
        AddTable(*store, L"Only", {Number(L"Key"), Text(L"Note")}, 3);
        store->SetDbValue(0, 0, 1, 7.5);
        store->SetDbString(0, 1, 2, L"kept");
    }

    // Everything that the schema setters of a field could have changed.
    std::wstring Describe() {
        std::wostringstream out;
        for (std::int32_t field = 0; field < 2; ++field) {
            const field_info& info = *store->GetFieldInfo(0, field);
            out << info.name << info.type << ' ' << info.table << ' ' << info.source << ' ' << info.sourceS << ' '
                << info.related << ' ' << info.relatedY << ' ' << info.tableY << ' ' << info.sourceY << ' '
                << info.xLocation << ' ' << info.defaultValue << ' ' << info.current.dialogLevel
                << info.current.classString << info.parentSortEnabled << static_cast<int>(info.readOnly) << info.column
                << info.stringColumn << info.matrixColumn << info.evaluateExpression.get();
            for (const std::int32_t slot : info.data) {
                out << ' ' << slot;
            }
            for (const std::uint32_t word : info.current.classWords) {
                out << ' ' << word;
            }
        }
        out << store->GetDbValue(0, 0, 1) << store->GetDbString(0, 1, 2) << store->GetDbKey(0) << store->GetDbFields(0)
            << store->GetCurrentDbSize(0) << store->GetFormatCount() << store->GetDbName(0);
        return out.str();
    }
};

bool IsEmptyResult(FindResult* result) {
    const std::unique_ptr<FindResult> owned(result);
    return owned->IsEmpty();
}

void ExpectNeutralField(MemoryResidentData& s, std::int32_t f, std::int32_t x) {
    EXPECT_EQ(s.GetColumnName(f, x) + s.GetDbClassString(f, x) + s.GetDbString(f, x, 0), L"");
    EXPECT_TRUE(s.GetDbDefaultValue(f, x) == 0.0 && s.GetDbType(f, x) == 0 && s.GetDbClass(f, x, 0) == 0);
    EXPECT_FALSE(s.ClassDefined(f, x, Classes::kFreeFormat) || s.ClassDefined(f, x, Class{0, 0}));
    EXPECT_TRUE(s.GetDbRelated(f, x) == -1 && s.GetDbRelatedY(f, x) == -1);
    EXPECT_TRUE(s.GetDbTable(f, x) == -1 && s.GetDbTableY(f, x) == -1);
    EXPECT_TRUE(s.GetDbSource(f, x) == -1 && s.GetDbSourceS(f, x) == -1 && s.GetDbSourceY(f, x) == -1);
    EXPECT_TRUE(s.GetDbData(f, x, 0) == 0 && s.GetDbXLocation(f, x) == 0 && s.GetDbDialogLevel(f, x) == 0);
    EXPECT_TRUE(s.GetDbReadOnly(f, x) == ReadOnlyType::No && !s.IsHiddenDialog(f, x));
    EXPECT_FALSE(s.GetParentSortEnabled(f, x) || s.HasStorage(f, x));
    EXPECT_TRUE(s.GetDbEvaluateExpression(f, x) == nullptr && s.GetDbHiddenIfExpression(f, x) == nullptr);
    EXPECT_TRUE(s.GetDbColumn(f, x) == nullptr && s.GetDbStringArray(f, x) == nullptr);
    EXPECT_EQ(s.GetFieldInfo(f, x), nullptr);
    EXPECT_TRUE(s.GetMaxValueForColumn(f, x, false) == 0.0 && s.GetMinValueForColumn(f, x, true) == 0.0);
    EXPECT_TRUE(IsEmptyResult(s.DistinctRecords(f, x)) && IsEmptyResult(s.GetRecordsMatchingRow(f, x, 0)));
    EXPECT_TRUE(IsEmptyResult(s.LookupRecords(f, x, 0.0, FindOperator::Equal)));
    EXPECT_TRUE(IsEmptyResult(s.LookupRecords(f, x, nullptr, FindOperator::Equal)));
}

void ExpectNeutralFormat(MemoryResidentData& s, std::int32_t f) {
    EXPECT_TRUE(s.GetDbName(f) == nullptr && s.GetDbExtension(f) == nullptr && s.GetDefaultDatasetName(f) == nullptr);
    EXPECT_TRUE(s.GetDbCurrentDatasetName(f) == nullptr && s.GetAssociatedTable(f) == nullptr);
    EXPECT_TRUE(s.GetDbFields(f) == 0 && s.GetDbMinLength(f) == 0 && s.GetUserMaxRecords(f) == 0);
    EXPECT_TRUE(s.GetDbKey(f) == -1 && s.GetCopiedFormatSource(f) == -1 && s.GetAssociateTableNumber(f) == -1);
    EXPECT_TRUE(s.GetCurrentDbSize(f) == 0 && s.GetTimestamp(f) == 0 && !s.GetDbChanged(f));
    EXPECT_TRUE(s.GetRecordChanged(f, 0) == 0 && s.GetDbUpdate(f, 0) == 0 && s.GetDbDisplayName(f).empty());
    EXPECT_FALSE(s.IsAssociatedTable(f) || s.IsAssociatedTableEligibleCommonDataset(f));
    EXPECT_FALSE(s.IsFormatChildOfParent(f, 0) || s.IsFormatChildOfParent(0, f));
    EXPECT_TRUE(s.GetDbKeyValue(f, 0) == -1.0 && s.LookupKeyRecord(f, 0.0) == -1);
    EXPECT_EQ(s.GetFormatInfo(f), nullptr);
    EXPECT_TRUE(!KSDLL_IsLoadableTable(s, f) && KSDLL_GetAssociatedTableTSTRING(s, f).empty());
    EXPECT_EQ(KSDLL_GetRootTable(s, f), f);
    EXPECT_EQ(FindFirstColumnWithClassification(s, f, Classes::kDatabase), -1);
}

TEST_F(Totality, GettersAreNeutralOutOfRange) {
    for (const auto [format, field] : kNowhere) {
        SCOPED_TRACE(std::to_string(format) + " " + std::to_string(field));
        ExpectNeutralField(*store, format, field);
    }
    for (const auto [format, field] : kNoFormat) {
        SCOPED_TRACE(format);
        ExpectNeutralFormat(*store, format);
    }
}

// Everything that a field setter could be given ownership of is made anew for each call: the leak checker sees to it
// that it is freed.
TEST_F(Totality, SettersOfAFieldAreDroppedOutOfRange) {
    struct Expression : INativeExpression {
        double Evaluate(IMemoryResidentData&, std::int32_t, std::int32_t, std::wstring*) override { return 0.0; }
    };

    const std::wstring before = Describe();
    for (const auto [f, x] : kNowhere) {
        store->SetColumnName(f, x, L"no");
        store->SetDbType(f, x, 9);
        store->AddDbType(f, x, 9);
        store->SetDbClass(f, x, 1, 9);
        store->AddDbClass(f, x, Classes::kList);
        store->RemoveDbClass(f, x, Classes::kFreeFormat);
        store->SetDbRelated(f, x, 9);
        store->SetDbRelatedY(f, x, 9);
        store->SetDbTable(f, x, 9);
        store->SetDbTableY(f, x, 9);
        store->SetDbSource(f, x, 9);
        store->SetDbSourceS(f, x, 9);
        store->SetDbSourceY(f, x, 9);
        store->SetDbData(f, x, 0, 9);
        store->SetDbReadOnly(f, x, static_cast<ReadOnlyType>(9));
        store->SetDbDialogLevel(f, x, 9);
        store->SetDbXLocation(f, x, 9);
        store->SetDbDefaultValue(f, x, 9);
        store->SetDbClassString(f, x, L"no");
        store->SetDbString(f, x, 0, L"no");
        store->SetParentSortEnabled(f, x, false);
        store->SetDbEvaluateExpression(f, x, new Expression());
        store->SetDbHiddenIfExpression(f, x, new Expression());
        store->CreateDbValues(f, x);
        store->CreateSpecialisedDataStorage(f, x);
        store->CreateDbStrings(f, x);
        store->CreateDbMatrix(f, x);
        store->AssignDbMatrix(f, x, 0);
        store->AssignDbMatrix(0, 0, x);
        store->ClearStringColumn(f, x);
        store->ResetColumnChanged(f, x);
        store->AddIndexToColumn(f, x);
        store->FreeFieldMemory(f, x);
    }
    EXPECT_EQ(Describe(), before);
}

TEST_F(Totality, SettersOfAFormatAreDroppedOutOfRange) {
    const std::wstring before = Describe();
    for (const auto [f, x] : kNoFormat) {
        store->SetDbName(f, KSDLL_AddText(L"no"));
        store->SetDbDisplayName(f, L"no");
        store->SetDbExtension(f, KSDLL_AddText(L"no"));
        store->SetDefaultDatasetName(f, KSDLL_AddText(L"no"));
        store->SetDatasetName(f, L"no");
        store->SetDbCurrentDatasetName(f, L"no");
        store->SetAssociatedTable(f, KSDLL_AddText(L"no"), true);
        store->AddChildTable(f, 0);
        store->AddChildTable(0, f);
        store->SetDbMinLength(f, 9);
        store->SetDbFields(f, 9);
        store->CreateDbFieldInfo(f, 9);
        store->SetDbKey(f, 1);
        store->SetCopiedFormatSource(f, 9);
        store->CreateDbUpdate(f);
        store->SetDbUpdate(f, 0, 9);
        store->SetUserMaxRecords(f, 9);
        store->ResizeTable(f, 0);
        store->SetCurrentDbSize(f, 9);
        store->ChangeCurrentDbSize(f, 9);
        store->SetDbKeyValue(f, 0, 9.0);
        store->ResetDbChanged(f);
        store->ResetDbChangedIncludeChildTables(f);
        store->SuspendTimestampChangeTracking(f);
        store->ResumeTimestampChangeTracking(f);
        store->InvalidateIndexes(f);
        store->RebuildIndexes(f);
        store->EndRecordStateTransaction(f, store->StartRecordStateTransaction(f, 0), 0);
        store->RevertRecordState(f, "unknown", 0);
        store->DestroyFormat(f);
    }
    EXPECT_EQ(Describe(), before);
    EXPECT_TRUE(store->GetFormatInfo(0)->childTables.empty());
}

TEST_F(Totality, WordsAndSlotsOutOfRangeReadAsNothingAndTakeNothing) {
    const std::wstring before = Describe();
    for (const std::int32_t number : {-1, 20, 32767, -32768, kLowest, kHighest}) {
        store->SetDbData(0, 0, number, 5);
        store->SetDbClass(0, 0, number, 5);
        EXPECT_EQ(store->GetDbData(0, 0, number), 0) << number;
        EXPECT_EQ(store->GetDbClass(0, 0, number), 0u) << number;
    }
    for (const int word : {-1, 12, 32767, -32768}) {
        store->AddDbClass(0, 0, Class{static_cast<std::int16_t>(word), 5});
        store->RemoveDbClass(0, 0, Class{static_cast<std::int16_t>(word), 5});
        EXPECT_FALSE(store->ClassDefined(0, 0, Class{static_cast<std::int16_t>(word), 0})) << word;
    }
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
