#include "definition/unresolved.h"

#include "definition/classification.h"
#include "definition/values.h"
#include "definition/word_splitter.h"
#include "definition/words.h"

#include <kestrona/classes.h>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace Kestrona::Host::Language {

namespace {

using Data::MemoryResident::IMemoryResidentData;

constexpr std::wstring_view kTwoFormatsMark = L"3DMATRIX";

bool HasWord(std::span<const ClassificationWord> words, std::wstring_view keyword) {
    return std::any_of(words.begin(), words.end(),
                       [&](const ClassificationWord& word) { return KeywordOf(word.text) == keyword; });
}

std::size_t CountWords(const std::vector<RawWord>& words, std::wstring_view keyword) {
    return static_cast<std::size_t>(std::count_if(
        words.begin(), words.end(), [&](const RawWord& word) { return KeywordOf(word.text) == keyword; }));
}

// Resolution puts the mark straight behind the last word.
std::wstring_view WithoutMark(std::wstring_view text) {
    const bool is_mark = text.ends_with(kTwoFormatsMark) && text.size() > kTwoFormatsMark.size() &&
                         !text.substr(0, text.size() - kTwoFormatsMark.size()).ends_with(kWordSeparator);
    return is_mark ? text.substr(0, text.size() - kTwoFormatsMark.size()) : text;
}

// The value of a pair of the form (3->"text").
std::wstring_view ValueOf(std::wstring_view pair) {
    const std::wstring_view arguments = ArgumentsOf(pair);
    const std::size_t end = arguments.find(L"->");
    return end == std::wstring_view::npos || end < 1 ? std::wstring_view() : arguments.substr(1, end - 1);
}

// Resolution appends SUBSTITUTX and SUBSTITUTE with the same value for each REMOTE, in turn. Such values are -10000 and
// below.
bool IsRemotePair(std::wstring_view first, std::wstring_view second) {
    constexpr std::int32_t kHighestRemote = -10000;
    const std::wstring_view value = ValueOf(first);
    return KeywordOf(first) == L"SUBSTITUTX" && KeywordOf(second) == L"SUBSTITUTE" && value == ValueOf(second) &&
           ParseWhole(value, INT32_MIN, kHighestRemote);
}

std::wstring_view WithoutRemotePairs(std::wstring_view text) {
    const std::vector<RawWord> words = SplitWords(text).words;
    const std::size_t added = 2 * CountWords(words, L"REMOTE");
    if (added == 0 || added >= words.size()) {
        return text;
    }
    for (std::size_t i = words.size() - added; i < words.size(); i += 2) {
        if (!IsRemotePair(words[i].text, words[i + 1].text)) {
            return text;
        }
    }
    const RawWord& last = words[words.size() - added - 1];
    return text.substr(0, last.offset + last.text.size());
}

} // namespace

std::wstring UnresolvedClassification(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    std::wstring_view text = store.GetDbClassString(format, field);
    if (store.ClassDefined(format, field, Classes::k3DMatrix)) {
        text = WithoutMark(text);
    }
    return std::wstring(WithoutRemotePairs(text));
}

std::array<std::uint32_t, kClassWords> BitsFromResolution(IMemoryResidentData& store, std::int32_t format,
                                                          std::int32_t field,
                                                          std::span<const ClassificationWord> words) {
    std::array<std::uint32_t, kClassWords> bits{};
    for (std::int32_t word = 0; word < kClassWords; ++word) {
        bits[static_cast<std::size_t>(word)] = ResolutionBits(word);
    }
    const auto add = [&](const Class& c) {
        bits[static_cast<std::size_t>(c.word)] |= c.mask;
    };
    if (HasWord(words, L"RELATED LIST") || HasWord(words, L"ASSOCIATE")) {
        add(Classes::kHidden);
        add(Classes::kReadOnly);
    }
    if (HasWord(words, L"REMOTE")) {
        add(Classes::kSubstitute);
        add(Classes::kSubstitutx);
    }
    if (HasWord(words, L"STRING STORAGE")) {
        add(Classes::kStorageMark);
    }
    if (store.ClassDefined(format, field, Classes::kFamilyTarget)) {
        add(Classes::kInheritFromParent);
    }
    return bits;
}

} // namespace Kestrona::Host::Language
