// Columns with an index, and the sets of records that it holds.
#include "columns/column_twin.h"
#include "columns/record_set.h"

#include <kestrona/concrete_columns.h>
#include <kestrona/indexed_column.h>

#include <gtest/gtest.h>
#include <malloc.h>

#include <limits>
#include <random>
#include <set>
#include <stdexcept>

namespace Kestrona::Testing {
namespace {

using namespace Kestrona::Data::MemoryResident;

using Doubles = std::unique_ptr<IColumn<double>>;

// Records 0 to 5 with the values 0 1 2 0 1 2.
Doubles MakeIndexed() {
    auto column = std::make_unique<DoubleColumn>(new NullRecordStateStrategy, 0.0);
    for (std::int32_t i = 0; i < 6; ++i) {
        column->SetValue(i, i % 3);
    }
    return Doubles(column.release()->CreateIndexedColumn());
}

// What searches then find, the contract of columns tells.
TEST(IndexedColumn, EachOperationLeavesTheIndexAsItShould) {
    const auto stays_valid = [](auto change) {
        const Doubles column = MakeIndexed();
        delete column->FindAll(0.0, FindOperator::LessThan);
        EXPECT_FALSE(column->IsIndexValid()) << "a search by range needs no index";
        EXPECT_EQ(column->Find(1.0), 1);
        EXPECT_TRUE(column->IsIndexValid());
        change(*column);
        return column->IsIndexValid();
    };
    EXPECT_TRUE(stays_valid([](auto& c) { c.SetValue(1, 1.0); }));
    EXPECT_TRUE(stays_valid([](auto& c) { c.SetValue(1, 5.0); }));
    EXPECT_TRUE(stays_valid([](auto& c) { c.SetValue(60, 5.0); }));
    EXPECT_TRUE(stays_valid([](auto& c) { c.SetValue(kFirstScratchRecord, 5.0); }));
    EXPECT_TRUE(stays_valid([](auto& c) { c.SetValue(-1, 5.0); }));
    EXPECT_TRUE(stays_valid([](auto& c) { c.Resize(9); }));
    EXPECT_TRUE(stays_valid([](auto& c) { delete c.FindAll(0.0, FindOperator::GreaterThan); }));
    EXPECT_TRUE(stays_valid([](auto& c) { c.Resize(4); }));
    EXPECT_TRUE(stays_valid([](auto& c) { c.Resize(0); }));
    EXPECT_TRUE(stays_valid([](auto& c) { c.Erase(5, 5.0); }));
    EXPECT_FALSE(stays_valid([](auto& c) { // shrinks by many
        c.Resize(60);
        c.Resize(6);
    }));
    EXPECT_FALSE(stays_valid([](auto& c) { c.Insert(0, 5.0); }));
    EXPECT_FALSE(stays_valid([](auto& c) { c.Erase(0, 5.0); }));
    EXPECT_FALSE(stays_valid([](auto& c) { c.GroupErase(&c, {3, 1}); }));
    EXPECT_FALSE(stays_valid([](auto& c) { c.Clear(true); }));
    EXPECT_FALSE(stays_valid([](auto& c) { c.BeginBulkUpdate(); }));
}

TEST(IndexedColumn, ResultsOfEqualityAreViews) {
    const Doubles column = MakeIndexed();
    EXPECT_EQ(column->CreateIndexedColumn(), column.get());
    const std::unique_ptr<FindResult> found(column->FindAll(1.0));
    EXPECT_FALSE(found->OwnsRecords());
    const std::unique_ptr<FindResult> none(column->FindAll(77.0));
    EXPECT_TRUE(none->OwnsRecords() && none->IsEmpty());
    const std::unique_ptr<FindResult> distinct(column->DistinctValues());
    EXPECT_TRUE(distinct->OwnsRecords());
}

class ThrowingColumn : public DoubleColumn {
public:
    ThrowingColumn()
        : DataStorage<double>(Strategy()),
          ValueManagedDataStorage<double>(0.0, nullptr),
          DoubleColumn(nullptr, 0.0) {}

    using DoubleColumn::SetValue;

