// The parser and the trees against values that are told while random expressions are written: one by one, in blocks of
// records and for scratch records.
#include "fixtures/store_test.h"

#include <kestrona/expression_parsing.h>

#include <array>
#include <cmath>

namespace Kestrona::Expressions {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kPeriod = 3; // a record reads like the third one before it

using Values = std::array<double, kPeriod>;

// How tight a text binds: an operand must bind at least as tight as its place asks.
enum Level : std::uint32_t {
    kEquality,
    kRelation,
    kLogic,
    kSum,
    kProduct,
    kList,
    kPrefix,
    kPrimary,
};

struct Printed {
    std::wstring text;
    Level level;
    Values values;
};

const std::vector<std::vector<const wchar_t*>> kSymbols = {
    {L"==", L"!="}, {L"<", L"<=", L">", L">="}, {L"&&", L"||"}, {L"+", L"-"}, {L"*", L"/", L"%", L"^"}};

// Of the operator with this level and place in `kSymbols`.
double ValueOf(std::size_t level, std::size_t place, double a, double b) {
    const auto truth = [](bool is_true) {
        return is_true ? 1.0 : 0.0;
    };
    const double values[][4] = {{truth(a == b), truth(a != b)},
                                {truth(a < b), truth(a <= b), truth(a > b), truth(a >= b)},
                                {truth(a != 0.0 && b != 0.0), truth(a != 0.0 || b != 0.0)},
                                {a + b, a - b},
                                {a * b, b == 0.0 ? 0.0 : a / b, std::fmod(a, b), std::pow(a, b)}};
    return values[level][place];
}

const wchar_t* const kFunctions[] = {L"-",         L"+",        L"!",         L"FUNC_ABS", L"FUNC_TRUNC", L"FUNC_CEIL",
                                     L"FUNC_FRAC", L"FUNC_RND", L"FUNC_SQRT", L"FUNC_LN",  L"FUNC_LOG"};

double ValueOf(std::size_t function, double x) {
    // A whole part that is no 32-bit number counts as the least one.
    const double fraction = std::fabs(x) < 0x1p31 ? x - (std::trunc(x) + 0.0) : x + 0x1p31;
    const double rounded = x > 0.0 ? std::floor(x + 0.5) : std::ceil(x - 0.5);
    const double values[] = {-1.0 * x,
                             x,
                             x == 0.0 ? 1.0 : 0.0,
                             std::signbit(x) ? -x : x,
                             std::floor(x),
                             -std::floor(-x),
                             fraction,
                             rounded,
                             std::sqrt(x),
                             std::log(x),
                             std::log10(x)};
    return values[function];
}

class Generator {
public:
    Generator(std::uint32_t seed, const std::vector<Values>& cells) : random_(seed), cells_(cells) {}

    Printed Any(int depth) {
        const std::uint32_t kind = depth == 0 ? 0 : Below(8);
        return kind == 0 ? Leaf() : kind < 3 ? Function(depth) : kind == 3 ? List(depth) : Operator(depth);
    }

    std::wstring Blank() { return std::wstring(Below(4) == 0 ? 1 + Below(2) : 0, L" \t\n"[Below(3)]); }

private:
    std::uint32_t Below(std::size_t bound) { return static_cast<std::uint32_t>(random_() % bound); }

    static Values Everywhere(double value) { return {value, value, value}; }

    // With the brackets that the place needs, and sometimes with some that it does not.
    std::wstring At(const Printed& operand, Level least) {
        std::wstring text = operand.text;
        for (bool needed = operand.level < least; needed || Below(6) == 0; needed = false) {
            text = L"(" + Blank() + text + Blank() + L")";
        }
        return Blank() + text + Blank();
    }

    Printed Leaf() {
        const std::uint32_t kind = Below(8);
        if (kind < 3) {
            const std::uint32_t field = Below(cells_.size());
            const std::wstring mark = Below(2) == 0 ? L"#" + Blank() : L"";
            return {L"{" + Blank() + mark + L"F" + std::to_wstring(field) + Blank() + L"}", kPrimary, cells_[field]};
        }
        if (kind == 4) {
            const std::uint32_t number = static_cast<std::uint32_t>(random_());
            std::wstring digits;
            for (std::uint32_t rest = number; digits.empty() || rest != 0; rest /= 16) {
                digits.insert(0, 1, L"0123456789abcDEF"[rest % 16]);
            }
            return {L"0x" + digits, kPrimary, Everywhere(number)};
        }
        return Decimal();
    }

    Printed Decimal() {
        const std::uint32_t digits = Below(3) == 0 ? Below(3) : Below(1000000);
        const std::uint32_t decimals = Below(7);
        std::wstring text = std::to_wstring(digits);
        double value = digits;
        if (decimals > 0) {
            text.insert(0, text.size() <= decimals ? decimals + 1 - text.size() : 0, L'0');
            text.insert(text.size() - decimals, 1, L'.');
            value /= std::pow(10.0, decimals);
        }
        const bool is_negative = Below(5) == 0;
        return {(is_negative ? L"-" : L"") + text, kPrimary, Everywhere(is_negative ? -value : value)};
    }

