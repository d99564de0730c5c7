#pragma once

#include <kestrona/expression.h>
#include <kestrona/expression_functions.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// \file
/// The tree of a compiled expression, as visitors see it.
///
/// Numeric nodes derive from `AbstractExpression`, text nodes from `AbstractString`. A node keeps nothing of an
/// evaluation, so one tree serves all records of its format. Trees do not change once they are built. They hold field
/// numbers: a tree must not outlive the schema that it was compiled against.

namespace Kestrona::Expressions {

using Data::MemoryResident::IMemoryResidentData;

class Visitor;

/// How a reference asks for a field's value.
enum class ExpressionFieldType : std::int32_t {
    Unmarked = -1, ///< As the field's type says when it is evaluated: text for the types 0 and 1, else the number.
    Number = 0,    ///< Marked "#".
    Text = 1,      ///< Marked "$".
};

/// A field of the expression's own format.
struct FieldReference {
    ExpressionFieldType type = ExpressionFieldType::Unmarked;
    std::int32_t format = -1;
    std::int32_t field = -1;
};

/// A row of the format "KSEP Script Variables", found by its name at each evaluation. A negative number stands for
/// something that the store does not have; then there is no row.
struct KSEPVariable {
    std::int32_t format = -1;
    std::int32_t nameField = -1;
    std::int32_t numericValueField = -1;
    std::int32_t stringValueField = -1;
    ExpressionFieldType type = ExpressionFieldType::Unmarked;
    std::wstring name;
};

/// Deepest tree that is evaluated, visited and destroyed within an ordinary stack. A parser refuses a deeper one; to
/// destroy one that leans to the left is safe at any depth.
inline constexpr std::int32_t kMaxTreeDepth = 4096;

/// What an operand of a node is, where that needs no call to tell.
struct OperandForm {
    enum class Kind : std::uint8_t {
        Node,     ///< To be evaluated.
        Constant, ///< Always `number`.
        Cell,     ///< The stored number of `format` and `field`, but for an element of a matrix.
    };
    Kind kind = Kind::Node;
    std::int32_t format = -1;
    std::int32_t field = -1;
    double number = 0.0;
};

/// A node that yields a number. Evaluation takes the arguments of `INativeExpression::Evaluate`.
class KS_API AbstractExpression {
public:
    AbstractExpression() = default;
    AbstractExpression(const AbstractExpression&) = default;
    AbstractExpression& operator=(const AbstractExpression&) = default;
    virtual ~AbstractExpression() = default;
    virtual double Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                            std::wstring* text) = 0;
    /// Calls the visitor's operation for this class of node.
    virtual void Accept(Visitor& visitor) = 0;
    /// Evaluates the records `first` to `first + count - 1` into `out`: `Evaluate` of each, without text.
    virtual void EvaluateBlock(IMemoryResidentData& store, std::int32_t first, std::int32_t count, double* out);

    /// Nodes on the longest way down, wrappers not counted.
    [[nodiscard]] virtual std::int32_t Depth() const { return 1; }

    [[nodiscard]] virtual OperandForm Form() const { return {}; }

    /// Gives up the left operand, for a destruction without recursion; null where there is none. The node is of no use
    /// any more.
    virtual std::shared_ptr<AbstractExpression> TakeLeft() { return nullptr; }
};

/// A node that yields a text.
class KS_API AbstractString {
public:
    AbstractString() = default;
    AbstractString(const AbstractString&) = default;
    AbstractString& operator=(const AbstractString&) = default;
    virtual ~AbstractString() = default;
    /// Replaces `text`. Requires: `text` not null.
    virtual void Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                          std::wstring* text) = 0;
    virtual void Accept(Visitor& visitor) = 0;

    /// The text where it is the same for every record, else null.
    [[nodiscard]] virtual const std::wstring* Literal() const { return nullptr; }
};

/// A handle to a numeric node, cheap to copy. The root of a tree is one, and so is every operand. An empty one is 0.0.
class KS_API Expression final : public AbstractExpression, public INativeExpression {
public:
    Expression() = default;
    explicit Expression(std::shared_ptr<AbstractExpression> inner);
    Expression(const Expression& other);
    Expression(Expression&& other) noexcept;
    Expression& operator=(const Expression& other);
    Expression& operator=(Expression&& other) noexcept;
    ~Expression() override;
    double Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                    std::wstring* text) override;
    void EvaluateBlock(IMemoryResidentData& store, std::int32_t first, std::int32_t count, double* out) override;
    void Accept(Visitor& visitor) override;

    [[nodiscard]] std::int32_t Depth() const override { return depth_; }

    [[nodiscard]] OperandForm Form() const override { return form_; }

    std::shared_ptr<AbstractExpression> TakeLeft() override;

    /// Null for an empty handle.
    [[nodiscard]] const std::shared_ptr<AbstractExpression>& Inner() const { return inner_; }

    /// `Form` without the copy.
    [[nodiscard]] const OperandForm& Shape() const { return form_; }

