#include "expressions/grammar.h"

#include "expressions/grammar_actions.h"
#include "expressions/operator_tables.h"

#include <boost/phoenix/bind.hpp>
#include <boost/phoenix/core.hpp>
#include <boost/phoenix/operator.hpp>
#include <boost/range/iterator_range.hpp>
#include <boost/spirit/include/qi.hpp>

#include <cassert>
#include <span>
#include <vector>

// The rules call back into the context of the parse that runs on their thread, so that one set of them serves all.
//
// Where alternatives differ in what they skip, a message quotes another character. These points decide it:
//   - a rule with an error handler works on a copy of the place, any other moves the caller's place over blanks even
//     where it fails;
//   - a constant is followed by an empty match, since a sequence works on a copy too.
//
// A rule hands its own value down to the rule that it begins with. What an alternative that fails leaves there is no
// matter: every alternative begins with a new value.

namespace Kestrona::Expressions {

namespace {

namespace phx = boost::phoenix;
namespace qi = boost::spirit::qi;
namespace wide = boost::spirit::standard_wide;

using Place = const wchar_t*;
// Blanks are those of the "C" locale, like numbers.
using Skipper = boost::spirit::ascii::space_type;
template <typename T>
using Rule = qi::rule<Place, T(), Skipper>;

thread_local ParseContext* t_context = nullptr;

ParseContext& Current() {
    assert(t_context != nullptr);
    return *t_context;
}

class CurrentContext {
public:
    explicit CurrentContext(ParseContext& context) : outer_(t_context) { t_context = &context; }

    CurrentContext(const CurrentContext&) = delete;
    CurrentContext& operator=(const CurrentContext&) = delete;

    ~CurrentContext() { t_context = outer_; }

private:
    ParseContext* outer_;
};

struct TooDeepError {};

void Report(ErrorType type, const wchar_t* token, Place start, Place failure) {
    Current().Errors().Report(Current(), type, start, failure, token);
}

// Gives a rule an error handler: it catches what is expected and missing within, reports it and lets the rule fail.
template <typename AnyRule>
void Handle(AnyRule& rule, ErrorType type, const wchar_t* token = L"") {
    qi::on_error<qi::fail>(rule, phx::bind(&Report, type, token, qi::_1, qi::_3));
}

// A rule that is nothing but expected symbols. It reports like one with an error handler and without the price of an
// exception, since every expression ends with a look for one operator more.
template <typename Function>
struct ReportingRule {
    Function subject;
    ErrorType type;

    template <typename Context, typename AnySkipper>
    bool operator()(Place& first, const Place& last, Context& context, const AnySkipper& skipper) const {
        Place at = first;
        const bool matches = subject(at, last, context, skipper);
        if (matches) {
            first = at;
        } else {
            Report(type, L"", first, at);
        }
        return matches;
    }
};

// Counts the brackets around a rule.
template <typename Function>
struct NestedRule {
    Function subject;

    struct Level {
        Level() {
            if (Current().depth == kMaxBracketDepth) {
                throw TooDeepError();
            }
            ++Current().depth;
        }

        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

        ~Level() { --Current().depth; }
    };

    template <typename Context, typename AnySkipper>
    bool operator()(Place& first, const Place& last, Context& context, const AnySkipper& skipper) const {
        const Level level;
        return subject(first, last, context, skipper);
    }
};

template <typename Function>
struct FunctionSymbols : qi::symbols<wchar_t, Function> {
    explicit FunctionSymbols(std::span<const NamedFunction<Function>> table) {
        for (const NamedFunction<Function>& entry : table) {
            this->add(entry.name, entry.function);
        }
    }
};

struct FieldTypeMarks : qi::symbols<wchar_t, ExpressionFieldType> {
    FieldTypeMarks() {
        add(L"$", ExpressionFieldType::Text);
        add(L"#", ExpressionFieldType::Number);
    }
};

// Looks into the names of the current parse, in place of a tree of its own.
struct FieldNameLookup {
    template <typename Filter>
    std::int32_t* find(Place& first, Place last, Filter) const {
        return Current().MatchName(first, last);
    }
};

using FieldNameSymbols = qi::symbols<wchar_t, std::int32_t, FieldNameLookup>;

void SetFieldReference(FieldReference& value, ExpressionFieldType type, std::int32_t field) {
    value = {.type = type, .format = Current().Format(), .field = field};
}

void SetScriptVariable(KSEPVariable& value, ExpressionFieldType type, boost::iterator_range<Place> name) {
    value = Current().ScriptVariable(type, std::wstring(name.begin(), name.end()));
}

void SetLiteral(MyString& value, boost::iterator_range<Place> text) {
    MakeLiteral(value, std::wstring(text.begin(), text.end()));
}

class ExpressionParser {
public:
    ExpressionParser();
    ExpressionParser(const ExpressionParser&) = delete;
    ExpressionParser& operator=(const ExpressionParser&) = delete;

