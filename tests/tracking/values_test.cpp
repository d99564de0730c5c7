// What following does beyond reading: defaults, colours, lists of reverse paths, writes.
#include "fixtures/store_test.h"
#include "tracking/random_schema.h"

#include <kestrona/host_settings.h>
#include <kestrona/matrix_index.h>
#include <kestrona/tracked_values.h>

namespace Kestrona::Tracking {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Field Refers(std::vector<Class> classes, std::int32_t table, std::int32_t source, std::int32_t table_y) {
    Field field = Matrix(L"Matrix", std::move(classes), table, table_y);
    field.type |= TypeBit::kReference;
    field.source = source;
    return field;
}

class TrackedValues : public StoreTest {
protected:
    // Products (0) with a value, referred to by orders (1), whose record 2 refers to nothing.
    void MakeOrders(Field value) {
        AddTable(*store, L"Products", {Integer(L"Key"), std::move(value)}, 2);
        AddTable(*store, L"Orders", {Integer(L"Key"), Reference(L"Product", 0, 0)}, 3);
        for (std::int32_t record = 0; record < 2; ++record) {
            store->SetDbKeyValue(0, record, 10 + record);
            store->SetDbValue(1, 1, record, 11 - record);
        }
        setDataPath(*store, path, 1, &target);
        ASSERT_EQ(path.depth, 2);
    }

