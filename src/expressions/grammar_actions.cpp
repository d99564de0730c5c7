#include "expressions/grammar_actions.h"

#include <memory>
#include <utility>

namespace Kestrona::Expressions {

namespace {

template <typename Node, typename... Arguments>
Expression Make(Arguments&&... arguments) {
    return Expression(std::make_shared<Node>(std::forward<Arguments>(arguments)...));
}

template <typename Node, typename... Arguments>
MyString MakeString(Arguments&&... arguments) {
    return MyString(std::make_shared<Node>(std::forward<Arguments>(arguments)...));
}

} // namespace

void FoldBinary(Expression& value, BinaryFunction function, Expression& right) {
    value = Make<BinaryExpression>(std::move(value), std::move(right), function);
}

void MakeUnaryExpression(Expression& value, UnaryFunction function, Expression& operand) {
    value = Make<UnaryExpression>(function, std::move(operand));
}

void MakeListExpression(Expression& value, ListFunction function, std::vector<Expression>& elements) {
    value = Make<ListExpression>(std::move(elements), function);
}

void MakeConstant(Expression& value, double number) {
    value = Make<ConstantExpression>(number);
}

void MakeVariable(Expression& value, const FieldReference& reference) {
    value = Make<VariableExpression>(reference);
}

void MakeScriptNumber(Expression& value, KSEPVariable& variable) {
    value = Make<KSEPDoubleExpression>(std::move(variable));
}

void MakeComparison(Expression& value, StringListExpression& left, TextFunction function, StringListExpression& right) {
    value = Make<StringBinaryExpression>(std::move(left), function, std::move(right));
}

void MakeText(Expression& value, StringListExpression& list) {
    value = Make<StringListExpression>(std::move(list));
}

void MakeFieldString(MyString& value, const FieldReference& reference) {
    value = MakeString<FieldString>(reference);
}

void MakeScriptString(MyString& value, KSEPVariable& variable) {
    value = MakeString<KSEPStringExpression>(std::move(variable));
}

void MakeLiteral(MyString& value, std::wstring text) {
    value = MakeString<LiteralString>(std::move(text));
}

void MakeStringList(StringListExpression& value, const std::vector<MyString>& elements) {
    std::vector<std::shared_ptr<AbstractString>> texts;
    texts.reserve(elements.size());
    for (const MyString& element : elements) {
        texts.push_back(element.Inner());
    }
    value = StringListExpression(std::move(texts));
}

} // namespace Kestrona::Expressions