    Printed Function(int depth) {
        Printed operand = Any(depth - 1);
        const std::uint32_t function = Below(std::size(kFunctions));
        // A blank keeps a sign from becoming part of a number, where "-0x1" would be the number -0 and a rest.
        const std::wstring blank = operand.text.starts_with(L"0x") ? L" " : L"";
        const std::wstring text = kFunctions[function] + blank + At(operand, kPrimary);
        for (double& value : operand.values) {
            value = ValueOf(function, value);
        }
        return {text, kPrefix, operand.values};
    }

    Printed List(int depth) {
        const bool is_max = Below(2) == 0;
        const Printed first = Any(depth - 1);
        std::wstring text = At(first, kPrefix);
        Values values = first.values;
        for (std::uint32_t more = Below(3); more > 0; --more) {
            const Printed next = Any(depth - 1);
            text += L"," + At(next, kPrefix);
            for (std::size_t i = 0; i < kPeriod; ++i) {
                const double value = next.values[i];
                values[i] = (is_max ? value > values[i] : value < values[i]) ? value : values[i];
            }
        }
        return {(is_max ? L"FUNC_MAX(" : L"FUNC_MIN(") + text + L")", kList, values};
    }

    Printed Operator(int depth) {
        const auto level = static_cast<Level>(Below(kList));
        const Printed left = Any(depth - 1);
        const Printed right = Any(depth - 1);
        const std::size_t place = Below(kSymbols[level].size());
        Values values{};
        for (std::size_t i = 0; i < kPeriod; ++i) {
            values[i] = ValueOf(level, place, left.values[i], right.values[i]);
        }
        return {At(left, level) + kSymbols[level][place] + At(right, static_cast<Level>(level + 1)), level, values};
    }

    std::mt19937 random_;
    const std::vector<Values>& cells_;
};

class GrammarDifferential : public StoreTest {
protected:
    static constexpr std::int32_t kRecords = 1200;
    static constexpr std::int32_t kScratch = 4;

    // The last two fields are an integer and a toggle.
    void FillCells() {
        constexpr double kNumbers[] = {0.0, 1.0, -1.0, 2.5, -1e9, 1e300, 0.001, 7.0, kNan, kInfinity, -2.5, 3e9};
        std::vector<Field> fields;
        for (std::size_t field = 0; field < std::size(kNumbers) + 2; ++field) {
            const std::wstring name = L"F" + std::to_wstring(field);
            fields.push_back(field < 12 ? Number(name) : field == 12 ? Integer(name) : Toggle(name));
        }
        AddTable(*store, L"T", fields, kRecords);
        for (std::int32_t i = 0; i < kRecords + kScratch; ++i) {
            const std::int32_t record = i < kRecords ? i : kFirstScratchRecord + i - kRecords;
            for (std::size_t field = 0; field < fields.size(); ++field) {
                const double number = kNumbers[(field + 5 * (static_cast<std::size_t>(i) % kPeriod)) % 12];
                store->SetDbValue(0, static_cast<std::int32_t>(field), record, number);
            }
        }
        for (std::size_t field = 0; field < fields.size(); ++field) {
            for (std::size_t i = 0; i < kPeriod; ++i) {
                cells.resize(fields.size());
                cells[field][i] = store->GetDbValue(0, static_cast<std::int32_t>(field), static_cast<std::int32_t>(i));
            }
        }
    }

    void ExpectValues(const double* found, std::int32_t count, const Values& expected, const std::wstring& text) {
        for (std::int32_t i = 0; i < count; ++i) {
            const double value = expected[static_cast<std::size_t>(i) % kPeriod];
            ASSERT_TRUE(std::isnan(value) ? std::isnan(found[i])
                                          : found[i] == value && std::signbit(found[i]) == std::signbit(value))
                << testing::PrintToString(text) << " gives " << found[i] << ", not " << value << " at " << i;
        }
    }

    std::vector<Values> cells;
};

TEST_F(GrammarDifferential, GivesTheValuesOfRandomExpressions) {
    FillCells();
    Generator generator(20240229, cells);
    std::vector<double> block(kRecords);
    for (int i = 0; i < 60000; ++i) {
        const Printed expected = generator.Any(i % 5);
        const std::wstring text = generator.Blank() + expected.text + generator.Blank();
        const std::unique_ptr<INativeExpression> expression(KSDLL_CreateExpression(*store, 0, text, false, nullptr));
        ASSERT_NE(expression, nullptr) << testing::PrintToString(text);
        for (std::size_t record = 0; record < kPeriod; ++record) {
            block[record] =
                KSDLL_EvaluateExpression(*store, static_cast<std::int32_t>(record), expression.get(), nullptr);
        }
        ASSERT_NO_FATAL_FAILURE(ExpectValues(block.data(), kPeriod, expected.values, text));
        const std::int32_t count = i % 100 == 99 ? kRecords : 4;
        expression->EvaluateBlock(*store, 0, count, block.data());
        ASSERT_NO_FATAL_FAILURE(ExpectValues(block.data(), count, expected.values, text));
        expression->EvaluateBlock(*store, kFirstScratchRecord, kScratch, block.data());
        ASSERT_NO_FATAL_FAILURE(ExpectValues(block.data(), kScratch, expected.values, text));
    }
}

} // namespace

} // namespace Kestrona::Expressions
