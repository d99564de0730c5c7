// The columns of calculated fields: always current, searched like a scan, bounded where they read each other.
#include "expressions/expression_test.h"

#include <kestrona/unicode.h>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;
using CalculatedFields = ExpressionTest;

TEST_F(CalculatedFields, AreAlwaysCurrent) {
    AddTable(*store, L"Orders",
             {Number(L"Key"), Number(L"A"), Text(L"Name"), Calculated(L"Twice"), CalculatedText(L"Label"),
              Calculated(L"Bare")},
             3);
    Calculate(0, 3, L"{#A} * 2");
    Calculate(0, 4, L"{$Name}: {#Twice}");
    store->SetDbValue(0, 1, 1, 4.0);
    store->SetDbString(0, 2, 1, L"bolt");
    EXPECT_EQ(store->GetDbString(0, 4, 1), L"bolt: 8");
    EXPECT_EQ(store->GetDbString(0, 4, 0), L": 0");
    store->SetDbValue(0, 1, 1, 5.0);
    store->SetDbValue(0, 3, 1, 99.0);
    store->SetDbString(0, 4, 1, L"written");
    EXPECT_EQ(store->GetDbValue(0, 3, 1), 10.0);
    EXPECT_EQ(store->GetDbString(0, 4, 1), L"bolt: 10");
    EXPECT_EQ(store->GetDbValue(0, 4, 1) + store->GetDbValue(0, 5, 1), 0.0); // the number of a text, and of nothing
    store->SetDbValue(0, 1, kFirstScratchRecord, 6.0);
    EXPECT_EQ(store->GetDbValue(0, 3, kFirstScratchRecord), 12.0);

    Calculate(0, 3, L"{#A} + 100");
    EXPECT_EQ(store->GetDbValue(0, 3, 1), 105.0);
    store->SetDbEvaluateExpression(0, 3, nullptr);
    store->SetDbEvaluateExpression(0, 4, nullptr);
    EXPECT_EQ(store->GetDbValue(0, 3, 1), 0.0);
    EXPECT_EQ(store->GetDbString(0, 4, 1), L"");
    EXPECT_TRUE(messages.boxes.empty());
}

template <typename T>
void ExpectNothingKept(IColumn<T>& column, const T& some, const T& extreme, const T& default_value) {
    const T before = column.GetValue(1);
    column.SetValue(1, some);
    column.Insert(0, some);
    column.Erase(0, 1.0);
    column.Clear(true);
    column.Resize(7);
    column.GroupErase(nullptr, {1});
    std::FILE* const file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    column.WriteToFile(file);
    EXPECT_EQ(std::ftell(file), 0);
    column.ReadFromFile(file);
    std::fclose(file);
    EXPECT_EQ(column.GetValue(1), before);
    EXPECT_EQ(column[1], before);
    EXPECT_EQ(column.GetCurrentSize(), 0u);
    EXPECT_EQ(column.GetDefaultValue(), default_value);
    EXPECT_TRUE(column.FindMaxValue() == extreme && column.FindMinValue() == extreme);
    EXPECT_TRUE(Take(column.DistinctValues()).empty());
    EXPECT_TRUE(Take(column.FindAll(before, static_cast<FindOperator>(2))).empty());
    EXPECT_EQ(column.CreateIndexedColumn(), &column);
    EXPECT_FALSE(column.IsIndexedColumn() || column.HasColumnChanged() || column.CanWrite() || column.IsMatrix());
}

TEST_F(CalculatedFields, KeepNothing) {
    AddTable(*store, L"Orders", {Number(L"Key"), CalculatedText(L"Both")}, 3);
    store->SetDbDefaultValue(0, 1, 7.0);
    Calculate(0, 1, L"x");
    ExpectNothingKept<std::wstring>(*store->GetDbStringArray(0, 1), L"some", L"", L"");
    store->SetDbEvaluateExpression(0, 1, Compile(0, 1, L"3").release());
    ExpectNothingKept<double>(*store->GetDbColumn(0, 1), 99.0, -9e+99, 7.0);
    EXPECT_FALSE(store->HasStorage(0, 1));
    store->AddIndexToColumn(0, 1);
    store->SetDbKey(0, 1); // a key gets an index, but not over this
    EXPECT_EQ(store->LookupKeyRecord(0, 3.0), 0);
    EXPECT_EQ(store->LookupKeyRecord(0, 4.0), -1);
}

