// Implements: the handle to a node, and the evaluation of expressions for the host.
#include "expressions/operand.h"

#include <kestrona/expression_tree.h>

#include <algorithm>

namespace Kestrona::Expressions {

namespace {

// Records that are evaluated in one go: enough to make the calls between nodes cheap, little enough for the caches.
constexpr std::int32_t kBlock = 512;

constexpr std::int32_t kLeafDepth = 1;

constexpr OperandForm kNothing{.kind = OperandForm::Kind::Constant};

} // namespace

void AbstractExpression::EvaluateBlock(IMemoryResidentData& store, std::int32_t first, std::int32_t count,
                                       double* out) {
    for (std::int32_t i = 0; i < count; ++i) {
        out[i] = Evaluate(store, first + i, -1, nullptr);
    }
}

Expression::Expression(std::shared_ptr<AbstractExpression> inner)
    : inner_(std::move(inner)),
      form_(inner_ != nullptr ? inner_->Form() : kNothing),
      depth_(inner_ != nullptr ? inner_->Depth() : kLeafDepth) {}

// The copy is written out for the base that identifies an expression by its address and is not copied.
Expression::Expression(const Expression& other)
    : AbstractExpression(other),
      INativeExpression(), // NOLINT(*-redundant-member-init): GCC misses it in a copy
      inner_(other.inner_),
      form_(other.form_),
      depth_(other.depth_) {}

Expression::Expression(Expression&& other) noexcept
    : inner_(std::move(other.inner_)),
      form_(std::exchange(other.form_, kNothing)),
      depth_(std::exchange(other.depth_, kLeafDepth)) {}

Expression& Expression::operator=(const Expression& other) {
    if (this != &other) {
        inner_ = other.inner_;
        form_ = other.form_;
        depth_ = other.depth_;
    }
    return *this;
}

Expression& Expression::operator=(Expression&& other) noexcept {
    if (this != &other) {
        inner_ = std::move(other.inner_);
        form_ = std::exchange(other.form_, kNothing);
        depth_ = std::exchange(other.depth_, kLeafDepth);
    }
    return *this;
}

Expression::~Expression() = default;

double Expression::Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                            std::wstring* text) {
    return EvaluateOperand(*this, store, record, matrix_index, text);
}

void Expression::EvaluateBlock(IMemoryResidentData& store, std::int32_t first, std::int32_t count, double* out) {
    if (form_.kind == OperandForm::Kind::Constant) {
        std::fill_n(out, std::max(count, 0), form_.number);
        return;
    }
    for (std::int32_t done = 0; done < count;) {
        const std::int32_t block = std::min(kBlock, count - done);
        inner_->EvaluateBlock(store, first + done, block, out + done);
        done += block;
    }
}

std::shared_ptr<AbstractExpression> Expression::TakeLeft() {
    form_ = kNothing;
    depth_ = kLeafDepth;
    return std::exchange(inner_, nullptr);
}

} // namespace Kestrona::Expressions

using Kestrona::Data::MemoryResident::IMemoryResidentData;

double KSDLL_EvaluateExpression(IMemoryResidentData& store, std::int32_t record, INativeExpression* expression,
                                std::wstring* text) {
    return KSDLL_MatrixEvaluateExpression(store, record, -1, expression, text);
}

double KSDLL_MatrixEvaluateExpression(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                                      INativeExpression* expression, std::wstring* text) {
    return expression != nullptr ? expression->Evaluate(store, record, matrix_index, text) : 0.0;
}
