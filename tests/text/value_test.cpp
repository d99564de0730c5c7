// Display texts of values, and typed texts as values.
#include "fixtures/schema.h"
#include "platform/foreign_locale.h"
#include "text/date_words.h"

#include <kestrona/built_in_tables.h>
#include <kestrona/host_settings.h>
#include <kestrona/process.h>
#include <kestrona/store.h>
#include <kestrona/value_text.h>

#include <gtest/gtest.h>

namespace Kestrona {

namespace {

using Configuration::BuiltInTableManager;
using Fixtures::Field;
using namespace Classes;
using namespace TypeBit;

Fixtures::Field Of(std::uint32_t type, std::vector<Class> classes = {}, const std::wstring& classification = {}) {
    return {.name = L"Field", .type = type, .classes = std::move(classes), .classification = classification};
}

// A store, and a host with a word for everything that a value can be shown as.
class Value : public Testing::DateWords {
protected:
    using MemoryResidentData = Data::MemoryResident::MemoryResidentData;

    Value() {
        messages.texts[0x697d] = L"Ja";
        messages.texts[0x697e] = L"Nein";
        messages.texts[0x69a6] = L"Keine";
        messages.texts[0x6a03] = L"Niemand";
    }

    // A format with this one field behind its key, and one record.
    std::int32_t AddField(Fixtures::Field field) {
        return Fixtures::AddTable(store, L"Format", {Fixtures::Number(L"Key", -1.0), std::move(field)}, 1);
    }

    // A format of keys 100, 101 ... with these texts.
    std::int32_t AddTexts(const std::vector<std::wstring>& texts) {
        const std::int32_t format =
            Fixtures::AddTable(store, L"Texts", {Fixtures::Number(L"Key", -1.0), Fixtures::Text(L"Text")},
                               static_cast<std::int32_t>(texts.size()));
        for (std::int32_t record = 0; record < store.GetCurrentDbSize(format); ++record) {
            store.SetDbValue(format, 0, record, 100.0 + record);
            store.SetDbString(format, 1, record, texts[static_cast<std::size_t>(record)]);
        }
        return format;
    }

    std::wstring Shown(Fixtures::Field field, double value, std::int32_t list_index = -1) {
        return KSDLL_ValueToTString(store, AddField(std::move(field)), 1, 0, value, list_index);
    }

