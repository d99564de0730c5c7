#include "expressions/parse_expression.h"

#include "expressions/grammar.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace Kestrona::Expressions {

namespace {

constexpr std::size_t kMaxTextLength = 65536;
constexpr const wchar_t* kMismatched = L"Mismatched Brackets / Braces";
constexpr const wchar_t* kEmpty = L"Empty Expression String";
constexpr const wchar_t* kUnknown = L"Unknown Error";

// Definitions in use carry a rest that begins so, which was never part of the expression. It is passed over.
constexpr std::wstring_view kToleratedRest = L"(({#Apply Efficiency to Setups?}==1)*(1/({#Efficiency %}/100)) +";
static_assert(kToleratedRest.size() == 64);

enum class Outcome {
    Parsed,
    Failed,
    Refused
};

bool AreBalanced(std::wstring_view text, wchar_t open, wchar_t close) {
    return std::ranges::count(text, open) == std::ranges::count(text, close);
}

const wchar_t* MessageWithoutReport(std::wstring_view text) {
    if (!AreBalanced(text, L'(', L')') || !AreBalanced(text, L'{', L'}')) {
        return kMismatched;
    }
    return text.empty() ? kEmpty : kUnknown;
}

void DescribeFailure(const std::wstring& text, Outcome outcome, ExpressionErrorInfo& info) {
    info.Success = false;
    info.Expression = text;
    if (outcome == Outcome::Refused) {
        info.Message = kUnknown;
        info.Position = -1;
    } else if (info.Message.empty()) {
        info.Message = MessageWithoutReport(text);
        info.Position = -1;
    }
}

Outcome ParseText(ParseContext& context, const std::wstring& text, Expression& root) {
    const wchar_t* place = text.data();
    const wchar_t* const end = place + text.size();
    const GrammarResult result = ParseGrammar(context, place, end, root);
    if (result == GrammarResult::Failed) {
        return Outcome::Failed;
    }
    if (result == GrammarResult::TooDeep || root.Depth() > kMaxTreeDepth) {
        return Outcome::Refused;
    }
    const std::wstring_view rest(place, static_cast<std::size_t>(end - place));
    return rest.empty() || rest.starts_with(kToleratedRest) ? Outcome::Parsed : Outcome::Failed;
}

Outcome ParseWithin(IMemoryResidentData& store, FieldNameTables& tables, const ExpressionSource& source,
                    const std::wstring& text, ExpressionErrorInfo& info, Expression& root) {
    if (source.text.size() > kMaxTextLength) {
        return Outcome::Refused;
    }
    ParseContext context(store, tables, source.format, source.field, text, info);
    const Outcome outcome = ParseText(context, text, root);
    if (context.Errors().HasReported()) {
        info.Expression = text;
    }
    return outcome;
}

} // namespace

std::unique_ptr<INativeExpression> ParseExpression(IMemoryResidentData& store, FieldNameTables& tables,
                                                   const ExpressionSource& source, ExpressionErrorInfo& info) {
    const std::wstring text = source.is_string ? L"~" + source.text + L"~" : source.text;
    auto root = std::make_unique<Expression>();
    const Outcome outcome = ParseWithin(store, tables, source, text, info, *root);
    if (outcome != Outcome::Parsed) {
        DescribeFailure(text, outcome, info);
        return nullptr;
    }
    info.Success = true;
    return root;
}

std::unique_ptr<INativeExpression> CompileExpression(IMemoryResidentData& store, FieldNameTables& tables,
                                                     const ExpressionSource& source, ExpressionErrorCallback callback) {
    ExpressionErrorInfo info;
    info.Format = source.format;
    info.Field = source.field;
    std::unique_ptr<INativeExpression> expression = ParseExpression(store, tables, source, info);
    if (expression == nullptr && callback != nullptr) {
        callback(store, &info);
    }
    return expression;
}

} // namespace Kestrona::Expressions

INativeExpression* KSDLL_ParseAndVerifyExpression(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                  std::int32_t format, const std::wstring& text,
                                                  ExpressionErrorInfo& info) {
    Kestrona::Expressions::FieldNameTables tables(store);
    return ParseExpression(store, tables, {.format = format, .text = text}, info).release();
}

INativeExpression* KSDLL_CreateExpression(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                          std::int32_t format, const std::wstring& text, bool is_string,
                                          ExpressionErrorCallback callback) {
    return KSDLL_CreateFieldExpression(store, format, -1, text, is_string, callback);
}

INativeExpression* KSDLL_CreateFieldExpression(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                               std::int32_t format, std::int32_t field, const std::wstring& text,
                                               bool is_string, ExpressionErrorCallback callback) {
    Kestrona::Expressions::FieldNameTables tables(store);
    return CompileExpression(store, tables, {.format = format, .field = field, .text = text, .is_string = is_string},
                             callback)
        .release();
}
