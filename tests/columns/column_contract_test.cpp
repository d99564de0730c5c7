// Every column class, with and without an index, does over long random sequences what the slow twin does.

#include "columns/column_twin.h"
#include "platform/numbers.h"

#include <kestrona/concrete_columns.h>
#include <kestrona/indexed_column.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>

namespace Kestrona::Testing {
namespace {

using namespace Kestrona::Data::MemoryResident;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct DoubleCase {
    using Value = double;

    static IColumn<double>* Make() { return new DoubleColumn(new NullRecordStateStrategy, 2.0); }

    static ColumnTwin<double> Twin() {
        return {2.0, std::numeric_limits<double>::lowest(), std::numeric_limits<double>::max()};
    }

    static double Stored(double value) { return value; }

    static std::vector<double> Values() { return {2.0, -1.0, -0.0, 0.0, 1.0, 3.5, 1e300, kInfinity, -kInfinity, kNaN}; }
};

struct OverrideCase : DoubleCase {
    static IColumn<double>* Make() { return new OverrideDoubleColumn(new NullRecordStateStrategy, nullptr, 2.0); }
};

struct NaNByDefaultCase : DoubleCase {
    static IColumn<double>* Make() { return new DoubleColumn(new NullRecordStateStrategy, kNaN); }

    static ColumnTwin<double> Twin() {
        return {kNaN, std::numeric_limits<double>::lowest(), std::numeric_limits<double>::max()};
    }
};

struct IntegerCase {
    using Value = double;

    static IColumn<double>* Make() { return new IntegerColumn(7, new NullRecordStateStrategy); }

    static ColumnTwin<double> Twin() { return {7.0, -2147483648.0, 2147483647.0}; }

    static double Stored(double value) { return Platform::TruncateToInt32(value); }

    static std::vector<double> Values() { return {7.0, 2.9, -2.9, 0.0, 2147483647.0, 1e10, -1e10, kNaN}; }
};

struct BoolCase {
    using Value = double;

    static IColumn<double>* Make() { return new BoolColumn(0, new NullRecordStateStrategy); }

    static ColumnTwin<double> Twin() { return {0.0, -128.0, 127.0}; }

    static double Stored(double value) { return value == 0.0 ? 0.0 : 1.0; }

    static std::vector<double> Values() { return {0.0, -0.0, 1.0, 0.25, kNaN}; }
};

struct StringCase {
    using Value = std::wstring;

    static IColumn<std::wstring>* Make() { return new StringColumn(L"m", new NullRecordStateStrategy); }

    static ColumnTwin<std::wstring> Twin() { return {L"m", L"", L""}; }

    static std::wstring Stored(const std::wstring& value) { return value; }

    // U+FFFD stands behind U+1F600 in code units, before it in code points.
    static std::vector<std::wstring> Values() {
        return {L"m", L"", L"a", L"A", L"ab", L"\xFFFD", L"\x1F600", L"a rather long text that lives on the heap"};
    }
};

template <typename Case>
struct Indexed : Case {
    static IColumn<typename Case::Value>* Make() { return Case::Make()->CreateIndexedColumn(); }
};

template <typename Case>
class ColumnContract : public testing::Test {
protected:
    using T = typename Case::Value;

    void Step() {
        const auto record = static_cast<std::int32_t>(random_() % 14) - 1;
        const T value = AnyValue();
        switch (random_() % 16) {
        case 0:
            column_->Insert(record, value);
            twin_.Insert(record, Case::Stored(value));
            break;
        case 1:
            column_->Erase(record, 0.0);
            twin_.Erase(record);
            break;
        case 2:
            EraseGroup();
            break;
        case 3:
            column_->Resize(static_cast<std::uint32_t>(record + 1));
            twin_.Resize(record + 1);
            break;
        case 4:
            if (random_() % 8 == 0) {
                column_->Clear(true);
                twin_.Resize(0);
            }
            break;
        case 5:
            column_->SetValue(kFirstScratchRecord + std::max(record, 0), value);
            twin_.Set(kFirstScratchRecord + std::max(record, 0), Case::Stored(value));
            break;
        default:
            column_->SetValue(record, value);
            twin_.Set(record, Case::Stored(value));
        }
    }

