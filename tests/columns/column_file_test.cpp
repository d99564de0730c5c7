#include "columns/recording_strategy.h"

#include <kestrona/concrete_columns.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace Kestrona::Testing {
namespace {

using namespace Kestrona::Data::MemoryResident;

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, Closer>;

File FileOf(const std::string& bytes) {
    File file(std::tmpfile());
    std::fwrite(bytes.data(), 1, bytes.size(), file.get());
    std::rewind(file.get());
    return file;
}

template <typename T>
std::string BytesOf(IColumn<T>& column) {
    const File file(std::tmpfile());
    column.WriteToFile(file.get());
    std::string bytes(static_cast<std::size_t>(std::ftell(file.get())), '\0');
    std::rewind(file.get());
    EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), file.get()), bytes.size());
    return bytes;
}

using namespace std::string_literals;

// What a file holds of the columns below, written down byte by byte.
const std::string kDoubles = "\2\0\0\0"
                             "\0\0\0\0\0\0\xF8\x3F"                // 1.5
                             "\0\0\0\0\0\0\0\xC0"s;                // -2
const std::string kIntegers = "\2\0\0\0\xFF\xFF\xFF\xFF\1\2\0\0"s; // -1, 513
const std::string kToggles = "\3\0\0\0\1\0\1"s;
const std::string kTexts = "\4\0\0\0"
                           "\2\0\0\0\x61\0\xE4\0" // a, a with dots
                           "\0\0\0\0"
                           "\2\0\0\0\x3D\xD8\0\xDE" // U+1F600
                           "\1\0\0\0\0\xDC"s;       // half a pair

struct NumberCase {
    const char* name;
    IColumn<double>* (*make)();
    const std::string& bytes;
    std::size_t width;
    std::vector<double> values;
};

IColumn<double>* MakeDoubles() {
    return new DoubleColumn(new NullRecordStateStrategy, 0.0);
}

IColumn<double>* MakeIntegers() {
    return new IntegerColumn(0, new NullRecordStateStrategy);
}

IColumn<double>* MakeToggles() {
    return new BoolColumn(0, new NullRecordStateStrategy);
}

const NumberCase kNumberCases[] = {
    {"doubles", MakeDoubles, kDoubles, 8, {1.5, -2.0}},
    {"integers", MakeIntegers, kIntegers, 4, {-1.0, 513.0}},
    {"toggles", MakeToggles, kToggles, 1, {1.0, 0.0, 1.0}},
};

TEST(ColumnFile, NumbersStandAsTheyLieInMemory) {
    for (const NumberCase& c : kNumberCases) {
        const std::unique_ptr<IColumn<double>> column(c.make());
        EXPECT_EQ(BytesOf(*column), std::string(4, '\0')) << c.name;
        for (std::size_t i = 0; i < c.values.size(); ++i) {
            column->SetValue(static_cast<std::int32_t>(i), c.values[i]);
        }
        column->Resize(100); // the records at the default are not stored
        EXPECT_EQ(BytesOf(*column), c.bytes) << c.name;
    }
}

TEST(ColumnFile, ReadingReplacesNumbersAndTheirSize) {
    for (const NumberCase& c : kNumberCases) {
        IColumn<double>* const column = c.make();
        const std::unique_ptr<IColumn<double>> top(column->CreateIndexedColumn());
        for (std::int32_t i = 0; i < 5; ++i) {
            column->SetValue(i, 1.0);
        }
        column->FindMaxValue();
        EXPECT_EQ(top->Find(1.0), 0);
        const File file = FileOf(c.bytes + "more");
        column->ReadFromFile(file.get());
        EXPECT_EQ(std::fgetc(file.get()), 'm') << c.name;
        ASSERT_EQ(column->GetCurrentSize(), c.values.size()) << c.name;
        for (std::size_t i = 0; i < c.values.size(); ++i) {
            EXPECT_EQ(column->GetValue(static_cast<std::int32_t>(i)), c.values[i]) << c.name;
        }
        EXPECT_EQ(column->FindMaxValue(), *std::max_element(c.values.begin(), c.values.end())) << c.name;
        EXPECT_EQ(top->Find(c.values[1]), 1) << c.name;
    }
}

