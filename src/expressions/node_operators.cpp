// Implements: the nodes of operators and functions of numbers.
#include "expressions/operand.h"
#include "expressions/operator_kernels.h"

#include <kestrona/expression_tree.h>

#include <algorithm>
#include <cassert>
#include <memory>

namespace Kestrona::Expressions {

namespace {

using Numbers = std::unique_ptr<double[]>;

Numbers EvaluateToNumbers(Expression& operand, IMemoryResidentData& store, std::int32_t first, std::int32_t count) {
    Numbers numbers = std::make_unique_for_overwrite<double[]>(static_cast<std::size_t>(count));
    operand.EvaluateBlock(store, first, count, numbers.get());
    return numbers;
}

// `out` and `next` are apart. An inner loop of a fixed length becomes vector instructions at the level of optimisation
// in use.
template <typename Kernel>
void FoldInto(double* __restrict out, const double* __restrict next, std::int32_t count, Kernel kernel) {
    constexpr std::int32_t kLanes = 4;
    std::int32_t i = 0;
    for (; i <= count - kLanes; i += kLanes) {
        for (std::int32_t lane = i; lane < i + kLanes; ++lane) {
            out[lane] = kernel(out[lane], next[lane]);
        }
    }
    for (; i < count; ++i) {
        out[i] = kernel(out[i], next[i]);
    }
}

std::int32_t DeepestOf(const std::vector<Expression>& elements) {
    std::int32_t depth = 0;
    for (const Expression& element : elements) {
        depth = std::max(depth, element.Depth());
    }
    return depth;
}

// The fold of a list function without a vector of its own.
template <typename Kernel>
double Fold(std::vector<Expression>& elements, IMemoryResidentData& store, std::int32_t record,
            std::int32_t matrix_index, std::wstring* text, Kernel kernel) {
    double running = EvaluateOperand(elements.front(), store, record, matrix_index, text);
    for (std::size_t i = 1; i < elements.size(); ++i) {
        running = kernel(running, EvaluateOperand(elements[i], store, record, matrix_index, text));
    }
    return running;
}

template <typename Kernel>
void FoldBlock(std::vector<Expression>& elements, IMemoryResidentData& store, std::int32_t first, std::int32_t count,
               double* out, Kernel kernel) {
    elements.front().EvaluateBlock(store, first, count, out);
    for (std::size_t i = 1; i < elements.size(); ++i) {
        FoldInto(out, EvaluateToNumbers(elements[i], store, first, count).get(), count, kernel);
    }
}

} // namespace

BinaryExpression::BinaryExpression(Expression left, Expression right, BinaryFunction function)
    : left_(std::move(left)),
      right_(std::move(right)),
      function_(function),
      depth_(1 + std::max(left_.Depth(), right_.Depth())) {
    assert(function != nullptr);
}

// Chains such as a + b + c lean to the left, as deep as they are long: they are taken down in a loop.
BinaryExpression::~BinaryExpression() {
    std::shared_ptr<AbstractExpression> node = left_.TakeLeft();
    while (node != nullptr && node.use_count() == 1) {
        node = node->TakeLeft();
    }
}

std::shared_ptr<AbstractExpression> BinaryExpression::TakeLeft() {
    return left_.TakeLeft();
}

double BinaryExpression::Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                                  std::wstring* text) {
    const double right = EvaluateOperand(right_, store, record, matrix_index, text);
    const double left = EvaluateOperand(left_, store, record, matrix_index, text);
    return function_(left, right);
}

// Without a text to hand on, the order of the operands does not show; left first holds fewer buffers at a time.
void BinaryExpression::EvaluateBlock(IMemoryResidentData& store, std::int32_t first, std::int32_t count, double* out) {
    left_.EvaluateBlock(store, first, count, out);
    const Numbers right = EvaluateToNumbers(right_, store, first, count);
    Kernels::WithKernel(function_, [&](auto kernel) { FoldInto(out, right.get(), count, kernel); });
}

UnaryExpression::UnaryExpression(UnaryFunction function, Expression operand)
    : function_(function),
      operand_(std::move(operand)),
      depth_(1 + operand_.Depth()) {
    assert(function != nullptr);
}

double UnaryExpression::Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                                 std::wstring* text) {
    return function_(EvaluateOperand(operand_, store, record, matrix_index, text));
}

void UnaryExpression::EvaluateBlock(IMemoryResidentData& store, std::int32_t first, std::int32_t count, double* out) {
    operand_.EvaluateBlock(store, first, count, out);
    std::transform(out, out + count, out, function_);
}

ListExpression::ListExpression(std::vector<Expression> elements, ListFunction function)
    : elements_(std::move(elements)),
      function_(function),
      depth_(1 + DeepestOf(elements_)) {
    assert(function != nullptr && !elements_.empty());
}

double ListExpression::Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                                std::wstring* text) {
    if (function_ == &Func_Min) {
        return Fold(elements_, store, record, matrix_index, text, Kernels::Minimum{});
    }
    if (function_ == &Func_Max) {
        return Fold(elements_, store, record, matrix_index, text, Kernels::Maximum{});
    }
    std::vector<double> values;
    values.reserve(elements_.size());
    for (const Expression& element : elements_) {
        values.push_back(EvaluateOperand(element, store, record, matrix_index, text));
    }
    return function_(values);
}

void ListExpression::EvaluateBlock(IMemoryResidentData& store, std::int32_t first, std::int32_t count, double* out) {
    if (function_ == &Func_Min) {
        FoldBlock(elements_, store, first, count, out, Kernels::Minimum{});
    } else if (function_ == &Func_Max) {
        FoldBlock(elements_, store, first, count, out, Kernels::Maximum{});
    } else {
        AbstractExpression::EvaluateBlock(store, first, count, out);
    }
}

} // namespace Kestrona::Expressions
