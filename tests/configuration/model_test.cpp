#include "configuration/definition_fixture.h"

#include <kestrona/classification_readers.h>
#include <kestrona/definition_model.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <sstream>

// The definition as objects.
namespace Kestrona::Configuration {

namespace {

using ConfigurationTest::Matrix;
using ConfigurationTest::Real;
using Fixtures::Field;

std::wstring Thrown(const std::function<void()>& action) {
    try {
        action();
    } catch (const wchar_t* text) {
        return text;
    }
    return L"";
}

template <typename T>
std::unique_ptr<T> Owned(T* object) {
    return std::unique_ptr<T>(object);
}

class Model : public ConfigurationTest::DefinitionFixture {
protected:
    ColumnDefinition Column(std::int32_t field) { return {store_, 0, field}; }

    // Names, and both views of all fields.
    std::wstring State() {
        std::wostringstream text;
        for (std::int32_t format = 0; format < store_.GetFormatCount(); ++format) {
            const TableDefinition table(store_, format);
            text << table.get_DisplayName() << L'|' << table.get_OriginalDisplayName() << L'\n';
            for (std::int32_t field = 0; field < store_.GetDbFields(format); ++field) {
                const auto& info = *store_.GetFieldInfo(format, field);
                for (const auto& view : {info.original, info.current}) {
                    text << view.classString << L' ' << view.dialogLevel << L' ' << view.dialogOrder;
                    for (const std::uint32_t word : view.classWords) {
                        text << L' ' << word;
                    }
                }
            }
        }
        return text.str();
    }

    std::int32_t Below(std::int32_t count) {
        return std::uniform_int_distribution<std::int32_t>(0, count - 1)(random_);
    }

