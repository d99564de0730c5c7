// The parsers' common ground and the plain keywords.
#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>

#include <string_view>
#include <utility>

namespace Kestrona::Configuration::Parsers {

IClassificationParser::~IClassificationParser() = default;

ClassificationMatch IClassificationParser::MatchFirst(const std::wstring& text) const {
    return MatchFrom(text, 0);
}

bool IClassificationParser::IsMatch(const std::wstring& text) const {
    return MatchFirst(text).Matched;
}

std::vector<ClassificationMatch> IClassificationParser::MatchAll(const std::wstring& text) const {
    std::vector<ClassificationMatch> matches;
    const auto length = static_cast<std::int32_t>(text.size());
    for (std::int32_t at = 0; at < length; at = matches.back().End) {
        ClassificationMatch match = MatchFrom(text, at);
        if (!match.Matched || match.End <= at) {
            break;
        }
        matches.push_back(std::move(match));
    }
    return matches;
}

SimpleClassificationParser::SimpleClassificationParser(std::wstring keyword) : keyword_(std::move(keyword)) {}

ClassificationMatch SimpleClassificationParser::MatchFrom(const std::wstring& text, std::int32_t start) const {
    ClassificationMatch match;
    const std::size_t found = start < 0 ? std::wstring::npos : text.find(keyword_, static_cast<std::size_t>(start));
    if (found != std::wstring::npos) {
        match.Matched = true;
        match.Start = static_cast<std::int32_t>(found);
        match.Length = static_cast<std::int32_t>(keyword_.size());
        match.End = match.Start + match.Length;
        match.Text = keyword_;
    }
    return match;
}

SimpleClassificationWithAttributeParser::SimpleClassificationWithAttributeParser(std::wstring keyword, Class c)
    : SimpleClassificationParser(std::move(keyword)),
      class_(c) {}

ClassificationParser_AUTO_CALCULATE::ClassificationParser_AUTO_CALCULATE()
    : SimpleClassificationParser(L"AUTO CALCULATE") {}

ClassificationParser_SYSTEMDB::ClassificationParser_SYSTEMDB() : SimpleClassificationParser(L"SYSTEMDB") {}

ClassificationParser_DATA_LIST::ClassificationParser_DATA_LIST()
    : SimpleClassificationWithAttributeParser(L"DATA LIST", Classes::kDataList) {}

ClassificationParser_EXCLUDE_FROM_DB::ClassificationParser_EXCLUDE_FROM_DB()
    : SimpleClassificationWithAttributeParser(L"EXCLUDE FROM DB", Classes::kExcludeFromDb) {}

} // namespace Kestrona::Configuration::Parsers