    void EraseGroup() {
        std::vector<std::int32_t> records;
        for (std::int32_t record = 14; record >= 0; --record) {
            if (random_() % 3 == 0) {
                records.push_back(record);
            }
        }
        DoubleColumn keys(new NullRecordStateStrategy, 0.0);
        column_->GroupErase(&keys, records);
        for (const std::int32_t record : records) {
            twin_.Erase(record);
        }
    }

    T AnyValue() {
        const auto values = Case::Values();
        return values[random_() % values.size()];
    }

    void ExpectSameCells() {
        ASSERT_EQ(static_cast<std::int32_t>(column_->GetCurrentSize()), twin_.Size());
        std::vector<T> block(20);
        column_->ReadBlock(-2, 20, block.data());
        for (std::int32_t record = -2; record < 18; ++record) {
            ASSERT_TRUE(Same(column_->GetValue(record), twin_.Get(record))) << record;
            ASSERT_TRUE(Same((*column_)[record], twin_.Get(record))) << record;
            ASSERT_TRUE(Same(block[static_cast<std::size_t>(record + 2)], twin_.Get(record))) << record;
        }
        for (std::int32_t record = kFirstScratchRecord - 1; record <= kLastScratchRecord + 1; ++record) {
            ASSERT_TRUE(Same(column_->GetValue(record), twin_.Get(record))) << record;
        }
    }

    void ExpectSameSearches() {
        const T value = AnyValue();
        const T stored = Case::Stored(value);
        const RecordNumbers equal = twin_.Matches(stored, FindOperator::Equal);
        ASSERT_EQ(column_->Find(value), equal.empty() ? -1 : equal.front());
        ASSERT_EQ(Numbers(column_->FindAll(value)), equal);
        for (const std::int32_t code : {1, 2, 4, 8, 0x10, 0x20}) {
            const auto comparison = static_cast<FindOperator>(code);
            ASSERT_EQ(Numbers(column_->FindAll(value, comparison)), twin_.Matches(stored, comparison)) << code;
        }
        const RecordNumbers distinct = column_->IsIndexedColumn() ? twin_.Distinct() : RecordNumbers();
        ASSERT_EQ(Numbers(column_->DistinctValues()), distinct);
    }

    void ExpectSameExtremes() {
        for (const bool exclude_default : {false, true}) {
            if (twin_.Size() == 0) {
                ASSERT_THROW(column_->FindMaxValue(exclude_default), std::range_error);
                ASSERT_THROW(column_->FindMinValue(exclude_default), std::range_error);
            } else {
                ASSERT_TRUE(Same(column_->FindMaxValue(exclude_default), twin_.Max(exclude_default)));
                ASSERT_TRUE(Same(column_->FindMinValue(exclude_default), twin_.Min(exclude_default)));
            }
        }
    }

    std::mt19937 random_{42};
    ColumnTwin<T> twin_ = Case::Twin();
    std::unique_ptr<IColumn<T>> column_{Case::Make()};
};

using Cases = testing::Types<DoubleCase, NaNByDefaultCase, OverrideCase, IntegerCase, BoolCase, StringCase,
                             Indexed<DoubleCase>, Indexed<NaNByDefaultCase>, Indexed<OverrideCase>,
                             Indexed<IntegerCase>, Indexed<BoolCase>, Indexed<StringCase>>;
TYPED_TEST_SUITE(ColumnContract, Cases);

// The extreme values and the index are asked for at random moments only, since asking is what makes them remembered.
TYPED_TEST(ColumnContract, AgreesWithTheTwinOverRandomSequences) {
    for (int i = 0; i < 6000; ++i) {
        SCOPED_TRACE(i);
        this->Step();
        ASSERT_NO_FATAL_FAILURE(this->ExpectSameCells());
        if (this->random_() % 3 == 0) {
            ASSERT_NO_FATAL_FAILURE(this->ExpectSameSearches());
        }
        if (this->random_() % 3 == 0) {
            ASSERT_NO_FATAL_FAILURE(this->ExpectSameExtremes());
        }
    }
}

} // namespace
} // namespace Kestrona::Testing