    bool Parse(Place& first, Place last, Expression& root) const {
        return qi::phrase_parse(first, last, equality_expression, boost::spirit::ascii::space, root);
    }

private:
    void DefineLevels();
    void DefineLevel(Rule<Expression>& level, const Rule<Expression>& operand, const Rule<BinaryFunction>& symbol);
    void DefineOperators();
    void DefineCalls();
    void DefinePrimaries();
    void DefineReferences();
    void DefineTexts();

    FunctionSymbols<BinaryFunction> equality_symbols{EqualityOperators()};
    FunctionSymbols<BinaryFunction> relational_symbols{RelationalOperators()};
    FunctionSymbols<BinaryFunction> logical_symbols{LogicalOperators()};
    FunctionSymbols<BinaryFunction> additive_symbols{AdditiveOperators()};
    FunctionSymbols<BinaryFunction> multiplicative_symbols{MultiplicativeOperators()};
    FunctionSymbols<UnaryFunction> unary_symbols{UnaryOperators()};
    FunctionSymbols<UnaryFunction> unary_function_symbols{UnaryFunctions()};
    FunctionSymbols<ListFunction> list_function_symbols{ListFunctions()};
    FunctionSymbols<TextFunction> string_symbols{StringOperators()};
    FieldTypeMarks marks;
    FieldNameSymbols field_names;
    qi::uint_parser<std::uint32_t, 16, 1, -1> hexadecimal;

    Rule<BinaryFunction> equality_operator;
    Rule<BinaryFunction> relational_operator;
    Rule<BinaryFunction> logical_operator;
    Rule<BinaryFunction> additive_operator;
    Rule<BinaryFunction> multiplicative_operator;
    Rule<UnaryFunction> unary_operator;
    Rule<UnaryFunction> unary_function_name;
    Rule<ListFunction> list_function_name;

