// The columns of calculated fields: always current, searched like a scan, bounded where they read each other.
#include "expressions/tree_builder.h"
#include "fixtures/store_test.h"

#include <kestrona/evaluate_columns.h>
#include <kestrona/record_state.h>
#include <kestrona/unicode.h>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Expressions;
using namespace Fixtures;

class CalculatedFields : public RecordedStoreTest {
protected:
    void Calculate(std::int32_t format, std::int32_t field, const Expression& tree) {
        store->SetDbEvaluateExpression(format, field, new Expression(tree));
    }
};

TEST_F(CalculatedFields, AreAlwaysCurrent) {
    const std::int32_t format = AddTable(*store, L"Orders",
                                         {Number(L"Key"), Number(L"A"), Text(L"Name"), Calculated(L"Twice"),
                                          CalculatedText(L"Label"), Calculated(L"Bare")},
                                         3);
    Calculate(format, 3, Binary(Cell(format, 1), L"*", Constant(2)));
    Calculate(format, 4,
              Make<StringListExpression>(Joined({CellText(format, 2, ExpressionFieldType::Text), Literal(L": "),
                                                 CellText(format, 3, ExpressionFieldType::Number)})));
    store->SetDbValue(format, 1, 1, 4.0);
    store->SetDbString(format, 2, 1, L"bolt");
    EXPECT_EQ(store->GetDbValue(format, 3, 1), 8.0);
    EXPECT_EQ(store->GetDbString(format, 4, 1), L"bolt: 8");
    EXPECT_EQ(store->GetDbString(format, 4, 0), L": 0");
    store->SetDbValue(format, 1, 1, 5.0);
    store->SetDbValue(format, 3, 1, 99.0);
    store->SetDbString(format, 4, 1, L"written");
    EXPECT_EQ(store->GetDbValue(format, 3, 1), 10.0);
    EXPECT_EQ(store->GetDbString(format, 4, 1), L"bolt: 10");
    EXPECT_EQ(store->GetDbValue(format, 4, 1), 0.0); // the number of a text
    EXPECT_EQ(store->GetDbValue(format, 5, 1), 0.0);

    store->SetDbValue(format, 1, kFirstScratchRecord, 6.0);
    EXPECT_EQ(store->GetDbValue(format, 3, kFirstScratchRecord), 12.0);
    EXPECT_TRUE(messages.boxes.empty());

    Calculate(format, 3, Binary(Cell(format, 1), L"+", Constant(100)));
    EXPECT_EQ(store->GetDbValue(format, 3, 1), 105.0);
    store->SetDbEvaluateExpression(format, 3, nullptr);
    store->SetDbEvaluateExpression(format, 4, nullptr);
    EXPECT_EQ(store->GetDbValue(format, 3, 1), 0.0);
    EXPECT_EQ(store->GetDbString(format, 4, 1), L"");
}

template <typename T>
void ExpectNothingKept(IColumn<T>& column, const T& some, const T& extreme, const T& default_value) {
    const T before = column.GetValue(1);
    column.SetValue(1, some);
    column.Insert(0, some);
    column.Erase(0, 1.0);
    column.Clear(true);
    column.Resize(7);
    column.BeginBulkUpdate();
    column.EndBulkUpdate();
    column.StartTransaction("id");
    column.RevertTransaction("id");
    column.EndTransaction("id");
    column.GroupErase(nullptr, {1});
    column.ResetColoumnChanged();
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
    for (const bool exclude : {false, true}) {
        EXPECT_EQ(column.FindMaxValue(exclude), extreme);
        EXPECT_EQ(column.FindMinValue(exclude), extreme);
    }
    EXPECT_EQ(column.FindMaxValue(), extreme);
    EXPECT_EQ(column.FindMinValue(), extreme);
    EXPECT_TRUE(Take(column.DistinctValues()).empty());
    EXPECT_TRUE(Take(column.FindAll(before, static_cast<FindOperator>(2))).empty());
    EXPECT_EQ(column.CreateIndexedColumn(), &column);
    EXPECT_FALSE(column.IsIndexedColumn() || column.IsIndexValid() || column.HasColumnChanged() || column.CanWrite() ||
                 column.IsMatrix() || column.IsNullColumn());
    EXPECT_EQ(column.GetRecordState(1), 0);
}

