// Finding formats and fields by name and class, and records by value.
#include "fixtures/store_test.h"

#include <kestrona/execution_state.h>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

using Search = StoreTest;

TEST_F(Search, FormatsAreFoundByNameOrOneBasedNumber) {
    for (const wchar_t* name : {L"Orders", L"Resources", L"7", L"Orders"}) {
        AddFormat(*store, name, {Number(L"Key")});
    }

    struct Case {
        const wchar_t* name;
        std::int32_t exact;
        std::int32_t lenient;
    };

    for (const auto& [name, exact, lenient] : {Case{L"Orders", 0, 0},
                                               {L"Resources", 1, 1},
                                               {L"orders", -1, -2},
                                               {L"7", 2, 2},
                                               {L"3", -1, 2},
                                               {L" 3x", -1, 2},
                                               {L"0x10", -1, 15},
                                               {L"010", -1, 7},
                                               {L"-2", -1, -3},
                                               {L"none", -1, -2},
                                               {L"", -1, -2},
                                               {nullptr, -1, -2},
                                               {L"99999999999", -1, 2147483646},
                                               {L"-99999999999", -1, -2147483647 - 1}}) {
        EXPECT_EQ(KSDLL_FindFormatImpl(*store, name), exact) << (name != nullptr ? name : L"null");
        EXPECT_EQ(KSDLL_FindFormat(*store, name), lenient) << (name != nullptr ? name : L"null");
    }
}

TEST_F(Search, FormatNamesFollowEveryChange) {
    AddFormat(*store, L"A", {Number(L"Key")});
    AddFormat(*store, L"B", {Number(L"Key")});
    EXPECT_EQ(KSDLL_FindFormat(*store, L"A"), 0);
    store->SetDbName(0, KSDLL_AddText(L"B"));
    EXPECT_EQ(KSDLL_FindFormatImpl(*store, L"A"), -1);
    EXPECT_EQ(KSDLL_FindFormatImpl(*store, L"B"), 0);
    store->SetDbName(0, nullptr);
    EXPECT_EQ(KSDLL_FindFormatImpl(*store, L"B"), 1); // past the hole
    store->SetDbName(3, KSDLL_AddText(L"Far"));
    EXPECT_EQ(KSDLL_FindFormatImpl(*store, L"Far"), -1); // behind the first unused format
    store->SetFormatCount(3);                            // counts the unused one in
    EXPECT_EQ(KSDLL_FindFormatImpl(*store, L"Far"), 3);
    store->GetDbName(3)[0] = L'C'; // written in place
    EXPECT_EQ(KSDLL_FindFormatImpl(*store, L"Far"), -1);
    EXPECT_EQ(KSDLL_FindFormatImpl(*store, L"Car"), 3);
    store->GetDbName(3)[0] = L'F';
    store->SetFormatCount(0);
    EXPECT_EQ(KSDLL_FindFormatImpl(*store, L"Far"), -1);

    const std::unique_ptr<MemoryResidentData> other = CreateMemoryResidentData();
    AddFormat(*other, L"B", {Number(L"Key")});
    store->SetFormatCount(2);
    EXPECT_EQ(KSDLL_FindFormatImpl(*other, L"B"), 0);
    EXPECT_EQ(KSDLL_FindFormatImpl(*store, L"B"), 1);
}

