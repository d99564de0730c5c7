#include "configuration/field_pass.h"

#include "configuration/definition_fixture.h"
#include "configuration/load_state.h"

#include <kestrona/definition_load.h>
#include <kestrona/host_settings.h>
#include <kestrona/services.h>

#include <gtest/gtest.h>

#include <limits>

namespace Kestrona::Configuration {

namespace {

using ConfigurationTest::KeywordCase;
using ConfigurationTest::Matrix;
using ConfigurationTest::Real;
using Fixtures::Field;

constexpr std::uint32_t kTextMatrix = TypeBit::kMatrix | TypeBit::kReference;

// Orders(Key, X, A, B) with X under test; Products(Code, Name, Parts), whose Parts begin a chain of lists by way of
// Parts(Id, Sub) to Subs(Id); Stock(Id), which is a dataset of its own.
class FieldPass : public ConfigurationTest::DefinitionFixture {
protected:
    void Define(const Field& x) {
        Add(L"Orders", {Fixtures::Number(L"Key"), x, Fixtures::Number(L"A"), Fixtures::Number(L"B")});
        Add(L"Products", {Real(L"Code", L"", {Classes::kUnique}),
                          {.name = L"Name",
                           .type = TypeBit::kReference,
                           .classes = {Classes::kFreeFormat, Classes::kStorageMark},
                           .classification = L"NAMING DIALOG FIELD NAME(Product name)"},
                          Matrix(L"Parts", L"AUTO LIST(Parts(Sub))")});
        Add(L"Parts", {Fixtures::Number(L"Id"), Matrix(L"Sub", L"AUTO LIST(Subs(Id))")});
        Add(L"Subs", {Fixtures::Number(L"Id")});
        SetExtension(Add(L"Stock", {Fixtures::Number(L"Id")}), L"dat");
    }

