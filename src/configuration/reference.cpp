#include "configuration/reference.h"

namespace Kestrona::Configuration {

using Parsers::ClassificationMatch;

namespace {

std::size_t PositionOf(const ClassificationMatch& match) {
    return static_cast<std::size_t>(match.Start);
}

} // namespace

Reference ReferenceOf(const Parsers::TableFieldClassificationParser& parser, const ClassificationMatch& match) {
    return {match.Values.at(parser.get_TableNameKey()), match.Values.at(parser.get_FieldNameKey()), PositionOf(match)};
}

Reference ReferenceOf(const Parsers::TwoKeyClassificationParser& parser, const ClassificationMatch& match) {
    return {match.Values.at(parser.get_FirstKey()), match.Values.at(parser.get_SecondKey()), PositionOf(match)};
}

bool FindFieldReference(const Parsers::OneKeyClassificationParser& parser, const std::wstring& text, Reference& out) {
    const ClassificationMatch match = parser.MatchFirst(text);
    if (match.Matched) {
        out = {{}, match.Values.at(parser.get_FirstKey()), PositionOf(match)};
    }
    return match.Matched;
}

} // namespace Kestrona::Configuration