    FieldsCondition target{{0, 1}};
    TrackingPath path;
};

TEST_F(TrackedValues, UnresolvedAndLostWalksGiveTheDefault) {
    bool failed = false;
    EXPECT_EQ(FollowDataPathForValue(*store, path, 5, 3.5, &failed), 3.5);
    EXPECT_TRUE(failed);
    EXPECT_EQ(FollowDataPathForValue(*store, path, 5, 1, 3.5), 3.5);
    EXPECT_EQ(TrackForValue(*store, path, 5), -1.0);
    EXPECT_EQ(TrackForRecord(*store, path, 5, 0, 0), -1);
    EXPECT_THROW(SetValue(*store, path, 0, 1.0), const wchar_t*);
    EXPECT_THROW(TrackForColor(*store, path, 0), const wchar_t*);
    MakeOrders(Number(L"Value"));
    EXPECT_EQ(TrackForValue(*store, path, 2), 0.0);
    EXPECT_EQ(FollowDataPathForValue(*store, path, -7, 3.5), 3.5);
}

TEST_F(TrackedValues, WritesGoToTheRecordAtTheEnd) {
    MakeOrders(Number(L"Value"));
    SetValue(*store, path, 0, 4.5);
    SetValue(*store, path, 2, 9.0);
    EXPECT_EQ(store->GetDbValue(0, 1, 0), 0.0);
    EXPECT_EQ(store->GetDbValue(0, 1, 1), 4.5);
}

TEST_F(TrackedValues, FieldsWithoutAColumnReadZero) {
    MakeOrders(Calculated(L"Value"));
    path.steps[1].column = nullptr;
    EXPECT_EQ(TrackForValue(*store, path, 0), 0.0);
    KSDLL_LocateLocalReferenceAsDataPath(*store, path, 0, &target);
    path.steps[0].column = nullptr;
    EXPECT_EQ(TrackForValue(*store, path, 0), 0.0);
}

TEST_F(TrackedValues, ValuesBecomeColours) {
    MakeOrders(Number(L"Value"));
    for (const auto& [value, palette, direct] : {std::tuple{1.0, 0xff0000U, 1U},
                                                 {7.9, 0U, 7U},
                                                 {24.0, 0xff8080U, 24U},
                                                 {25.0, 0xffffffU, 25U},
                                                 {0.0, 0xffffffU, 0U},
                                                 {-2.0, 0xffffffU, 0xfffffffeU},
                                                 {-3.0, 0xfffffff9U, 0xfffffffdU},
                                                 {-266.0, 0x100U, 0xfffffef6U},
                                                 {4278190080.0, 0x7ffffff6U, 0xff000000U},
                                                 {kNaN, 0xffffffU, 0x80000000U}}) {
        SCOPED_TRACE(value);
        store->SetDbValue(0, 1, 1, value);
        store->RemoveDbClass(0, 1, Classes::kDirectColour);
        std::int32_t raw = 0;
        EXPECT_EQ(TrackForColor(*store, path, 0, &raw), palette);
        EXPECT_EQ(static_cast<std::uint32_t>(raw), direct == 0xff000000 ? 0x80000000 : direct);
        store->AddDbClass(0, 1, Classes::kDirectColour);
        EXPECT_EQ(TrackForColor(*store, path, 0), direct);
    }
}

TEST_F(TrackedValues, EntriesOfAListEndWithIt) {
    AddTable(*store, L"Plants", {Integer(L"Key"), Refers({Classes::kList}, 0, 0, 0)}, 1);
    Fill(0, 1, 0, {5.0, 6.0, 7.0});
    setDataPath(*store, path, 0, &target);
    for (const auto& [index, value, colour] :
         {std::tuple{1, 6.0, 0xffffU}, {3, -1.0, 0xffffffU}, {-1, -1.0, 0xffffffU}}) {
        bool failed = false;
        EXPECT_EQ(FollowDataTrackForValueLegacy(*store, path, 0, &failed, index, 0), value);
        EXPECT_EQ(failed, index != 1);
        EXPECT_EQ(TrackForListValue(*store, path, 0, index), value);
        EXPECT_EQ(TrackForListColor(*store, path, 0, index), colour);
    }
}

TEST_F(TrackedValues, AReferenceToAListTellsThePositionInIt) {
    MakeOrders(Refers({Classes::kList}, 0, 0, 0));
    store->SetDbSource(1, 1, 1);
    Fill(0, 1, 1, {5.0, 6.0, 7.0, 6.0});
    const auto position = [&](std::int32_t list, std::int32_t entry) {
        bool failed = false;
        const double value = FollowDataTrackForValueLegacy(*store, path, 1, &failed, list, entry);
        return failed ? -1.0 : value;
    };
    EXPECT_EQ(position(11, 6), 1.0);
    EXPECT_EQ(position(11, 8), -1.0);
    EXPECT_EQ(position(10, 6), -1.0);
    EXPECT_EQ(position(12, 6), -1.0);
    store->SetDbSource(1, 1, 0);
    EXPECT_EQ(position(11, 6), -1.0);
}

// Orders are named in the lists of batches, which alone have the target.
TEST_F(TrackedValues, ReversePathsTellMembership) {
    AddTable(*store, L"Orders", {Integer(L"Key")}, 2);
    AddTable(*store, L"Batches", {Integer(L"Key"), Refers({Classes::kList}, 0, 0, 0), Number(L"Colour")}, 2);
    FieldsCondition colour{{1, 2}};
    setDataPath(*store, path, 0, &colour);
    ASSERT_EQ(path.listField, 1);
    EXPECT_EQ(path.field, 0);
    Fill(1, 1, 0, {8.0, 4.0, 4.0});
    EXPECT_EQ(KSDLL_IsItemInList(*store, path, 0, 4.0), 2);
    EXPECT_EQ(KSDLL_IsItemInList(*store, path, 0, 5.0), 0);
    EXPECT_EQ(KSDLL_IsItemInList(*store, path, 1, store->GetDbValue(1, 1, 1)), 1);
    EXPECT_EQ(KSDLL_IsItemInList(*store, path, 1, 4.0), 0);
    path.field = -1;
    EXPECT_THROW(KSDLL_IsItemInList(*store, path, 0, 4.0), const wchar_t*);
    path.listField = -1;
    EXPECT_EQ(KSDLL_IsItemInList(*store, path, 0, 4.0), -1);
}

// Setups (2) holds a matrix over machines (0) and products (1); jobs (3) refers to all three.
TEST_F(TrackedValues, KeysNameAnElementThatIsAssignedLocally) {
    AddTable(*store, L"Machines", {Integer(L"Key")}, 3);
    AddTable(*store, L"Products", {Integer(L"Key")}, 2);
    AddTable(
        *store, L"Setups",
        {Integer(L"Key"), Refers({Classes::kAutoDimension, Classes::k3DMatrix, Classes::kLocalAssignment}, 0, 0, 1)},
        1);
    AddTable(*store, L"Jobs",
             {Integer(L"Key"), Reference(L"Machine", 0, 0), Reference(L"Product", 1, 0), Reference(L"Setup", 2, 0),
              Number(L"Local")},
             1);
    for (std::int32_t format = 0; format < 3; ++format) {
        for (std::int32_t record = 0; record < store->GetCurrentDbSize(format); ++record) {
            store->SetDbKeyValue(format, record, 100 * format + record);
        }
    }
    Fill(2, 1, 0, {0.0, 1.0, 10.0, 11.0, 20.0, 21.0});
    store->SetDbData(2, 1, DataSlot::kAssignmentFormat, 3);
    store->SetDbData(2, 1, DataSlot::kAssignmentField, 4);
    FieldsCondition setup{{2, 1}};
    setDataPath(*store, path, 3, &setup);
    store->SetDbValue(3, 1, 0, 2.0);
    store->SetDbValue(3, 2, 0, 101.0);
    store->SetDbValue(3, 3, 0, 200.0);
    EXPECT_EQ(TrackForRecord(*store, path, 0, 2, 101), 0);
    EXPECT_EQ(store->GetDbValue(3, 4, 0), 0.0);
    EXPECT_EQ(TrackForValue(*store, path, 0), 21.0);
    EXPECT_EQ(store->GetDbValue(3, 4, 0), 21.0);
    EXPECT_EQ(TrackForMatrixValue(*store, path, 0, 1, 100), 10.0);

    double value = 0.0;
    EXPECT_TRUE(GetLocalAssignment(*store, 3, 2, 1, &value, 0));
    EXPECT_EQ(value, 10.0);
    EXPECT_TRUE(SetLocalAssignment(*store, 3, 2, 1, 5.0, 0));
    EXPECT_EQ(store->GetDbValue(3, 4, 0), 5.0);
    EXPECT_FALSE(GetLocalAssignment(*store, 1, 2, 1, &value, 0));
    EXPECT_FALSE(SetLocalAssignment(*store, 3, 2, 0, 5.0, 0));
    store->SetDbData(2, 1, DataSlot::kAssignmentField, 9);
    EXPECT_FALSE(GetLocalAssignment(*store, 3, 2, 1, &value, 0));
    EXPECT_EQ(TrackForValue(*store, path, 0), 21.0);
}

// The two-key reference on the way takes its keys from fields of the format that it refers to.
TEST_F(TrackedValues, TheListRowOverrideMovesTheSecondKey) {
    AddTable(*store, L"Start", {Integer(L"Key"), Reference(L"Via", 1, 0)}, 1);
    AddTable(
        *store, L"Via",
        {Integer(L"Key"),
         Refers({Classes::kAutoDimension, Classes::k3DMatrix, Classes::kDatabase, Classes::kTwoKeyTarget}, 2, 0, 2)},
        1);
    AddTable(*store, L"End", {Integer(L"Key"), Reference(L"X", 2, 0), {.name = L"Y", .table_y = 2}, Number(L"Value")},
             3);
    store->SetDbValue(0, 1, 0, 0.0);
    store->SetDbData(1, 1, DataSlot::kMatrixFormat, 2);
    for (std::int32_t record = 0; record < 3; ++record) {
        store->SetDbKeyValue(2, record, record);
        store->SetDbValue(2, 1, record, 2 - record);
        store->SetDbValue(2, 2, record, 2 - record);
        store->SetDbValue(2, 3, record, 100 + record);
    }
    Fill(1, 1, 0, {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 2.0, 1.0});
    FieldsCondition end{{2, 3}};
    setDataPath(*store, path, 0, &end);
    ASSERT_TRUE(path.depth == 3 && path.steps[1].xFound);
    EXPECT_EQ(TrackForValue(*store, path, 0), 101.0);
    SetListRowOverride(1);
    EXPECT_EQ(TrackForValue(*store, path, 0), 102.0);
    SetListRowOverride(2);
    EXPECT_EQ(TrackForValue(*store, path, 0), 100.0);
}

TEST(MatrixIndex, NeverWrapsRound) {
    EXPECT_EQ(MatrixIndex(2, 1, 3), 7U);
    EXPECT_EQ(MatrixIndex(65536, 5, 65536), 0xffffffffU);
    EXPECT_EQ(MatrixIndex(65536, 0, 65535), 0xffff0000U);
}

} // namespace

} // namespace Kestrona::Tracking