    void SetValue(std::int32_t record, const double& value) override {
        DoubleColumn::SetValue(record, value);
        if (value == 13.0) {
            throw std::runtime_error("13");
        }
    }

private:
    static IRecordStateStrategy* Strategy() { return new NullRecordStateStrategy; }
};

TEST(IndexedColumn, AThrowFromTheColumnLeavesAStaleIndexThatHealsItself) {
    auto* const storage = new ThrowingColumn;
    const Doubles column(storage->CreateIndexedColumn());
    EXPECT_EQ(storage->CreateIndexedColumn(), column.get());
    column->SetValue(2, 5.0);
    for (const std::int32_t record : {1, 9}) { // inside and past the end
        EXPECT_EQ(column->Find(5.0), 2);
        EXPECT_THROW(column->SetValue(record, 13.0), std::runtime_error);
        EXPECT_FALSE(column->IsIndexValid());
        EXPECT_EQ(column->Find(13.0), record);
        EXPECT_TRUE(column->IsIndexValid());
        storage->SetValue(1, 13.5); // by another road than the index, which must hear of it again
        EXPECT_EQ(column->Find(13.5), 1);
    }
}

// Sets long enough to keep notes, with searches at random moments. NaN stands for values that no search finds.
TEST(IndexedColumn, KeysWhoseRowsChangedPlacesTakeNoMemory) {
    constexpr std::int32_t kKeys = 20000;
    auto values = std::make_unique<DoubleColumn>(new NullRecordStateStrategy, 0.0);
    for (std::int32_t i = 0; i < kKeys; ++i) {
        values->SetValue(i, i);
    }
    const Doubles column(values.release()->CreateIndexedColumn());
    EXPECT_EQ(column->Find(7.0), 7);
    const std::size_t before = mallinfo2().uordblks;
    for (std::int32_t i = 1; i < kKeys; ++i) { // the first key wanders to the end
        column->SetValue(i - 1, column->GetValue(i));
        column->SetValue(i, 0.0);
    }
    EXPECT_TRUE(column->IsIndexValid());
    EXPECT_LE(mallinfo2().uordblks, before + 2 * kKeys);
    EXPECT_EQ(column->Find(7.0), 6);
    EXPECT_EQ(column->Find(0.0), kKeys - 1);
}

TEST(IndexedColumn, AgreesWithTheTwinWhileRecordsMoveBetweenLongSets) {
    constexpr std::int32_t kRecords = 6000;
    const double values[] = {0.0, 1.0, 2.0, std::numeric_limits<double>::quiet_NaN()};
    std::mt19937 random(9);
    ColumnTwin<double> twin(0.0, 0.0, 0.0);
    const Doubles column((new DoubleColumn(new NullRecordStateStrategy, 0.0))->CreateIndexedColumn());
    column->Resize(kRecords);
    twin.Resize(kRecords);
    for (int round = 0; round < 60; ++round) {
        for (auto i = random() % 3000; i > 0; --i) {
            const auto record = static_cast<std::int32_t>(random() % kRecords);
            const double value = values[random() % (random() % 4 + 1)];
            column->SetValue(record, value);
            twin.Set(record, value);
        }
        for (const double value : values) {
            const RecordNumbers expected = twin.Matches(value, FindOperator::Equal);
            if (random() % 2 == 0) {
                ASSERT_EQ(column->Find(value), expected.empty() ? -1 : expected.front());
            }
            if (random() % 2 == 0) {
                ASSERT_EQ(Numbers(column->FindAll(value)), expected);
            }
        }
        ASSERT_TRUE(round == 0 || column->IsIndexValid());
    }
    EXPECT_EQ(column->Find(0.0), twin.Matches(0.0, FindOperator::Equal).front());
    RecordNumbers firsts = twin.Where([](double stored) { return stored != stored; });
    for (const double value : {0.0, 1.0, 2.0}) {
        firsts.push_back(twin.Matches(value, FindOperator::Equal).front());
    }
    std::sort(firsts.begin(), firsts.end());
    EXPECT_EQ(Numbers(column->DistinctValues()), firsts);
}

struct Shape {
    const char* name;
    std::size_t start;   // records at first
    std::int32_t stride; // between them
    unsigned changes;    // before the set is settled, at most
};

class RecordSetShapes : public testing::TestWithParam<Shape> {};

// The shapes lead to every way of working notes in: at once, one by one, by sorting, by bits, and before being asked.
TEST_P(RecordSetShapes, HoldsWhatWasAddedAndNotRemoved) {
    const Shape shape = GetParam();
    std::mt19937 random(5);
    std::vector<std::int32_t> built;
    for (std::size_t i = 0; i < shape.start; ++i) {
        built.push_back(static_cast<std::int32_t>(i) * shape.stride);
    }
    RecordSet set{std::span<const std::int32_t>(built)};
    std::set<std::int32_t> twin(built.begin(), built.end());
    const auto range = static_cast<unsigned>(shape.start + 10) * static_cast<unsigned>(shape.stride);
    for (int round = 0; round < 30; ++round) {
        for (auto i = random() % shape.changes; i > 0; --i) {
            const auto record = static_cast<std::int32_t>(random() % range);
            if (twin.insert(record).second) {
                set.Add(record);
            } else {
                twin.erase(record);
                set.Remove(record);
            }
            ASSERT_EQ(set.Size(), twin.size());
        }
        if (round % 7 == 3) {
            const auto end = static_cast<std::int32_t>(range) + round * 10;
            set.AddRange(end, end + 5);
            for (std::int32_t record = end; record < end + 5; ++record) {
                twin.insert(record);
            }
        }
        set.Settle();
        ASSERT_TRUE(std::equal(set.Rows().begin(), set.Rows().end(), twin.begin(), twin.end())) << round;
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, RecordSetShapes,
                         testing::Values(Shape{"short", 20, 2, 40}, Shape{"long_few_notes", 5000, 2, 6},
                                         Shape{"long_many_notes", 5000, 2, 3000},
                                         Shape{"overflowing_notes", 5000, 1, 20000},
                                         Shape{"wide_apart", 5000, 400000, 3000}),
                         [](const auto& shape) { return std::string(shape.param.name); });

// 1024 notes are worked in at the next one: here they leave 1024 records, and then take away every one of them.
TEST(RecordSet, RefillsAfterItsNotesEmptiedIt) {
    constexpr std::int32_t kRecords = 1026;
    RecordSet set;
    set.AddRange(0, kRecords);
    for (std::int32_t i = 0; i < 511; ++i) {
        set.Remove(i);
        set.Add(i);
    }
    for (std::int32_t record = 0; record < kRecords; ++record) {
        set.Remove(record);
    }
    ASSERT_EQ(set.Size(), 0U);
    set.Add(5);
    set.Settle();
    ASSERT_EQ(set.Rows().size(), 1U);
    EXPECT_EQ(set.Rows().front(), 5);
}

} // namespace
} // namespace Kestrona::Testing
