#include "columns/recording_strategy.h"

#include <kestrona/concrete_columns.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

namespace Kestrona::Testing {
namespace {

using namespace Kestrona::Data::MemoryResident;

using Log = std::vector<std::string>;

class DataStorageReports : public testing::Test {
protected:
    Log TakeLog() { return std::exchange(log_, {}); }

    // Records 0 to count - 1 with the key values 100, 101, ...
    void Fill(std::int32_t count) {
        for (std::int32_t i = 0; i < count; ++i) {
            column_.SetValue(i, 100.0 + i);
        }
        log_.clear();
    }

    Log log_;
    DoubleColumn column_{new RecordingStrategy(log_), -1.0};
};

TEST_F(DataStorageReports, OnlyWritesThatChangeARecordAreReported) {
    column_.SetValue(5, -1.0);
    column_.SetValue(kFirstScratchRecord, 4.0);
    column_.SetValue(-1, 4.0);
    column_.SetValue(kLastScratchRecord + 1, 4.0);
    EXPECT_EQ(TakeLog(), Log{});
    EXPECT_EQ(column_.GetCurrentSize(), 0U);
    column_.SetValue(5, 4.0);
    column_.SetValue(5, 4.0);
    column_.FindMaxValue();
    column_.SetValue(5, 4.0);
    column_.SetValue(5, -1.0);
    EXPECT_EQ(TakeLog(), (Log{"changed 5", "changed 5"}));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    column_.SetValue(2, nan);
    column_.SetValue(2, nan);
    EXPECT_EQ(TakeLog(), (Log{"changed 2", "changed 2"}));
    column_.Insert(0, 9.0);
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(DataStorageReports, EraseReportsItsKeyWhetherOrNotARecordIsHeld) {
    Fill(2);
    column_.Erase(0, 7.0);
    column_.Erase(50, 8.0);
    column_.Erase(-1, 9.0);
    EXPECT_EQ(TakeLog(), (Log{"erased 7", "erased 8", "erased 9"}));
    EXPECT_EQ(column_.GetCurrentSize(), 1U);
}

TEST_F(DataStorageReports, EmptyingByResizeIsReportedButNotAsAChange) {
    Fill(2);
    column_.Resize(1);
    EXPECT_EQ(TakeLog(), Log{});
    column_.Resize(0);
    column_.Resize(0);
    column_.Clear(true);
    EXPECT_EQ(TakeLog(), (Log{"cleared 0", "cleared 1"}));
}

TEST_F(DataStorageReports, EveryRunOfAGroupReportsFromTheFrontOfTheList) {
    struct Case {
        std::int32_t held;
        std::vector<std::int32_t> records;
        Log reports;
        std::uint32_t left;
    };

    const Case cases[] = {
        {8, {5, 4}, {"erased 105", "erased 104"}, 6},
        {8, {6, 4, 3}, {"erased 106", "erased 106", "erased 104"}, 5},
        {8, {6, 3, 1}, {"erased 106", "erased 106"}, 5}, // the third run finds record 6 behind the six that are left
        {5, {6, 5, 4}, {"erased 104"}, 4},               // a run that reaches past what is held takes nobody else along
        {5, {9, 8}, {}, 5},
        {5, {2, -1}, {"erased 102", "erased 102"}, 4},
        {5, {}, {}, 5},
    };
    for (const Case& c : cases) {
        column_.Clear(false);
        Fill(c.held);
        column_.GroupErase(&column_, c.records); // the keys are in the column that loses its records
        EXPECT_EQ(TakeLog(), c.reports) << testing::PrintToString(c.records);
        EXPECT_EQ(column_.GetCurrentSize(), c.left) << testing::PrintToString(c.records);
    }
}

TEST(DataStorage, AColumnOfDefaultsHoldsNothingAndAnswersForItsSize) {
    IntegerColumn column(3, new NullRecordStateStrategy);
    column.Resize(5);
    EXPECT_EQ(column.GetCurrentSize(), 5U);
    EXPECT_EQ(column.GetValue(3), 3.0);
    EXPECT_EQ(column.FindMinValue(), 3.0);
    EXPECT_EQ(column.FindMinValue(true), 2147483647.0);
    EXPECT_EQ(column.Find(3.0), 0);
    column.Resize(std::numeric_limits<std::uint32_t>::max());
    EXPECT_EQ(column.GetCurrentSize(), static_cast<std::uint32_t>(kFirstScratchRecord));
}

// Texts are moved from one record to the next, and reported a block at a time.
TEST(DataStorage, TextsMoveUpAsIfWrittenOneByOne) {
    constexpr std::int32_t kRecords = 10000;
    const auto reports_and_lengths = [](bool one_by_one) {
        Log log;
        StringColumn column(L"", new RecordingStrategy(log));
        for (std::int32_t record = 0; record < kRecords; ++record) {
            column.SetValue(record, std::wstring(static_cast<std::size_t>(record * 7 % 11 % 3), L'x'));
        }
        log.clear();
        one_by_one ? column.IColumn<std::wstring>::MoveUp(1, kRecords - 1) : column.MoveUp(1, kRecords - 1);
        std::ranges::sort(log);
        for (std::int32_t record = 0; record < kRecords; ++record) {
            log.push_back(std::to_string(column.GetValue(record).size()));
        }
        return log;
    };
    EXPECT_EQ(reports_and_lengths(false), reports_and_lengths(true));
}

TEST(DataStorage, ExtremesOfAnEmptyColumnAreRefusedWithTheirTexts) {
    DoubleColumn column(new NullRecordStateStrategy, 0.0);
    const auto message = [&](auto find) -> std::string {
        try {
            find();
        } catch (const std::range_error& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(message([&] { column.FindMaxValue(true); }), "Cannot find max value when column is empty.");
    EXPECT_EQ(message([&] { column.FindMinValue(true); }), "Cannot find min value when column is empty.");
}

} // namespace
} // namespace Kestrona::Testing