TEST(ColumnFile, NumbersUpToTheCutAreTaken) {
    for (const NumberCase& c : kNumberCases) {
        for (std::size_t cut = 0; cut < c.bytes.size(); ++cut) {
            const std::unique_ptr<IColumn<double>> column(c.make());
            const File file = FileOf(c.bytes.substr(0, cut));
            column->ReadFromFile(file.get());
            EXPECT_EQ(column->GetCurrentSize(), cut < 4 ? 0 : (cut - 4) / c.width) << c.name << " cut at " << cut;
            EXPECT_NE(std::feof(file.get()), 0) << c.name << " cut at " << cut;
        }
    }
}

TEST(ColumnFile, FalseCountsNeitherCrashNorAllocate) {
    for (const std::string& count : {"\xFF\xFF\xFF\x7F"s, "\0\0\0\x80"s, "\xFF\xFF\xFF\xFF"s}) {
        for (const NumberCase& c : kNumberCases) {
            const std::unique_ptr<IColumn<double>> column(c.make());
            const File file = FileOf(count + c.bytes.substr(4));
            column->ReadFromFile(file.get());
            const bool is_negative = count[3] != '\x7F';
            EXPECT_EQ(column->GetCurrentSize(), is_negative ? 0 : c.values.size()) << c.name;
        }
        for (const std::size_t at : {0U, 4U, 12U, 16U, 24U}) { // every count and length
            StringColumn column(L"", new NullRecordStateStrategy);
            const File file = FileOf(std::string(kTexts).replace(at, 4, count));
            column.ReadFromFile(file.get());
            EXPECT_LE(column.GetCurrentSize(), 4U);
        }
    }
}

TEST(ColumnFile, BlocksOfManyNumbersComeBack) {
    DoubleColumn column(new NullRecordStateStrategy, 0.0);
    constexpr std::int32_t kCount = 200001;
    for (std::int32_t i = 0; i < kCount; ++i) {
        column.SetValue(i, i + 1);
    }
    const std::string bytes = BytesOf<double>(column);
    DoubleColumn loaded(new NullRecordStateStrategy, 0.0);
    loaded.ReadFromFile(FileOf(bytes).get());
    EXPECT_EQ(BytesOf<double>(loaded), bytes);
    const File cut = FileOf(bytes.substr(0, bytes.size() - 1));
    loaded.ReadFromFile(cut.get());
    EXPECT_EQ(loaded.GetCurrentSize(), static_cast<std::uint32_t>(kCount - 1));
}

TEST(ColumnFile, TextsAreUtf16AndComeBackByWrites) {
    std::vector<std::string> log;
    StringColumn column(L"", new RecordingStrategy(log));
    column.SetValue(0, L"a\xE4");
    column.SetValue(2, L"\x1F600");
    column.SetValue(3, L"\xDC00");
    EXPECT_EQ(BytesOf<std::wstring>(column), kTexts);

    StringColumn loaded(L"", new RecordingStrategy(log));
    loaded.SetValue(1, L"goes");
    loaded.SetValue(5, L"stays");
    log.clear();
    loaded.ReadFromFile(FileOf(kTexts).get());
    EXPECT_EQ(log, (std::vector<std::string>{"changed 0", "changed 1", "changed 2", "changed 3"}));
    EXPECT_EQ(loaded.GetValue(1), L"");
    EXPECT_EQ(loaded.GetValue(2), L"\x1F600");
    EXPECT_EQ(loaded.GetValue(5), L"stays");
}

TEST(ColumnFile, WholeTextsUpToTheCutAreTaken) {
    for (std::size_t cut = 0; cut < kTexts.size(); ++cut) {
        StringColumn column(L"?", new NullRecordStateStrategy);
        const File file = FileOf(kTexts.substr(0, cut));
        column.ReadFromFile(file.get());
        const std::uint32_t whole = cut < 12 ? 0 : cut < 16 ? 1 : cut < 24 ? 2 : 3;
        EXPECT_EQ(column.GetCurrentSize(), whole) << "cut at " << cut;
        EXPECT_NE(std::feof(file.get()), 0) << "cut at " << cut;
    }
}

TEST(ColumnFile, ATextEndsAtItsFirstZeroUnit) {
    StringColumn column(L"", new NullRecordStateStrategy);
    column.SetValue(0, L"ab"s + L'\0' + L"cd");
    StringColumn loaded(L"", new NullRecordStateStrategy);
    loaded.ReadFromFile(FileOf(BytesOf<std::wstring>(column)).get());
    EXPECT_EQ(loaded.GetValue(0), L"ab");
}

} // namespace
} // namespace Kestrona::Testing
