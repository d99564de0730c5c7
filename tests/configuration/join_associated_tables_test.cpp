#include "configuration/definition_fixture.h"

#include <kestrona/definition_load.h>
#include <kestrona/process.h>

#include <gtest/gtest.h>

namespace Kestrona::Configuration {

namespace {

using ConfigurationTest::Real;

// Orders with an extension, Lines with one field.
class JoinTables : public ConfigurationTest::DefinitionFixture {
protected:
    JoinTables() {
        Add(L"Lines", {Real(L"Id", L"UNIQUE")});
        Add(L"Orders", {Real(L"Key", L"ORDER KEY")});
    }

    void Name(const wchar_t* parent) { store_.SetAssociatedTable(0, KSDLL_AddText(parent), true); }

    bool Join() { return JoinAssociatedTables(store_, L"Plant"); }
};

TEST_F(JoinTables, LinksByNameAndByClassification) {
    SetExtension(1, L"dat");
    for (const wchar_t* parent : {L"Orders", L"BY CLASSIFICATION ( ORDER KEY )"}) {
        Name(parent);
        EXPECT_TRUE(Join()) << Boxes().c_str();
        EXPECT_EQ(store_.GetAssociateTableNumber(0), 1);
        EXPECT_TRUE(store_.IsAssociatedTableEligibleCommonDataset(0));
        EXPECT_EQ(store_.GetFormatInfo(1)->childTables, std::vector<std::int32_t>{0});
        EXPECT_EQ(std::wstring(store_.GetDbExtension(0)), L"dat");
    }
}

TEST_F(JoinTables, KeepsAFormatOutOfTheDatabaseWhenItsOptionalParentIsAbsent) {
    Name(L"BY CLASSIFICATION(NO SUCH)");
    EXPECT_TRUE(Join());
    EXPECT_FALSE(store_.IsAssociatedTable(0));
    EXPECT_TRUE(store_.ClassDefined(0, 0, Classes::kExcludeFromDb));
    EXPECT_EQ(std::wstring(store_.GetDbClassString(0, 0)), L"UNIQUE | EXCLUDE FROM DB");
    EXPECT_TRUE(store_.GetFieldInfo(0, 0)->originalTaken);
    EXPECT_EQ(store_.GetFieldInfo(0, 0)->original.classString, L"UNIQUE | EXCLUDE FROM DB");
}

TEST_F(JoinTables, LooksForAParentBehindTheChildThenBeforeItAndNeverInIt) {
    Add(L"Stock", {Real(L"Key", L"ORDER KEY | STOCK")});
    const auto parent_of = [&](std::int32_t child, const wchar_t* classification) {
        store_.SetAssociatedTable(child, KSDLL_AddText(classification), false);
        EXPECT_TRUE(Join());
        return store_.GetAssociateTableNumber(child);
    };
    EXPECT_EQ(parent_of(1, L"BY CLASSIFICATION(ORDER KEY)"), 2);
    EXPECT_EQ(parent_of(1, L"BY CLASSIFICATION(UNIQUE)"), 0);
    EXPECT_EQ(parent_of(2, L"BY CLASSIFICATION(STOCK)"), -1);
}

TEST_F(JoinTables, StandsAFormatWithoutKeyWhoseParentIsAbsent) {
    Name(L"BY CLASSIFICATION(NO SUCH)");
    store_.SetDbKey(0, -1);
    EXPECT_TRUE(Join());
    EXPECT_FALSE(store_.IsAssociatedTable(0));
}

TEST_F(JoinTables, RefusesAMissingParentAndAnExtensionOfTheChildsOwn) {
    for (const wchar_t* parent : {L"Nowhere", L"17"}) {
        Name(parent);
        EXPECT_FALSE(Join());
        EXPECT_EQ(messages_->boxes.back(),
                  (Fixtures::RecordingMessages::Box{L"<21069|Lines>", L"Plant", kMessageStyleError}));
    }
    Name(L"Orders");
    SetExtension(0, L"own");
    EXPECT_FALSE(Join());
    EXPECT_EQ(messages_->boxes.back(),
              (Fixtures::RecordingMessages::Box{L"<21109|Lines|Orders>", L"Plant", kMessageStyleError}));
}

} // namespace

} // namespace Kestrona::Configuration
