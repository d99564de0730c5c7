// The forms of the patterned keywords: which values they have and how a match is turned into them.
#include "configuration/parsers/classification_pattern.h"

#include <kestrona/classification_parsers.h>

#include <optional>
#include <string_view>
#include <utility>

namespace Kestrona::Configuration::Parsers {

namespace {

constexpr const wchar_t* kName = L"NAME";
constexpr const wchar_t* kTableKey = L"TABLE";
constexpr const wchar_t* kFieldKey = L"FIELD";

using Values = std::map<std::wstring, std::wstring>;
using Group = std::optional<std::wstring_view>;

bool TakeBoth(const Group& first, const std::wstring& first_key, const Group& second, const std::wstring& second_key,
              Values& values) {
    if (!first || !second) {
        return false;
    }
    values.emplace(first_key, *first);
    values.emplace(second_key, *second);
    return true;
}

} // namespace

PatternedClassificationParser::PatternedClassificationParser(const PatternText& text)
    : pattern_(CompiledPattern(text)) {}

ClassificationMatch PatternedClassificationParser::MatchFrom(const std::wstring& text, std::int32_t start) const {
    Platform::PatternMatch found;
    ClassificationMatch match;
    if (start < 0 || !pattern_->Search(text, static_cast<std::size_t>(start), found) ||
        !TakeValues(PatternGroups(text, found), match.Values)) {
        return {};
    }
    const Platform::PatternSpan whole = *found.groups.front();
    match.Matched = true;
    match.Start = static_cast<std::int32_t>(whole.start);
    match.Length = static_cast<std::int32_t>(whole.length);
    match.End = match.Start + match.Length;
    match.Text = whole.In(text);
    return match;
}

OneKeyClassificationParser::OneKeyClassificationParser(const PatternText& text, const wchar_t* key)
    : PatternedClassificationParser(text),
      key_(key) {}

bool OneKeyClassificationParser::TakeValues(const PatternGroups& groups, Values& values) const {
    if (const Group value = groups.At(1)) {
        values.emplace(key_, *value);
    }
    return true;
}

NameClassificationParser::NameClassificationParser(const PatternText& text) : OneKeyClassificationParser(text, kName) {}

bool NameClassificationParser::TakeValues(const PatternGroups& groups, Values& values) const {
    const Group quoted = groups.At(1);
    const Group name = quoted ? quoted : groups.At(2);
    if (name) {
        values.emplace(kName, *name);
    }
    return name.has_value();
}

TableFieldClassificationParser::TableFieldClassificationParser(const PatternText& text)
    : PatternedClassificationParser(text) {}

std::wstring TableFieldClassificationParser::get_TableNameKey() const {
    return kTableKey;
}

std::wstring TableFieldClassificationParser::get_FieldNameKey() const {
    return kFieldKey;
}

bool TableFieldClassificationParser::TakeValues(const PatternGroups& groups, Values& values) const {
    return TakeBoth(groups.At(1), kTableKey, groups.At(2), kFieldKey, values);
}

bool ClassificationParser_SOURCE::TakeValues(const PatternGroups& groups, Values& values) const {
    const Group lookup = groups.At(1);
    return (!lookup || lookup->empty()) && TakeBoth(groups.At(2), kTableKey, groups.At(3), kFieldKey, values);
}

TwoKeyClassificationParser::TwoKeyClassificationParser(const PatternText& text, const wchar_t* first_key,
                                                       const wchar_t* second_key)
    : PatternedClassificationParser(text),
      first_key_(first_key),
      second_key_(second_key) {}

bool TwoKeyClassificationParser::TakeValues(const PatternGroups& groups, Values& values) const {
    return TakeBoth(groups.At(1), first_key_, groups.At(2), second_key_, values);
}

} // namespace Kestrona::Configuration::Parsers
