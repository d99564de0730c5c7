#include "fixtures/schema.h"
#include "platform/wide_c_string.h"

#include <kestrona/classes.h>
#include <kestrona/classification_readers.h>
#include <kestrona/store.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <memory>

namespace Kestrona::ParsersTest {

namespace {

using namespace Data::MemoryResident;
using Platform::OwnedWide;

class Readers : public testing::Test {
protected:
    // A format of one field, named "Column".
    Readers() { Fixtures::AddFormat(*store, L"Format", {Fixtures::Number(L"Column")}, -1); }

    void Classify(const std::wstring& text) { store->SetDbClassString(0, 0, text); }

    field_info& Info() { return *store->GetFieldInfo(0, 0); }

    std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
};

std::string Text(wchar_t* owned) {
    const OwnedWide text(owned);
    return text != nullptr ? ToUtf8(text.get()) : "null";
}

std::string Pairs(const std::vector<SubstPair>& pairs) {
    std::string text;
    for (const SubstPair& pair : pairs) {
        text += std::to_string(pair.Value).substr(0, 4) + "=" + ToUtf8(pair.Text) + ";";
    }
    return text;
}

constexpr const wchar_t* kColours = L"SUBSTITUTE(1->\"Red\") SUBSTITUTE(2.50->\"Blue\") SUBSTITUTX(3->\"R\") "
                                    L"SUBSTITUTE(1->\"\")";

} // namespace

TEST(ClassificationReaders, ExpressionsAreNullWithoutKeywordOrContent) {
    EXPECT_EQ(Text(Parse_EVALUATE(L"x EVALUATE \" 1 + 2 \"")), "1 + 2 ");
    EXPECT_EQ(Text(Parse_EVALUATE(L"EVALUATE \"  \"")), "null");
    EXPECT_EQ(Text(Parse_EVALUATE(L"HIDDEN IF \"1\"")), "null");
    EXPECT_EQ(Text(Parse_EVALUATE(nullptr)), "null");
    EXPECT_EQ(Text(Parse_HIDDEN_IF(L"HIDDEN IF \"1\"")), "1");
    EXPECT_EQ(Text(Parse_EXCLUDE(L"EXCLUDE FROM DB EXCLUDE\"1\"")), "1");
}

TEST(ClassificationReaders, HelpNumbersAndTexts) {
    for (const auto& [text, expected] : {std::pair{L"HELPID(7)", 7},
                                         {L"HELPID(-7", -7},
                                         {L"HELPID(0x1F)", 31},
                                         {L"HELPID()", 99},
                                         {L"HELPID x HELPID(7)", 99},
                                         {L"HELPID(99999999999)", 2147483647},
                                         {static_cast<const wchar_t*>(nullptr), 99}}) {
        std::int32_t id = 99;
        EXPECT_EQ(ParseHELPID(text, &id), expected != 99) << expected;
        EXPECT_EQ(id, expected);
    }
    std::int32_t id = 99;
    EXPECT_FALSE(ParseHELPPOPUPID(L"HELPID(7)", &id) || ParseHELPPOPUPID(nullptr, &id));
    EXPECT_EQ(id, 99);
    EXPECT_TRUE(ParseHELPPOPUPID(L"HELPPOPUPID(010) HELPID(7)", &id));
    EXPECT_EQ(id, 10);
    EXPECT_TRUE(ParseHELPPOPUPID(L"HELPPOPUPID(-99999999999)", &id));
    EXPECT_EQ(id, -2147483647 - 1);

    std::wstring out = L"old";
    EXPECT_FALSE(ParseHELPTEXT(L"HELP TEXT()", &out) || ParseHELPTEXT(L"HELP FILE(a)", &out));
    EXPECT_EQ(out, L"old");
    EXPECT_TRUE(ParseHELPTEXT(L"x HELP TEXT (  What it is, \U0001F600 \"quoted\" ) y", &out));
    EXPECT_EQ(out, L"What it is, \U0001F600 \"quoted\" ");
    EXPECT_TRUE(ParseHELPFILE(L"HELP FILE(a.chm", &out));
    EXPECT_EQ(out, L"a.chm");
}

// How texts are scanned is shown by the scanner's own tests.
TEST(ClassificationReaders, ScansIntoTheTextThatIsScanned) {
    std::wstring a = L"old";
    std::wstring b = L"old";
    EXPECT_EQ(Parse2StringParameters(L"RULE(A)", L"RULE ( %[^()] ( %[^)]", &a, &b), 1);
    EXPECT_EQ(a + L"|" + b, L"A|");
    a = L"RULE(A)";
    EXPECT_EQ(Parse1StringParameter(a.c_str(), L"RULE ( %[^)]", &a), 1);
    EXPECT_EQ(a, L"A");
}

TEST_F(Readers, SubstitutesOfAFieldNeedTheClass) {
    Classify(kColours);
    EXPECT_EQ(Pairs(Parse_SUBSTITUTE(kColours)), "1.00=Red;2.50=Blue;1.00=;");
    EXPECT_EQ(Pairs(Parse_SUBSTITUTE(*store, 0, 0)), "");
    EXPECT_EQ(Pairs(Parse_SUBSTITUTX(*store, 0, 0)), "3.00=R;");
    store->AddDbClass(0, 0, Classes::kSubstitute);
    EXPECT_EQ(Pairs(Parse_SUBSTITUTE(*store, 0, 0)), "1.00=Red;2.50=Blue;1.00=;");
    for (const auto& [format, field] : {std::pair{-1, 0}, {0, 1}, {1000, 0}}) {
        EXPECT_TRUE(Parse_SUBSTITUTE(*store, format, field).empty());
        EXPECT_TRUE(Parse_SUBSTITUTX(*store, format, field).empty());
        EXPECT_FALSE(KSDLL_GetNumberFormat(*store, format, field).Specified);
    }
}

// The string is changed behind the store's back, to see which answers are kept ones.
TEST_F(Readers, ParsedValuesAreKeptUntilTheStringIsSet) {
    store->AddDbClass(0, 0, Classes::kSubstitute);
    Classify(L"SUBSTITUTE(1->\"a\") SUBSTITUTX(2->\"b\") FORMAT(8.2)");
    const auto all = [&] {
        return Pairs(Parse_SUBSTITUTE(*store, 0, 0)) + Pairs(Parse_SUBSTITUTX(*store, 0, 0)) +
               ToUtf8(KSDLL_GetNumberFormat(*store, 0, 0).Format);
    };
    EXPECT_EQ(all(), "1.00=a;2.00=b;8.2");
    Info().current.classString = L"";
    EXPECT_EQ(all(), "1.00=a;2.00=b;8.2");
    Classify(L"SUBSTITUTE(3->\"c\")");
    EXPECT_EQ(all(), "3.00=c;");
}

TEST_F(Readers, SubstitutesAreSearchedByValueAndByText) {
    EXPECT_TRUE(ContainsSubstituteValue(2.5, kColours));
    EXPECT_FALSE(ContainsSubstituteValue(2.5000001, kColours));
    EXPECT_FALSE(ContainsSubstituteValue(3.0, kColours)); // only a SUBSTITUTX

    struct Case {
        const wchar_t* text;
        const wchar_t* wanted;
        std::int32_t result;
        double value; // 99.0 for untouched
        const wchar_t* list;
    };

    store->AddDbClass(0, 0, Classes::kSubstitute);
    for (const Case& c :
         {Case{kColours, L"Red", 0, 1.0, L""}, Case{kColours, L"Blue", 0, 2.5, L"\"Red\", "},
          Case{kColours, nullptr, 0, 1.0, L"\"Red\", \"Blue\", "},
          Case{kColours, L"R", 0, 3.0, L"\"Red\", \"Blue\", \"\", "},
          Case{kColours, L"red", 2, 3.0, L"\"Red\", \"Blue\", \"\", \"R\", "}, Case{L"TEXT", L"Red", 1, 99.0, L""}}) {
        Classify(c.text);
        double value = 99.0;
        std::wstring list = L"<";
        EXPECT_EQ(CheckForSubstitute(c.text, list, c.wanted, &value), c.result);
        EXPECT_EQ(list, std::wstring(L"<") + c.list);
        EXPECT_EQ(value, c.value);
        list.clear();
        EXPECT_EQ(CheckForSubstitute(*store, 0, 0, list, c.wanted, &value), c.result);
        wchar_t buffer[64] = L"<";
        EXPECT_EQ(CheckForSubstitute(c.text, buffer, c.wanted, &value), c.result);
        EXPECT_EQ(CheckForSubstitute(*store, 0, 0, buffer, c.wanted, &value), c.result);
        EXPECT_EQ(buffer + list, std::wstring(L"<") + c.list + c.list + c.list);
        EXPECT_EQ(CheckForSubstitute(*store, 0, 0, nullptr, c.wanted, &value), c.result);
        EXPECT_EQ(value, c.value);
    }
}

TEST_F(Readers, NamesFallBackOnTheColumnName) {
    Classify(L"DIALOG FIELD NAME \"D\" TIP FIELD NAME (T) LIST FIELD NAME \"L\" BUTTON TEXT \"Go\"");
    EXPECT_EQ(GetDialogFieldName(*store, 0, 0), L"D");
    EXPECT_EQ(GetDialogFieldName(*store, L"DIALOG FIELD NAME (E)", 0, 0), L"E");
    EXPECT_EQ(GetToolTipFieldName(*store, 0, 0), L"T");
    EXPECT_EQ(GetEditorFieldName(*store, 0, 0), L"Column");
    EXPECT_EQ(KSDLL_GetFieldName(*store, 0, 0, L"LIST"), L"L");
    EXPECT_EQ(KSDLL_GetFieldName(*store, 0, 0, L"("), L"Column");
    EXPECT_EQ(KSDLL_GetFieldName(*store, 0, 9, L"LIST"), L"");
    EXPECT_EQ(ParseClassification_BUTTON_TEXT(*store, 0, 0), L"Go");
    EXPECT_EQ(ParseClassification_BUTTON_TEXT(*store, 3, 0) + ParseClassification_BUTTON_TEXT(nullptr), L"");
    std::wstring name = L"old";
    EXPECT_FALSE(ParseFieldName(L"DIALOG FIELD NAME", L"DIALOG", &name));
    EXPECT_EQ(name, L"old");
}

} // namespace Kestrona::ParsersTest
