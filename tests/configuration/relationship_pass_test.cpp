#include "configuration/relationship_pass.h"

#include "configuration/definition_fixture.h"
#include "configuration/field_pass.h"

#include <kestrona/process.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

namespace Kestrona::Configuration {

namespace {

using ConfigurationTest::Differences;
using ConfigurationTest::KeywordCase;
using ConfigurationTest::Matrix;
using ConfigurationTest::Real;
using ConfigurationTest::Snapshot;
using ConfigurationTest::TakeSnapshot;
using Fixtures::Field;

// Orders(Key, X, List, Plain, Text, ...) with X under test and more fields behind it; Products(Code, Name, Grid, Line).
class RelationshipPass : public ConfigurationTest::DefinitionFixture {
protected:
    void Define(const Field& x, const std::vector<Field>& more = {}) {
        std::vector<Field> fields = {Fixtures::Number(L"Key"), x, Matrix(L"List", L"AUTO LIST(Products(Code))"),
                                     Fixtures::Number(L"Plain"), Fixtures::Text(L"Text")};
        fields.insert(fields.end(), more.begin(), more.end());
        Add(L"Orders", fields);
        Add(L"Products", {Real(L"Code", L"", {Classes::kUnique, Classes::kInheritFromParent}), Fixtures::Text(L"Name"),
                          Matrix(L"Grid", L"AUTO DIMENSION(P,Products(Code),O,Orders(Plain))"),
                          Real(L"Line", L"DATABASE(Orders(Key))")});
    }