TEST_F(CalculatedFields, KeepNothing) {
    const std::int32_t format = AddTable(*store, L"Orders", {Number(L"Key"), CalculatedText(L"Both")}, 3);
    store->SetDbDefaultValue(format, 1, 7.0);
    Calculate(format, 1, Make<StringListExpression>(Joined({Literal(L"x")})));
    ExpectNothingKept<std::wstring>(*store->GetDbStringArray(format, 1), L"some", L"", L"");
    Calculate(format, 1, Constant(3));
    ExpectNothingKept<double>(*store->GetDbColumn(format, 1), 99.0, -9e+99, 7.0);
    EXPECT_EQ(store->GetMaxValueForColumn(format, 1, false), -9e+99);
    EXPECT_FALSE(store->HasStorage(format, 1));
    store->AddIndexToColumn(format, 1);
    store->SetDbKey(format, 1); // a key gets an index, but not over this
    EXPECT_EQ(store->LookupKeyRecord(format, 3.0), 0);
    EXPECT_EQ(store->LookupKeyRecord(format, 4.0), -1);
}

// The records whose value, read one by one, stands so to `value`.
template <typename T, typename Order>
RecordNumbers Scan(IColumn<T>& column, std::int32_t size, const T& value, FindOperator comparison, Order order) {
    RecordNumbers records;
    for (std::int32_t record = 0; record < size; ++record) {
        const int sign = order(column.GetValue(record), value);
        const bool matches = (comparison == FindOperator::Equal && sign == 0) ||
                             (comparison == FindOperator::LessThan && sign < 0) ||
                             (comparison == FindOperator::LessThanOrEqual && sign <= 0) ||
                             (comparison == FindOperator::GreaterThan && sign > 0) ||
                             (comparison == FindOperator::GreaterThanOrEqual && sign >= 0);
        if (matches) {
            records.push_back(record);
        }
    }
    return records;
}

template <typename T, typename Order>
void ExpectSearchesLikeScans(IColumn<T>& column, std::int32_t size, const std::vector<T>& values, Order order) {
    for (const T& value : values) {
        for (const int comparison : {1, 4, 8, 0x10, 0x20}) {
            const auto op = static_cast<FindOperator>(comparison);
            EXPECT_EQ(Take(column.FindAll(value, op)), Scan(column, size, value, op, order)) << comparison;
        }
        const RecordNumbers equal = Scan(column, size, value, FindOperator::Equal, order);
        EXPECT_EQ(Take(column.FindAll(value)), equal);
        EXPECT_EQ(column.Find(value), equal.empty() ? -1 : equal.front());
    }
}

TEST_F(CalculatedFields, AreSearchedLikeAScan) {
    const std::int32_t format =
        AddTable(*store, L"Orders",
                 {Number(L"Key"), Number(L"A"), Text(L"Name"), Calculated(L"Half"), CalculatedText(L"Label")});
    Calculate(format, 3, Binary(Cell(format, 1), L"/", Constant(2)));
    Calculate(format, 4,
              Make<StringListExpression>(Joined({CellText(format, 2, ExpressionFieldType::Text), Literal(L"!")})));
    const auto by_number = [](double a, double b) {
        return a < b ? -1 : a > b ? 1 : 0;
    };
    const auto by_text = [](const std::wstring& a, const std::wstring& b) {
        return ToUtf16(a).compare(ToUtf16(b));
    };
    const std::wstring names[] = {L"", L"a", L"b", L"\ufffd", L"\U0001f600"};
    std::mt19937 random(7);
    for (const std::int32_t size : {0, 1, 511, 512, 513, 1100}) { // around the blocks of a search
        store->SetCurrentDbSize(format, size);
        for (std::int32_t record = 0; record < size; ++record) {
            store->SetDbValue(format, 1, record, static_cast<double>(random() % 40));
            store->SetDbString(format, 2, record, names[random() % std::size(names)]);
        }
        if (size > 0) {
            store->SetDbValue(format, 1, size - 1, 500.0);
        }
        ExpectSearchesLikeScans<double>(*store->GetDbColumn(format, 3), size, {0.0, 4.5, 19.5, 250.0, -1.0}, by_number);
        ExpectSearchesLikeScans<std::wstring>(*store->GetDbStringArray(format, 4), size,
                                              {L"!", L"b!", L"\ufffd!", L"\U0001f600!", L"zz"}, by_text);
        EXPECT_EQ(Take(store->LookupRecords(format, 3, 19.5, FindOperator::GreaterThan)),
                  Scan(*store->GetDbColumn(format, 3), size, 19.5, FindOperator::GreaterThan, by_number));
    }
}

