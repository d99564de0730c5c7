// Change tracking and transactions as the store shows them.
#include "fixtures/record_snapshot.h"
#include "fixtures/store_test.h"

#include <regex>
#include <set>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

class Tracking : public StoreTest {
protected:
    Tracking() { AddTable(*store, L"Format", {Number(L"Key"), Number(L"A"), Text(L"Text")}, 9); }
};

TEST_F(Tracking, OnlyRealChangesCount) {
    store->SetDbValue(0, 1, 3, 0.0);
    store->SetDbString(0, 2, 3, L"");
    store->SetDbValue(0, 1, KSDLL_GetScratchRecord(), 4.0);
    EXPECT_EQ(DescribeChanges(*store, 0), "changed 0 timestamp 0 records erased");
    store->SetDbValue(0, 1, 3, 4.0);
    store->SetDbString(0, 2, 4, L"x");
    EXPECT_EQ(DescribeChanges(*store, 0), "changed 1 timestamp 2 records 3 4 erased");
    EXPECT_EQ(store->GetRecordChanged(0, 3), 2);
    EXPECT_EQ(store->GetRecordChanged(0, 0), 0);
    store->ResetColumnChanged(0, 1); // which forgets the changes of the text as well
    EXPECT_EQ(store->GetRecordChanged(0, 4), 0);
    EXPECT_TRUE(store->GetDbChanged(0)); // having asked makes the records known
    store->ResetDbChanged(0);
    EXPECT_FALSE(store->GetDbChanged(0));
}

TEST_F(Tracking, FieldsAndFormatsCanBeExcluded) {
    using Classes = std::vector<Class>;
    const Classes excluded{Kestrona::Classes::kExcludeFromDb};
    const Classes sequence{Kestrona::Classes::kDisplaySequence};
    const Classes owner{Kestrona::Classes::kSequenceOwner};
    // The classes of the key, of the fields that are written, and of another one.
    for (const auto& [key, written, other, tracked] : {std::tuple{Classes(), Classes(), Classes(), true},
                                                       {Classes(), excluded, Classes(), false},
                                                       {excluded, Classes(), Classes(), false},
                                                       {Classes(), Classes(), excluded, true},
                                                       {Classes(), sequence, Classes(), false},
                                                       {Classes(), sequence, owner, true}}) {
        std::vector<Field> fields{Number(L"Key"), Number(L"Number"), Text(L"Text"), Number(L"Other")};
        fields[0].classes = key;
        fields[1].classes = written;
        fields[2].classes.insert(fields[2].classes.end(), written.begin(), written.end());
        fields[3].classes = other;
        const std::int32_t format = AddTable(*store, L"Format", fields, 2);
        store->SetDbValue(format, 1, 1, 6.0);
        store->SetDbString(format, 2, 1, L"x");
        EXPECT_EQ(DescribeChanges(*store, format),
                  tracked ? "changed 1 timestamp 2 records 1 erased" : "changed 0 timestamp 0 records erased");
    }
}

TEST_F(Tracking, TimestampsCountOnceForASuspendedBatch) {
    store->ResumeTimestampChangeTracking(0); // one too many still counts
    EXPECT_EQ(store->GetTimestamp(0), 1);
    store->SuspendTimestampChangeTracking(0);
    store->SuspendTimestampChangeTracking(0);
    store->SetDbValue(0, 1, 0, 9.0);
    store->SetDbValue(0, 1, 1, 9.0);
    store->ResumeTimestampChangeTracking(0);
    EXPECT_EQ(DescribeChanges(*store, 0), "changed 1 timestamp 1 records 0 1 erased");
    store->ResumeTimestampChangeTracking(0);
    EXPECT_EQ(store->GetTimestamp(0), 2);
}

TEST_F(Tracking, ARevertTakesBackTheMarksOfItsTransactionAlone) {
    const std::string kept = store->StartRecordStateTransaction(0, -1);
    store->SetDbValue(0, 1, 0, 1.0);
    store->EndRecordStateTransaction(0, kept, -1);
    const std::string reverted = store->StartRecordStateTransaction(0, -1);
    store->SetDbValue(0, 1, 1, 1.0);
    store->SetDbString(0, 2, 2, L"x");
    store->RevertRecordState(0, reverted, -1);
    store->SetDbValue(0, 1, 3, 1.0);
    store->RevertRecordState(0, "unknown", 4);
    EXPECT_EQ(DescribeChanges(*store, 0), "changed 1 timestamp 4 records 0 3 erased");
    EXPECT_EQ(store->GetDbValue(0, 1, 1), 1.0); // values stay
}

TEST_F(Tracking, TransactionIdsAreRandomVersion4Uuids) {
    const std::regex form("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
    std::set<std::string> ids;
    for (int i = 0; i < 100; ++i) {
        const std::string id = store->StartRecordStateTransaction(0, 0);
        EXPECT_TRUE(std::regex_match(id, form)) << id;
        ids.insert(id);
    }
    EXPECT_EQ(ids.size(), 100u);
}

TEST_F(Tracking, ARecordIsChangedWhenTheRootsChildrenSaySo) {
    const std::int32_t root = AddTable(*store, L"Root", {Number(L"Key")}, 5);
    const std::int32_t child = AddTable(*store, L"Child", {Number(L"Key"), Matrix(L"List")}, 5);
    const std::int32_t wide =
        AddTable(*store, L"Wide", {Number(L"Key"), Matrix(L"A"), Matrix(L"B"), Matrix(L"C"), Number(L"Behind")}, 5);
    for (const std::int32_t format : {child, wide}) {
        store->SetAssociatedTable(format, KSDLL_AddText(L"Root"), false);
        store->AddChildTable(root, format);
    }
    store->SetDbValue(wide, 4, 2, 1.0);
    EXPECT_EQ(store->GetRecordChanged(child, 2), 2); // through its root to the other child
    EXPECT_EQ(store->GetRecordChanged(child, 1), 0);
    EXPECT_EQ(store->GetRecordChanged(root, 2), 0); // a root has no root, so only its own fields are asked
    store->SetDbValue(root, 0, 0, 1.0);
    store->ResetDbChangedIncludeChildTables(root);
    for (const std::int32_t format : {root, child, wide}) {
        EXPECT_FALSE(store->GetDbChanged(format)) << format;
    }
}

} // namespace

} // namespace Kestrona