    // What the pass changes in Orders.
    std::wstring Relate() {
        EXPECT_TRUE(RunFieldPass(store_)) << Boxes().c_str();
        return Changes(RunRelationshipPass);
    }
};

// The changes in fields of Orders.
const KeywordCase kRelated[] = {
    {Real(L"X", L""), L""},
    {Real(L"X", L"LOOKUP SOURCE(Products(Code))"), L""},
    {Real(L"X", L"SOURCE(Products(Line)) UPDATE REFERENCE(Plain)", {Classes::kUpdateReference}), L"X.tableY=3"},
    {Real(L"X", L"SOURCE(Products(Name)) UPDATE REFERENCE(Plain)", {Classes::kUpdateReference, Classes::kUnchecked}),
     L"X.tableY=3"},
    {Matrix(L"X", L"RELATED LIST(List)"), L"X.+0:2 X.+0:4 X.+2:128 X.tableY=2"},
    {Matrix(L"X", L"RELATED LIST"), L""},
    {Matrix(L"X", L"ASSOCIATE(List)"),
     L"X.+0:2 X.+0:4 X.+1:2 X.+3:131072 X.[0]=2 X.source=0 X.sourceY=0 X.table=0 X.tableY=1"},
    {Matrix(L"X", L"ASSOCIATE(List)", {Classes::kParallelList}),
     L"X.+0:2 X.+0:4 X.+3:131072 X.[0]=2 X.source=0 X.sourceY=0 X.table=0 X.tableY=1"},
    {Matrix(L"X", L"ASSOCIATE(List) AUTO DIMENSION(A,Orders(Plain),B,Products(Name))"),
     L"X.+0:2 X.+0:4 X.+3:131072 X.[0]=2"},
    {Matrix(L"X", L"ASSOCIATE(Values)"),
     L"X.+0:2 X.+0:4 X.+1:2 X.+3:131072 X.[0]=5 X.source=0 X.table=0",
     {Matrix(L"Values", L"DATA LIST")}},
    {Matrix(L"X", L"AUTO RESTRICT(List)"), L"X.+2:2097152 X.[8]=2"},
    {Real(L"X", L"FAMILY(Plain)"), L"Plain.+0:134217728 Plain.+4:32768 Plain.parentSort=0 X.+0:33554432 X.table=3"},
    // The field that chooses the record
    {Matrix(L"X", L"DATABASE(Products(Grid))"),
     L"X.matrixField=2 X.related=5 X.source=0",
     {Real(L"Product", L"DATABASE(Products(Code))")}},
    {Matrix(L"X", L"AUTO LIST(Products(Grid))"),
     L"X.matrixField=2 X.related=5 X.source=0",
     {Real(L"Product", L"DATABASE(Products(Code))")}},
    {Matrix(L"X", L"DATABASE(Products(Grid))"),
     L"Shared.tableY=3 X.matrixField=2 X.related=10 X.source=0",
     {Matrix(L"Wide", L"DATABASE(Products(Code))"), Real(L"Loose", L"DATABASE(Products(Name))"),
      Real(L"Shared", L"DATABASE(Products(Code)) ADDITIONAL REFERENCE(Plain)", {Classes::kAdditionalReference}),
      Real(L"Other", L"DATABASE(Orders(Key))"), Real(L"Quiet", L"DATABASE(Products(Code))", {Classes::kUnchecked}),
      Real(L"Product", L"DATABASE(Products(Code))")}},
    {Matrix(L"X", L"DATABASE(Products(Grid))"),
     L"X.matrixField=2 X.related=5 X.source=0",
     {Real(L"Quiet", L"DATABASE(Products(Code))", {Classes::kUnchecked})}},
    {Matrix(L"X", L"DATABASE(Products(Grid)) RELATED FIELD(Plain)"),
     L"X.matrixField=2 X.source=0",
     {Real(L"One", L"DATABASE(Products(Code))"), Real(L"Two", L"DATABASE(Products(Code))")}},
    {Matrix(L"X", L"DATABASE(Orders(List))"), L"X.matrixField=2 X.related=0 X.source=0 X.table=1"},
    {Matrix(L"X", L"DATABASE(Orders(List))"),
     L"X.matrixField=2 X.related=5 X.source=0 X.table=1",
     {Real(L"One", L"DATABASE(Orders(No))", {Classes::kUnchecked}),
      Real(L"Two", L"DATABASE(Orders(No))", {Classes::kUnchecked}), Real(L"No", L"", {Classes::kUnique})}},
    // Fields that lean on another one
    {Real(L"X", L"ADDITIONAL REFERENCE(Plain)", {Classes::kAdditionalReference}), L"X.tableY=3"},
    {Real(L"X", L"ADDITIONAL REFERENCE(Plain)"), L""},
    {Real(L"X", L"OVERRIDE(Plain)", {Classes::kOverride}), L"X.tableY=3"},
    {Real(L"X", L"OVERRIDE", {Classes::kOverride}), L""},
    {Real(L"X", L"AUTO SPLIT(Plain:2)", {Classes::kAutoSplit}), L"X.tableY=3"},
    {Real(L"X", L"AUTO SPLIT(Nothing)"), L""},
    {Real(L"X", L"", {Classes::kInheritFromParent}), L"X.parentSort=0"},
    {{.name = L"X", .type = TypeBit::kReference, .classes = {Classes::kEncrypted, Classes::kFreeFormat}}, L""},
};

class RelatedKeyword : public RelationshipPass, public testing::WithParamInterface<KeywordCase> {};

TEST_P(RelatedKeyword, ChangesExactlyWhatItStandsForAndNothingMoreTheNextTime) {
    Define(GetParam().x, GetParam().more);
    EXPECT_EQ(Relate(), GetParam().expected);
    EXPECT_TRUE(succeeded_);
    EXPECT_EQ(Boxes(), L"");
    const Snapshot first = TakeSnapshot(store_);
    ASSERT_TRUE(RunFieldPass(store_) && RunRelationshipPass(store_)) << Boxes().c_str();
    EXPECT_EQ(Differences(first, TakeSnapshot(store_)), L"");
}

INSTANTIATE_TEST_SUITE_P(RelationshipPass, RelatedKeyword, testing::ValuesIn(kRelated));

const KeywordCase kRefused[] = {
    {Real(L"X", L"LOOKUP SOURCE(Products(Line))"),
     L"LOOKUP SOURCE classification in Format 'Orders' Field 'X' references a field that is not UNIQUE"},
    {Real(L"X", L"LOOKUP SOURCE(Orders(No))"),
     L"LOOKUP SOURCE classification in Format 'Orders' Field 'X' references a field that is not INHERIT FROM PARENT",
     {Real(L"No", L"", {Classes::kUnique})}},
    {Real(L"X", L"DATABASE(Orders(Key)) LOOKUP SOURCE(Products(Code)) LOOKUP UPDATE(Code)"),
     L"LOOKUP UPDATE classification in Format 'Orders' Field 'X' is a DATABASE reference but the referenced field is "
     L"not a DATABASE reference"},
    {Real(L"X", L"DATABASE(Orders(Key)) LOOKUP SOURCE(Orders(To)) LOOKUP UPDATE(To)"),
     L"LOOKUP UPDATE classification in Format 'Orders' Field 'X' is a DATABASE reference but the table is different to "
     L"the table in the referenced field",
     {Real(L"To", L"DATABASE(Products(Code))", {Classes::kUnique, Classes::kInheritFromParent})}},
    {Real(L"X", L"SOURCE(Products(Name))", {Classes::kUpdateReference}),
     L"<21085|Products|Orders><21086|Name><21087|X><21088>"},
    {Real(L"X", L"SOURCE(Products(Line)) DATABASE(Products(Code))", {Classes::kUpdateReference}),
     L"<21085|Products|Orders><21086|Line><21087|X><21089>"},
    {Matrix(L"X", L"RELATED LIST(Plain)"), L"<21018><21017|Orders|X>"},
    {Matrix(L"X", L"RELATED LIST(None)"), L"<21004|RELATED LIST(None)|Orders><21003|None>"},
    {{.name = L"X", .type = TypeBit::kMatrix | TypeBit::kReal, .classification = L"RELATED LIST(List)"},
     L"<21019><21017|Orders|X>"},
    {Matrix(L"X", L"ASSOCIATE(Plain)"), L"<21021><21017|Orders|X>"},
    {Real(L"X", L"ASSOCIATE(List)"), L"<21022><21017|Orders|X>"},
    {Real(L"X", L"AUTO RESTRICT(List)"), L"<21508><21017|Orders|X>"},
    {Real(L"X", L"UPDATE REFERENCE", {Classes::kUpdateReference}), L"<21004|UPDATE REFERENCE|Orders><21003|>"},
    {Matrix(L"X", L"DATABASE(Products(Grid))"), L"<21028|Products><21029|Orders|X>"},
    {Matrix(L"X", L"DATABASE(Products(Grid))"),
     L"<21026|Products|Orders|Two><21027|One|X>",
     {Real(L"One", L"DATABASE(Products(Code))"), Real(L"Two", L"DATABASE(Products(Code))")}},
    {Matrix(L"X", L"DATABASE(Products(Grid))"),
     L"<21026|Products|Orders|Two><21027|One|X>",
     {Real(L"One", L"DATABASE(Products(Code))", {Classes::kUnchecked}),
      Real(L"Two", L"DATABASE(Products(Code))", {Classes::kUnchecked})}},
    {Real(L"X", L"ADDITIONAL REFERENCE(X)", {Classes::kAdditionalReference}), L"<21032|Orders><21003|X>"},
    {Real(L"X", L"", {Classes::kAdditionalReference}), L"<21033|Orders|X>"},
    {Real(L"X", L"ADDITIONAL REFERENCE(Z)", {Classes::kAdditionalReference}),
     L"<21032|Orders><21003|Z>",
     {Real(L"Y", L"ADDITIONAL REFERENCE(X)", {Classes::kAdditionalReference}),
      Real(L"Z", L"ADDITIONAL REFERENCE(Y)", {Classes::kAdditionalReference})}},
    {Real(L"X", L"OVERRIDE(Text)", {Classes::kOverride}), L"<21113|Orders|X>"},
    {Matrix(L"X", L"OVERRIDE(List)", {Classes::kOverride}), L"<21111|Orders|X>"},
    {Real(L"X", L"OVERRIDE(Note)", {Classes::kOverride}),
     L"<21112|Orders|X>",
     {Real(L"Note", L"", {Classes::kFreeFormat})}},
    {Real(L"X", L"OVERRIDE(Plain) UPDATE REFERENCE(Plain)", {Classes::kOverride, Classes::kUpdateReference}),
     L"<21114|Orders|X>"},
    {Real(L"X", L"DATABASE(Products(Code)) UPDATE REFERENCE(X)", {Classes::kUpdateReference}),
     L"<21031|Orders><21003|X>"},
    {Real(L"X", L"UPDATE REFERENCE(Plain)", {Classes::kUpdateReference}), L"<21096|Orders><21003|X>"},
    {Real(L"X", L"DATABASE(Products(Code))", {Classes::kUpdateReference}), L"<21038|Orders|X>"},
    {Real(L"X", L"AUTO SPLIT(X)", {Classes::kAutoSplit}), L"<21035|Orders><21003|X>"},
    {Real(L"X", L"AUTO SPLIT(Both)", {Classes::kAutoSplit}),
     L"<21036|Orders><21003|X>",
     {{.name = L"Both", .type = TypeBit::kReal | TypeBit::kInteger}}},
    {Real(L"X", L"DATABASE(Products(Code))", {Classes::kFreeFormat}), L"<29012|Orders|X>"},
    {Real(L"X", L"", {Classes::kEncrypted, Classes::kEvaluate, Classes::kStringStorage}), L"<31100|Orders|X>"},
    {Real(L"X", L"", {Classes::kEncrypted, Classes::kStringStorage}), L"<31101|Orders|X>"},
    {Real(L"X", L"", {Classes::kEncrypted}), L"<31102|Orders|X>"},
};

class RefusedRelation : public RelationshipPass, public testing::WithParamInterface<KeywordCase> {};

TEST_P(RefusedRelation, IsShownWithItsArgumentsAndEndsThePass) {
    Define(GetParam().x, GetParam().more);
    Relate();
    EXPECT_FALSE(succeeded_);
    EXPECT_EQ(Boxes(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(RelationshipPass, RefusedRelation, testing::ValuesIn(kRefused));

// Every look-up of a field tells the place by the text of its own keyword.
TEST_F(RelationshipPass, OffersTheContextOfTheKeywordToTheTextForAMissingField) {
    struct Case {
        Field x;
        const wchar_t* context;
    };

    const std::wstring axes = L"AUTO DIMENSION(A,Orders(Key),B,Products(Code)) ";
    const Case cases[] = {
        {Matrix(L"X", axes + L"MATRIX MINIMUM(None)"), L"<21011|Orders|X>"},
        {Matrix(L"X", axes + L"MATRIX DEFAULT(None)"), L"<21012|Orders|X>"},
        {Real(L"X", L"RELATED FIELD(None)"), L"<21100|Orders|X>"},
        {Real(L"X", L"ORDER MATCH(None)"), L"ORDER MATCH reference in Format 'Orders' Field 'X'"},
        {Real(L"X", L"LOOKUP SOURCE(Products(Code)) LOOKUP UPDATE(None)"),
         L"LOOKUP UPDATE reference in Format 'Orders' Field 'X'"},
        {Matrix(L"X", L"RELATED LIST(None)"), L"<21016|Orders|X>"},
        {Matrix(L"X", L"ASSOCIATE(None)"), L"<21020|Orders|X>"},
        {Matrix(L"X", L"AUTO RESTRICT(None)"), L"<21506|Orders|X>"},
        {Real(L"X", L"FAMILY(None)"), L"<21025|Orders|X>"},
        {Real(L"X", L"ADDITIONAL REFERENCE(None)", {Classes::kAdditionalReference}), L"<21030|Orders|X>"},
        {Real(L"X", L"OVERRIDE ( None)", {Classes::kOverride}), L"OVERRIDE(None)"},
        {Real(L"X", L"UPDATE REFERENCE(None)", {Classes::kUpdateReference}), L"<21034|Orders|X>"},
        {Real(L"X", L"AUTO SPLIT(None)", {Classes::kAutoSplit}), L"<21037|Orders|X>"},
    };
    messages_->texts = {{21004, L"%4%"}, {21003, L""}};
    for (const Case& c : cases) {
        messages_->boxes.clear();
        KSDLL_InitializeFormats(store_);
        Define(c.x);
        SetParent(0, 1);
        EXPECT_FALSE(RunFieldPass(store_) && RunRelationshipPass(store_));
        EXPECT_EQ(Boxes(), c.context) << ToUtf8(c.x.classification);
    }
}

TEST_F(RelationshipPass, RefusesAFamilyInAFormatWithoutKey) {
    Add(L"Orders", {Real(L"X", L"FAMILY(X)")}, -1);
    Relate();
    EXPECT_FALSE(succeeded_);
    EXPECT_EQ(Boxes(), L"<21024><21023|Orders>");
}

TEST_F(RelationshipPass, MakesAssociateFieldsReadOnlyInAssociatedTableMode) {
    Define(Matrix(L"X", L"ASSOCIATE(List)"));
    KSDLL_SetLongSv(kSvAssociatedTableMode, 2);
    Relate();
    EXPECT_TRUE(store_.ClassDefined(0, 1, Classes::kReadOnly));
}

TEST_F(RelationshipPass, LogsEveryFieldBeforeItsSteps) {
    Add(L"Orders", {Fixtures::Number(L"Key"), Fixtures::Number(L"A")});
    Add(L"Products", {Real(L"Code", L"", {Classes::kEncrypted}), Fixtures::Number(L"B")});
    Relate();
    EXPECT_EQ(log_->lines, (std::vector<std::wstring>{L"Format 0 Field 0", L"Format 0 Field 1", L"Format 1 Field 0"}));
}

} // namespace

} // namespace Kestrona::Configuration
