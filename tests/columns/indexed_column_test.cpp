#include "columns/column_twin.h"

#include <kestrona/concrete_columns.h>
#include <kestrona/indexed_column.h>

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <random>
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

TEST(IndexedColumn, EachOperationLeavesTheIndexAsItShould) {
    struct Case {
        const char* name;
        std::function<void(IColumn<double>&)> change;
        bool stays_valid;
    };

    DoubleColumn keys(new NullRecordStateStrategy, 0.0);
    const Case cases[] = {
        {"write of the same value", [](auto& c) { c.SetValue(1, 1.0); }, true},
        {"write of another value", [](auto& c) { c.SetValue(1, 5.0); }, true},
        {"write at the end", [](auto& c) { c.SetValue(6, 5.0); }, true},
        {"write far past the end", [](auto& c) { c.SetValue(60, 5.0); }, true},
        {"write of the default far past the end", [](auto& c) { c.SetValue(60, 0.0); }, true},
        {"write to a scratch record", [](auto& c) { c.SetValue(kFirstScratchRecord, 5.0); }, true},
        {"write to no record", [](auto& c) { c.SetValue(-1, 5.0); }, true},
        {"growth", [](auto& c) { c.Resize(9); }, true},
        {"announcing the same size", [](auto& c) { c.Resize(6); }, true},
        {"search by range", [](auto& c) { delete c.FindAll(0.0, FindOperator::GreaterThan); }, true},
        {"shrinking", [](auto& c) { c.Resize(4); }, true},
        {"shrinking to nothing", [](auto& c) { c.Resize(0); }, true},
        {"shrinking by many",
         [](auto& c) {
             c.Resize(60);
             c.Resize(6);
         },
         false},
        {"insertion", [](auto& c) { c.Insert(0, 5.0); }, false},
        {"erasure", [](auto& c) { c.Erase(0, 5.0); }, false},
        {"erasure of the last record", [](auto& c) { c.Erase(5, 5.0); }, true},
        {"erasure of the last record and its number",
         [](auto& c) {
             c.Erase(5, 5.0);
             c.Resize(5);
         },
         true},
        {"erasure of a group",
         [&](auto& c) {
             c.GroupErase(&keys, {3, 1});
         },
         false},
        {"clearing", [](auto& c) { c.Clear(true); }, false},
        {"bulk update", [](auto& c) { c.BeginBulkUpdate(); }, false},
    };
    for (const Case& c : cases) {
        const Doubles column = MakeIndexed();
        EXPECT_FALSE(column->IsIndexValid());
        delete column->FindAll(0.0, FindOperator::LessThan);
        EXPECT_FALSE(column->IsIndexValid()) << "a search by range needs no index";
        EXPECT_EQ(column->Find(1.0), 1);
        EXPECT_TRUE(column->IsIndexValid());
        c.change(*column);
        EXPECT_EQ(column->IsIndexValid(), c.stays_valid) << c.name;
        for (const double value : {0.0, 1.0, 2.0, 5.0}) {
            RecordNumbers scan;
            for (std::int32_t i = 0; i < static_cast<std::int32_t>(column->GetCurrentSize()); ++i) {
                if (column->GetValue(i) == value) {
                    scan.push_back(i);
                }
            }
            EXPECT_EQ(Numbers(column->FindAll(value)), scan) << c.name << ", value " << value;
        }
    }
}

TEST(IndexedColumn, ResultsOfEqualityAreViewsThatAWriteChanges) {
    const Doubles column = MakeIndexed();
    const std::unique_ptr<FindResult> found(column->FindAll(1.0));
    EXPECT_FALSE(found->OwnsRecords());
    EXPECT_EQ(found->Size(), 2U);
    const std::unique_ptr<FindResult> none(column->FindAll(77.0));
    EXPECT_TRUE(none->OwnsRecords() && none->IsEmpty());
    const std::unique_ptr<FindResult> distinct(column->DistinctValues());
    EXPECT_TRUE(distinct->OwnsRecords());
}

TEST(IndexedColumn, MakingItTwiceGivesTheSameIndex) {
    auto* const storage = new DoubleColumn(new NullRecordStateStrategy, 0.0);
    const Doubles index(storage->CreateIndexedColumn());
    EXPECT_EQ(storage->CreateIndexedColumn(), index.get());
    EXPECT_EQ(index->CreateIndexedColumn(), index.get());
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

} // namespace
} // namespace Kestrona::Testing