// Against the records whose value, read one by one, stands so to the value that is sought.
template <typename T, typename Order>
void ExpectSearchesLikeScans(IColumn<T>& column, std::int32_t size, const std::vector<T>& values, Order order) {
    for (const T& value : values) {
        const auto scan = [&](std::initializer_list<int> signs) {
            RecordNumbers records;
            for (std::int32_t record = 0; record < size; ++record) {
                if (std::ranges::count(signs, order(column.GetValue(record), value)) > 0) {
                    records.push_back(record);
                }
            }
            return records;
        };
        EXPECT_EQ(Take(column.FindAll(value, FindOperator::LessThan)), scan({-1}));
        EXPECT_EQ(Take(column.FindAll(value, FindOperator::LessThanOrEqual)), scan({-1, 0}));
        EXPECT_EQ(Take(column.FindAll(value, FindOperator::GreaterThan)), scan({1}));
        EXPECT_EQ(Take(column.FindAll(value, FindOperator::GreaterThanOrEqual)), scan({1, 0}));
        const RecordNumbers equal = scan({0});
        EXPECT_EQ(Take(column.FindAll(value, FindOperator::Equal)), equal);
        EXPECT_EQ(Take(column.FindAll(value)), equal);
        EXPECT_EQ(column.Find(value), equal.empty() ? -1 : equal.front());
    }
}

TEST_F(CalculatedFields, AreSearchedLikeAScan) {
    AddTable(*store, L"Orders",
             {Number(L"Key"), Number(L"A"), Text(L"Name"), Calculated(L"Half"), CalculatedText(L"Label")});
    Calculate(0, 3, L"{#A} / 2");
    Calculate(0, 4, L"{$Name}!");
    const std::wstring names[] = {L"", L"a", L"b", L"\ufffd", L"\U0001f600"};
    std::mt19937 random(7);
    for (const std::int32_t size : {0, 1, 511, 512, 513, 1100}) { // around the blocks of a search
        store->SetCurrentDbSize(0, size);
        for (std::int32_t record = 0; record < size; ++record) {
            store->SetDbValue(0, 1, record, record == size - 1 ? 500.0 : static_cast<double>(random() % 40));
            store->SetDbString(0, 2, record, names[random() % std::size(names)]);
        }
        ExpectSearchesLikeScans<double>(*store->GetDbColumn(0, 3), size, {0.0, 4.5, 250.0, -1.0},
                                        [](double a, double b) { return (a > b) - (a < b); });
        ExpectSearchesLikeScans<std::wstring>(*store->GetDbStringArray(0, 4), size,
                                              {L"!", L"b!", L"\ufffd!", L"\U0001f600!", L"zz"},
                                              [](const std::wstring& a, const std::wstring& b) {
                                                  const int sign = ToUtf16(a).compare(ToUtf16(b));
                                                  return (sign > 0) - (sign < 0);
                                              });
    }
}

TEST_F(CalculatedFields, AreMatchedByWhatTheyShow) {
    AddTable(*store, L"Orders", {Number(L"Key"), Number(L"A"), Calculated(L"Third"), CalculatedText(L"Label")}, 4);
    Calculate(0, 2, L"{#A} / 3");
    Calculate(0, 3, L"{$Third}");
    for (const auto& [record, value] : {std::pair{0, 1.0}, {1, 1.001}, {2, 2.0}, {3, 0.999}}) {
        store->SetDbValue(0, 1, record, value);
    }
    for (const std::int32_t field : {2, 3}) {
        EXPECT_EQ(Take(store->GetRecordsMatchingRow(0, field, 1)), (RecordNumbers{0, 1, 3})) << field;
        EXPECT_EQ(Take(store->GetRecordsMatchingRow(0, field, 2)), (RecordNumbers{2})) << field;
        EXPECT_TRUE(Take(store->DistinctRecords(0, field)).empty()) << field;
    }
    EXPECT_EQ(Take(store->LookupRecords(0, 3, L"0.33", FindOperator::Equal)), (RecordNumbers{0, 1, 3}));
}

