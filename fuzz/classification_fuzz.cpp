#include "configuration/parsers/parser_cases.h"
#include "fixtures/schema.h"
#include "fuzz.h"
#include "platform/wide_c_string.h"

#include <kestrona/classes.h>
#include <kestrona/classification_readers.h>
#include <kestrona/store.h>

#include <memory>
#include <vector>

// Every parser and every reader over one classification string. Parsers find what their patterns find alone, and the
// readers of a field agree with those of a text.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;
using namespace Kestrona::Configuration::Parsers;
using Kestrona::Data::MemoryResident::MemoryResidentData;

// A pattern alone gives up on a longer text sooner than a parser does.
constexpr std::size_t kPatternsEndUpTo = 100;
constexpr std::size_t kPatternsCompareUpTo = 4096;

void CheckAgainstPattern(const ParsersTest::ParserCase& c, const std::wstring& text) {
    const ClassificationMatch expected = ParsersTest::MatchByPattern(c, text, 0);
    if (expected.Matched || text.size() <= kPatternsEndUpTo) {
        Require(ParsersTest::Describe(c.parser->MatchFirst(text)) == ParsersTest::Describe(expected));
    }
}

void CheckWalk(const IClassificationParser& parser, const std::wstring& text) {
    std::int32_t end = 0;
    for (const ClassificationMatch& match : parser.MatchAll(text)) {
        Require(match.Start >= end && match.End > match.Start && match.End == match.Start + match.Length);
        Require(text.compare(static_cast<std::size_t>(match.Start), static_cast<std::size_t>(match.Length),
                             match.Text) == 0);
        end = match.End;
    }
}

void CheckParsers(const std::wstring& text) {
    for (const ParsersTest::ParserCase& c : ParsersTest::ParserCases()) {
        CheckWalk(*c.parser, text);
        if (text.size() <= kPatternsCompareUpTo) {
            CheckAgainstPattern(c, text);
        }
    }
    CheckWalk(ClassificationParser_SYSTEMDB(), text);
    CheckWalk(ClassificationParser_AUTO_CALCULATE(), text);
}

void CheckTextReaders(const std::wstring& text) {
    const Platform::OwnedWide evaluate(Parse_EVALUATE(text.c_str()));
    const Platform::OwnedWide hidden(Parse_HIDDEN_IF(text.c_str()));
    const Platform::OwnedWide exclude(Parse_EXCLUDE(text.c_str()));
    Require(evaluate == nullptr || *evaluate.get() != 0);
    std::int32_t id = 0;
    ParseHELPPOPUPID(text.c_str(), &id);
    ParseHELPID(text.c_str(), &id);
    std::wstring a;
    std::wstring b;
    Require(!ParseHELPTEXT(text.c_str(), &a) || !a.empty());
    Require(!ParseHELPFILE(text.c_str(), &a) || !a.empty());
    Require(Parse1StringParameter(text.c_str(), L" %[^(]", &a) <= 0 || !a.empty());
    Require(Parse2StringParameters(text.c_str(), L"%[^(] ( %[^)]", &a, &b) < 2 || !b.empty());
    Require(ParseFieldName(text, L"TIP", &a) == ClassificationParser_TIP_FIELD_NAME().IsMatch(text));
}

void CheckEntries(const SubstituteClassificationParserBase& parser, const std::vector<SubstPair>& pairs) {
    for (const SubstPair& pair : pairs) {
        const std::wstring entry = parser.BuildClassification(7, pair.Text);
        const auto match = parser.MatchFirst(entry);
        Require(match.Matched && match.Text == entry && match.Values.at(parser.get_SecondKey()) == pair.Text);
    }
}

std::unique_ptr<MemoryResidentData> StoreOfOneField() {
    std::unique_ptr<MemoryResidentData> store = Kestrona::Data::MemoryResident::CreateMemoryResidentData();
    Fixtures::AddFormat(*store, L"Format", {{.name = L"Column", .classes = {Classes::kSubstitute}}}, -1);
    return store;
}

std::size_t LengthOfList(const std::vector<SubstPair>& pairs) {
    std::size_t length = 0;
    for (const SubstPair& pair : pairs) {
        length += pair.Text.size() + 4;
    }
    return length;
}

void CheckSearch(MemoryResidentData& store, const std::wstring& text, const std::vector<SubstPair>& pairs,
                 const std::wstring& wanted) {
    double value = 0.0;
    double value_of_field = 0.0;
    std::wstring list;
    // No longer than the longest list.
    std::vector<wchar_t> buffer(LengthOfList(pairs) + 1);
    const std::int32_t result = CheckForSubstitute(text, list, wanted.c_str(), &value);
    Require(CheckForSubstitute(store, 0, 0, buffer.data(), wanted.c_str(), &value_of_field) == result);
    Require(list == buffer.data() && value == value_of_field && (result == 1) == pairs.empty());
}

void CheckFieldReaders(const std::wstring& text) {
    static const std::unique_ptr<MemoryResidentData> store = StoreOfOneField();
    store->SetDbClassString(0, 0, text);
    std::vector<SubstPair> pairs = Parse_SUBSTITUTE(*store, 0, 0);
    CheckEntries(ClassificationParser_SUBSTITUTE(), pairs);
    const std::vector<SubstPair> more = Parse_SUBSTITUTX(*store, 0, 0);
    CheckEntries(ClassificationParser_SUBSTITUTX(), more);
    pairs.insert(pairs.end(), more.begin(), more.end());
    CheckSearch(*store, text, pairs, pairs.empty() ? L"" : pairs.back().Text);
    CheckSearch(*store, text, pairs, L"\"");
    Require(KSDLL_GetNumberFormat(*store, 0, 0).Format == MatchFormat(text).Format);
    Require(!GetDialogFieldName(*store, 0, 0).empty() && !GetEditorFieldName(*store, 0, 0).empty());
    Require(ParseClassification_BUTTON_TEXT(*store, 0, 0) == ParseClassification_BUTTON_TEXT(text.c_str()));
    (void)KSDLL_GetDefaultFreeFormatStringValue(*store, 0, 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::wstring text = TextOf(data, size);
    CheckParsers(text);
    // A classification string that the store holds ends at its first null character.
    text.resize(text.find(L'\0') == std::wstring::npos ? text.size() : text.find(L'\0'));
    CheckTextReaders(text);
    CheckFieldReaders(text);
    return 0;
}
