// Random expressions, printed with no more brackets than the levels of the language ask for and with many more, against
// values that the test computes as it makes them.
#include "fixtures/recording_services.h"
#include "fixtures/schema.h"

#include <kestrona/expression_parsing.h>
#include <kestrona/store.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace Kestrona::Expressions {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

// How tight a text binds: an operand must bind at least as tight as its place asks.
enum Level : std::int32_t {
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
    double value;
};

class Generator {
public:
    Generator(std::uint32_t seed, const std::vector<double>& cells) : random_(seed), cells_(cells) {}

    Printed Any(int depth) {
        if (depth == 0) {
            return Leaf();
        }
        switch (Below(8)) {
        case 0:
            return Leaf();
        case 1:
            return Prefix(depth);
        case 2:
            return Function(depth);
        case 3:
            return List(depth);
        default:
            return Operator(depth);
        }
    }

    std::wstring Blank() { return std::wstring(Below(4) == 0 ? 1 + Below(2) : 0, L" \t\n"[Below(3)]); }

private:
    std::uint32_t Below(std::uint32_t bound) { return static_cast<std::uint32_t>(random_() % bound); }

    // With the brackets that the place needs, and sometimes with some that it does not.
    std::wstring At(const Printed& operand, Level least) {
        std::wstring text = operand.text;
        for (bool needed = operand.level < least; needed || Below(6) == 0; needed = false) {
            text = L"(" + Blank() + text + Blank() + L")";
        }
        return Blank() + text + Blank();
    }

    Printed Leaf() {
        switch (Below(8)) {
        case 0:
        case 1:
        case 2: {
            const std::uint32_t field = Below(static_cast<std::uint32_t>(cells_.size()));
            return {L"{" + Blank() + L"#" + Blank() + L"F" + std::to_wstring(field) + Blank() + L"}", kPrimary,
                    cells_[field]};
        }
        case 3:
            return Comparison();
        case 4: {
            const std::uint32_t number = static_cast<std::uint32_t>(random_());
            std::wstring digits;
            for (std::uint32_t rest = number; digits.empty() || rest != 0; rest /= 16) {
                digits.insert(0, 1, L"0123456789abcDEF"[rest % 16]);
            }
            return {L"0x" + digits, kPrimary, static_cast<double>(number)};
        }
        default:
            return Decimal();
        }
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
        if (Below(5) == 0) {
            return {L"-" + text, kPrimary, -value};
        }
        return {text, kPrimary, value};
    }

    Printed Comparison() {
        const std::wstring left = Word();
        const std::wstring right = Word();
        const int order = left.compare(right);
        const std::wstring text = Quoted(left) + Blank();
        const std::wstring end = Blank() + Quoted(right);
        switch (Below(7)) {
        case 0:
            return {text + L"==" + end, kPrimary, order == 0 ? 1.0 : 0.0};
        case 1:
            return {text + L"!=" + end, kPrimary, order != 0 ? 1.0 : 0.0};
        case 2:
            return {text + L"<" + end, kPrimary, order < 0 ? 1.0 : 0.0};
        case 3:
            return {text + L"<=" + end, kPrimary, order <= 0 ? 1.0 : 0.0};
        case 4:
            return {text + L">" + end, kPrimary, order > 0 ? 1.0 : 0.0};
        case 5:
            return {text + L">=" + end, kPrimary, order >= 0 ? 1.0 : 0.0};
        default:
            return {text + L"@" + end, kPrimary, right.find(left) != std::wstring::npos ? 1.0 : 0.0};
        }
    }

    std::wstring Word() {
        std::wstring word(Below(3), L' ');
        for (wchar_t& c : word) {
            c = L"ab( )+"[Below(6)];
        }
        return word;
    }

    std::wstring Quoted(const std::wstring& word) { return L"~\""[Below(2)] + word + L"~\""[Below(2)]; }

    Printed Prefix(int depth) {
        const Printed operand = Any(depth - 1);
        // A blank keeps a sign from becoming part of a number, where "-0x1" would be the number -0 and a rest.
        const std::wstring text = (operand.text.starts_with(L"0x") ? L" " : L"") + At(operand, kPrimary);
        switch (Below(3)) {
        case 0:
            return {L"-" + text, kPrefix, -operand.value};
        case 1:
            return {L"+" + text, kPrefix, operand.value};
        default:
            return {L"!" + text, kPrefix, operand.value == 0.0 ? 1.0 : 0.0};
        }
    }

