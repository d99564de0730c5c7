// What columns report to their strategies, their files, and what the narrow ones have of their own.
#include "fixtures/scratch_files.h"

#include <kestrona/concrete_columns.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>

namespace Kestrona::Testing {
namespace {

using namespace Kestrona::Data::MemoryResident;
using namespace std::string_literals;

using Log = std::vector<std::string>;
using Numbers = std::unique_ptr<IColumn<double>>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Writes down what a column reports: "changed 3", "erased 7", "cleared 1".
class RecordingStrategy : public NullRecordStateStrategy {
public:
    explicit RecordingStrategy(Log& log) : log_(log) {}

    void RecordChanged(std::int32_t record) override { log_.push_back("changed " + std::to_string(record)); }

    void RecordsChanged(std::int32_t first, std::uint64_t bits) override {
        IRecordStateStrategy::RecordsChanged(first, bits); // NOLINT(*-parent-virtual-call): each record is reported
    }

    void RecordErased(double key) override {
        log_.push_back("erased " + std::to_string(static_cast<std::int32_t>(key)));
    }

    void ColumnCleared(bool mark_changed) override { log_.push_back(mark_changed ? "cleared 1" : "cleared 0"); }

private:
    Log& log_;
};

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
    for (const std::int32_t record : {kFirstScratchRecord, -1, kLastScratchRecord + 1}) {
        column_.SetValue(record, 4.0);
    }
    EXPECT_EQ(column_.GetCurrentSize(), 0U);
    for (const double value : {4.0, 4.0, -1.0, kNaN, kNaN}) {
        column_.SetValue(5, value);
        column_.FindMaxValue();
    }
    column_.Insert(0, 9.0);
    EXPECT_EQ(TakeLog(), (Log{"changed 5", "changed 5", "changed 5", "changed 5"}));
}

TEST_F(DataStorageReports, ErasuresAndEmptyingAreReported) {
    Fill(2);
    column_.Erase(0, 7.0);
    column_.Erase(50, 8.0);
    column_.Erase(-1, 9.0);
    EXPECT_EQ(TakeLog(), (Log{"erased 7", "erased 8", "erased 9"}));
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
    };