TEST_F(CalculatedFields, AreMatchedByWhatTheyShow) {
    const std::int32_t format =
        AddTable(*store, L"Orders", {Number(L"Key"), Number(L"A"), Calculated(L"Third"), CalculatedText(L"Label")}, 4);
    Calculate(format, 2, Binary(Cell(format, 1), L"/", Constant(3)));
    Calculate(format, 3, Make<StringListExpression>(Joined({CellText(format, 2, ExpressionFieldType::Text)})));
    for (const auto& [record, value] : {std::pair{0, 1.0}, {1, 1.001}, {2, 2.0}, {3, 0.999}}) {
        store->SetDbValue(format, 1, record, value);
    }
    for (const std::int32_t field : {2, 3}) {
        EXPECT_EQ(Take(store->GetRecordsMatchingRow(format, field, 1)), (RecordNumbers{0, 1, 3})) << field;
        EXPECT_EQ(Take(store->GetRecordsMatchingRow(format, field, 2)), (RecordNumbers{2})) << field;
        EXPECT_TRUE(Take(store->DistinctRecords(format, field)).empty()) << field;
    }
    EXPECT_EQ(Take(store->LookupRecords(format, 3, L"0.33", FindOperator::Equal)), (RecordNumbers{0, 1, 3}));
}

// Field 1 holds 1, every further field is the one before and 1.
std::vector<Field> Chain(std::int32_t fields) {
    std::vector<Field> chain{Number(L"Key"), Number(L"Base", 1.0)};
    for (std::int32_t field = 2; field < fields; ++field) {
        chain.push_back(Calculated(L"F" + std::to_wstring(field)));
    }
    return chain;
}

TEST_F(CalculatedFields, ReadEachOtherUpToABound) {
    constexpr std::int32_t kFields = 270;
    const std::int32_t format = AddTable(*store, L"Chain", Chain(kFields), 600);
    for (std::int32_t field = 2; field < kFields; ++field) {
        Calculate(format, field, Binary(Cell(format, field - 1), L"+", Constant(1)));
    }
    std::vector<double> block(600);
    for (const std::int32_t field : {2, 100, 257, 258, 269}) {
        const bool within = field <= 257;
        const double expected = within ? field : 0.0;
        logger.lines.clear();
        EXPECT_EQ(store->GetDbValue(format, field, 5), expected) << field;
        EXPECT_EQ(logger.lines.size(), within ? 0u : 1u) << field;
        store->GetDbColumn(format, field)->ReadBlock(0, 600, block.data());
        EXPECT_EQ(block, std::vector<double>(600, expected)) << field;
    }
}

TEST_F(CalculatedFields, ThatReadThemselvesManyTimesEndInTimeAndLeaveOthersAlone) {
    const std::int32_t format = AddTable(
        *store, L"Loop", {Number(L"Key"), Calculated(L"Loop"), Calculated(L"Good"), CalculatedText(L"Text")}, 2);
    const Expression self = Cell(format, 1);
    Calculate(format, 1, Binary(Binary(self, L"+", self), L"+", self));
    Calculate(format, 2, Constant(5));
    const Part text = CellText(format, 3, ExpressionFieldType::Text);
    Calculate(format, 3, Make<StringListExpression>(Joined({text, Literal(L"x"), text})));
    EXPECT_EQ(store->GetDbValue(format, 1, 0), 0.0);
    EXPECT_EQ(logger.lines.size(), 1u);
    EXPECT_EQ(store->GetDbString(format, 3, 0), L"");
    EXPECT_EQ(logger.lines.size(), 2u);
    EXPECT_EQ(Take(store->LookupRecords(format, 1, 0.0, FindOperator::Equal)), (RecordNumbers{0, 1}));
    EXPECT_EQ(store->GetDbValue(format, 2, 0), 5.0);
}

