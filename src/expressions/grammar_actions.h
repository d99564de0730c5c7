#pragma once

#include <kestrona/expression_tree.h>

#include <string>
#include <vector>

// What the rules of the grammar make of what they have matched. The first argument is the rule's value; operands are
// moved from.
namespace Kestrona::Expressions {

void FoldBinary(Expression& value, BinaryFunction function, Expression& right);
void MakeUnaryExpression(Expression& value, UnaryFunction function, Expression& operand);
void MakeListExpression(Expression& value, ListFunction function, std::vector<Expression>& elements);
void MakeConstant(Expression& value, double number);
void MakeVariable(Expression& value, const FieldReference& reference);
void MakeScriptNumber(Expression& value, KSEPVariable& variable);
void MakeComparison(Expression& value, StringListExpression& left, TextFunction function, StringListExpression& right);
// A list of texts that stands as a whole expression.
void MakeText(Expression& value, StringListExpression& list);

void MakeFieldString(MyString& value, const FieldReference& reference);
void MakeScriptString(MyString& value, KSEPVariable& variable);
void MakeLiteral(MyString& value, std::wstring text);
// The list keeps what the wrappers hold.
void MakeStringList(StringListExpression& value, const std::vector<MyString>& elements);

} // namespace Kestrona::Expressions
