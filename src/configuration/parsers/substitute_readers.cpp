// Implements: the readers of SUBSTITUTE and SUBSTITUTX entries.
//
// The two forms for a field are not alike: SUBSTITUTE asks for the field's class and parses once, SUBSTITUTX does not
// ask and parses every time, even where the pairs of an earlier call are returned.
#include "configuration/parsers/field_caches.h"
#include "platform/numbers.h"

#include <kestrona/classification_readers.h>

#include <algorithm>
#include <cwchar>
#include <string_view>
#include <utility>

using Kestrona::SubstituteCache;
using Kestrona::SubstPair;
using Kestrona::Data::MemoryResident::field_info;
using Kestrona::Data::MemoryResident::IMemoryResidentData;
using namespace Kestrona::Configuration::Parsers;

namespace {

constexpr std::int32_t kFound = 0;
constexpr std::int32_t kNoEntries = 1;
constexpr std::int32_t kNotFound = 2;

using Pairs = std::vector<SubstPair>;

Pairs PairsOf(const SubstituteClassificationParserBase& parser, const std::wstring& text) {
    Pairs pairs;
    for (const ClassificationMatch& match : parser.MatchAll(text)) {
        pairs.push_back(ClassificationMatchToSubstitutePair(&parser, match));
    }
    return pairs;
}

const Pairs& NoPairs() {
    static const Pairs none;
    return none;
}

// The kept pairs stay where they are until the field's classification string is set.

const Pairs& SubstitutesOf(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    field_info* const info = store.GetFieldInfo(format, field);
    return info != nullptr ? KeptSubstitutes(*info) : NoPairs();
}

const Pairs& SubstitutxOf(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    field_info* const info = store.GetFieldInfo(format, field);
    if (info == nullptr) {
        return NoPairs();
    }
    Pairs parsed = Parse_SUBSTITUTX(info->current.classString);
    EnsureFieldCaches(*info);
    if (!info->substitutxCache->HasValue) {
        info->substitutxCache->Set(std::move(parsed));
    }
    return info->substitutxCache->Peek();
}

// Two searches one after the other, which share the list of texts passed over and the number of pairs.
class TextSearch {
public:
    TextSearch(const wchar_t* wanted, std::wstring* list, double* value)
        : wanted_(wanted != nullptr ? wanted : L""),
          list_(list),
          value_(value) {}

    bool Find(const Pairs& pairs) {
        return std::any_of(pairs.begin(), pairs.end(), [this](const SubstPair& pair) { return Try(pair); });
    }

    std::int32_t Missing() const { return count_ == 0 ? kNoEntries : kNotFound; }

private:
    bool Try(const SubstPair& pair) {
        ++count_;
        *value_ = pair.Value;
        if (pair.Text == wanted_) {
            return true;
        }
        if (list_ != nullptr) {
            *list_ += L'"';
            *list_ += pair.Text;
            *list_ += L"\", ";
        }
        return false;
    }

    std::wstring_view wanted_;
    std::wstring* list_;
    double* value_;
    std::size_t count_ = 0;
};

std::int32_t Check(const std::wstring& text, std::wstring* list, const wchar_t* wanted, double* value) {
    TextSearch search(wanted, list, value);
    return search.Find(Parse_SUBSTITUTE(text)) || search.Find(Parse_SUBSTITUTX(text)) ? kFound : search.Missing();
}

std::int32_t Check(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::wstring* list,
                   const wchar_t* wanted, double* value) {
    TextSearch search(wanted, list, value);
    const bool found =
        search.Find(SubstitutesOf(store, format, field)) || search.Find(SubstitutxOf(store, format, field));
    return found ? kFound : search.Missing();
}

void AppendTo(wchar_t* buffer, const std::wstring& text) {
    if (buffer != nullptr) {
        std::wmemcpy(buffer + std::wcslen(buffer), text.c_str(), text.size() + 1);
    }
}

} // namespace

std::vector<SubstPair> Parse_SUBSTITUTE(const std::wstring& text) {
    return PairsOf(ClassificationParser_SUBSTITUTE(), text);
}

std::vector<SubstPair> Parse_SUBSTITUTX(const std::wstring& text) {
    return PairsOf(ClassificationParser_SUBSTITUTX(), text);
}

std::vector<SubstPair> Parse_SUBSTITUTE(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return SubstitutesOf(store, format, field);
}

std::vector<SubstPair> Parse_SUBSTITUTX(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return SubstitutxOf(store, format, field);
}

SubstPair ClassificationMatchToSubstitutePair(const SubstituteClassificationParserBase* parser,
                                              const ClassificationMatch& match) {
    return {Kestrona::Platform::ParseDouble(match.Values.at(parser->get_FirstKey())),
            match.Values.at(parser->get_SecondKey())};
}

bool ContainsSubstituteValue(double value, const std::wstring& text) {
    const Pairs pairs = Parse_SUBSTITUTE(text);
    return std::any_of(pairs.begin(), pairs.end(), [value](const SubstPair& pair) { return pair.Value == value; });
}

std::int32_t CheckForSubstitute(const std::wstring& text, std::wstring& list_out, const wchar_t* wanted,
                                double* value) {
    return Check(text, &list_out, wanted, value);
}

std::int32_t CheckForSubstitute(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                std::wstring& list_out, const wchar_t* wanted, double* value) {
    return Check(store, format, field, &list_out, wanted, value);
}

std::int32_t CheckForSubstitute(const std::wstring& text, wchar_t* list_out, const wchar_t* wanted, double* value) {
    std::wstring list;
    const std::int32_t result = Check(text, list_out != nullptr ? &list : nullptr, wanted, value);
    AppendTo(list_out, list);
    return result;
}

std::int32_t CheckForSubstitute(IMemoryResidentData& store, std::int32_t format, std::int32_t field, wchar_t* list_out,
                                const wchar_t* wanted, double* value) {
    std::wstring list;
    const std::int32_t result = Check(store, format, field, list_out != nullptr ? &list : nullptr, wanted, value);
    AppendTo(list_out, list);
    return result;
}
