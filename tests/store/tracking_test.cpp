// Change tracking and transactions as the store shows them.
#include "fixtures/store_test.h"

#include <set>
#include <string_view>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

using Tracking = StoreTest;

TEST_F(Tracking, OnlyRealChangesCount) {
    const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key"), Number(L"A"), Text(L"Text")}, 5);
    EXPECT_FALSE(store->GetDbChanged(format));
    store->SetDbValue(format, 1, 3, 0.0);
    store->SetDbString(format, 2, 3, L"");
    store->SetDbValue(format, 1, KSDLL_GetScratchRecord(), 4.0);
    EXPECT_EQ(store->GetTimestamp(format), 0);
    EXPECT_FALSE(store->GetDbChanged(format));
    store->SetDbValue(format, 1, 3, 4.0);
    store->SetDbString(format, 2, 4, L"x");
    EXPECT_EQ(store->GetTimestamp(format), 2);
    EXPECT_TRUE(store->GetDbChanged(format));
    EXPECT_EQ(store->GetRecordChanged(format, 3), 2);
    EXPECT_EQ(store->GetRecordChanged(format, 4), 2);
    EXPECT_EQ(store->GetRecordChanged(format, 0), 0);
    store->ResetColumnChanged(format, 1); // which forgets the changes of the text as well
    EXPECT_EQ(store->GetRecordChanged(format, 4), 0);
    EXPECT_TRUE(store->GetDbChanged(format)); // having asked makes the records known
    store->ResetDbChanged(format);
    EXPECT_FALSE(store->GetDbChanged(format));
}

TEST_F(Tracking, FieldsAndFormatsCanBeExcluded) {
    struct Case {
        const char* what;
        std::vector<Class> key;
        std::vector<Class> field;
        std::vector<Class> other;
        bool tracked;
    };

    const Case cases[] = {
        {"plain", {}, {}, {}, true},
        {"field excluded", {}, {Classes::kExcludeFromDb}, {}, false},
        {"key excluded", {Classes::kExcludeFromDb}, {}, {}, false},
        {"other field excluded", {}, {}, {Classes::kExcludeFromDb}, true},
        {"sequence without owner", {}, {Classes::kDisplaySequence}, {}, false},
        {"sequence with owner", {}, {Classes::kDisplaySequence}, {Classes::kSequenceOwner}, true},
    };
    for (const Case& c : cases) {
        Field key = Number(L"Key");
        Field number = Number(L"Number");
        Field text = Text(L"Text");
        Field other = Number(L"Other");
        key.classes = c.key;
        number.classes = c.field;
        text.classes.insert(text.classes.end(), c.field.begin(), c.field.end());
        other.classes = c.other;
        const std::int32_t format = AddTable(*store, L"Format", {key, number, text, other}, 2);
        store->SetDbValue(format, 1, 1, 6.0);
        EXPECT_EQ(store->GetTimestamp(format), c.tracked ? 1 : 0) << c.what;
        store->SetDbString(format, 2, 1, L"x");
        EXPECT_EQ(store->GetTimestamp(format), c.tracked ? 2 : 0) << c.what;
        EXPECT_EQ(store->GetDbChanged(format), c.tracked) << c.what;
    }
}

TEST_F(Tracking, TimestampsCountOnceForASuspendedBatch) {
    const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key"), Number(L"A")}, 5);
    store->ResumeTimestampChangeTracking(format); // one too many still counts
    EXPECT_EQ(store->GetTimestamp(format), 1);
    store->SuspendTimestampChangeTracking(format);
    store->SuspendTimestampChangeTracking(format);
    for (std::int32_t record = 0; record < 5; ++record) {
        store->SetDbValue(format, 1, record, 9.0);
    }
    store->ResumeTimestampChangeTracking(format);
    EXPECT_EQ(store->GetTimestamp(format), 1);
    store->ResumeTimestampChangeTracking(format);
    EXPECT_EQ(store->GetTimestamp(format), 2);
    EXPECT_EQ(store->GetFormatInfo(format)->changedRecords.Size(), 5u);
}

TEST_F(Tracking, ARevertTakesBackTheMarksOfItsTransactionAlone) {
    const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key"), Number(L"A"), Text(L"Text")}, 9);
    const std::string kept = store->StartRecordStateTransaction(format, -1);
    store->SetDbValue(format, 1, 0, 1.0);
    store->EndRecordStateTransaction(format, kept, -1);
    const std::string reverted = store->StartRecordStateTransaction(format, -1);
    store->SetDbValue(format, 1, 1, 1.0);
    store->SetDbString(format, 2, 2, L"x");
    store->RevertRecordState(format, reverted, -1);
    store->SetDbValue(format, 1, 3, 1.0);
    const auto& marks = store->GetFormatInfo(format)->changedRecords;
    EXPECT_EQ(marks.Entries(), (std::vector<std::pair<std::int32_t, bool>>{{0, true}, {3, true}}));
    EXPECT_EQ(store->GetDbValue(format, 1, 1), 1.0); // values stay
    EXPECT_EQ(store->GetTimestamp(format), 4);
    store->RevertRecordState(format, "unknown", 4);
    EXPECT_EQ(marks.Size(), 2u);
}

TEST_F(Tracking, TransactionIdsAreRandomVersion4Uuids) {
    std::set<std::string> ids;
    for (int i = 0; i < 100; ++i) {
        const std::string id = store->StartRecordStateTransaction(0, 0);
        ASSERT_EQ(id.size(), 36u);
        for (std::size_t at = 0; at < id.size(); ++at) {
            const bool hyphen = at == 8 || at == 13 || at == 18 || at == 23;
            const char* const allowed = hyphen ? "-" : at == 14 ? "4" : at == 19 ? "89ab" : "0123456789abcdef";
            EXPECT_NE(std::string_view(allowed).find(id[at]), std::string_view::npos) << id << ' ' << at;
        }
        ids.insert(id);
    }
    EXPECT_EQ(ids.size(), 100u);
}

TEST_F(Tracking, ARecordIsChangedWhenTheRootsChildrenSaySo) {
    const std::int32_t root = AddTable(*store, L"Root", {Number(L"Key")}, 5);
    Field matrix{.name = L"List", .type = TypeBit::kMatrix};
    const std::int32_t child = AddTable(*store, L"Child", {Number(L"Key"), matrix}, 5);
    const std::int32_t wide = AddTable(*store, L"Wide", {Number(L"Key"), matrix, matrix, matrix, Number(L"Behind")}, 5);
    for (const std::int32_t format : {child, wide}) {
        store->SetAssociatedTable(format, KSDLL_AddText(L"Root"), false);
        store->AddChildTable(root, format);
    }
    store->SetDbValue(wide, 4, 2, 1.0);
    EXPECT_EQ(store->GetRecordChanged(child, 2), 2); // through its root to the other child
    EXPECT_EQ(store->GetRecordChanged(child, 1), 0);
    EXPECT_EQ(store->GetRecordChanged(root, 2), 0); // a root has no root, so only its own fields are asked
    store->ResetDbChanged(root);
    store->SetDbValue(root, 0, 0, 1.0);
    store->ResetDbChangedIncludeChildTables(root);
    for (const std::int32_t format : {root, child, wide}) {
        EXPECT_FALSE(store->GetDbChanged(format)) << format;
    }
}

} // namespace

} // namespace Kestrona