    Printed Function(int depth) {
        const Printed operand = Any(depth - 1);
        const double x = operand.value;
        const std::wstring text = At(operand, kPrimary);
        switch (Below(7)) {
        case 0:
            return {L"FUNC_ABS" + text, kPrefix, x < 0.0 ? -x : x == 0.0 ? 0.0 : x};
        case 1:
            return {L"FUNC_TRUNC" + text, kPrefix, std::floor(x)};
        case 2:
            return {L"FUNC_CEIL" + text, kPrefix, std::ceil(x)};
        case 3:
            return {L"FUNC_RND" + text, kPrefix, x > 0.0 ? std::floor(x + 0.5) : std::ceil(x - 0.5)};
        case 4:
            return {L"FUNC_SQRT" + text, kPrefix, std::sqrt(x)};
        case 5:
            return {L"FUNC_LN" + text, kPrefix, std::log(x)};
        default:
            return {L"FUNC_LOG" + text, kPrefix, std::log10(x)};
        }
    }

    Printed List(int depth) {
        const bool is_max = Below(2) == 0;
        Printed first = Any(depth - 1);
        std::wstring text = At(first, kPrefix);
        double value = first.value;
        for (std::uint32_t more = Below(3); more > 0; --more) {
            const Printed next = Any(depth - 1);
            text += L"," + At(next, kPrefix);
            value = (is_max ? next.value > value : next.value < value) ? next.value : value;
        }
        return {(is_max ? L"FUNC_MAX(" : L"FUNC_MIN(") + text + L")", kList, value};
    }

    Printed Operator(int depth) {
        const auto level = static_cast<Level>(Below(kList));
        const Printed left = Any(depth - 1);
        const Printed right = Any(depth - 1);
        const std::uint32_t choice = Below(4);
        const std::wstring symbol = SymbolOf(level, choice);
        return {At(left, level) + symbol + At(right, static_cast<Level>(level + 1)), level,
                ValueOf(symbol, left.value, right.value)};
    }

    static std::wstring SymbolOf(Level level, std::uint32_t choice) {
        switch (level) {
        case kEquality:
            return choice % 2 == 0 ? L"==" : L"!=";
        case kRelation:
            return std::vector<std::wstring>{L"<", L"<=", L">", L">="}[choice];
        case kLogic:
            return choice % 2 == 0 ? L"&&" : L"||";
        case kSum:
            return choice % 2 == 0 ? L"+" : L"-";
        default:
            return std::wstring(1, L"*/%^"[choice]);
        }
    }

    static double ValueOf(const std::wstring& symbol, double a, double b) {
        switch (symbol.front()) {
        case L'=':
            return a == b ? 1.0 : 0.0;
        case L'!':
            return a == b ? 0.0 : 1.0;
        case L'<':
            return (symbol == L"<" ? a < b : a <= b) ? 1.0 : 0.0;
        case L'>':
            return (symbol == L">" ? a > b : a >= b) ? 1.0 : 0.0;
        case L'&':
            return a != 0.0 && b != 0.0 ? 1.0 : 0.0;
        case L'|':
            return a != 0.0 || b != 0.0 ? 1.0 : 0.0;
        case L'+':
            return a + b;
        case L'-':
            return a - b;
        case L'*':
            return a * b;
        case L'/':
            return b == 0.0 ? 0.0 : a / b;
        case L'%':
            return std::fmod(a, b);
        default:
            return std::pow(a, b);
        }
    }

    std::mt19937 random_;
    const std::vector<double>& cells_;
};

TEST(GrammarDifferential, GivesTheValuesOfRandomExpressions) {
    const FreshProcess process;
    const std::vector<double> cells{0.0, 1.0, -1.0, 2.5, -1e9, 1e300, 0.001, 7.0};
    const auto store = CreateMemoryResidentData();
    std::vector<Field> fields;
    for (std::size_t field = 0; field < cells.size(); ++field) {
        fields.push_back(Number(L"F" + std::to_wstring(field)));
    }
    const std::int32_t format = AddTable(*store, L"T", fields, 1);
    for (std::size_t field = 0; field < cells.size(); ++field) {
        store->SetDbValue(format, static_cast<std::int32_t>(field), 0, cells[field]);
    }
    Generator generator(20240229, cells);
    for (int i = 0; i < 100000; ++i) {
        const Printed expected = generator.Any(i % 5);
        const std::wstring text = generator.Blank() + expected.text + generator.Blank();
        const std::unique_ptr<INativeExpression> expression(
            KSDLL_CreateExpression(*store, format, text, false, nullptr));
        ASSERT_NE(expression, nullptr) << testing::PrintToString(text);
        const double value = KSDLL_EvaluateExpression(*store, 0, expression.get(), nullptr);
        ASSERT_TRUE(value == expected.value || (std::isnan(value) && std::isnan(expected.value)))
            << testing::PrintToString(text) << " gives " << value << ", not " << expected.value;
    }
}

} // namespace

} // namespace Kestrona::Expressions
