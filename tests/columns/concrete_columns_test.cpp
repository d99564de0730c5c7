#include <kestrona/concrete_columns.h>

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace Kestrona::Testing {
namespace {

using namespace Kestrona::Data::MemoryResident;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(NarrowColumns, ConvertWhatTheyStore) {
    struct Case {
        double written;
        double integer;
        double toggle;
    };

    IntegerColumn integers(0, new NullRecordStateStrategy);
    BoolColumn toggles(0, new NullRecordStateStrategy);
    for (const Case c : {Case{2.9, 2.0, 1.0}, Case{-2.9, -2.0, 1.0}, Case{0.25, 0.0, 1.0}, Case{-0.0, 0.0, 0.0},
                         Case{3e9, -2147483648.0, 1.0}, Case{kNaN, -2147483648.0, 1.0}}) {
        integers.SetValue(0, c.written);
        toggles.SetValue(0, c.written);
        EXPECT_EQ(integers.GetValue(0), c.integer) << c.written;
        EXPECT_EQ(toggles.GetValue(0), c.toggle) << c.written;
    }
    BoolColumn low_byte(-5, new NullRecordStateStrategy);
    EXPECT_EQ(low_byte.GetDefaultValue(), -5.0);
}

TEST(NarrowColumns, KeepTheirPlaceWhenIndexed) {
    IntegerColumn column(0, new NullRecordStateStrategy);
    column.SetValue(4, 9.0);
    EXPECT_EQ(column.CreateIndexedColumn(), &column);
    EXPECT_EQ(column.CreateIndexedColumn(), &column);
    EXPECT_TRUE(column.IsIndexedColumn());
    EXPECT_EQ(column.Find(9.7), 4);
    EXPECT_FALSE(column.IsIndexValid());
    column.BeginBulkUpdate();
    column.SetValue(2, 9.0);
    EXPECT_EQ(column.GetValue(2), 9.0);
    EXPECT_EQ(column.Find(9.0), 2);
}

TEST(OverrideDoubleColumn, WritesThroughAllButTheMarkerForNoOverride) {
    DoubleColumn target(new NullRecordStateStrategy, 0.0);
    OverrideDoubleColumn column(new NullRecordStateStrategy, &target, -1.0);
    column.SetValue(3, 7.0);
    column.SetValue(3, -1.0);
    column.SetValue(1, kNaN);
    EXPECT_EQ(column.GetValue(3), -1.0);
    EXPECT_EQ(target.GetValue(3), 7.0);
    EXPECT_NE(target.GetValue(1), target.GetValue(1));
    IColumn<double>& plain = column;
    plain.SetValue(kFirstScratchRecord, 5.0);
    EXPECT_EQ(target.GetValue(kFirstScratchRecord), 5.0);
}

TEST(OverrideDoubleColumn, AWriteThroughMakesTheIndexOfTheTargetStale) {
    auto* const target = new DoubleColumn(new NullRecordStateStrategy, 0.0);
    const std::unique_ptr<IColumn<double>> index(target->CreateIndexedColumn());
    OverrideDoubleColumn column(new NullRecordStateStrategy, target, -1.0);
    EXPECT_EQ(index->Find(7.0), -1);
    column.SetValue(3, 7.0);
    EXPECT_FALSE(index->IsIndexValid());
    EXPECT_EQ(index->Find(7.0), 3);
}

TEST(NullColumn, TakesEverythingAndKeepsNothing) {
    NullColumn column;
    column.SetValue(2, 5.0);
    column.Insert(0, 5.0);
    column.Resize(10);
    EXPECT_EQ(column.GetValue(2), 0.0);
    EXPECT_EQ(column.GetCurrentSize(), 0U);
    EXPECT_EQ(column.Find(0.0), -1);
    EXPECT_EQ(column.FindMaxValue(), 0.0);
    EXPECT_TRUE(column.IsNullColumn());
    EXPECT_TRUE(column.CanWrite());
    const std::unique_ptr<FindResult> found(column.FindAll(0.0));
    EXPECT_TRUE(found->IsEmpty() && found->OwnsRecords());
    const std::unique_ptr<IColumn<double>> other(column.CreateIndexedColumn());
    EXPECT_NE(other.get(), &column);
    EXPECT_TRUE(other->IsNullColumn());
    EXPECT_FALSE(other->IsIndexedColumn());
}

} // namespace
} // namespace Kestrona::Testing