    const Case cases[] = {
        {8, {5, 4}, {"erased 105", "erased 104"}},
        {8, {6, 4, 3}, {"erased 106", "erased 106", "erased 104"}},
        {8, {6, 3, 1}, {"erased 106", "erased 106"}}, // the third run finds record 6 behind the six that are left
        {5, {6, 5, 4}, {"erased 104"}},               // a run that reaches past what is held takes nobody else along
        {5, {9, 8}, {}},
        {5, {2, -1}, {"erased 102", "erased 102"}},
    };
    for (const Case& c : cases) {
        column_.Clear(false);
        Fill(c.held);
        column_.GroupErase(&column_, c.records); // the keys are in the column that loses its records
        EXPECT_EQ(TakeLog(), c.reports) << testing::PrintToString(c.records);
    }
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

TEST(DataStorage, SizesEndBeforeTheScratchRecords) {
    IntegerColumn column(3, new NullRecordStateStrategy);
    column.Resize(std::numeric_limits<std::uint32_t>::max());
    EXPECT_EQ(column.GetCurrentSize(), static_cast<std::uint32_t>(kFirstScratchRecord));
}

TEST(DataStorage, ExtremesOfAnEmptyColumnAreRefusedWithTheirTexts) {
    DoubleColumn column(new NullRecordStateStrategy, 0.0);
    const auto message = [&](double (IColumn<double>::*find)(bool)) -> std::string {
        try {
            (column.*find)(true);
        } catch (const std::range_error& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(message(&IColumn<double>::FindMaxValue), "Cannot find max value when column is empty.");
    EXPECT_EQ(message(&IColumn<double>::FindMinValue), "Cannot find min value when column is empty.");
}

TEST(NarrowColumns, KeepTheirDefaultAndTheirPlaceWhenIndexed) {
    EXPECT_EQ(BoolColumn(-5, new NullRecordStateStrategy).GetDefaultValue(), -5.0); // not normalised
    IntegerColumn column(0, new NullRecordStateStrategy);
    column.SetValue(4, 9.0);
    EXPECT_EQ(column.CreateIndexedColumn(), &column);
    EXPECT_TRUE(column.IsIndexedColumn());
    EXPECT_EQ(column.Find(9.7), 4);
    EXPECT_FALSE(column.IsIndexValid());
}

template <typename T>
std::string BytesOfColumn(IColumn<T>& column) {
    const File file(std::tmpfile());
    column.WriteToFile(file.get());
    return BytesOf(file.get());
}

struct NumberCase {
    const char* name;
    IColumn<double>* (*make)();
    std::string bytes; // what a file holds of the values
    std::size_t width;
    std::vector<double> values;
};

const NumberCase kNumberCases[] = {
    {"doubles",
     []() -> IColumn<double>* { return new DoubleColumn(new NullRecordStateStrategy, 0.0); },
     "\2\0\0\0\0\0\0\0\0\0\xF8\x3F\0\0\0\0\0\0\0\xC0"s,
     8,
     {1.5, -2.0}},
    {"integers",
     []() -> IColumn<double>* { return new IntegerColumn(0, new NullRecordStateStrategy); },
     "\2\0\0\0\xFF\xFF\xFF\xFF\1\2\0\0"s,
     4,
     {-1.0, 513.0}},
    {"toggles",
     []() -> IColumn<double>* { return new BoolColumn(0, new NullRecordStateStrategy); },
     "\3\0\0\0\1\0\1"s,
     1,
     {1.0, 0.0, 1.0}},
};

const std::string kTexts = "\4\0\0\0"
                           "\2\0\0\0\x61\0\xE4\0" // a, a with dots
                           "\0\0\0\0"
                           "\2\0\0\0\x3D\xD8\0\xDE" // U+1F600
                           "\1\0\0\0\0\xDC"s;       // half a pair

// Also what was known of an index or of the extremes is replaced by what a file holds.
TEST(ColumnFile, NumbersStandAsTheyLieInMemory) {
    for (const NumberCase& c : kNumberCases) {
        IColumn<double>* const column = c.make();
        const Numbers top(column->CreateIndexedColumn());
        EXPECT_EQ(BytesOfColumn(*column), std::string(4, '\0')) << c.name;
        for (std::size_t i = 0; i < c.values.size(); ++i) {
            column->SetValue(static_cast<std::int32_t>(i), c.values[i]);
        }
        column->Resize(100); // the records at the default are not stored
        EXPECT_EQ(BytesOfColumn(*column), c.bytes) << c.name;
        column->SetValue(4, 700.0);
        column->FindMaxValue();
        EXPECT_EQ(top->Find(c.values[0]), 0);
        column->SetValue(0, 0.0);
        const File file = FileOf(c.bytes + "more");
        column->ReadFromFile(file.get());
        EXPECT_EQ(std::fgetc(file.get()), 'm') << c.name;
        EXPECT_EQ(BytesOfColumn(*column), c.bytes) << c.name;
        EXPECT_EQ(column->FindMaxValue(), *std::ranges::max_element(c.values)) << c.name;
        EXPECT_EQ(top->Find(c.values[0]), 0) << c.name;
    }
}

TEST(ColumnFile, WholeValuesUpToACutAreTaken) {
    for (const NumberCase& c : kNumberCases) {
        for (std::size_t cut = 0; cut < c.bytes.size(); ++cut) {
            const Numbers column(c.make());
            const File file = FileOf(c.bytes.substr(0, cut));
            column->ReadFromFile(file.get());
            EXPECT_EQ(column->GetCurrentSize(), cut < 4 ? 0 : (cut - 4) / c.width) << c.name << " cut at " << cut;
            EXPECT_NE(std::feof(file.get()), 0) << c.name << " cut at " << cut;
        }
    }
    for (std::size_t cut = 0; cut < kTexts.size(); ++cut) {
        StringColumn column(L"?", new NullRecordStateStrategy);
        const File file = FileOf(kTexts.substr(0, cut));
        column.ReadFromFile(file.get());
        const std::uint32_t whole = cut < 12 ? 0 : cut < 16 ? 1 : cut < 24 ? 2 : 3;
        EXPECT_EQ(column.GetCurrentSize(), whole) << "cut at " << cut;
        EXPECT_NE(std::feof(file.get()), 0) << "cut at " << cut;
    }
}

TEST(ColumnFile, FalseCountsNeitherCrashNorAllocate) {
    for (const std::string& count : {"\xFF\xFF\xFF\x7F"s, "\0\0\0\x80"s, "\xFF\xFF\xFF\xFF"s}) {
        const bool is_negative = count[3] != '\x7F';
        for (const NumberCase& c : kNumberCases) {
            const Numbers column(c.make());
            column->ReadFromFile(FileOf(count + c.bytes.substr(4)).get());
            EXPECT_EQ(column->GetCurrentSize(), is_negative ? 0 : c.values.size()) << c.name;
        }
        for (const std::size_t at : {0U, 4U, 12U, 16U, 24U}) { // every count and length
            StringColumn column(L"?", new NullRecordStateStrategy);
            column.ReadFromFile(FileOf(std::string(kTexts).replace(at, 4, count)).get());
            EXPECT_LE(column.GetCurrentSize(), 4U);
            if (at == 24U) { // the last text: empty, or more than there is
                EXPECT_EQ(column.GetCurrentSize(), is_negative ? 4U : 3U);
            }
        }
    }
}

TEST(ColumnFile, BlocksOfManyNumbersComeBack) {
    DoubleColumn column(new NullRecordStateStrategy, 0.0);
    constexpr std::int32_t kCount = 200001;
    for (std::int32_t i = 0; i < kCount; ++i) {
        column.SetValue(i, i + 1);
    }
    const std::string bytes = BytesOfColumn<double>(column);
    DoubleColumn loaded(new NullRecordStateStrategy, 0.0);
    loaded.ReadFromFile(FileOf(bytes).get());
    EXPECT_EQ(BytesOfColumn<double>(loaded), bytes);
    loaded.ReadFromFile(FileOf(bytes.substr(0, bytes.size() - 1)).get());
    EXPECT_EQ(loaded.GetCurrentSize(), static_cast<std::uint32_t>(kCount - 1));
}

TEST(ColumnFile, TextsAreUtf16AndComeBackByWrites) {
    Log log;
    StringColumn column(L"", new RecordingStrategy(log));
    column.SetValue(0, L"a\xE4");
    column.SetValue(2, L"\x1F600");
    column.SetValue(3, L"\xDC00");
    EXPECT_EQ(BytesOfColumn<std::wstring>(column), kTexts);
    column.SetValue(1, L"goes");
    column.SetValue(2, L"goes");
    column.SetValue(5, L"stays");
    log.clear();
    column.ReadFromFile(FileOf(kTexts).get());
    EXPECT_EQ(log, (Log{"changed 1", "changed 2"}));
    EXPECT_EQ(column.GetValue(1), L"");
    EXPECT_EQ(column.GetValue(2), L"\x1F600");
    EXPECT_EQ(column.GetValue(5), L"stays");
    column.SetValue(0, L"ab\0cd"s);
    column.ReadFromFile(FileOf(BytesOfColumn<std::wstring>(column)).get());
    EXPECT_EQ(column.GetValue(0), L"ab"); // a text ends at its first zero
}

TEST(NullColumn, TakesEverythingAndKeepsNothing) {
    NullColumn column;
    column.SetValue(2, 5.0);
    column.Insert(0, 5.0);
    column.Resize(10);
    EXPECT_EQ(column.GetValue(2), 0.0);
    EXPECT_EQ(column.GetCurrentSize(), 0U);
    EXPECT_EQ(column.Find(0.0), -1);
    column.Erase(0, 5.0);
    column.StartTransaction("");
    column.RevertTransaction("");
    column.EndTransaction("");
    column.Clear(true);
    EXPECT_EQ(column.FindMaxValue() + column.FindMinValue() + column.GetDefaultValue(), 0.0);
    EXPECT_EQ(column.FindMaxValue(true) + column.FindMinValue(true), 0.0);
    EXPECT_FALSE(column.HasColumnChanged());
    EXPECT_EQ(column.GetRecordState(2), 0);
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