TEST_F(Search, FieldsAreFoundByNameOrNumber) {
    ExecutionState::Instance().set_IsRunningHeadless(true);
    RecordingMessages& messages = InstallRecordingMessages();
    messages.texts = {{0x6a23, L"%s: format %s "}, {0x6a24, L"has no field %s"}};
    const std::int32_t format = AddFormat(*store, L"Orders", {Number(L"Key"), Number(L"2"), Number(L"Name")});

    struct Case {
        const wchar_t* name;
        std::int32_t plain;
        std::int32_t in_context;
    };

    for (const auto& [name, plain, in_context] : {Case{L"Name", 2, 2},
                                                  {L"2", 1, 1},
                                                  {L"1", 0, 1},
                                                  {L"3", 2, -1},
                                                  {L"0", -1, 0},
                                                  {L"name", -2, -1},
                                                  {L"", -2, -1},
                                                  {L"-1", -2, -1}}) {
        messages.boxes.clear();
        EXPECT_EQ(KSDLL_FindField(*store, format, name, nullptr), plain) << name;
        EXPECT_TRUE(messages.boxes.empty()) << name;
        EXPECT_EQ(KSDLL_FindField(*store, format, name, L"Here"), in_context) << name;
        if (in_context == -1) {
            ASSERT_EQ(messages.boxes.size(), 1u) << name;
            EXPECT_EQ(messages.boxes[0].text, std::wstring(L"Here: format Orders has no field ") + name);
        } else {
            EXPECT_TRUE(messages.boxes.empty()) << name;
        }
    }
    EXPECT_EQ(KSDLL_FindField(*store, 9, L"Name", nullptr), -2);
    EXPECT_EQ(KSDLL_FindField(*store, -1, L"1", L"Here"), -1);
}

TEST_F(Search, FieldsAreFoundByClassAndClassificationInOrder) {
    Field tagged = Number(L"Tagged");
    tagged.classes = {Classes::kUnique, Classes::kHidden};
    tagged.classification = L"UNIQUE WORD";
    AddFormat(*store, L"First", {Number(L"Key"), Number(L"Plain")});
    AddFormat(*store, L"Second", {Number(L"Key"), tagged, tagged});
    AddFormat(*store, L"Third", {tagged});
    EXPECT_EQ(FindFirstColumnWithClassification(*store, 1, Classes::kUnique), 1);
    EXPECT_EQ(FindFirstColumnWithClassification(*store, 0, Classes::kUnique), -1);
    EXPECT_EQ(KSDLL_FindFirstClassificationInstance(*store, Class{0, 0x84}), (TableColumn{1, 1}));
    EXPECT_EQ(KSDLL_FindFirstClassificationInstance(*store, Class{0, 0x184}), TableColumn{});
    EXPECT_EQ(KSDLL_FindClassificationInstance(*store, L"UE W"), (TableColumn{1, 1}));
    EXPECT_EQ(KSDLL_FindClassificationInstance(*store, L"UE W", TableColumn{1, 1}), (TableColumn{1, 2}));
    EXPECT_EQ(KSDLL_FindClassificationInstance(*store, L"UE W", 2), (TableColumn{2, 0}));
    EXPECT_EQ(KSDLL_FindClassificationInstance(*store, L"UE W", -5), (TableColumn{1, 1}));
    EXPECT_EQ(KSDLL_FindClassificationInstance(*store, L"unique"), TableColumn{});
}

TEST_F(Search, ReferenceChainsEndAtTheFirstPlainFieldAndInRingsBeforeTheRepeat) {
    // Format n refers to format n + 1; 60 is plain, 61 to 63 are a ring, 70 refers nowhere.
    for (std::int32_t format = 0; format < 80; ++format) {
        const std::int32_t target = format == 63 ? 61 : format == 70 ? 500 : format + 1;
        AddFormat(*store, L"F", {Number(L"Key"), format == 60 ? Number(L"End") : Reference(L"Next", target, 1)});
    }
    store->SetDbSource(75, 1, -1);

    struct Case {
        std::int32_t start;
        std::int32_t end;
    };

    for (const auto [start, end] :
         {Case{60, 60}, {59, 60}, {0, 60}, {61, 63}, {62, 61}, {63, 62}, {64, 70}, {74, 75}}) {
        std::int32_t format = 0;
        std::int32_t field = 0;
        ResolveReferenceChain(*store, start, 1, &format, &field);
        EXPECT_EQ(format, end) << start;
        EXPECT_EQ(field, 1) << start;
    }
    store->SetDbTable(60, 1, 0); // a ring of 61 fields
    store->AddDbClass(60, 1, Classes::kDatabase);
    store->SetDbSource(60, 1, 1);
    std::int32_t format = 0;
    ResolveReferenceChain(*store, 5, 1, &format, nullptr);
    EXPECT_EQ(format, 4);
    ResolveReferenceChain(*store, -3, 1, &format, nullptr);
    EXPECT_EQ(format, -3);
}