private:
    std::shared_ptr<AbstractExpression> inner_;
    OperandForm form_{.kind = OperandForm::Kind::Constant};
    std::int32_t depth_ = 1;
};

/// An operator between two operands. The right one is evaluated before the left one, and both always are.
class KS_API BinaryExpression final : public AbstractExpression {
public:
    BinaryExpression(Expression left, Expression right, BinaryFunction function);
    BinaryExpression(const BinaryExpression&) = delete;
    BinaryExpression& operator=(const BinaryExpression&) = delete;
    ~BinaryExpression() override;
    double Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                    std::wstring* text) override;
    void EvaluateBlock(IMemoryResidentData& store, std::int32_t first, std::int32_t count, double* out) override;
    void Accept(Visitor& visitor) override;

    [[nodiscard]] std::int32_t Depth() const override { return depth_; }

    std::shared_ptr<AbstractExpression> TakeLeft() override;

    Expression& Left() { return left_; }

    Expression& Right() { return right_; }

    [[nodiscard]] BinaryFunction Function() const { return function_; }

private:
    Expression left_;
    Expression right_;
    BinaryFunction function_;
    std::int32_t depth_;
};

/// A prefix operator or a function of one operand.
class KS_API UnaryExpression final : public AbstractExpression {
public:
    UnaryExpression(UnaryFunction function, Expression operand);
    double Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                    std::wstring* text) override;
    void EvaluateBlock(IMemoryResidentData& store, std::int32_t first, std::int32_t count, double* out) override;
    void Accept(Visitor& visitor) override;

    [[nodiscard]] std::int32_t Depth() const override { return depth_; }

    [[nodiscard]] UnaryFunction Function() const { return function_; }

    Expression& Operand() { return operand_; }

private:
    UnaryFunction function_;
    Expression operand_;
    std::int32_t depth_;
};

/// A number.
class KS_API ConstantExpression final : public AbstractExpression {
public:
    explicit ConstantExpression(double value) : value_(value) {}

    double Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                    std::wstring* text) override;
    void EvaluateBlock(IMemoryResidentData& store, std::int32_t first, std::int32_t count, double* out) override;
    void Accept(Visitor& visitor) override;
    [[nodiscard]] OperandForm Form() const override;

    [[nodiscard]] double Value() const { return value_; }

private:
    double value_;
};

/// The value of a field as a number. A text that is no number writes a debug line and counts as 0.0.
class KS_API VariableExpression final : public AbstractExpression {
public:
    explicit VariableExpression(FieldReference reference) : reference_(reference) {}

    double Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                    std::wstring* text) override;
    void EvaluateBlock(IMemoryResidentData& store, std::int32_t first, std::int32_t count, double* out) override;
    void Accept(Visitor& visitor) override;
    [[nodiscard]] OperandForm Form() const override;

    FieldReference& Reference() { return reference_; }

private:
    FieldReference reference_;
};

/// A function of any number of operands, evaluated in order. Requires: an element.
class KS_API ListExpression final : public AbstractExpression {
public:
    ListExpression(std::vector<Expression> elements, ListFunction function);
    double Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                    std::wstring* text) override;
    void EvaluateBlock(IMemoryResidentData& store, std::int32_t first, std::int32_t count, double* out) override;
    void Accept(Visitor& visitor) override;

    [[nodiscard]] std::int32_t Depth() const override { return depth_; }

    std::vector<Expression>& Elements() { return elements_; }

    [[nodiscard]] ListFunction Function() const { return function_; }

private:
    std::vector<Expression> elements_;
    ListFunction function_;
    std::int32_t depth_;
};

/// Texts joined to one, which goes to `text`; the number is 0.0. Without `text` nothing is evaluated.
class KS_API StringListExpression final : public AbstractExpression {
public:
    StringListExpression() = default;
    explicit StringListExpression(std::vector<std::shared_ptr<AbstractString>> elements);
    double Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                    std::wstring* text) override;
    void EvaluateBlock(IMemoryResidentData& store, std::int32_t first, std::int32_t count, double* out) override;
    void Accept(Visitor& visitor) override;

    [[nodiscard]] const std::vector<std::shared_ptr<AbstractString>>& Elements() const { return elements_; }

