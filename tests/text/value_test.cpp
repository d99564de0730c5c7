// Display texts of values.
#include "text/value_words.h"

#include <kestrona/built_in_tables.h>
#include <kestrona/host_settings.h>
#include <kestrona/process.h>

#include <gtest/gtest.h>

namespace Kestrona {

namespace {

using Configuration::BuiltInTableManager;
using Fixtures::Field;
using Testing::Of;
using Value = Testing::ValueWords;

constexpr double kUnset = -1.0;

TEST_F(Value, EveryTypeShowsItsForm) {
    struct Case {
        Field field;
        double value;
        const wchar_t* text;
    };

    const std::wstring substitutes = L"SUBSTITUTE(0->\"nichts\") SUBSTITUTE(0->\"zwei\") SUBSTITUTE(2.50->\"halb\")";
    const double noon = 44562.5; // 2022-01-01
    const std::vector<Case> cases{
        {Of(TypeBit::kReal), 1.5, L"1.50"},
        {Of(TypeBit::kReal, {}, L"FORMAT(MAX 0.3)"), 2.0, L"2"},
        {Of(TypeBit::kReal, {}, L"FORMAT(MAX 0.3)"), 2.25, L"2.250"},
        {Of(TypeBit::kReal, {Classes::kSubstitute}, substitutes), 0.0, L"nichts"},
        {Of(TypeBit::kReal, {Classes::kSubstitute}, substitutes), 2.5, L"halb"},
        {Of(TypeBit::kReal, {}, substitutes), 0.0, L"0.00"},
        {Of(TypeBit::kInteger), -1234567.0, L"-1234567"},
        {Of(TypeBit::kInteger), 2.5, L"2"},
        {Of(TypeBit::kInteger), -0.0, L"-0"},
        {Of(TypeBit::kInteger), 1e12, L"1000000000000"},
        {Of(TypeBit::kInteger | TypeBit::kFreeString), 7.0, L"7"},
        {Of(TypeBit::kInteger | TypeBit::kReal, {}, L"FORMAT(.3)"), 7.0, L"7"},
        {Of(TypeBit::kToggle, {Classes::kSubstitute}, substitutes), 0.0, L"Nein"},
        {Of(TypeBit::kToggle), 1.0, L"Ja"},
        {Of(TypeBit::kToggle), 2.0, L"Nein"},
        {Of(TypeBit::kDateTime), noon, L"2022-01-01 12:00"},
        {Of(TypeBit::kDateTime), kUnset, L"Unbestimmt"},
        {Of(TypeBit::kDateTime, {Classes::kIncludeSeconds}), noon, L"2022-01-01 12:00:00"},
        {Of(TypeBit::kDateTime, {Classes::kShowDate}), noon, L"2022-01-01"},
        {Of(TypeBit::kDateTime, {Classes::kShowDate}), 0.0, L"1899-12-30 00:00"},
        {Of(TypeBit::kDateTime, {Classes::kTimeForm}), noon, L"12:00"},
        {Of(TypeBit::kDateTime | TypeBit::kDuration), noon, L"2022-01-01 12:00"},
        {Of(TypeBit::kDuration), 2.5, L"2 Tage 12:00"},
        {Of(TypeBit::kDuration, {Classes::kSubstitute}, substitutes), 2.5, L"halb"},
        {Of(TypeBit::kDuration, {Classes::kTimeForm}), 2.5, L"Tag 3 12:00"},
        {Of(TypeBit::kDuration, {Classes::kTimeForm, Classes::kDurationMode2}), 2.5, L"60 Stunden 00 Minuten"},
        {Of(TypeBit::kDuration, {Classes::kDurationMode2, Classes::kDurationMode3}), 2.5, L"Dienstag 12:00"},
        {Of(TypeBit::kFreeString, {Classes::kSubstitute}, substitutes), 0.0, L""},
        {Of(TypeBit::kMatrix | TypeBit::kReal), 2.5, L"2.50"}, // an entry's own value
        {Of(TypeBit::kMatrix), 2.5, L""},
        {Of(0), 2.5, L""},
        {Of(TypeBit::kReference, {Classes::kDatabase, Classes::kDataList}), 0.07, L"0.07 "},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Shown(c.field, c.value), c.text) << std::hex << c.field.type << ' ' << c.value;
    }
}

TEST_F(Value, TextIsLeftAloneWhereNothingIsShown) {
    const std::int32_t format = AddField(Of(TypeBit::kFreeString));
    std::wstring text = L"before";
    EXPECT_EQ(KSDLL_ValueToTString(store, format, 1, 0, &text, 5.0, -1), 5.0);
    EXPECT_EQ(KSDLL_FieldToTString(store, format, 1, 0, &text), 0.0);
    for (const std::int32_t outside : {-1, 2, 1000000}) {
        EXPECT_EQ(KSDLL_FieldToTString(store, format, outside, 0, &text), 0.0);
        EXPECT_EQ(KSDLL_FieldToTString(store, outside, 1, 0, &text), 0.0);
        EXPECT_EQ(KSDLL_ValueToTString(store, outside, 1, 0, &text, 5.0, 3), 5.0);
    }
    EXPECT_EQ(text, L"before");
}

TEST_F(Value, ReferencesShowWhatTheyPointAt) {
    const std::int32_t texts = AddTexts({L"rot", L"gr\x00fcn"});
    const std::int32_t middle = AddField(Fixtures::Reference(L"To", texts, 1));
    store.SetDbValue(middle, 0, 0, 7.0);
    store.SetDbValue(middle, 1, 0, 101.0);
    const Field outer = Fixtures::Reference(L"Field", middle, 1);
    EXPECT_EQ(Shown(outer, 7.0), L"gr\x00fcn");
    EXPECT_EQ(Shown(outer, 8.0), L"8.00");
    EXPECT_EQ(Shown(outer, kUnset), L"Unbestimmt");
    Field second = outer;
    second.classes.push_back(Classes::kSecondUnsetWord);
    EXPECT_EQ(Shown(second, kUnset), L"Keine");
    second.classes.back() = Classes::kSequenceOwner;
    EXPECT_EQ(Shown(second, kUnset), L"Keine");
    store.SetDbValue(middle, 1, 0, kUnset);
    EXPECT_EQ(Shown(outer, 7.0), L"Unbestimmt");
    EXPECT_EQ(Shown(Fixtures::Reference(L"Nowhere", 999, 1), 7.0), L"7.00");
}

TEST_F(Value, FamiliesAndStoredTextsAreLookedUp) {
    const std::int32_t texts = AddTexts({L"Ahn", L"Kind"});
    Field stored = Of(TypeBit::kReference, {Classes::kStringStorage, Classes::kFreeFormat});
    const std::int32_t format = AddField(stored);
    store.SetDbData(format, 1, DataSlot::kStorageFormat, texts);
    store.SetDbData(format, 1, DataSlot::kStorageField, 1);
    EXPECT_EQ(KSDLL_ValueToTString(store, format, 1, 0, 100.0, -1), L"Ahn");
    EXPECT_EQ(KSDLL_ValueToTString(store, format, 1, 0, 99.0, -1), L"");

    Field family = Fixtures::Family(L"Parent");
    family.table = 2;
    const std::int32_t people =
        Fixtures::AddTable(store, L"People", {Fixtures::Number(L"Key", -1.0), family, Fixtures::Text(L"Name")}, 2);
    for (std::int32_t record = 0; record < 2; ++record) {
        store.SetDbValue(people, 0, record, record);
        store.SetDbString(people, 2, record, record == 0 ? L"Eltern" : L"Kind");
    }
    store.SetDbValue(people, 1, 1, 0.0);
    EXPECT_EQ(KSDLL_FieldToTString(store, people, 1, 1), L"Eltern");
    EXPECT_EQ(KSDLL_FieldToTString(store, people, 1, 0), L"Niemand");
    EXPECT_EQ(GetValueAsTString(store, people, 2, 1), L"Kind");
}

TEST_F(Value, RingsOfReferencesEnd) {
    Field self = Fixtures::Reference(L"Self", store.GetFormatCount(), 1);
    const std::int32_t ring = AddField(self);
    store.SetDbValue(ring, 0, 0, 3.0);
    store.SetDbValue(ring, 1, 0, 3.0);
    EXPECT_EQ(KSDLL_FieldToTString(store, ring, 1, 0), L"3.00");

    Field family = Fixtures::Family(L"Parent");
    family.table = 1;
    const std::int32_t own = AddField(family);
    store.SetDbValue(own, 0, 0, 3.0);
    store.SetDbValue(own, 1, 0, 3.0);
    EXPECT_EQ(KSDLL_FieldToTString(store, own, 1, 0), L"Niemand");
    EXPECT_EQ(KSDLL_FieldToTString(store, ring, 1, 0), L"3.00"); // the count of steps is back at none
}

TEST_F(Value, ListEntriesAreShownThroughTheirTargets) {
    const std::int32_t texts = AddTexts({L"rot", L"gelb", L"blau"});
    Field list = Of(TypeBit::kMatrix | TypeBit::kReference, {Classes::kDatabase});
    list.table = 999;
    const std::int32_t format = AddField(list);
    store.SetDbData(format, 1, DataSlot::kMatrixFormat, texts);
    store.SetDbData(format, 1, DataSlot::kMatrixField, 1);
    EXPECT_EQ(KSDLL_ValueToTString(store, format, 1, 0, 102.0, 0), L"blau");
    EXPECT_EQ(KSDLL_ValueToTString(store, format, 1, 0, 102.0, -1), L"102.00");
    EXPECT_EQ(KSDLL_FieldToTString(store, format, 1, 0), L"");

    Field bare = Of(TypeBit::kMatrix);
    bare.table = texts;
    bare.source = 1;
    SetCurrentListRecord(1);
    EXPECT_EQ(Shown(bare, 0.0, 2), L"gelb");
    bare.classes = {Classes::kParallelList};
    EXPECT_EQ(Shown(bare, 0.0, 2), L"blau");
    EXPECT_EQ(Shown(Of(TypeBit::kReference, {}, L"TABLE(Farben)"), 1.0), L"1.00") << "without string tables";
}

TEST_F(Value, TextsOfAnySizeAndContentPass) {
    std::wstring large(1 << 20, L'x');
    large[3] = L'\0';
    large[5] = static_cast<wchar_t>(0xd800);
    large[large.size() - 1] = static_cast<wchar_t>(0x1f600);
    const std::int32_t texts = AddTexts({large});
    EXPECT_EQ(KSDLL_FieldToTString(store, texts, 1, 0), large);
    EXPECT_EQ(Shown(Fixtures::Reference(L"To", texts, 1), 100.0), large);
    messages.texts[0x697d] = large;
    EXPECT_EQ(Shown(Of(TypeBit::kToggle), 1.0), large);
}

class StringTables : public Value {
protected:
    StringTables() {
        AddTable(L"Farben", {{L"rot", 1.0}, {L"zweites Rot", 1.0}, {L"blau", 2.5}});
        AddTable(L"Formen", {{L"rund", 1.0}});
    }