// Reads a calculated field of its own record where the record's mark is not 0.
class LoopsWhereMarked : public INativeExpression {
public:
    explicit LoopsWhereMarked(std::int32_t format) : format_(format) {}

    double Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t, std::wstring*) override {
        return store.GetDbValue(format_, 1, record) == 0.0 ? 5.0 : store.GetDbValue(format_, 2, record) + 1.0;
    }

private:
    std::int32_t format_;
};

TEST_F(CalculatedFields, ARecordWithoutAValueLeavesTheOthersOfItsBlockAlone) {
    const std::int32_t format =
        AddTable(*store, L"Loop", {Number(L"Key"), Number(L"Mark"), Calculated(L"Loop"), Calculated(L"Sum")}, 700);
    store->SetDbEvaluateExpression(format, 2, new LoopsWhereMarked(format));
    Calculate(format, 3, Binary(Cell(format, 2), L"+", Constant(1)));
    for (const std::int32_t record : {3, 4, 600}) {
        store->SetDbValue(format, 1, record, 1.0);
    }
    std::vector<double> block(700);
    store->GetDbColumn(format, 3)->ReadBlock(0, 700, block.data());
    for (std::int32_t record = 0; record < 700; ++record) {
        const double expected = record == 3 || record == 4 || record == 600 ? 0.0 : 6.0;
        EXPECT_EQ(block[static_cast<std::size_t>(record)], expected) << record;
        EXPECT_EQ(store->GetDbValue(format, 3, record), expected) << record;
    }
}

TEST_F(CalculatedFields, OfDeepTreesShareOneBoundForTheStack) {
    const std::int32_t format = AddTable(*store, L"Deep", Chain(12), 1);
    for (std::int32_t field = 2; field < 12; ++field) {
        Expression tree = Cell(format, field - 1);
        for (int i = 0; i < 4000; ++i) {
            tree = Binary(std::move(tree), L"+", Constant(1));
        }
        Calculate(format, field, tree);
    }
    EXPECT_EQ(store->GetDbValue(format, 5, 0), 1.0 + 4 * 4000.0);
    EXPECT_TRUE(logger.lines.empty());
    EXPECT_EQ(store->GetDbValue(format, 11, 0), 0.0);
    EXPECT_EQ(logger.lines.size(), 1u);
}

// Gives the matrix index that it was evaluated with.
class TellsItsIndex : public INativeExpression {
public:
    double Evaluate(IMemoryResidentData&, std::int32_t record, std::int32_t matrix_index, std::wstring*) override {
        return 1000.0 * record + matrix_index;
    }
};

TEST_F(CalculatedFields, OfMatricesEvaluateEachElement) {
    const Field list{.name = L"List", .type = TypeBit::kMatrix, .classes = {Classes::kEvaluate}};
    const std::int32_t format = AddTable(*store, L"Lists", {Number(L"Key"), list}, 3);
    MatrixEvaluateColumn matrix(new NullRecordStateStrategy(), 4.0, format, 1, *store);
    EXPECT_TRUE(matrix.IsMatrix());
    EXPECT_EQ(matrix.GetElement(2, 7), 0.0);
    store->SetDbEvaluateExpression(format, 1, new TellsItsIndex());
    EXPECT_EQ(matrix.GetElement(2, 7), 2007.0);
    matrix.SetValue(7, 55.0);
    EXPECT_EQ(matrix.GetElement(2, 7), 2007.0);
}

} // namespace

} // namespace Kestrona
