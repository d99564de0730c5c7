#pragma once

#include "expressions/operator_tables.h"

#include <kestrona/expression_tree.h>

#include <span>
#include <sstream>
#include <string>

// Trees as text, operator first: "(+ 1 #3)".
namespace Kestrona::Fixtures {

// Fields are shown by mark and number ("?" without a mark), texts in quotes, lists of texts in square brackets, script
// variables as "<#Name>", operators of texts with "s" in front, those of one operand with "u".
class TreeDump final : public Expressions::Visitor {
public:
    static std::wstring Of(Expressions::Expression& root) {
        TreeDump dump;
        root.Accept(dump);
        return dump.out_.str();
    }

    void VisitScriptVariable(Expressions::KSEPVariable& variable) override {
        out_ << L'<' << Mark(variable.type) << variable.name << L'>';
    }

    void VisitFieldReference(Expressions::FieldReference& reference) override {
        out_ << Mark(reference.type) << reference.field;
    }

    using Expressions::Visitor::Visit;

    void Visit(Expressions::StringListExpression& node) override {
        const wchar_t* between = L"[";
        for (const auto& element : node.Elements()) {
            out_ << between;
            element->Accept(*this);
            between = L" ";
        }
        out_ << (node.Elements().empty() ? L"[]" : L"]");
    }

    void Visit(Expressions::LiteralString& node) override { out_ << L'"' << node.Text() << L'"'; }

    void Visit(Expressions::ListExpression& node) override {
        out_ << L'(' << NameOf(Expressions::ListFunctions(), node.Function());
        for (Expressions::Expression& element : node.Elements()) {
            out_ << L' ';
            element.Accept(*this);
        }
        out_ << L')';
    }

    void Visit(Expressions::StringBinaryExpression& node) override {
        out_ << L"(s" << NameOf(Expressions::StringOperators(), node.Function()) << L' ';
        Visit(node.Left());
        out_ << L' ';
        Visit(node.Right());
        out_ << L')';
    }

    void Visit(Expressions::ConstantExpression& node) override { out_ << node.Value(); }

    void Visit(Expressions::UnaryExpression& node) override {
        const std::wstring symbol = NameOf(Expressions::UnaryOperators(), node.Function());
        out_ << L'(' << (symbol.empty() ? NameOf(Expressions::UnaryFunctions(), node.Function()) : L"u" + symbol)
             << L' ';
        node.Operand().Accept(*this);
        out_ << L')';
    }

    void Visit(Expressions::BinaryExpression& node) override {
        out_ << L'(' << BinaryName(node.Function()) << L' ';
        node.Left().Accept(*this);
        out_ << L' ';
        node.Right().Accept(*this);
        out_ << L')';
    }

private:
    static wchar_t Mark(Expressions::ExpressionFieldType type) {
        using Type = Expressions::ExpressionFieldType;
        return type == Type::Text ? L'$' : type == Type::Number ? L'#' : L'?';
    }

    template <typename Function>
    static std::wstring NameOf(std::span<const Expressions::NamedFunction<Function>> table, Function function) {
        for (const auto& entry : table) {
            if (entry.function == function) {
                return entry.name;
            }
        }
        return {};
    }

    static std::wstring BinaryName(Expressions::BinaryFunction function) {
        using namespace Expressions;
        std::wstring name;
        for (const auto table : {EqualityOperators(), RelationalOperators(), LogicalOperators(), AdditiveOperators(),
                                 MultiplicativeOperators()}) {
            name += NameOf(table, function);
        }
        return name;
    }

    std::wostringstream out_;
};

} // namespace Kestrona::Fixtures
