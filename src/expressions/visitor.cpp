// Implements: the walk of the visitors' base.
#include <kestrona/expression_tree.h>

namespace Kestrona::Expressions {

void Visitor::Enter(std::int32_t, std::int32_t) {}

void Visitor::Leave() {}

void Visitor::VisitScriptVariable(KSEPVariable&) {}

void Visitor::VisitFieldReference(FieldReference&) {}

void Visitor::Visit(MyString&) {}

void Visitor::Visit(KSEPStringExpression& node) {
    VisitScriptVariable(node.Variable());
}

void Visitor::Visit(StringListExpression& node) {
    for (const std::shared_ptr<AbstractString>& element : node.Elements()) {
        element->Accept(*this);
    }
}

void Visitor::Visit(FieldString& node) {
    VisitFieldReference(node.Reference());
}

void Visitor::Visit(LiteralString&) {}

void Visitor::Visit(KSEPDoubleExpression& node) {
    VisitScriptVariable(node.Variable());
}

void Visitor::Visit(ListExpression& node) {
    for (Expression& element : node.Elements()) {
        element.Accept(*this);
    }
}

void Visitor::Visit(StringBinaryExpression& node) {
    Visit(node.Left());
    Visit(node.Right());
}

void Visitor::Visit(ConstantExpression&) {}

void Visitor::Visit(UnaryExpression& node) {
    node.Operand().Accept(*this);
}

void Visitor::Visit(BinaryExpression& node) {
    node.Left().Accept(*this);
    node.Right().Accept(*this);
}

void Visitor::Visit(VariableExpression& node) {
    VisitFieldReference(node.Reference());
}

void Visitor::Visit(Expression& node) {
    if (node.Inner() != nullptr) {
        node.Inner()->Accept(*this);
    }
}

void MyString::Accept(Visitor& visitor) {
    visitor.Visit(*this);
}

void KSEPStringExpression::Accept(Visitor& visitor) {
    visitor.Visit(*this);
}

void StringListExpression::Accept(Visitor& visitor) {
    visitor.Visit(*this);
}

void FieldString::Accept(Visitor& visitor) {
    visitor.Visit(*this);
}

void LiteralString::Accept(Visitor& visitor) {
    visitor.Visit(*this);
}

void KSEPDoubleExpression::Accept(Visitor& visitor) {
    visitor.Visit(*this);
}

void ListExpression::Accept(Visitor& visitor) {
    visitor.Visit(*this);
}

void StringBinaryExpression::Accept(Visitor& visitor) {
    visitor.Visit(*this);
}

void ConstantExpression::Accept(Visitor& visitor) {
    visitor.Visit(*this);
}

void UnaryExpression::Accept(Visitor& visitor) {
    visitor.Visit(*this);
}

void BinaryExpression::Accept(Visitor& visitor) {
    visitor.Visit(*this);
}

void VariableExpression::Accept(Visitor& visitor) {
    visitor.Visit(*this);
}

void Expression::Accept(Visitor& visitor) {
    visitor.Visit(*this);
}

} // namespace Kestrona::Expressions