    void AddTable(const wchar_t* name, const std::vector<std::pair<const wchar_t*, double>>& entries) {
        const std::int32_t table = BuiltInTableManager::FindOrCreateStringTable(store, name);
        store.SetTableFields(table, static_cast<std::int32_t>(entries.size()));
        for (std::size_t index = 0; index < entries.size(); ++index) {
            store.SetTableText(table, static_cast<std::int32_t>(index), KSDLL_AddText(entries[index].first));
            store.SetTableValue(table, static_cast<std::int32_t>(index), entries[index].second);
        }
    }
};

TEST_F(StringTables, ValuesShowTheirFirstEntry) {
    const std::int32_t format = AddField(Of(TypeBit::kReference, {}, L"TABLE( Formen )"));
    EXPECT_EQ(GetStringTableIndex(store, format, 1), 1);
    EXPECT_EQ(KSDLL_ValueToTString(store, format, 1, 0, 1.0, -1), L"rund");
    EXPECT_EQ(KSDLL_ValueToTString(store, format, 1, 0, 2.5, -1), L"2.50");
    // A name without a table, and no name at all, mean the first one.
    for (const wchar_t* text : {L"TABLE(Farben)", L"TABLE(Gibt es nicht)", L""}) {
        store.SetDbClassString(format, 1, text);
        EXPECT_EQ(KSDLL_ValueToTString(store, format, 1, 0, 1.0, -1), L"rot") << ::testing::PrintToString(text);
        EXPECT_EQ(KSDLL_ValueToTString(store, format, 1, 0, 2.5, -1), L"blau");
    }
    EXPECT_EQ(GetStringTableIndex(store, format, 7), 0);
}

TEST_F(StringTables, TheNumberIsKeptOnlyWithItsClass) {
    const std::int32_t format = AddField(Of(TypeBit::kReference, {}, L"TABLE(Neu)"));
    const std::int32_t cached = AddField(Of(TypeBit::kReference, {Classes::kStringTableCached}, L"TABLE(Neu)"));
    EXPECT_EQ(GetStringTableIndex(store, format, 1), 0);
    EXPECT_EQ(GetStringTableIndex(store, cached, 1), 0);
    AddTable(L"Neu", {});
    EXPECT_EQ(GetStringTableIndex(store, format, 1), 2);
    EXPECT_EQ(GetStringTableIndex(store, cached, 1), 0);
    store.SetDbClassString(cached, 1, L"TABLE(Neu)");
    EXPECT_EQ(GetStringTableIndex(store, cached, 1), 2);
}

} // namespace

} // namespace Kestrona