private:
    std::vector<std::shared_ptr<AbstractString>> elements_;
};

/// A comparison of two texts. The caller's `text` is not written.
class KS_API StringBinaryExpression final : public AbstractExpression {
public:
    StringBinaryExpression(StringListExpression left, TextFunction function, StringListExpression right);
    double Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                    std::wstring* text) override;
    void Accept(Visitor& visitor) override;

    StringListExpression& Left() { return left_; }

    [[nodiscard]] TextFunction Function() const { return function_; }

    StringListExpression& Right() { return right_; }

private:
    StringListExpression left_;
    TextFunction function_;
    StringListExpression right_;
};

/// A script variable as a number: -1.0 without its row, or when its text is no number.
class KS_API KSEPDoubleExpression final : public AbstractExpression {
public:
    explicit KSEPDoubleExpression(KSEPVariable variable) : variable_(std::move(variable)) {}

    double Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                    std::wstring* text) override;
    void Accept(Visitor& visitor) override;

    KSEPVariable& Variable() { return variable_; }

private:
    KSEPVariable variable_;
};

/// A wrapper of the parser around a text node. It does not stay in a tree.
class KS_API MyString final : public AbstractString {
public:
    MyString() = default;

    explicit MyString(std::shared_ptr<AbstractString> inner) : inner_(std::move(inner)) {}

    void Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                  std::wstring* text) override;
    void Accept(Visitor& visitor) override;

    /// Null for an empty wrapper, whose text is empty.
    [[nodiscard]] const std::shared_ptr<AbstractString>& Inner() const { return inner_; }

private:
    std::shared_ptr<AbstractString> inner_;
};

/// A text without fields.
class KS_API LiteralString final : public AbstractString {
public:
    explicit LiteralString(std::wstring text) : text_(std::move(text)) {}

    void Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                  std::wstring* text) override;
    void Accept(Visitor& visitor) override;

    [[nodiscard]] const std::wstring* Literal() const override { return &text_; }

    [[nodiscard]] const std::wstring& Text() const { return text_; }

private:
    std::wstring text_;
};

/// The value of a field as a text: its stored or display text, or its number in 17 digits.
class KS_API FieldString final : public AbstractString {
public:
    explicit FieldString(FieldReference reference) : reference_(reference) {}

    void Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                  std::wstring* text) override;
    void Accept(Visitor& visitor) override;

    FieldReference& Reference() { return reference_; }

private:
    FieldReference reference_;
};

/// A script variable as a text, empty without its row.
class KS_API KSEPStringExpression final : public AbstractString {
public:
    explicit KSEPStringExpression(KSEPVariable variable) : variable_(std::move(variable)) {}

    void Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                  std::wstring* text) override;
    void Accept(Visitor& visitor) override;

    KSEPVariable& Variable() { return variable_; }

private:
    KSEPVariable variable_;
};

/// Walks a tree. The base walks everything in order and does nothing else; a node's `Accept` calls its operation here.
class KS_API Visitor {
public:
    Visitor() = default;
    Visitor(const Visitor&) = delete;
    Visitor& operator=(const Visitor&) = delete;
    virtual ~Visitor() = default;
    /// For whoever starts to walk the expression of a field; nothing here calls it.
    virtual void Enter(std::int32_t format, std::int32_t field);
    virtual void Leave();
    /// Called for both kinds of script variables.
    virtual void VisitScriptVariable(KSEPVariable& variable);
    /// Called for both kinds of field references.
    virtual void VisitFieldReference(FieldReference& reference);
    virtual void Visit(MyString& node);
    virtual void Visit(KSEPStringExpression& node);
    virtual void Visit(StringListExpression& node);
    virtual void Visit(FieldString& node);
    virtual void Visit(LiteralString& node);
    virtual void Visit(KSEPDoubleExpression& node);
    virtual void Visit(ListExpression& node);
    virtual void Visit(StringBinaryExpression& node);
    virtual void Visit(ConstantExpression& node);
    virtual void Visit(UnaryExpression& node);
    virtual void Visit(BinaryExpression& node);
    virtual void Visit(VariableExpression& node);
    virtual void Visit(Expression& node);
};

} // namespace Kestrona::Expressions
