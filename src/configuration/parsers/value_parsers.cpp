// Keywords with a grammar of their own: SUBSTITUTE, FORMAT and the expressions.
#include "configuration/parsers/pattern_texts.h"
#include "platform/format_text.h"

#include <kestrona/classification_parsers.h>

#include <utility>

namespace Kestrona::Configuration::Parsers {

namespace {

constexpr const wchar_t* kSubstituteEntry = L"%s(%li->\"%s\")";
constexpr const wchar_t* kMaximumFormat = L".2";

} // namespace

SubstituteClassificationParserBase::SubstituteClassificationParserBase(std::wstring keyword)
    : TwoKeyClassificationParser({keyword + std::wstring(Texts::kSubstituteTail), keyword, Texts::kSubstituteOutline},
                                 L"VALUE", L"TEXT"),
      keyword_(std::move(keyword)) {}

std::wstring SubstituteClassificationParserBase::BuildClassification(std::int32_t value,
                                                                     const std::wstring& text) const {
    return Platform::FormatText(kSubstituteEntry, keyword_, value, text);
}

ClassificationParser_SUBSTITUTE::ClassificationParser_SUBSTITUTE()
    : SubstituteClassificationParserBase(L"SUBSTITUTE") {}

ClassificationParser_SUBSTITUTX::ClassificationParser_SUBSTITUTX()
    : SubstituteClassificationParserBase(L"SUBSTITUTX") {}

ClassificationParser_FORMAT::ClassificationParser_FORMAT()
    : TwoKeyClassificationParser(Texts::kFormat, L"FORMAT", L"MAX") {}

bool ClassificationParser_FORMAT::TakeValues(const PatternGroups& groups,
                                             std::map<std::wstring, std::wstring>& values) const {
    const std::optional<std::wstring_view> maximum = groups.At(1);
    const std::wstring_view format = groups.At(2).value_or(std::wstring_view());
    if (!maximum && format.empty()) {
        return false;
    }
    values.emplace(get_FirstKey(), format.empty() ? std::wstring_view(kMaximumFormat) : format);
    if (maximum) {
        values.emplace(get_SecondKey(), *maximum);
    }
    return true;
}

ExpressionClassificationParser::ExpressionClassificationParser(std::wstring keyword)
    : PatternedClassificationParser(
          {keyword + std::wstring(Texts::kExpressionTail), keyword, Texts::kExpressionOutline}),
      blank_(CompiledPattern(Texts::kBlank)),
      keyword_(std::move(keyword)) {}

bool ExpressionClassificationParser::TakeValues(const PatternGroups& groups,
                                                std::map<std::wstring, std::wstring>& values) const {
    const std::optional<std::wstring_view> expression = groups.At(1);
    Platform::PatternMatch found;
    if (!expression || blank_->Search(*expression, 0, found)) {
        return false;
    }
    values.emplace(expression_key_, *expression);
    return true;
}

ClassificationParser_EVALUATE::ClassificationParser_EVALUATE() : ExpressionClassificationParser(L"EVALUATE") {}

ClassificationParser_HIDDEN_IF_Expr::ClassificationParser_HIDDEN_IF_Expr()
    : ExpressionClassificationParser(L"HIDDEN IF") {}

ClassificationParser_EXCLUDE::ClassificationParser_EXCLUDE() : ExpressionClassificationParser(L"EXCLUDE") {}

} // namespace Kestrona::Configuration::Parsers
