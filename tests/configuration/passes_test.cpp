// The two passes of the resolution, keyword by keyword.
#include "configuration/definition_fixture.h"
#include "configuration/field_pass.h"
#include "configuration/load_state.h"
#include "configuration/relationship_pass.h"

#include <kestrona/definition_load.h>
#include <kestrona/host_settings.h>
#include <kestrona/process.h>
#include <kestrona/services.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <limits>

namespace Kestrona::Configuration {

namespace {

using X = ConfigurationTest::KeywordCase;
using ConfigurationTest::Differences;
using ConfigurationTest::Matrix;
using ConfigurationTest::Real;
using ConfigurationTest::Snapshot;
using ConfigurationTest::TakeSnapshot;
using Fixtures::Field;
using namespace Classes;

constexpr std::uint32_t kTextMatrix = TypeBit::kMatrix | TypeBit::kReference;

// Orders(Key, X, A, B) with X under test; Products(Code, Name, Parts), whose Parts begin a chain of lists by way of
// Parts(Id, Sub) to Subs(Id); Stock(Id), which is a dataset of its own.
class FieldPass : public ConfigurationTest::DefinitionFixture {
protected:
    void Define(const Field& x) {
        KSDLL_InitializeFormats(store_);
        Add(L"Orders", {Fixtures::Number(L"Key"), x, Fixtures::Number(L"A"), Fixtures::Number(L"B")});
        Add(L"Products", {Real(L"Code", L"", {kUnique}),
                          {.name = L"Name",
                           .type = TypeBit::kReference,
                           .classes = {kFreeFormat, kStorageMark},
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
const X kResolved[] = {
    X(L"", L""),
    // References
    X(L"DATABASE(Products(Parts))", L"+0:2097152 source=2 table=1"),
    X(L"MATRIX | DATABASE ( Products(Parts) )", L"+0:2097152 [1]=1 [2]=2 source=2 table=1"),
    X(L"DATABASE(Products(Parts))", L"+0:2097152 [0]=1 [13]=1 source=2 sourceS=2 table=1", {kUpdateReference}),
    X(L"SOURCE(Products(Parts))", L"+5:4096 [0]=1 [13]=1 sourceS=2", {kUpdateReference}),
    X(L"LOOKUP SOURCE(Products(Parts))", L"+11:256 [15]=1 [16]=2", {kUpdateReference}),
    X(L"DATABASE[NAMING] | UNIQUE", L"+0:2097152 source=1 table=1 text=DATABASE(Products(Name)) | UNIQUE"),
    X(L"DATABASE[ABSENT] | UNIQUE", L"text= | UNIQUE"),
    X(L"DATABASE(FIND CLASSIFICATION STRING ( NAMING)) | SOURCE ORDER(FIND CLASSIFICATION STRING(NAMING))",
      L"+0:2097152 +8:16777216 [1]=1 [2]=1 source=1 table=1 "
      L"text=DATABASE(Products(Name)) | SOURCE ORDER(Products(Name))"),
    // Texts of a matrix
    X(Field{.name = L"X",
            .type = kTextMatrix,
            .classes = {kFreeFormat, kStringStorage},
            .classification = L"STRING STORAGE(Products(Name))"},
      L"+6:16 [10]=1 [11]=1"),
    X(L"STRING STORAGE(Products(Name))", L""),
    // Remote values
    X(L"REMOTE_DEF \"Orders(A)\" REMOTE_DEF \"Products(Name)\"", L"default=-20001.000000"),
    X(L"REMOTE(Products(Name))", L"+4:256 +4:8388608 text=REMOTE(Products(Name)) | SUBSTITUTX(-20001->\"Name\") | "
                                 L"SUBSTITUTE(-20001->\"Product name\")"),
    X(Field{.name = L"X", .default_value = -9999.0, .classification = L"REMOTE(Stock(Id))"},
      L"+4:256 +4:8388608 text=REMOTE(Stock(Id)) | SUBSTITUTX(-50000->\"Id\") | SUBSTITUTE(-50000->\"Id\")"),
    X(Field{.name = L"X",
            .default_value = std::numeric_limits<double>::quiet_NaN(),
            .classification = L"REMOTE(Stock(Id)) | SUBSTITUTX(-50000->\"Id\") | SUBSTITUTE(-50000->\"Id\")"},
      L"+4:256 +4:8388608"),
    // Lists
    X(L"MATRIX | AUTO LIST(Products(Name))", L"+1:1 source=1 sourceY=1 table=1 tableY=1"),
    X(L"MATRIX | AUTO LIST(Products(Parts))", L"+1:1 source=0 sourceY=2 table=3 tableY=1"),
    X(L"MATRIX | DATA LIST", L"+1:1"),
    // Dimensions
    X(L"MATRIX | AUTO DIMENSION(Own,Orders(B),Other,Products(Name))",
      L"+1:2 source=3 sourceY=1 table=0 tableY=1 xLabel=Own yLabel=Other"),
    X(L"MATRIX | AUTO DIMENSION( ,Orders(B), , Products(Name))", L"+1:2 source=3 sourceY=1 table=0 tableY=1"),
    X(L"MATRIX | AUTO DIMENSION ( P, Products(Code) , N, Parts(Id)) MATRIX MINIMUM(Sub) MATRIX DEFAULT (Sub)",
      L"+1:2 +1:4 +2:268435456 +2:536870912 [1]=1 [2]=1 source=0 sourceY=0 table=1 tableY=2 "
      L"text=MATRIX | AUTO DIMENSION ( P, Products(Code) , N, Parts(Id)) MATRIX MINIMUM(Sub) MATRIX DEFAULT "
      L"(Sub)3DMATRIX xLabel=P yLabel=N"),
    X(L"MATRIX | COMMON MATRIX", L"+1:16"),
    // Fields of the same format
    X(L"SWITCH(A)", L"A.[4]=1 +5:2147483648"),
    X(L"SWITCH ON(A) | SWITCH(B)", L"A.[3]=1 A.[4]=1 B.[3]=1 B.[4]=1 +5:2147483648"),
    X(L"SWITCH OFF ( A) | SWITCH ON(B) | SWITCHED | SWITCH ONLY", L"A.[4]=1 B.[3]=1 B.[4]=1 +5:2147483648"),
    X(L"RELATED FIELD(A)", L"+11:65536 related=2"),
    // Links
    X(L"LOCAL ASSIGNMENT(Products(Name))", L"+7:1024 [6]=1 [7]=1 Products.Name.+7:2048"),
    X(L"SETUP OVERRIDE MATCH(Products(Parts))", L"[8]=1 [9]=2", {kSetupOverrideMatch}),
    X(L"MATCH FIELD(Products(Parts))", L"+6:268435456 [1]=1 [2]=2"),
    X(L"SOURCE ORDER(Products(Parts))", L"+8:16777216 [1]=1 [2]=2"),
    X(L"MATCH DURATION FIELD(Products(Parts))", L"+6:2147483648 [3]=2 [6]=1 [7]=2"),
    X(L"MATCH DURATION FIELD(Products(Name)) MATCH END DURATION FIELD(Products(Parts))",
      L"+6:2147483648 [3]=2 [6]=1 [7]=1"),
    X(L"MATCH DURATION FIELD(Products(Name)) MATCH END DURATION FIELD(Orders(B))", L"+6:2147483648 [3]=1 [6]=1 [7]=1"),
    X(L"LOOKUP SOURCE(Stock(Id))", L"+11:256 [15]=4 [16]=0"),
    X(L"EXPAND REFERENCE(Orders(A)) EXPAND MATCH(Products(Name))", L"+11:2048 +11:4096 [19]=2"),
    X(L"LOOKUP SOURCE(Products(Name)) LOOKUP UPDATE (Code)", L"+11:256 +11:512 [15]=1 [16]=0"),
};

TEST_F(FieldPass, ChangesExactlyWhatAKeywordStandsForAndNothingMoreTheNextTime) {
    for (const X& c : kResolved) {
        Define(c.x);
        EXPECT_EQ(Resolve(), c.expected) << ToUtf8(c.x.classification);
        EXPECT_TRUE(succeeded_);
        EXPECT_EQ(Resolve(), L"") << ToUtf8(c.x.classification);
    }
    EXPECT_EQ(Boxes(), L"");
}

const X kRefused[] = {
    X(L"AND DATABASE(Nowhere(Code)) MORE", L"<21005|DATABASE(Nowhere(Code))>\n<21006|Orders|X>\n<21003|Nowhere>"),
    X(L"DATABASE(Products(code))", L"<21004|DATABASE(Products(code))|Products><21003|code>"),
    X(L"MATCH DURATION FIELD(Orders(A)) MATCH END DURATION FIELD(Nowhere(A))",
      L"<21005|MATCH END DURATION FIELD(Nowhere(A))>\n<21094|Orders|X>\n<21003|Nowhere>"),
    X(L"EXPAND MATCH(Nowhere(A))",
      L"<21005|EXPAND MATCH(Nowhere(A))>\nEXPAND MATCH reference in Format 'Orders' Field 'X'\n<21003|Nowhere>"),
    X(L"DATABASE(Stock(Id))", L"<21005|DATABASE(Stock(Id))>\n<21006|Orders|X>\n<21003|Stock>"),
    X(L"FIND CLASSIFICATION STRING(NAMING",
      L"<21108|NAMING|FIND CLASSIFICATION STRING reference in Format 'Orders' Field 'X'>"),
    X(Field{.name = L"X", .type = kTextMatrix, .classes = {kFreeFormat}}, L"<21110|Orders|X>"),
    X(L"STRING STORAGE(Products(Code))", L"<21102|Products|Code> <21103>", {kStringStorage}),
    X(L"STRING STORAGE(Stock(Id))", L"<21005|STRING STORAGE(Stock(Id))>\n<21104|Orders|X>\n<21003|Stock>",
      {kStringStorage}),
    X(L"REMOTE_DEF \"Nowhere(A)\"", L"<21005|REMOTE_DEF \"Nowhere(A)>\n<21097|Orders|X>\n<21003|Nowhere>"),
    X(Field{.name = L"X", .default_value = -10000.0, .classification = L"REMOTE(Stock(Id))"},
      L"<21007|-10000|Orders|X>"),
    X(L"AUTO LIST(Products(Code))", L"<21009|Orders|X> <21084>"),
    X(L"MATRIX | AUTO DIMENSION(A,Products(Code),B,Orders(Key))", L"<21058|Orders|X><21059><21060><21061><21062>"),
    X(L"MATRIX | AUTO DIMENSION", L"<21005|AUTO DIMENSION>\n<21010|Orders|X>\n<21003|>"),
    X(L"MATRIX | AUTO DIMENSION(A,Orders(Key),B,Products(Code)) MATRIX MINIMUM",
      L"<21004|MATRIX MINIMUM|Products><21003|>"),
    X(L"MATRIX | AUTO DIMENSION(A,Orders(Key),B,Products(Code)) MATRIX DEFAULT(Zip)",
      L"<21004|MATRIX DEFAULT(Zip)|Products><21003|Zip>"),
    X(L"SWITCH(C)", L"<21004|SWITCH(C)|Orders><21003|C>"),
    X(L"RELATED FIELD(C)", L"<21004|RELATED FIELD(C)|Orders><21003|C>"),
    X(L"LOOKUP UPDATE(Code)", L"No LOOKUP SOURCE classification exists to be used with the LOOKUP UPDATE in "
                              L"Format 'Orders' Field 'X'"),
    X(L"LOOKUP UPDATE(Code) LOOKUP SOURCE(Products(Code))",
      L"LOOKUP UPDATE classification exists together with EVALUATE in Format 'Orders' Field 'X'", {kEvaluate}),
    X(L"LOOKUP UPDATE(Parts) LOOKUP SOURCE(Products(Code))",
      L"LOOKUP UPDATE classification in Format 'Orders' Field 'X' references a field that is not the same type"),
    X(Field{.name = L"X",
            .type = TypeBit::kReference,
            .classification = L"LOOKUP UPDATE(Name) LOOKUP SOURCE(Products(Code))"},
      L"LOOKUP UPDATE classification in Format 'Orders' Field 'X' is not FREE FORMAT but the referenced field is FREE "
      L"FORMAT"),
};

TEST_F(FieldPass, ShowsARefusalWithItsPlaceAndEnds) {
    SetMessageCaption(L"Plant");
    for (const X& c : kRefused) {
        Define(c.x);
        Resolve();
        EXPECT_FALSE(succeeded_);
        ExpectBox(c.expected);
    }
}

TEST_F(FieldPass, RefusesTheRetiredKeywordWithAWarning) {
    Define(Matrix(L"X", L"AUTO CALCULATE"));
    Resolve();
    EXPECT_FALSE(succeeded_);
    EXPECT_EQ(messages_->boxes, (std::vector<Fixtures::RecordingMessages::Box>{
                                    {L"AUTO CALCULATE is not supported. Remove this feature and restart Kestrona.",
                                     L"Unsupported feature", kMessageStyleWarning}}));
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
    EXPECT_EQ(Resolve(), L"+0:2097152 source=0 table=4") << Boxes().c_str();
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
    EXPECT_EQ(Resolve(), L"+11:1024 [17]=1");
}

TEST_F(FieldPass, LeavesTheStringsOfACompiledDefinitionAsTheyAre) {
    Define(Real(L"X", L"REMOTE(Products(Name))"));
    const CompiledResolution resolution;
    EXPECT_EQ(Resolve(), L"+4:256 +4:8388608");
}

TEST_F(FieldPass, ClearsWhatAnEarlierDefinitionLeft) {
    Define(Real(L"X", L""));
    store_.SetDbRelated(0, 1, 7);
    store_.SetDbRelatedY(0, 1, 7);
    store_.SetDbData(0, 1, DataSlot::kLookupFormat, 7);
    store_.SetDbData(0, 1, DataSlot::kLookupField, 7);
    EXPECT_EQ(Resolve(), L"[15]=-1 [16]=-1 related=-1 relatedY=-1");
}

// Orders(Key, X, List, Plain, Text, ...) with X under test and more fields behind it; Products(Code, Name, Grid, Line).
class RelationshipPass : public ConfigurationTest::DefinitionFixture {
protected:
    void Define(const Field& x, const std::vector<Field>& more = {}) {
        KSDLL_InitializeFormats(store_);
        std::vector<Field> fields = {Fixtures::Number(L"Key"), x, Matrix(L"List", L"AUTO LIST(Products(Code))"),
                                     Fixtures::Number(L"Plain"), Fixtures::Text(L"Text")};
        fields.insert(fields.end(), more.begin(), more.end());
        Add(L"Orders", fields);
        Add(L"Products", {Real(L"Code", L"", {kUnique, kInheritFromParent}), Fixtures::Text(L"Name"),
                          Matrix(L"Grid", L"AUTO DIMENSION(P,Products(Code),O,Orders(Plain))"),
                          Real(L"Line", L"DATABASE(Orders(Key))")});
    }

    // What the pass changes in Orders.
    std::wstring Relate() {
        EXPECT_TRUE(RunFieldPass(store_)) << Boxes().c_str();
        return Changes(RunRelationshipPass);
    }
};

// A field that chooses a product.
Field Product(const wchar_t* name, std::vector<Class> classes = {}) {
    return Real(name, L"DATABASE(Products(Code))", std::move(classes));
}

// The changes in fields of Orders, those in X without its name.
const X kRelated[] = {
    X(L"SOURCE(Products(Line)) UPDATE REFERENCE(Plain)", L"tableY=3", {kUpdateReference}),
    X(L"SOURCE(Products(Name)) UPDATE REFERENCE(Plain)", L"tableY=3", {kUpdateReference, kUnchecked}),
    X(L"MATRIX | RELATED LIST(List)", L"+0:2 +0:4 +2:128 tableY=2"),
    X(L"MATRIX | ASSOCIATE(List)", L"+0:2 +0:4 +1:2 +3:131072 [0]=2 source=0 sourceY=0 table=0 tableY=1"),
    X(L"MATRIX | ASSOCIATE(List)", L"+0:2 +0:4 +3:131072 [0]=2 source=0 sourceY=0 table=0 tableY=1", {kParallelList}),
    X(L"MATRIX | ASSOCIATE(List) AUTO DIMENSION(A,Orders(Plain),B,Products(Name))", L"+0:2 +0:4 +3:131072 [0]=2"),
    X(L"MATRIX | ASSOCIATE(Values)", L"+0:2 +0:4 +1:2 +3:131072 [0]=5 source=0 table=0", {},
      {Matrix(L"Values", L"DATA LIST")}),
    X(L"MATRIX | AUTO RESTRICT(List)", L"+2:2097152 [8]=2"),
    X(L"FAMILY(Plain)", L"Plain.+0:134217728 Plain.+4:32768 Plain.parentSort=0 +0:33554432 table=3"),
    // The field that chooses the record
    X(L"MATRIX | DATABASE(Products(Grid))", L"matrixField=2 related=5 source=0", {}, {Product(L"Product")}),
    X(L"MATRIX | DATABASE(Products(Grid))", L"Shared.tableY=3 matrixField=2 related=10 source=0", {},
      {Matrix(L"Wide", L"DATABASE(Products(Code))"), Real(L"Loose", L"DATABASE(Products(Name))"),
       Real(L"Shared", L"DATABASE(Products(Code)) ADDITIONAL REFERENCE(Plain)", {kAdditionalReference}),
       Real(L"Other", L"DATABASE(Orders(Key))"), Product(L"Quiet", {kUnchecked}), Product(L"Product")}),
    X(L"MATRIX | DATABASE(Products(Grid))", L"matrixField=2 related=5 source=0", {}, {Product(L"Quiet", {kUnchecked})}),
    X(L"MATRIX | DATABASE(Products(Grid)) RELATED FIELD(Plain)", L"matrixField=2 source=0", {},
      {Product(L"One"), Product(L"Two")}),
    X(L"MATRIX | DATABASE(Orders(List))", L"matrixField=2 related=0 source=0 table=1"),
    X(L"MATRIX | DATABASE(Orders(List))", L"matrixField=2 related=5 source=0 table=1", {},
      {Real(L"One", L"DATABASE(Orders(No))", {kUnchecked}), Real(L"Two", L"DATABASE(Orders(No))", {kUnchecked}),
       Real(L"No", L"", {kUnique})}),
    // Fields that lean on another one
    X(L"ADDITIONAL REFERENCE(Plain)", L"tableY=3", {kAdditionalReference}),
    X(L"ADDITIONAL REFERENCE(Plain)", L""),
    X(L"OVERRIDE(Plain)", L"tableY=3", {kOverride}),
    X(L"OVERRIDE", L"", {kOverride}),
    X(L"AUTO SPLIT(Plain:2)", L"tableY=3", {kAutoSplit}),
    X(L"", L"parentSort=0", {kInheritFromParent}),
    X(Field{.name = L"X", .type = TypeBit::kReference, .classes = {kEncrypted, kFreeFormat}}, L""),
};

TEST_F(RelationshipPass, ChangesExactlyWhatAKeywordStandsForAndNothingMoreTheNextTime) {
    for (const X& c : kRelated) {
        Define(c.x, c.more);
        EXPECT_EQ(Relate(), c.expected) << ToUtf8(c.x.classification);
        EXPECT_TRUE(succeeded_);
        const Snapshot first = TakeSnapshot(store_);
        ASSERT_TRUE(RunFieldPass(store_) && RunRelationshipPass(store_)) << Boxes().c_str();
        EXPECT_EQ(Differences(first, TakeSnapshot(store_)), L"") << ToUtf8(c.x.classification);
    }
    EXPECT_EQ(Boxes(), L"");
}

const X kRefusedRelations[] = {
    X(L"LOOKUP SOURCE(Products(Line))",
      L"LOOKUP SOURCE classification in Format 'Orders' Field 'X' references a field that is not UNIQUE"),
    X(L"LOOKUP SOURCE(Orders(No))",
      L"LOOKUP SOURCE classification in Format 'Orders' Field 'X' references a field that is not INHERIT FROM PARENT",
      {}, {Real(L"No", L"", {kUnique})}),
    X(L"DATABASE(Orders(Key)) LOOKUP SOURCE(Products(Code)) LOOKUP UPDATE(Code)",
      L"LOOKUP UPDATE classification in Format 'Orders' Field 'X' is a DATABASE reference but the referenced field is "
      L"not a DATABASE reference"),
    X(L"DATABASE(Orders(Key)) LOOKUP SOURCE(Orders(To)) LOOKUP UPDATE(To)",
      L"LOOKUP UPDATE classification in Format 'Orders' Field 'X' is a DATABASE reference but the table is different "
      L"to the table in the referenced field",
      {}, {Real(L"To", L"DATABASE(Products(Code))", {kUnique, kInheritFromParent})}),
    X(L"SOURCE(Products(Name))", L"<21085|Products|Orders><21086|Name><21087|X><21088>", {kUpdateReference}),
    X(L"SOURCE(Products(Line)) DATABASE(Products(Code))", L"<21085|Products|Orders><21086|Line><21087|X><21089>",
      {kUpdateReference}),
    X(L"MATRIX | RELATED LIST(Plain)", L"<21018><21017|Orders|X>"),
    X(L"MATRIX | RELATED LIST(None)", L"<21004|RELATED LIST(None)|Orders><21003|None>"),
    X(Field{.name = L"X", .type = TypeBit::kMatrix | TypeBit::kReal, .classification = L"RELATED LIST(List)"},
      L"<21019><21017|Orders|X>"),
    X(L"MATRIX | ASSOCIATE(Plain)", L"<21021><21017|Orders|X>"),
    X(L"ASSOCIATE(List)", L"<21022><21017|Orders|X>"),
    X(L"AUTO RESTRICT(List)", L"<21508><21017|Orders|X>"),
    X(L"UPDATE REFERENCE", L"<21004|UPDATE REFERENCE|Orders><21003|>", {kUpdateReference}),
    X(L"MATRIX | DATABASE(Products(Grid))", L"<21028|Products><21029|Orders|X>"),
    X(L"MATRIX | DATABASE(Products(Grid))", L"<21026|Products|Orders|Two><21027|One|X>", {},
      {Product(L"One"), Product(L"Two")}),
    X(L"MATRIX | DATABASE(Products(Grid))", L"<21026|Products|Orders|Two><21027|One|X>", {},
      {Product(L"One", {kUnchecked}), Product(L"Two", {kUnchecked})}),
    X(L"ADDITIONAL REFERENCE(X)", L"<21032|Orders><21003|X>", {kAdditionalReference}),
    X(L"", L"<21033|Orders|X>", {kAdditionalReference}),
    X(L"ADDITIONAL REFERENCE(Z)", L"<21032|Orders><21003|Z>", {kAdditionalReference},
      {Real(L"Y", L"ADDITIONAL REFERENCE(X)", {kAdditionalReference}),
       Real(L"Z", L"ADDITIONAL REFERENCE(Y)", {kAdditionalReference})}),
    X(L"OVERRIDE(Text)", L"<21113|Orders|X>", {kOverride}),
    X(L"MATRIX | OVERRIDE(List)", L"<21111|Orders|X>", {kOverride}),
    X(L"OVERRIDE(Note)", L"<21112|Orders|X>", {kOverride}, {Real(L"Note", L"", {kFreeFormat})}),
    X(L"OVERRIDE(Plain) UPDATE REFERENCE(Plain)", L"<21114|Orders|X>", {kOverride, kUpdateReference}),
    X(L"DATABASE(Products(Code)) UPDATE REFERENCE(X)", L"<21031|Orders><21003|X>", {kUpdateReference}),
    X(L"UPDATE REFERENCE(Plain)", L"<21096|Orders><21003|X>", {kUpdateReference}),
    X(L"DATABASE(Products(Code))", L"<21038|Orders|X>", {kUpdateReference}),
    X(L"AUTO SPLIT(X)", L"<21035|Orders><21003|X>", {kAutoSplit}),
    X(L"AUTO SPLIT(Both)", L"<21036|Orders><21003|X>", {kAutoSplit},
      {{.name = L"Both", .type = TypeBit::kReal | TypeBit::kInteger}}),
    X(L"DATABASE(Products(Code))", L"<29012|Orders|X>", {kFreeFormat}),
    X(L"", L"<31100|Orders|X>", {kEncrypted, kEvaluate, kStringStorage}),
    X(L"", L"<31101|Orders|X>", {kEncrypted, kStringStorage}),
    X(L"", L"<31102|Orders|X>", {kEncrypted}),
};

TEST_F(RelationshipPass, ShowsARefusalWithItsArgumentsAndEnds) {
    for (const X& c : kRefusedRelations) {
        messages_->boxes.clear();
        Define(c.x, c.more);
        Relate();
        EXPECT_FALSE(succeeded_);
        EXPECT_EQ(Boxes(), c.expected) << ToUtf8(c.x.classification);
    }
}

// Every look-up of a field tells the place by the text of its own keyword.
TEST_F(RelationshipPass, OffersTheContextOfTheKeywordToTheTextForAMissingField) {
    const X cases[] = {
        X(L"MATRIX | AUTO DIMENSION(A,Orders(Key),B,Products(Code)) MATRIX DEFAULT(None)", L"<21012|Orders|X>"),
        X(L"ORDER MATCH(None)", L"ORDER MATCH reference in Format 'Orders' Field 'X'"),
        X(L"LOOKUP SOURCE(Products(Code)) LOOKUP UPDATE(None)",
          L"LOOKUP UPDATE reference in Format 'Orders' Field 'X'"),
        X(L"MATRIX | RELATED LIST(None)", L"<21016|Orders|X>"),
        X(L"FAMILY(None)", L"<21025|Orders|X>"),
        X(L"OVERRIDE ( None)", L"OVERRIDE(None)", {kOverride}),
        X(L"UPDATE REFERENCE(None)", L"<21034|Orders|X>", {kUpdateReference}),
    };
    messages_->texts = {{21004, L"%4%"}, {21003, L""}};
    for (const X& c : cases) {
        messages_->boxes.clear();
        Define(c.x);
        SetParent(0, 1);
        EXPECT_FALSE(RunFieldPass(store_) && RunRelationshipPass(store_));
        EXPECT_EQ(Boxes(), c.expected) << ToUtf8(c.x.classification);
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
    EXPECT_TRUE(store_.ClassDefined(0, 1, kReadOnly));
}

} // namespace

} // namespace Kestrona::Configuration
