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

    using Case = std::tuple<const wchar_t*, std::int32_t, std::int32_t>;
    for (const auto& [name, exact, lenient] : {Case{L"Orders", 0, 0},
                                               {L"orders", -1, -2},
                                               {L"7", 2, 2},
                                               {L" 3x", -1, 2},
                                               {L"0x10", -1, 15},
                                               {L"010", -1, 7},
                                               {L"-2", -1, -3},
                                               {L"", -1, -2},
                                               {nullptr, -1, -2},
                                               {L"99999999999", -1, 2147483646},
                                               {L"-99999999999", -1, -2147483647 - 1}}) {
        EXPECT_EQ(KSDLL_FindFormatImpl(*store, name), exact) << (name != nullptr ? name : L"null");
        EXPECT_EQ(KSDLL_FindFormat(*store, name), lenient) << (name != nullptr ? name : L"null");
    }
}

TEST_F(Search, FormatNamesFollowEveryChange) {
    const auto find = [&](const wchar_t* name) {
        return KSDLL_FindFormatImpl(*store, name);
    };
    AddFormat(*store, L"A", {Number(L"Key")});
    AddFormat(*store, L"B", {Number(L"Key")});
    EXPECT_EQ(find(L"A"), 0);
    store->SetDbName(0, KSDLL_AddText(L"B"));
    EXPECT_EQ(find(L"A"), -1);
    EXPECT_EQ(find(L"B"), 0);
    store->SetDbName(0, nullptr);
    EXPECT_EQ(find(L"B"), 1); // past the hole
    store->SetDbName(3, KSDLL_AddText(L"Far"));
    EXPECT_EQ(find(L"Far"), -1); // behind the first unused format
    store->SetFormatCount(3);    // counts the unused one in
    EXPECT_EQ(find(L"Far"), 3);
    store->GetDbName(3)[0] = L'C'; // written in place
    EXPECT_EQ(find(L"Far"), -1);
    EXPECT_EQ(find(L"Car"), 3);
    store->SetFormatCount(0);
    EXPECT_EQ(find(L"Car"), -1);
}

TEST_F(Search, FieldsAreFoundByNameOrNumber) {
    ExecutionState::Instance().set_IsRunningHeadless(true);
    RecordingMessages& messages = InstallRecordingMessages();
    messages.texts = {{0x6a23, L"%s: format %s "}, {0x6a24, L"has no field %s"}};
    const std::int32_t format = AddFormat(*store, L"Orders", {Number(L"Key"), Number(L"2"), Number(L"Name")});

    for (const auto& [name, plain, in_context] :
         {std::tuple{L"Name", 2, 2}, {L"2", 1, 1}, {L"1", 0, 1}, {L"3", 2, -1}, {L"0", -1, 0}, {L"name", -2, -1}}) {
        messages.boxes.clear();
        EXPECT_EQ(KSDLL_FindField(*store, format, name, nullptr), plain) << name;
        EXPECT_TRUE(messages.boxes.empty()) << name;
        EXPECT_EQ(KSDLL_FindField(*store, format, name, L"Here"), in_context) << name;
        ASSERT_EQ(messages.boxes.size(), in_context == -1 ? 1u : 0u) << name;
        EXPECT_TRUE(messages.boxes.empty() ||
                    messages.boxes[0].text == std::wstring(L"Here: format Orders has no field ") + name);
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
    EXPECT_EQ(KSDLL_FindFirstClassificationInstance(*store, Class{0, 0x84}), (TableColumn{1, 1}));
    EXPECT_EQ(KSDLL_FindFirstClassificationInstance(*store, Class{0, 0x184}), TableColumn{});
    EXPECT_EQ(KSDLL_FindClassificationInstance(*store, L"UE W"), (TableColumn{1, 1}));
    EXPECT_EQ(KSDLL_FindClassificationInstance(*store, L"UE W", TableColumn{1, 1}), (TableColumn{1, 2}));
    EXPECT_EQ(KSDLL_FindClassificationInstance(*store, L"UE W", 2), (TableColumn{2, 0}));
    EXPECT_EQ(KSDLL_FindClassificationInstance(*store, L"UE W", -5), (TableColumn{1, 1}));
    EXPECT_EQ(KSDLL_FindClassificationInstance(*store, L"unique"), TableColumn{});
}

TEST_F(Search, ReferenceChainsEndAtTheFirstPlainFieldAndInRingsBeforeTheRepeat) {
    // Format n refers to format n + 1; 60 is plain, 61 to 63 are a ring, 70 and 75 refer nowhere.
    for (std::int32_t format = 0; format < 80; ++format) {
        const std::int32_t target = format == 63 ? 61 : format == 70 ? 500 : format + 1;
        AddFormat(*store, L"F", {Number(L"Key"), format == 60 ? Number(L"End") : Reference(L"Next", target, 1)});
    }
    store->SetDbSource(75, 1, -1);
    const auto end = [&](std::int32_t start) {
        std::int32_t format = 0;
        ResolveReferenceChain(*store, start, 1, &format, nullptr);
        return format;
    };
    for (const auto& [start, expected] :
         {std::pair{60, 60}, {59, 60}, {0, 60}, {61, 63}, {62, 61}, {64, 70}, {74, 75}}) {
        EXPECT_EQ(end(start), expected) << start;
    }
    store->SetDbTable(60, 1, 0); // a ring of 61 fields
    store->AddDbClass(60, 1, Classes::kDatabase);
    store->SetDbSource(60, 1, 1);
    EXPECT_EQ(end(5), 4);
    EXPECT_EQ(end(-3), -3);
}

TEST_F(Search, ANewKeyFieldIsIndexedFromThenOn) {
    const std::int32_t format = AddTable(*store, L"Format", {Number(L"A"), Number(L"Key", -1.0)}, 3, 1);
    store->SetDbKeyValue(format, 2, 7.0);
    EXPECT_EQ(store->LookupKeyRecord(format, 7.0), 2);
    store->SetDbKey(format, 0);
    EXPECT_TRUE(store->GetDbColumn(format, 0)->IsIndexedColumn());
    EXPECT_EQ(store->LookupKeyRecord(format, 0.0), 0);
    store->SetDbKey(format, -1);
    EXPECT_EQ(store->LookupKeyRecord(format, 0.0), -1);
}

TEST_F(Search, BulkUpdatesRebuildTheIndexesAtTheEnd) {
    const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key"), Number(L"A"), Text(L"Text")}, 50);
    store->AddIndexToColumn(format, 1);
    store->AddIndexToColumn(format, 2);
    const auto are_valid = [&] {
        const bool is_valid = store->GetDbColumn(format, 1)->IsIndexValid();
        EXPECT_EQ(store->GetDbStringArray(format, 2)->IsIndexValid(), is_valid);
        return is_valid;
    };
    EXPECT_FALSE(are_valid());
    store->RebuildIndexes(format);
    EXPECT_TRUE(are_valid());
    EXPECT_EQ(Take(store->LookupRecords(format, 2, nullptr, FindOperator::Equal)).size(), 50u);
    store->InvalidateIndexes(format);
    EXPECT_FALSE(are_valid());
}

} // namespace

} // namespace Kestrona