    Rule<Expression> equality_chain;
    Rule<Expression> equality_expression;
    Rule<Expression> relational_expression;
    Rule<Expression> logical_expression;
    Rule<Expression> additive_expression;
    Rule<Expression> multiplicative_expression;
    Rule<Expression> list_function_expression;
    Rule<Expression> unary_expression;
    Rule<Expression> primary_expression;
    Rule<Expression> bracket_tail;
    Rule<double> constant;
    Rule<ExpressionFieldType> field_type;
    Rule<std::int32_t> field_name;
    Rule<FieldReference> field_reference;
    Rule<KSEPVariable> script_variable;
    Rule<StringListExpression> string_list;
    Rule<MyString> string_element;
};

ExpressionParser::ExpressionParser() {
    DefineLevels();
    DefineOperators();
    DefineCalls();
    DefinePrimaries();
    DefineReferences();
    DefineTexts();
}

// Operands, and between them operators that are folded to the left.
void ExpressionParser::DefineLevel(Rule<Expression>& level, const Rule<Expression>& operand,
                                   const Rule<BinaryFunction>& symbol) {
    level %= operand >> *qi::omit[(symbol > operand)[phx::bind(&FoldBinary, qi::_val, qi::_1, qi::_2)]];
}

void ExpressionParser::DefineLevels() {
    DefineLevel(equality_chain, relational_expression, equality_operator);
    equality_expression %= equality_chain | qi::omit[string_list[phx::bind(&MakeText, qi::_val, qi::_1)]];
    DefineLevel(relational_expression, logical_expression, relational_operator);
    DefineLevel(logical_expression, additive_expression, logical_operator);
    DefineLevel(additive_expression, multiplicative_expression, additive_operator);
    DefineLevel(multiplicative_expression, list_function_expression, multiplicative_operator);
    for (Rule<Expression>* const level : {&equality_expression, &relational_expression, &logical_expression,
                                          &additive_expression, &multiplicative_expression}) {
        Handle(*level, ErrorType::Expression);
    }
}

void ExpressionParser::DefineOperators() {
    using Function = decltype(equality_operator.f);
    equality_operator = equality_symbols;
    equality_operator.f = ReportingRule<Function>{equality_operator.f, ErrorType::Symbol};
    relational_operator = relational_symbols;
    logical_operator = logical_symbols;
    additive_operator = additive_symbols;
    multiplicative_operator = multiplicative_symbols;
}

void ExpressionParser::DefineCalls() {
    using UnaryRule = decltype(unary_operator.f);
    using ListRule = decltype(list_function_name.f);
    unary_operator = unary_symbols;
    unary_operator.f = ReportingRule<UnaryRule>{unary_operator.f, ErrorType::Symbol};
    unary_function_name = unary_function_symbols;
    unary_function_name.f = ReportingRule<UnaryRule>{unary_function_name.f, ErrorType::Function};
    list_function_name = list_function_symbols;
    list_function_name.f = ReportingRule<ListRule>{list_function_name.f, ErrorType::Function};

    list_function_expression %=
        unary_expression |
        qi::omit[(qi::lit(L"FUNC_") >> list_function_name >> qi::lit(L'(') >> (unary_expression % qi::lit(L',')) >>
                  qi::lit(L')'))[phx::bind(&MakeListExpression, qi::_val, qi::_1, qi::_2)]];
    unary_expression %=
        primary_expression | qi::omit[(((qi::lit(L"FUNC_") >> unary_function_name) | unary_operator) >
                                       primary_expression)[phx::bind(&MakeUnaryExpression, qi::_val, qi::_1, qi::_2)]];
}

void ExpressionParser::DefinePrimaries() {
    primary_expression %= (qi::lit(L'(') >> bracket_tail) |
                          qi::omit[constant[phx::bind(&MakeConstant, qi::_val, qi::_1)] >> qi::no_skip[qi::eps]] |
                          qi::omit[field_reference[phx::bind(&MakeVariable, qi::_val, qi::_1)]] |
                          qi::omit[(string_list >> string_symbols >>
                                    string_list)[phx::bind(&MakeComparison, qi::_val, qi::_1, qi::_2, qi::_3)]] |
                          qi::omit[script_variable[phx::bind(&MakeScriptNumber, qi::_val, qi::_1)]];
    bracket_tail %= equality_expression > qi::lit(L')');
    Handle(bracket_tail, ErrorType::Token, L")");
    bracket_tail.f = NestedRule<decltype(bracket_tail.f)>{bracket_tail.f};
    constant = qi::lexeme[qi::lit(L"0x") >> hexadecimal] | qi::double_ | qi::int_;
}

void ExpressionParser::DefineReferences() {
    field_type = marks | qi::attr(ExpressionFieldType::Unmarked);
    field_name = qi::eps > (qi::lexeme[field_names] > qi::lit(L'}'));
    Handle(field_name, ErrorType::FieldName);
    field_reference =
        qi::lit(L'{') > (field_type >> field_name)[phx::bind(&SetFieldReference, qi::_val, qi::_1, qi::_2)];
    Handle(field_reference, ErrorType::Token, L"}");
    script_variable =
        (qi::lit(L'{') >> field_type >> qi::lit(L"KSEP_") >>
         qi::no_skip[qi::raw[+~wide::char_(L'}')]])[phx::bind(&SetScriptVariable, qi::_val, qi::_1, qi::_2)] >
        qi::lit(L'}');
    Handle(script_variable, ErrorType::Token, L"}");
}

void ExpressionParser::DefineTexts() {
    string_element = field_reference[phx::bind(&MakeFieldString, qi::_val, qi::_1)] |
                     script_variable[phx::bind(&MakeScriptString, qi::_val, qi::_1)] |
                     qi::no_skip[qi::raw[+~wide::char_(L"{~\"")]][phx::bind(&SetLiteral, qi::_val, qi::_1)];
    string_list = (qi::omit[wide::char_(L"~\"")] >> (*string_element)[phx::bind(&MakeStringList, qi::_val, qi::_1)]) >
                  qi::omit[wide::char_(L"~\"")];
    Handle(string_list, ErrorType::Token, L"~ / \"");
}

} // namespace

GrammarResult ParseGrammar(ParseContext& context, const wchar_t*& first, const wchar_t* last, Expression& root) {
    static const ExpressionParser kParser;
    const CurrentContext current(context);
    try {
        return kParser.Parse(first, last, root) ? GrammarResult::Parsed : GrammarResult::Failed;
    } catch (const TooDeepError&) {
        return GrammarResult::TooDeep;
    }
}

} // namespace Kestrona::Expressions