    std::unique_ptr<MemoryResidentData> owner = Data::MemoryResident::CreateMemoryResidentData();
    MemoryResidentData& store = *owner;
    Testing::DatesOf user{DateLayout::YearMonthDay};
};

constexpr double kUnset = -1.0;

TEST_F(Value, EveryTypeShowsItsForm) {
    struct Case {
        Field field;
        std::vector<std::pair<double, const wchar_t*>> shown;
    };

    const std::wstring substitutes = L"SUBSTITUTE(0->\"nichts\") SUBSTITUTE(0->\"zwei\") SUBSTITUTE(2.50->\"halb\")";
    const double noon = 44562.5; // 2022-01-01
    const Case cases[] = {
        {Of(kReal), {{1.5, L"1.50"}}},
        {Of(kReal, {}, L"FORMAT(MAX 0.3)"), {{2.0, L"2"}}},
        {Of(kReal, {kSubstitute}, substitutes), {{0.0, L"nichts"}, {2.5, L"halb"}}},
        {Of(kReal, {}, substitutes), {{0.0, L"0.00"}}},
        {Of(kInteger), {{-1234567.0, L"-1234567"}, {2.5, L"2"}, {-0.0, L"-0"}, {1e12, L"1000000000000"}}},
        {Of(kInteger | kFreeString), {{7.0, L"7"}}},
        {Of(kInteger | kReal, {}, L"FORMAT(.3)"), {{7.0, L"7"}}},
        {Of(kToggle, {kSubstitute}, substitutes), {{0.0, L"Nein"}, {1.0, L"Ja"}, {2.0, L"Nein"}}},
        {Of(kDateTime), {{noon, L"2022-01-01 12:00"}, {kUnset, L"Unbestimmt"}}},
        {Of(kDateTime, {kIncludeSeconds}), {{noon, L"2022-01-01 12:00:00"}}},
        {Of(kDateTime, {kShowDate}), {{noon, L"2022-01-01"}, {0.0, L"1899-12-30 00:00"}}},
        {Of(kDateTime, {kTimeForm}), {{noon, L"12:00"}}},
        {Of(kDateTime | kDuration), {{noon, L"2022-01-01 12:00"}}},
        {Of(kDuration), {{2.5, L"2 Tage 12:00"}}},
        {Of(kDuration, {kSubstitute}, substitutes), {{2.5, L"halb"}}},
        {Of(kDuration, {kTimeForm}), {{2.5, L"Tag 3 12:00"}}},
        {Of(kDuration, {kTimeForm, kDurationMode2}), {{2.5, L"60 Stunden 00 Minuten"}}},
        {Of(kDuration, {kDurationMode2, kDurationMode3}), {{2.5, L"Dienstag 12:00"}}},
        {Of(kFreeString, {kSubstitute}, substitutes), {{0.0, L""}}},
        {Of(kMatrix | kReal), {{2.5, L"2.50"}}}, // an entry's own value
        {Of(kMatrix), {{2.5, L""}}},
        {Of(0), {{2.5, L""}}},
        {Of(kReference, {kDatabase, kDataList}), {{0.07, L"0.07 "}}},
    };
    for (const Case& c : cases) {
        for (const auto& [value, text] : c.shown) {
            EXPECT_EQ(Shown(c.field, value), text) << std::hex << c.field.type << ' ' << value;
        }
    }
}

TEST_F(Value, TextIsLeftAloneWhereNothingIsShown) {
    const std::int32_t format = AddField(Of(kFreeString));
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
    second.classes.push_back(kSecondUnsetWord);
    EXPECT_EQ(Shown(second, kUnset), L"Keine");
    second.classes.back() = kSequenceOwner;
    EXPECT_EQ(Shown(second, kUnset), L"Keine");
    store.SetDbValue(middle, 1, 0, kUnset);
    EXPECT_EQ(Shown(outer, 7.0), L"Unbestimmt");
    EXPECT_EQ(Shown(Fixtures::Reference(L"Nowhere", 999, 1), 7.0), L"7.00");
}

TEST_F(Value, FamiliesAndStoredTextsAreLookedUp) {
    const std::int32_t texts = AddTexts({L"Ahn", L"Kind"});
    Field stored = Of(kReference, {kStringStorage, kFreeFormat});
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
    Field list = Of(kMatrix | kReference, {kDatabase});
    list.table = 999;
    const std::int32_t format = AddField(list);
    store.SetDbData(format, 1, DataSlot::kMatrixFormat, texts);
    store.SetDbData(format, 1, DataSlot::kMatrixField, 1);
    EXPECT_EQ(KSDLL_ValueToTString(store, format, 1, 0, 102.0, 0), L"blau");
    EXPECT_EQ(KSDLL_ValueToTString(store, format, 1, 0, 102.0, -1), L"102.00");
    EXPECT_EQ(KSDLL_FieldToTString(store, format, 1, 0), L"");

    Field bare = Of(kMatrix);
    bare.table = texts;
    bare.source = 1;
    SetCurrentListRecord(1);
    EXPECT_EQ(Shown(bare, 0.0, 2), L"gelb");
    bare.classes = {kParallelList};
    EXPECT_EQ(Shown(bare, 0.0, 2), L"blau");
    EXPECT_EQ(Shown(Of(kReference, {}, L"TABLE(Farben)"), 1.0), L"1.00") << "without string tables";
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
    const std::int32_t format = AddField(Of(kReference, {}, L"TABLE( Formen )"));
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
    const std::int32_t format = AddField(Of(kReference, {}, L"TABLE(Neu)"));
    const std::int32_t cached = AddField(Of(kReference, {kStringTableCached}, L"TABLE(Neu)"));
    EXPECT_EQ(GetStringTableIndex(store, format, 1), 0);
    EXPECT_EQ(GetStringTableIndex(store, cached, 1), 0);
    AddTable(L"Neu", {});
    EXPECT_EQ(GetStringTableIndex(store, format, 1), 2);
    EXPECT_EQ(GetStringTableIndex(store, cached, 1), 0);
    store.SetDbClassString(cached, 1, L"TABLE(Neu)");
    EXPECT_EQ(GetStringTableIndex(store, cached, 1), 2);
}

constexpr double kUntouched = 4711.25;

double Read(Data::MemoryResident::MemoryResidentData& store, std::int32_t format, const wchar_t* text) {
    double value = kUntouched;
    EXPECT_FALSE(ConvertStringByColumnType(store, format, 1, text, &value));
    return value;
}

TEST_F(Value, TextsBecomeValuesOfTheirType) {
    struct Case {
        Field field;
        std::vector<std::pair<const wchar_t*, double>> read;
    };

    const Testing::ForeignLocale foreign;
    const double noon = 44562.5; // 2022-01-01
    const double none = kUntouched;
    const Case cases[] = {
        {Of(kReal),
         {{L" 1234.5 kg", 1234.5},
          {L"1,5", 1.0},
          {L"abc", none},
          {L"", none},
          {nullptr, none},
          {L"inf", none},
          {L"1e999", none}}},
        {Of(kInteger), {{L" -12.9", -12.0}, {L"99999999999", 2147483647.0}, {L"0x10", 0.0}, {L"x", none}}},
        {Of(kReal | kInteger), {{L"2.5", 2.5}}},
        {Of(kDateTime), {{L"2022-01-01 12:00", noon}, {L"2022-02-31", none}, {L"UNBESTIMMT", -1.0}}},
        {Of(kDateTime, {kTimeForm}), {{L"6:00", 0.25}, {L"25:00", none}}},
        {Of(kDuration), {{L"2 Tage 12:00", 2.5}, {L"abc", none}}},
        {Of(kDuration, {kTimeForm, kDurationMode3}), {{L"Dienstag 12:00", 2.5}}},
        {Of(kDuration, {kTimeForm}), {{L"Tag 3 12:00", 2.5}}},
        {Of(kDuration, {kDurationMode2}), {{L"60 Stunden", 2.5}}},
        {Of(kToggle), {{L"jA", 1.0}, {L"Jaja", 0.0}, {nullptr, 0.0}}},
        {Of(kReference), {{L"5", none}}},
        {Of(kFreeString), {{L"5", none}}},
        {Of(kFreeString | kReal), {{L"5", 5.0}}},
        {Of(0x100 | kReal), {{L"5", none}}},
        {Of(kMatrix | kReal), {{L"5", none}}},
    };
    for (const Case& c : cases) {
        for (const auto& [text, value] : c.read) {
            EXPECT_EQ(Read(store, AddField(c.field), text), value)
                << std::hex << c.field.type << ' ' << ::testing::PrintToString(text != nullptr ? text : L"null");
        }
    }
    double value = kUntouched;
    EXPECT_FALSE(ConvertStringByColumnType(store, -1, 0, L"5", &value));
    EXPECT_EQ(value, kUntouched);
}

} // namespace

} // namespace Kestrona