    std::mt19937 random_{11};
};

TEST_F(Model, ReadsWhatAFieldsStringAndClassesSay) {
    struct Case {
        const wchar_t* text;
        const wchar_t* display;
        std::int32_t rank;
        const wchar_t* format;
        std::uint32_t type = TypeBit::kReal;
    };

    for (const Case& c :
         {Case{L"", L"A", -1, L""},
          Case{L"DIALOG FIELD NAME \"Shown\" | FORMAT(8.2) | TIP DISPLAY", L"Shown", -1, L"8.2"},
          Case{L"BUTTON TEXT \"Push\" | FORMAT(MAX 0.3) | TIP DISPLAY(0)", L"A", 0, L"0.3"},
          Case{L"BUTTON TEXT \"Push\" | TIP DISPLAY(99999999999)", L"Push", 2147483647, L"", TypeBit::kFreeString}}) {
        const std::int32_t format = Add(L"T", {{.name = L"A", .type = c.type, .classification = c.text}});
        const ColumnDefinition column(store_, format, 0);
        EXPECT_EQ(column.get_NativeName() + column.get_DisplayName(), std::wstring(L"A") + c.display);
        EXPECT_EQ(column.get_TooltipOrder(), c.rank);
        EXPECT_EQ(column.get_NumberFormat(), c.format);
        EXPECT_EQ(column.get_Type(), c.type);
        EXPECT_EQ(column.get_RemoteIdentityValue(), -10000.0 * (format + 1));
    }
}

TEST_F(Model, TellsEachAttributeByItsClassAlone) {
    struct Case {
        Class c;
        bool (ColumnDefinition::*get)() const;
    };

    const Case cases[] = {
        {{0, 4}, &ColumnDefinition::get_Hidden},
        {{0, 8}, &ColumnDefinition::get_ReadOnly},
        {{7, 64}, &ColumnDefinition::get_IncludeSeconds},
        {{2, 65536}, &ColumnDefinition::get_ShowDate},
        {{4, 67108864}, &ColumnDefinition::get_ShowTooltip},
        {{3, 8192}, &ColumnDefinition::get_IsEvaluate},
    };
    Add(L"T", {Real(L"A", L"")});
    for (const Case& c : cases) {
        ColumnDefinition column = Column(0);
        column.AddClassAttribute(c.c);
        for (const Case& other : cases) {
            EXPECT_EQ((column.*other.get)(), other.c == c.c) << c.c.word << ":" << c.c.mask;
        }
        EXPECT_TRUE(store_.ClassDefined(0, 0, c.c));
        column.RemoveClassAttribute(c.c);
        EXPECT_FALSE((column.*c.get)());
    }
}

TEST_F(Model, GivesNumbersOnlyWhereTheirClassIsSet) {
    Add(L"T", {Real(L"A", L""), Real(L"B", L"", {Classes::kCallDialog, Classes::kAssociate})});
    for (std::int32_t field : {0, 1}) {
        store_.SetDbTable(0, field, 33);
        store_.SetDbData(0, field, DataSlot::kAssociateField, 4);
    }
    EXPECT_EQ(Thrown([&] { static_cast<void>(Column(0).get_CallDialog().get_Value()); }), L"No value present");
    EXPECT_FALSE(Column(0).get_AssociatedTo().HasValue());
    EXPECT_EQ(Column(1).get_CallDialog().get_Value(), 33);
    EXPECT_EQ(Column(1).get_AssociatedTo().get_Value(), 4);
}

TEST_F(Model, RefusesEveryChangeOfAnOriginalView) {
    Add(L"T", {Real(L"A", L"FORMAT(1)", {Classes::kHidden})});
    Column(0).KeepOriginal();
    const auto original = Owned(Column(0).get_Original());
    const auto before = State();
    for (const std::function<void()>& change :
         {std::function<void()>([&] { original->AddClassAttribute(Classes::kReadOnly); }),
          std::function<void()>([&] { original->RemoveClassAttribute(Classes::kHidden); }),
          std::function<void()>([&] { original->set_ClassificationString(L""); }),
          std::function<void()>([&] { original->set_DialogLevel(3); }),
          std::function<void()>([&] { original->set_DialogOrder(3); })}) {
        EXPECT_EQ(Thrown(change), L"Changes are not permitted when using the Original view");
    }
    EXPECT_EQ(State(), before);
    original->OverrideClassAttribute(Classes::kReadOnly);
    original->OverrideClassificationString(L"FORMAT(2)");
    EXPECT_TRUE(original->get_ReadOnly() && original->get_Hidden() && !Column(0).get_ReadOnly());
    EXPECT_EQ(original->get_NumberFormat() + Column(0).get_NumberFormat(), L"21");
}

TEST_F(Model, RaisesForNegativeNumbersAndReadsEmptyPastTheEnd) {
    Add(L"T", {Real(L"A", L"")});
    EXPECT_EQ(Thrown([&] { ColumnDefinition(store_, -1, 0); }), L"tableIndex must not be less than zero");
    EXPECT_EQ(Thrown([&] { ColumnDefinition(store_, 0, -1); }), L"columnIndex must not be less than zero");
    EXPECT_EQ(Thrown([&] { TableDefinition(store_, -1); }), L"TableIndex must not be less than zero");
    for (ColumnDefinition column : {ColumnDefinition(store_, 0, 7), ColumnDefinition(store_, 5000, 0)}) {
        column.set_ClassificationString(L"X");
        column.OverrideClassAttribute(Classes::kHidden);
        column.KeepOriginal();
        column.RestoreOriginal();
        EXPECT_EQ(column.get_ClassificationString() + column.get_NativeName(), L"");
        EXPECT_FALSE(column.get_Hidden() || column.ClassAttributeDefined({12, 1}));
    }
    TableDefinition table(store_, 5000);
    table.KeepOriginal();
    table.RestoreOriginal();
    EXPECT_TRUE(table.get_OriginalDisplayName().empty() && table.get_ColumnDefinitions().empty());
}

// Whatever is changed after it was kept comes back, through every reader of the string too.
TEST_F(Model, RestoresExactlyWhatWasKept) {
    for (std::int32_t format = 0; format < 5; ++format) {
        Add(L"T" + std::to_wstring(format), {Real(L"A", L"FORMAT(1.0)"), Real(L"B", L""), Real(L"C", L"")});
    }
    ConfigurationDefinition definition(store_);
    const auto change = [&] {
        for (int i = 0; i < 60; ++i) {
            const std::int32_t format = Below(5);
            ColumnDefinition column(store_, format, Below(3));
            column.set_ClassificationString(L"FORMAT(" + std::to_wstring(Below(9)) + L")");
            column.set_DialogLevel(static_cast<std::int16_t>(Below(9)));
            column.set_DialogOrder(Below(9));
            column.OverrideClassAttribute(
                {static_cast<std::int16_t>(Below(kClassWords)), 1U << static_cast<unsigned>(Below(32))});
            TableDefinition(store_, format).set_DisplayName(std::to_wstring(Below(9)));
            static_cast<void>(KSDLL_GetNumberFormat(store_, format, column.get_ColumnIndex()));
        }
    };
    change();
    const std::wstring never_kept = State();
    definition.RestoreOriginal();
    EXPECT_EQ(State(), never_kept);

    definition.KeepOriginal();
    const std::wstring kept = State();
    for (int round = 0; round < 20; ++round) {
        change();
        ASSERT_NE(State(), kept);
        definition.RestoreOriginal();
        ASSERT_EQ(State(), kept);
        for (std::int32_t format = 0; format < 5; ++format) {
            ASSERT_EQ(KSDLL_GetNumberFormat(store_, format, 0).Format,
                      ColumnDefinition(store_, format, 0).get_NumberFormat());
        }
    }
}

// What is put into a freed field later has no Original yet.
TEST_F(Model, ForgetsTheOriginalOfAFreedField) {
    Add(L"T", {Real(L"A", L"FORMAT(1)", {Classes::kHidden})});
    ColumnDefinition column = Column(0);
    column.KeepOriginal();
    store_.SetParentSortEnabled(0, 0, false);
    store_.FreeFieldMemory(0, 0);
    column.set_ClassificationString(L"FORMAT(2)");
    column.RestoreOriginal();
    EXPECT_EQ(column.get_ClassificationString(), L"FORMAT(2)");
    EXPECT_FALSE(column.get_Hidden());
    EXPECT_EQ(Owned(column.get_Original())->get_ClassificationString(), L"");
    EXPECT_TRUE(store_.GetParentSortEnabled(0, 0));
}

TEST_F(Model, FindsFormatsAndFieldsByTheirExactNames) {
    Add(L"Orders", {Fixtures::Number(L"Key"), Real(L"Sum", L"")}, 1);
    Add(L"Lines", {Real(L"Key", L"SYSTEMDB")}, -1);
    SetExtension(0, L"ord");
    SetParent(1, 0);
    const ConfigurationDefinition definition(store_);
    EXPECT_EQ(definition.FindTableDefinitionByName(L"orders"), nullptr);
    const auto orders = Owned(definition.FindTableDefinitionByName(L"Orders"));
    const auto lines = Owned(definition.FindTableDefinitionByName(L"Lines"));
    ASSERT_TRUE(orders && lines);
    EXPECT_EQ(lines->get_NativeName(), L"Lines");
    EXPECT_EQ(Owned(orders->get_PrimaryKey())->get_NativeName(), L"Sum");
    EXPECT_EQ(lines->get_PrimaryKey(), nullptr);
    EXPECT_EQ(Owned(orders->FindColumnDefinitionByName(L"Sum"))->get_ColumnIndex(), 1);
    EXPECT_EQ(orders->FindColumnDefinitionByName(L"sum"), nullptr);
    EXPECT_TRUE(orders->get_IsLoadable() && !lines->get_IsLoadable());
    EXPECT_EQ(orders->get_ChildTables(), std::vector<std::int32_t>{1});
    EXPECT_TRUE(lines->get_SystemTable() && !orders->get_SystemTable());
    store_.SetDbClassString(0, 0, L"SYSTEMDB");
    store_.SetDbClassString(1, 0, L"");
    EXPECT_TRUE(lines->get_SystemTable() && !orders->get_SystemTable()) << "what was looked up is kept";
}

TEST_F(Model, ListsEachDialogLevelOnce) {
    messages_->texts = {{18500, L"hidden"}, {18501, L"main"}, {18503, L"none"}};
    const std::int16_t levels[] = {9, 0, 5, 5, -7, 8};
    std::vector<Field> fields(6, Matrix(L"A", L"", {Classes::kAssociate}));
    fields[0] = Matrix(L"Parts", L"DIALOG FIELD NAME \"Bill\"");
    fields[5].classes.clear();
    Add(L"T", fields);
    for (std::int32_t field = 0; field < 6; ++field) {
        store_.SetDbDialogLevel(0, field, levels[field]);
    }
    std::wstring text;
    for (const DialogLevel& level : TableDefinition(store_, 0).get_DialogLevels()) {
        text += std::to_wstring(level.Level) + L" " + level.Text + L" " + std::to_wstring(level.Kind) + L"; ";
    }
    EXPECT_EQ(text, L"-32768 hidden 6; -32767 none 34; 0 main 1; 5 Bill 1; -7 Bill 1; ");
}

struct PathTo : MarkingAttribute {
    explicit PathTo(TableColumn place) : end(place) {}