    // What the pass changes in Orders and Products.Name.
    std::wstring Resolve() { return Changes(RunFieldPass, L"Products.Name."); }
};

// The changes in X, other fields with their names.
const KeywordCase kResolved[] = {
    {Real(L"X", L""), L""},
    // References
    {Real(L"X", L"DATABASE(Products(Parts))"), L"X.+0:2097152 X.source=2 X.table=1"},
    {Matrix(L"X", L"DATABASE ( Products(Parts) )"), L"X.+0:2097152 X.[1]=1 X.[2]=2 X.source=2 X.table=1"},
    {Real(L"X", L"DATABASE(Products(Parts))", {Classes::kUpdateReference}),
     L"X.+0:2097152 X.[0]=1 X.[13]=1 X.source=2 X.sourceS=2 X.table=1"},
    {Real(L"X", L"SOURCE(Products(Name))"), L""},
    {Real(L"X", L"SOURCE(Products(Parts))", {Classes::kUpdateReference}), L"X.+5:4096 X.[0]=1 X.[13]=1 X.sourceS=2"},
    {Real(L"X", L"LOOKUP SOURCE(Products(Parts))", {Classes::kUpdateReference}), L"X.+11:256 X.[15]=1 X.[16]=2"},
    {Real(L"X", L"DATABASE[NAMING] | UNIQUE"),
     L"X.+0:2097152 X.source=1 X.table=1 X.text=DATABASE(Products(Name)) | UNIQUE"},
    {Real(L"X", L"DATABASE[ABSENT] | UNIQUE"), L"X.text= | UNIQUE"},
    {Real(L"X", L"DATABASE(FIND CLASSIFICATION STRING ( NAMING)) | SOURCE ORDER(FIND CLASSIFICATION STRING(NAMING))"),
     L"X.+0:2097152 X.+8:16777216 X.[1]=1 X.[2]=1 X.source=1 X.table=1 "
     L"X.text=DATABASE(Products(Name)) | SOURCE ORDER(Products(Name))"},
    // Texts of a matrix
    {{.name = L"X",
      .type = kTextMatrix,
      .classes = {Classes::kFreeFormat, Classes::kStringStorage},
      .classification = L"STRING STORAGE(Products(Name))"},
     L"X.+6:16 X.[10]=1 X.[11]=1"},
    {Real(L"X", L"STRING STORAGE(Products(Name))"), L""},
    // Remote values
    {Real(L"X", L"REMOTE_DEF \"Orders(A)\" REMOTE_DEF \"Products(Name)\""), L"X.default=-20001.000000"},
    {Real(L"X", L"REMOTE(Products(Name))"),
     L"X.+4:256 X.+4:8388608 X.text=REMOTE(Products(Name)) | SUBSTITUTX(-20001->\"Name\") | "
     L"SUBSTITUTE(-20001->\"Product name\")"},
    {{.name = L"X", .default_value = -9999.0, .classification = L"REMOTE(Stock(Id))"},
     L"X.+4:256 X.+4:8388608 X.text=REMOTE(Stock(Id)) | SUBSTITUTX(-50000->\"Id\") | SUBSTITUTE(-50000->\"Id\")"},
    {{.name = L"X",
      .default_value = std::numeric_limits<double>::quiet_NaN(),
      .classification = L"REMOTE(Stock(Id)) | SUBSTITUTX(-50000->\"Id\") | SUBSTITUTE(-50000->\"Id\")"},
     L"X.+4:256 X.+4:8388608"},
    // Lists
    {Matrix(L"X", L"AUTO LIST(Products(Name))"), L"X.+1:1 X.source=1 X.sourceY=1 X.table=1 X.tableY=1"},
    {Matrix(L"X", L"AUTO LIST(Products(Parts))"), L"X.+1:1 X.source=0 X.sourceY=2 X.table=3 X.tableY=1"},
    {Matrix(L"X", L"DATA LIST"), L"X.+1:1"},
    // Dimensions
    {Matrix(L"X", L"AUTO DIMENSION(Own,Orders(B),Other,Products(Name))"),
     L"X.+1:2 X.source=3 X.sourceY=1 X.table=0 X.tableY=1 X.xLabel=Own X.yLabel=Other"},
    {Matrix(L"X", L"AUTO DIMENSION( ,Orders(B), , Products(Name))"),
     L"X.+1:2 X.source=3 X.sourceY=1 X.table=0 X.tableY=1"},
    {Matrix(L"X", L"AUTO DIMENSION ( P, Products(Code) , N, Parts(Id)) MATRIX MINIMUM(Sub) MATRIX DEFAULT (Sub)"),
     L"X.+1:2 X.+1:4 X.+2:268435456 X.+2:536870912 X.[1]=1 X.[2]=1 X.source=0 X.sourceY=0 X.table=1 X.tableY=2 "
     L"X.text=AUTO DIMENSION ( P, Products(Code) , N, Parts(Id)) MATRIX MINIMUM(Sub) MATRIX DEFAULT (Sub)3DMATRIX "
     L"X.xLabel=P X.yLabel=N"},
    {Matrix(L"X", L"MATRIX MINIMUM(Nothing)"), L""},
    {Matrix(L"X", L"COMMON MATRIX"), L"X.+1:16"},
    // Fields of the same format
    {Real(L"X", L"SWITCH(A)"), L"A.[4]=1 X.+5:2147483648"},
    {Real(L"X", L"SWITCH ON(A) | SWITCH(B)"), L"A.[3]=1 A.[4]=1 B.[3]=1 B.[4]=1 X.+5:2147483648"},
    {Real(L"X", L"SWITCH OFF ( A) | SWITCH ON(B) | SWITCHED | SWITCH ONLY"),
     L"A.[4]=1 B.[3]=1 B.[4]=1 X.+5:2147483648"},
    {Real(L"X", L"RELATED FIELD(A)"), L"X.+11:65536 X.related=2"},
    // Links
    {Real(L"X", L"LOCAL ASSIGNMENT(Products(Name))"), L"X.+7:1024 X.[6]=1 X.[7]=1 Products.Name.+7:2048"},
    {Real(L"X", L"SETUP OVERRIDE MATCH(Products(Parts))", {Classes::kSetupOverrideMatch}), L"X.[8]=1 X.[9]=2"},
    {Real(L"X", L"SETUP OVERRIDE MATCH(Products(Name))"), L""},
    {Real(L"X", L"MATCH FIELD(Products(Parts))"), L"X.+6:268435456 X.[1]=1 X.[2]=2"},
    {Real(L"X", L"SOURCE ORDER(Products(Parts))"), L"X.+8:16777216 X.[1]=1 X.[2]=2"},
    {Real(L"X", L"MATCH DURATION FIELD(Products(Parts))"), L"X.+6:2147483648 X.[3]=2 X.[6]=1 X.[7]=2"},
    {Real(L"X", L"MATCH DURATION FIELD(Products(Name)) MATCH END DURATION FIELD(Products(Parts))"),
     L"X.+6:2147483648 X.[3]=2 X.[6]=1 X.[7]=1"},
    {Real(L"X", L"MATCH DURATION FIELD(Products(Name)) MATCH END DURATION FIELD(Orders(B))"),
     L"X.+6:2147483648 X.[3]=1 X.[6]=1 X.[7]=1"},
    {Real(L"X", L"LOOKUP SOURCE(Stock(Id))"), L"X.+11:256 X.[15]=4 X.[16]=0"},
    {Real(L"X", L"EXPAND REFERENCE(Orders(A)) EXPAND MATCH(Products(Name))"), L"X.+11:2048 X.+11:4096 X.[19]=2"},
    {Real(L"X", L"LOOKUP SOURCE(Products(Name)) LOOKUP UPDATE (Code)"), L"X.+11:256 X.+11:512 X.[15]=1 X.[16]=0"},
};

class ResolvedKeyword : public FieldPass, public testing::WithParamInterface<KeywordCase> {};

TEST_P(ResolvedKeyword, ChangesExactlyWhatItStandsForAndNothingMoreTheNextTime) {
    Define(GetParam().x);
    EXPECT_EQ(Resolve(), GetParam().expected) << Boxes().c_str();
    EXPECT_TRUE(succeeded_);
    EXPECT_EQ(Boxes(), L"");
    EXPECT_EQ(Resolve(), L"");
}

INSTANTIATE_TEST_SUITE_P(FieldPass, ResolvedKeyword, testing::ValuesIn(kResolved));

const KeywordCase kRefused[] = {
    {Real(L"X", L"AND DATABASE(Nowhere(Code)) MORE"),
     L"<21005|DATABASE(Nowhere(Code))>\n<21006|Orders|X>\n<21003|Nowhere>"},
    {Real(L"X", L"DATABASE(Products(code))"), L"<21004|DATABASE(Products(code))|Products><21003|code>"},
    {Real(L"X", L"DATABASE(Stock(Id))"), L"<21005|DATABASE(Stock(Id))>\n<21006|Orders|X>\n<21003|Stock>"},
    {Real(L"X", L"SOURCE(Nowhere(A))", {Classes::kUpdateReference}),
     L"<21005|SOURCE(Nowhere(A))>\n<21008|Orders|X>\n<21003|Nowhere>"},
    {Real(L"X", L"FIND CLASSIFICATION STRING(NONE)"),
     L"<21108|NONE|FIND CLASSIFICATION STRING reference in Format 'Orders' Field 'X'>"},
    {Real(L"X", L"FIND CLASSIFICATION STRING(NAMING"),
     L"<21108|NAMING|FIND CLASSIFICATION STRING reference in Format 'Orders' Field 'X'>"},
    {{.name = L"X", .type = kTextMatrix, .classes = {Classes::kFreeFormat}}, L"<21110|Orders|X>"},
    {Real(L"X", L"STRING STORAGE(Products(Code))", {Classes::kStringStorage}), L"<21102|Products|Code> <21103>"},
    {Real(L"X", L"STRING STORAGE(Stock(Id))", {Classes::kStringStorage}),
     L"<21005|STRING STORAGE(Stock(Id))>\n<21104|Orders|X>\n<21003|Stock>"},
    {Real(L"X", L"REMOTE_DEF \"Nowhere(A)\""), L"<21005|REMOTE_DEF \"Nowhere(A)>\n<21097|Orders|X>\n<21003|Nowhere>"},
    {Real(L"X", L"REMOTE(Nowhere(A))"), L"<21005|REMOTE(Nowhere(A))>\n<21082|Orders|X>\n<21003|Nowhere>"},
    {{.name = L"X", .default_value = -10000.0, .classification = L"REMOTE(Stock(Id))"}, L"<21007|-10000|Orders|X>"},
    {Real(L"X", L"AUTO LIST(Products(Code))"), L"<21009|Orders|X> <21084>"},
    {Matrix(L"X", L"AUTO LIST(Nowhere(Id))"),
     L"<21005|AUTO LIST(Nowhere(Id))>\n<21009|Orders|X> <21084>\n<21003|Nowhere>"},
    {Matrix(L"X", L"AUTO DIMENSION(A,Products(Code),B,Orders(Key))"), L"<21058|Orders|X><21059><21060><21061><21062>"},
    {Matrix(L"X", L"AUTO DIMENSION"), L"<21005|AUTO DIMENSION>\n<21010|Orders|X>\n<21003|>"},
    {Matrix(L"X", L"AUTO DIMENSION(A,Orders(Key),B,Products(Code)) MATRIX MINIMUM"),
     L"<21004|MATRIX MINIMUM|Products><21003|>"},
    {Matrix(L"X", L"AUTO DIMENSION(A,Orders(Key),B,Products(Code)) MATRIX DEFAULT(Zip)"),
     L"<21004|MATRIX DEFAULT(Zip)|Products><21003|Zip>"},
    {Real(L"X", L"SWITCH(C)"), L"<21004|SWITCH(C)|Orders><21003|C>"},
    {Real(L"X", L"RELATED FIELD(C)"), L"<21004|RELATED FIELD(C)|Orders><21003|C>"},
    {Real(L"X", L"LOCAL ASSIGNMENT(Nowhere(A))"),
     L"<21005|LOCAL ASSIGNMENT(Nowhere(A))>\n<21095|Orders|X>\n<21003|Nowhere>"},
    {Real(L"X", L"SETUP OVERRIDE MATCH(Nowhere(A))", {Classes::kSetupOverrideMatch}),
     L"<21005|SETUP OVERRIDE MATCH(Nowhere(A))>\n<21505|Orders|X>\n<21003|Nowhere>"},
    {Real(L"X", L"MATCH FIELD(Nowhere(A))"), L"<21005|MATCH FIELD(Nowhere(A))>\n<21093|Orders|X>\n<21003|Nowhere>"},
    {Real(L"X", L"SOURCE ORDER(Nowhere(A))"), L"<21005|SOURCE ORDER(Nowhere(A))>\n<21504|Orders|X>\n<21003|Nowhere>"},
    {Real(L"X", L"MATCH DURATION FIELD(Orders(A)) MATCH END DURATION FIELD(Nowhere(A))"),
     L"<21005|MATCH END DURATION FIELD(Nowhere(A))>\n<21094|Orders|X>\n<21003|Nowhere>"},
    {Real(L"X", L"LOOKUP SOURCE(Nowhere(A))"),
     L"<21005|LOOKUP SOURCE(Nowhere(A))>\nLOOKUP SOURCE reference in Format 'Orders' Field 'X'\n<21003|Nowhere>"},
    {Real(L"X", L"EXPAND MATCH(Nowhere(A))"),
     L"<21005|EXPAND MATCH(Nowhere(A))>\nEXPAND MATCH reference in Format 'Orders' Field 'X'\n<21003|Nowhere>"},
    {Real(L"X", L"EXPAND REFERENCE(Nowhere(A))"),
     L"<21005|EXPAND REFERENCE(Nowhere(A))>\nEXPAND REFERENCE reference in Format 'Orders' Field 'X'\n<21003|Nowhere>"},
    {Real(L"X", L"LOOKUP UPDATE(Code)"), L"No LOOKUP SOURCE classification exists to be used with the LOOKUP UPDATE in "
                                         L"Format 'Orders' Field 'X'"},
    {Real(L"X", L"LOOKUP UPDATE(Code) LOOKUP SOURCE(Products(Code))", {Classes::kEvaluate}),
     L"LOOKUP UPDATE classification exists together with EVALUATE in Format 'Orders' Field 'X'"},
    {Real(L"X", L"LOOKUP UPDATE(Parts) LOOKUP SOURCE(Products(Code))"),
     L"LOOKUP UPDATE classification in Format 'Orders' Field 'X' references a field that is not the same type"},
    {{.name = L"X",
      .type = TypeBit::kReference,
      .classification = L"LOOKUP UPDATE(Name) LOOKUP SOURCE(Products(Code))"},
     L"LOOKUP UPDATE classification in Format 'Orders' Field 'X' is not FREE FORMAT but the referenced field is FREE "
     L"FORMAT"},
};

class RefusedKeyword : public FieldPass, public testing::WithParamInterface<KeywordCase> {};

TEST_P(RefusedKeyword, IsShownWithItsPlaceAndEndsThePass) {
    SetMessageCaption(L"Plant");
    Define(GetParam().x);
    Resolve();
    EXPECT_FALSE(succeeded_);
    ASSERT_EQ(messages_->boxes.size(), 1U);
    EXPECT_EQ(messages_->boxes[0],
              (Fixtures::RecordingMessages::Box{GetParam().expected, L"Plant", kMessageStyleError}))
        << Boxes().c_str();
}

INSTANTIATE_TEST_SUITE_P(FieldPass, RefusedKeyword, testing::ValuesIn(kRefused));

TEST_F(FieldPass, RefusesTheRetiredKeywordWithAWarning) {
    Define(Matrix(L"X", L"AUTO CALCULATE"));
    Resolve();
    EXPECT_FALSE(succeeded_);
    ASSERT_EQ(messages_->boxes.size(), 1U);
    EXPECT_EQ(messages_->boxes[0], (Fixtures::RecordingMessages::Box{
                                       L"AUTO CALCULATE is not supported. Remove this feature and restart Kestrona.",
                                       L"Unsupported feature", kMessageStyleWarning}));
}

TEST_F(FieldPass, OffersTheContextToTheTextForAMissingField) {
    Define(Real(L"X", L"SWITCH(C)"));
    messages_->texts = {{21004, L"%s, %s, %s, %s"}, {21003, L""}};
    Resolve();
    EXPECT_EQ(Boxes(), L"SWITCH(C), Orders, C, <21090|Orders|X>\n'C'");
}

TEST_F(FieldPass, ReadsTheFormatsOfOwnParentAndSiblingsFromTheirDatasets) {
    Define(Real(L"X", L"DATABASE(Stock(Id))"));
    const std::int32_t sibling = Add(L"Shelves", {Real(L"Id", L"DATABASE(Orders(Key))")});
    SetExtension(sibling, L"dat");
    SetExtension(0, L"dat");
    SetParent(0, 4);
    SetParent(sibling, 4);
    EXPECT_EQ(Resolve(), L"X.+0:2097152 X.source=0 X.table=4") << Boxes().c_str();
    EXPECT_EQ(store_.GetDbTable(sibling, 0), 0);
}

TEST_F(FieldPass, LooksOrderMatchUpInTheParentAndSkipsItWithoutOne) {
    Define(Real(L"X", L"ORDER MATCH(Name)"));
    EnableExtendedDebugLogging();
    EXPECT_EQ(Resolve(), L"");
    ASSERT_EQ(log_->extended.size(), 1U);
    EXPECT_EQ(log_->extended[0].text, L"No Associated table for ORDER MATCH reference in Format 'Orders' Field 'X'");
    EXPECT_EQ(log_->extended[0].flags, 33U);
    SetParent(0, 1);
    EXPECT_EQ(Resolve(), L"X.+11:1024 X.[17]=1");
}

TEST_F(FieldPass, EndsARingOfListsAtTheLastFieldBeforeTheFirstRepeat) {
    Add(L"Orders",
        {Fixtures::Number(L"Key"), Matrix(L"X", L"AUTO LIST(Rings(A))"), Matrix(L"Y", L"AUTO LIST(Rings(Self))")});
    Add(L"Rings", {Fixtures::Number(L"Key"), Matrix(L"A", L"AUTO LIST(Rings(B))"), Matrix(L"B", L"AUTO LIST(Rings(C))"),
                   Matrix(L"C", L"AUTO LIST(Rings(B))"), Matrix(L"Self", L"AUTO LIST(Rings(Self))")});
    ASSERT_TRUE(RunFieldPass(store_));
    EXPECT_EQ(store_.GetDbSource(0, 1), 3);
    EXPECT_EQ(store_.GetDbSourceY(0, 1), 1);
    EXPECT_EQ(store_.GetDbSource(0, 2), 4);
    EXPECT_EQ(log_->lines[0], L"<21009|Rings|A> <21084>");
}

TEST_F(FieldPass, LeavesTheStringsOfACompiledDefinitionAsTheyAre) {
    Define(Real(L"X", L"REMOTE(Products(Name))"));
    const CompiledResolution resolution;
    EXPECT_EQ(Resolve(), L"X.+4:256 X.+4:8388608");
}

TEST_F(FieldPass, ClearsWhatAnEarlierDefinitionLeft) {
    Define(Real(L"X", L""));
    store_.SetDbRelated(0, 1, 7);
    store_.SetDbRelatedY(0, 1, 7);
    store_.SetDbData(0, 1, DataSlot::kLookupFormat, 7);
    store_.SetDbData(0, 1, DataSlot::kLookupField, 7);
    EXPECT_EQ(Resolve(), L"X.[15]=-1 X.[16]=-1 X.related=-1 X.relatedY=-1");
}

} // namespace

} // namespace Kestrona::Configuration