// Field 1 holds 1, every further field is the one before and so many.
std::int32_t AddChain(MemoryResidentData& store, std::int32_t fields, std::int32_t records) {
    std::vector<Field> chain{Number(L"Key"), Number(L"F1", 1.0)};
    for (std::int32_t field = 2; field < fields; ++field) {
        chain.push_back(Calculated(L"F" + std::to_wstring(field)));
    }
    return AddTable(store, L"Chain", chain, records);
}

TEST_F(CalculatedFields, ReadEachOtherUpToABound) {
    constexpr std::int32_t kFields = 270;
    AddChain(*store, kFields, 600);
    for (std::int32_t field = 2; field < kFields; ++field) {
        Calculate(0, field, L"{#F" + std::to_wstring(field - 1) + L"} + 1");
    }
    std::vector<double> block(600);
    for (const std::int32_t field : {2, 100, 257, 258, 269}) {
        const bool within = field <= 257;
        const double expected = within ? field : 0.0;
        logger.lines.clear();
        EXPECT_EQ(store->GetDbValue(0, field, 5), expected) << field;
        EXPECT_EQ(logger.lines.size(), within ? 0u : 1u) << field;
        store->GetDbColumn(0, field)->ReadBlock(0, 600, block.data());
        EXPECT_EQ(block, std::vector<double>(600, expected)) << field;
    }
}

TEST_F(CalculatedFields, OfDeepTreesShareOneBoundForTheStack) {
    AddChain(*store, 12, 1);
    for (std::int32_t field = 2; field < 12; ++field) {
        std::wstring text = L"{#F" + std::to_wstring(field - 1) + L"}";
        for (int i = 0; i < 4000; ++i) {
            text += L"+1";
        }
        Calculate(0, field, text);
    }
    EXPECT_EQ(store->GetDbValue(0, 5, 0), 1.0 + 4 * 4000.0);
    EXPECT_TRUE(logger.lines.empty());
    EXPECT_EQ(store->GetDbValue(0, 11, 0), 0.0);
    EXPECT_EQ(logger.lines.size(), 1u);
}

TEST_F(CalculatedFields, ThatReadThemselvesManyTimesEndInTimeAndLeaveOthersAlone) {
    AddTable(*store, L"Loop", {Number(L"Key"), Calculated(L"Loop"), Calculated(L"Good"), CalculatedText(L"Text")}, 2);
    Calculate(0, 1, L"{#Loop} + {#Loop} + {#Loop}");
    Calculate(0, 2, L"5");
    Calculate(0, 3, L"{$Text}x{$Text}");
    EXPECT_EQ(store->GetDbValue(0, 1, 0), 0.0);
    EXPECT_EQ(logger.lines.size(), 1u);
    EXPECT_EQ(store->GetDbString(0, 3, 0), L"");
    EXPECT_EQ(logger.lines.size(), 2u);
    EXPECT_EQ(Take(store->LookupRecords(0, 1, 0.0, FindOperator::Equal)), (RecordNumbers{0, 1}));
    EXPECT_EQ(store->GetDbValue(0, 2, 0), 5.0);
}

// Reads a calculated field of its own record where the record's mark is not 0.
struct LoopsWhereMarked : INativeExpression {
    double Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t, std::wstring*) override {
        return store.GetDbValue(0, 1, record) == 0.0 ? 5.0 : store.GetDbValue(0, 2, record) + 1.0;
    }
};

TEST_F(CalculatedFields, ARecordWithoutAValueLeavesTheOthersOfItsBlockAlone) {
    AddTable(*store, L"Loop", {Number(L"Key"), Number(L"Mark"), Calculated(L"Loop"), Calculated(L"Sum")}, 700);
    store->SetDbEvaluateExpression(0, 2, new LoopsWhereMarked());
    Calculate(0, 3, L"{#Loop} + 1");
    std::vector<double> expected(700, 6.0);
    for (const std::int32_t record : {3, 4, 600}) {
        store->SetDbValue(0, 1, record, 1.0);
        expected[static_cast<std::size_t>(record)] = 0.0;
    }
    std::vector<double> block(700);
    store->GetDbColumn(0, 3)->ReadBlock(0, 700, block.data());
    EXPECT_EQ(block, expected);
    for (std::int32_t record = 0; record < 700; ++record) {
        EXPECT_EQ(store->GetDbValue(0, 3, record), expected[static_cast<std::size_t>(record)]) << record;
    }
}

} // namespace

} // namespace Kestrona