    [[nodiscard]] TableColumn get_PathEnd() const override { return end; }

    TableColumn end;
};

TEST_F(Model, RanksTooltipFieldsLikeAStableSort) {
    std::vector<Field> fields;
    std::vector<std::int32_t> ranks;
    std::vector<std::int32_t> shown;
    for (std::int32_t i = 0; i < 40; ++i) {
        ranks.push_back(Below(8) - 1);
        const bool is_shown = Below(3) != 0;
        fields.push_back(
            Real(L"F", ranks.back() < 0 ? L"TIP DISPLAY" : L"TIP DISPLAY(" + std::to_wstring(ranks.back()) + L")",
                 is_shown ? std::vector<Class>{Classes::kShowTooltip} : std::vector<Class>{}));
        if (is_shown && i != 17) {
            shown.push_back(i);
        }
    }
    std::stable_sort(shown.begin(), shown.end(), [&](std::int32_t a, std::int32_t b) {
        const std::int32_t x = ranks[static_cast<std::size_t>(a)];
        const std::int32_t y = ranks[static_cast<std::size_t>(b)];
        return x != y && (y == -1 || (x != -1 && x < y));
    });
    Add(L"T", fields);
    const PathTo path({0, 17});
    const PathTo nowhere({-1, -1});
    EXPECT_EQ(Tooltips::GetRankedListOfTooltipFields(store_, 0, 17), shown);
    EXPECT_EQ(Tooltips::GetRankedListOfTooltipFields(store_, &path), shown);
    for (const PathTo* none : {&nowhere, static_cast<const PathTo*>(nullptr)}) {
        EXPECT_EQ(Thrown([&] { static_cast<void>(Tooltips::GetRankedListOfTooltipFields(store_, none)); }),
                  L"Path has not been resolved");
    }
    EXPECT_EQ(Thrown([&] { static_cast<void>(Tooltips::GetRankedListOfTooltipFields(store_, -1, 0)); }),
              L"Expected a valid table index");
    EXPECT_EQ(Tooltips::GetToolTipRank(nullptr), -1);
}

} // namespace

} // namespace Kestrona::Configuration
