// Implements: Parse_EVALUATE, Parse_HIDDEN_IF, Parse_EXCLUDE.
#include "platform/wide_c_string.h"

#include <kestrona/classification_readers.h>

using namespace Kestrona::Configuration::Parsers;

namespace {

wchar_t* ExpressionOf(const ExpressionClassificationParser& parser, const wchar_t* text) {
    if (text == nullptr) {
        return nullptr;
    }
    const ClassificationMatch match = parser.MatchFirst(text);
    return match.Matched ? Kestrona::Platform::DuplicateWide(match.Values.at(parser.get_ExpressionKey())) : nullptr;
}

} // namespace

wchar_t* Parse_EVALUATE(const wchar_t* text) {
    return ExpressionOf(ClassificationParser_EVALUATE(), text);
}

wchar_t* Parse_HIDDEN_IF(const wchar_t* text) {
    return ExpressionOf(ClassificationParser_HIDDEN_IF_Expr(), text);
}

wchar_t* Parse_EXCLUDE(const wchar_t* text) {
    return ExpressionOf(ClassificationParser_EXCLUDE(), text);
}
