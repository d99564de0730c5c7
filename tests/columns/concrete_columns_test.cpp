#include <kestrona/concrete_columns.h>

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace Kestrona::Testing {
namespace {

using namespace Kestrona::Data::MemoryResident;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(NarrowColumns, KeepTheirDefaultAndTheirPlaceWhenIndexed) {
    EXPECT_EQ(BoolColumn(-5, new NullRecordStateStrategy).GetDefaultValue(), -5.0); // not normalised
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