TEST_F(Search, KeysAreLookedUpByTheirValue) {
    const std::int32_t format = AddTable(*store, L"Format", {Number(L"A"), Number(L"Key", -1.0)}, 1000, 1);
    for (std::int32_t record = 0; record < 1000; ++record) {
        store->SetDbKeyValue(format, record, 3000.0 - record);
    }
    EXPECT_EQ(KSDLL_GetPrimaryKeyFromRecordNumber(*store, format, 999), 2001.0);
    EXPECT_EQ(store->LookupKeyRecord(format, 2001.0), 999);
    store->SetDbKey(format, 0); // the new key field is indexed from then on
    EXPECT_TRUE(store->GetDbColumn(format, 0)->IsIndexedColumn());
    EXPECT_EQ(store->LookupKeyRecord(format, 0.0), 0);
    store->SetDbKey(format, -1);
    EXPECT_EQ(store->LookupKeyRecord(format, 0.0), -1);
}

TEST_F(Search, RecordsAreLookedUpWithAndWithoutAnIndex) {
    const std::int32_t format = AddTable(
        *store, L"Format", {Number(L"Key"), Integer(L"Int"), Text(L"Text"), Shared(L"Same", 1), Calculated(L"Sum")}, 6);
    const wchar_t* const texts[] = {L"b", L"a", L"b", L"c", L"", L"a"};
    for (std::int32_t record = 0; record < 6; ++record) {
        store->SetDbValue(format, 1, record, record % 3);
        store->SetDbString(format, 2, record, texts[record]);
    }
    for (const std::int32_t indexed : {3, 1, 2}) {
        EXPECT_EQ(Take(store->LookupRecords(format, 3, 1.0, FindOperator::GreaterThan)), (RecordNumbers{2, 5}));
        EXPECT_EQ(Take(store->LookupRecords(format, 2, L"b", FindOperator::LessThan)), (RecordNumbers{1, 4, 5}));
        EXPECT_EQ(Take(store->LookupRecords(format, 2, nullptr, FindOperator::Equal)), (RecordNumbers{4}));
        EXPECT_EQ(Take(store->GetRecordsMatchingRow(format, 1, 3)), (RecordNumbers{0, 3}));
        store->AddIndexToColumn(format, indexed);
    }
    EXPECT_EQ(store->GetMaxValueForColumn(format, 1, false), 2.0);
    EXPECT_EQ(store->GetMinValueForColumn(format, 1, true), 1.0);
    EXPECT_EQ(Take(store->LookupRecords(format, 4, 0.0, FindOperator::Equal)), (RecordNumbers{0, 1, 2, 3, 4, 5}));
}

TEST_F(Search, BulkUpdatesRebuildTheIndexesAtTheEnd) {
    const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key"), Number(L"A"), Text(L"Text")}, 50);
    store->AddIndexToColumn(format, 1);
    store->AddIndexToColumn(format, 2);
    store->RebuildIndexes(format);
    for (const std::int32_t field : {0, 1}) {
        EXPECT_TRUE(store->GetDbColumn(format, field)->IsIndexValid()) << field;
    }
    store->InvalidateIndexes(format);
    EXPECT_FALSE(store->GetDbColumn(format, 1)->IsIndexValid());
    EXPECT_FALSE(store->GetDbStringArray(format, 2)->IsIndexValid());
    for (std::int32_t record = 0; record < 50; ++record) {
        store->SetDbValue(format, 1, record, record / 10);
    }
    store->RebuildIndexes(format);
    EXPECT_TRUE(store->GetDbColumn(format, 1)->IsIndexValid());
    EXPECT_EQ(Take(store->LookupRecords(format, 1, 4.0, FindOperator::Equal)).size(), 10u);
}

} // namespace

} // namespace Kestrona
