// Reading and writing cells: reports, scratch records, defaults, texts, and which column a field gets.
#include "fixtures/store_test.h"

#include <kestrona/concrete_columns.h>
#include <kestrona/evaluate_columns.h>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

using StoredCells = RecordedStoreTest;

TEST_F(StoredCells, ReadsAreReportedWhereNoRecordStands) {
    const std::int32_t format = AddTable(*store, L"Orders", {Number(L"Key"), Number(L"Quantity", 4.0)}, 5);

    struct Case {
        std::int32_t record;
        bool reported;
    };

    for (const auto [record, reported] : {Case{0, false},
                                          {4, false},
                                          {5, true},
                                          {-1, true},
                                          {999899999, true},
                                          {999900000, false},
                                          {999900003, false},
                                          {999900004, false},
                                          {std::numeric_limits<std::int32_t>::min(), true},
                                          {std::numeric_limits<std::int32_t>::max(), false}}) {
        messages.boxes.clear();
        logger.lines.clear();
        EXPECT_EQ(store->GetDbValue(format, 1, record), 4.0) << record;
        const std::wstring text =
            L"Get Invalid Record Number " + std::to_wstring(record) + L" for format Orders field Quantity";
        const RecordingMessages::Box box{text, L"Assert", kMessageStyleError};
        EXPECT_EQ(messages.boxes, reported ? std::vector{box} : std::vector<RecordingMessages::Box>()) << record;
        EXPECT_EQ(logger.lines, reported ? std::vector{text} : std::vector<std::wstring>()) << record;
    }
}

TEST_F(StoredCells, WritesAreReportedWhereNoCellStands) {
    const std::int32_t format = AddTable(*store, L"Orders", {Number(L"Key"), Number(L"Quantity", 4.0)}, 5);

    struct Case {
        std::int32_t record;
        bool reported;
        double read_back;
    };

    for (const auto [record, reported, read_back] : {Case{4, false, 9.0},
                                                     {5, false, 9.0},
                                                     {999900000, false, 9.0},
                                                     {999900003, false, 9.0},
                                                     {999900004, true, 4.0},
                                                     {-1, true, 4.0},
                                                     {std::numeric_limits<std::int32_t>::max(), true, 4.0},
                                                     {std::numeric_limits<std::int32_t>::min(), true, 4.0}}) {
        logger.lines.clear();
        store->SetDbValue(format, 1, record, 9.0);
        const std::wstring text = L"Set Invalid Record Number " + std::to_wstring(record) + L" for format Orders";
        EXPECT_EQ(logger.lines, reported ? std::vector{text} : std::vector<std::wstring>()) << record;
        EXPECT_TRUE(messages.boxes.empty()) << record;
        EXPECT_EQ(store->GetDbValue(format, 1, record), read_back) << record;
        messages.boxes.clear();
    }
}

TEST_F(StoredCells, AFieldWithoutAColumnReadsAsItsDefaultAndSaysSo) {
    const std::int32_t format = AddFormat(*store, L"Orders", {Number(L"Key"), Number(L"Bare"), Number(L"Held")});
    store->CreateDbValues(format, 2);
    store->SetCurrentDbSize(format, 2);
    store->SetDbDefaultValue(format, 1, 6.0);
    EXPECT_EQ(store->GetDbColumn(format, 1), nullptr);
    store->SetDbValue(format, 1, 0, 3.0);
    EXPECT_EQ(store->GetDbValue(format, 1, 0), 6.0);
    EXPECT_TRUE(messages.boxes.empty());
    EXPECT_EQ(store->GetDbValue(format, 1, 2), 6.0);
    EXPECT_EQ(messages.boxes.size(), 1u);
    EXPECT_FALSE(store->HasStorage(format, 1));
    EXPECT_TRUE(store->HasStorage(format, 2));
}

TEST_F(StoredCells, StorageIsTheOneThatTypeAndClassesAskFor) {
    enum class Kind {
        Null,
        Double,
        Integer,
        Toggle,
        Override,
        Calculated,
        None
    };

    struct Case {
        std::uint32_t type;
        std::vector<Class> classes;
        Kind kind;
        bool has_storage;
        bool has_text;
    };

    const Case cases[] = {
        {TypeBit::kReal, {}, Kind::Double, true, false},
        {TypeBit::kReference, {}, Kind::Double, true, false},
        {TypeBit::kReference, {Classes::kFreeFormat}, Kind::Null, true, true},
        {TypeBit::kReference, {Classes::kFreeFormat, Classes::kEncrypted}, Kind::Null, true, true},
        {TypeBit::kReal, {Classes::kFreeFormat}, Kind::Double, true, true},
        {TypeBit::kInteger | TypeBit::kToggle | TypeBit::kFreeString, {}, Kind::Integer, true, false},
        {TypeBit::kToggle | TypeBit::kFreeString, {}, Kind::Toggle, true, false},
        {TypeBit::kFreeString, {}, Kind::Null, false, false},
        {TypeBit::kMatrix | TypeBit::kInteger, {}, Kind::Null, false, false},
        {TypeBit::kMatrix, {Classes::kEvaluate}, Kind::Null, false, false},
        {TypeBit::kReal, {Classes::kEvaluate}, Kind::Calculated, false, false},
        {TypeBit::kReference, {Classes::kEvaluate, Classes::kFreeFormat}, Kind::Calculated, false, true},
        {TypeBit::kInteger, {Classes::kOverride}, Kind::Override, true, false},
        {0, {}, Kind::Double, true, false},
    };
    for (const Case& c : cases) {
        const Field field{.name = L"Field", .type = c.type, .classes = c.classes};
        const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key"), field}, 1);
        IColumn<double>* const column = store->GetDbColumn(format, 1);
        Kind kind = Kind::None;
        if (dynamic_cast<OverrideDoubleColumn*>(column) != nullptr) {
            kind = Kind::Override;
        } else if (dynamic_cast<EvaluateColumn*>(column) != nullptr) {
            kind = Kind::Calculated;
        } else if (dynamic_cast<DoubleColumn*>(column) != nullptr) {
            kind = Kind::Double;
        } else if (dynamic_cast<IntegerColumn*>(column) != nullptr) {
            kind = Kind::Integer;
        } else if (dynamic_cast<BoolColumn*>(column) != nullptr) {
            kind = Kind::Toggle;
        } else if (column != nullptr && column->IsNullColumn()) {
            kind = Kind::Null;
        }
        EXPECT_EQ(kind, c.kind) << "type " << c.type << ", case " << &c - cases;
        EXPECT_EQ(store->HasStorage(format, 1), c.has_storage) << &c - cases;
        EXPECT_EQ(store->GetDbStringArray(format, 1) != nullptr, c.has_text) << &c - cases;
    }
}

TEST_F(StoredCells, AKeyFieldIsDoubleAndIndexedWhateverItsType) {
    for (const std::uint32_t type : {TypeBit::kInteger, TypeBit::kReference, TypeBit::kToggle}) {
        const Field key{.name = L"Key", .type = type, .classes = {Classes::kFreeFormat, Classes::kEvaluate}};
        const std::int32_t format = AddTable(*store, L"Format", {key}, 3);
        store->SetDbKeyValue(format, 1, 2.5);
        EXPECT_EQ(store->GetDbKeyValue(format, 1), 2.5);
        EXPECT_TRUE(store->GetDbColumn(format, 0)->IsIndexedColumn());
        EXPECT_EQ(store->LookupKeyRecord(format, 2.5), 1);
    }
}

TEST_F(StoredCells, DefaultsAreCutToTheStorage) {
    const std::int32_t format = AddTable(
        *store, L"Orders", {Number(L"Key"), Integer(L"Int", -2.9), Toggle(L"Flag", 3.7), Integer(L"Huge", 1e12)}, 1);
    EXPECT_EQ(store->GetDbValue(format, 1, 0), -2.0);
    EXPECT_EQ(store->GetDbValue(format, 2, 0), 3.0); // the default is not normalised, a written value is
    EXPECT_EQ(store->GetDbValue(format, 3, 0), -2147483648.0);
    EXPECT_EQ(store->GetDbDefaultValue(format, 1), -2.9);
}

TEST_F(StoredCells, ADefaultMayBeGivenByItsText) {
    struct Case {
        const wchar_t* classification;
        double expected;
    };

    for (const auto& [classification, expected] :
         {Case{L"SUBSTITUTE(1.5->\"Half past\") SUBSTITUTE(3->\"Three\") STRING_DEF \"Three\"", 3.0},
          {L"SUBSTITUTE(1.5->\"Half past\") STRING_DEF \"Half past\"", 1.5},
          {L"SUBSTITUTE(1.5->\"Half past\") STRING_DEF \"Unknown\"", 8.0},
          {L"SUBSTITUTE(1.5->\"\") STRING_DEF \"\"", 8.0},
          {L"STRING_DEF", 8.0},
          {L"", 8.0}}) {
        Field field = Number(L"Field", 8.0);
        field.classes = {Classes::kStringDefault, Classes::kSubstitute};
        field.classification = classification;
        const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key"), field}, 1);
        EXPECT_EQ(store->GetDbDefaultValue(format, 1), expected) << classification;
        EXPECT_EQ(store->GetDbValue(format, 1, 0), expected) << classification;
        store->SetDbClassString(format, 1, L"SUBSTITUTE(4->\"New\") STRING_DEF \"New\""); // what was parsed is stale
        EXPECT_EQ(store->GetDbDefaultValue(format, 1), 4.0) << classification;
        store->RemoveDbClass(format, 1, Classes::kStringDefault);
        EXPECT_EQ(store->GetDbDefaultValue(format, 1), 8.0) << classification;
    }
}

TEST_F(StoredCells, TextsAreCutToTheirLimitInUtf16Units) {
    struct Case {
        std::int32_t limit;
        std::wstring text;
        std::wstring kept;
    };

    for (const auto& [limit, text, kept] : {Case{0, L"no limit", L"no limit"},
                                            {-3, L"no limit", L"no limit"},
                                            {3, L"abcd", L"abc"},
                                            {4, L"abcd", L"abcd"},
                                            {3, L"a\U0001F600b", L"a\U0001F600"},
                                            {2, L"a\U0001F600b", L"a"},
                                            {1, L"\U0001F600", L""},
                                            {5, L"", L""}}) {
        const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key"), Text(L"Text", limit)}, 1);
        store->SetDbString(format, 1, 0, text);
        EXPECT_EQ(store->GetDbString(format, 1, 0), kept) << limit << ' ' << text.size();
    }
}

TEST_F(StoredCells, TextsOfBadRecordsAreDroppedAndReadAsTheDefault) {
    Field text = Text(L"Text");
    text.classification = L"FF_STRING_DEF \"none\"";
    const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key"), text}, 2);
    for (const std::int32_t record : {-1, 999900004, std::numeric_limits<std::int32_t>::max()}) {
        store->SetDbString(format, 1, record, L"lost");
        EXPECT_EQ(store->GetDbString(format, 1, record), L"none") << record;
    }
    store->SetDbString(format, 1, KSDLL_GetScratchRecord(), L"aside");
    EXPECT_EQ(store->GetDbString(format, 1, KSDLL_GetScratchRecord()), L"aside");
    EXPECT_EQ(store->GetDbString(format, 1, 0), L"none");
    store->SetDbString(format, 0, 0, L"no text column"); // dropped
    EXPECT_EQ(store->GetDbString(format, 0, 0), L"");
}

TEST_F(StoredCells, SizesFollowInEveryColumnOfTheirOwn) {
    Field own_text = Shared(L"Shared", 1);
    own_text.type = TypeBit::kReference;
    own_text.classes.push_back(Classes::kFreeFormat);
    const std::int32_t format =
        AddTable(*store, L"Format", {Number(L"Key"), Number(L"A", 5.0), Text(L"Text"), own_text}, 3);
    for (std::int32_t record = 0; record < 3; ++record) {
        store->SetDbValue(format, 1, record, record);
        store->SetDbString(format, 2, record, L"old");
        store->SetDbString(format, 3, record, L"old");
    }
    store->ChangeCurrentDbSize(format, -2);
    store->ChangeCurrentDbSize(format, +2);
    EXPECT_EQ(store->GetCurrentDbSize(format), 3);
    EXPECT_EQ(store->GetDbValue(format, 1, 2), 5.0);
    EXPECT_EQ(store->GetDbString(format, 2, 2), L"");
    EXPECT_EQ(store->GetDbString(format, 3, 2), L"");
    EXPECT_EQ(store->GetDbString(format, 3, 0), L"old");
    EXPECT_EQ(store->GetDbColumn(format, 1)->GetCurrentSize(), 3u);
}

TEST_F(StoredCells, AColumnMadeOverStandingRecordsCoversThem) {
    const std::int32_t format = AddFormat(*store, L"Format", {Number(L"Key"), Number(L"Late", 2.0)});
    store->SetCurrentDbSize(format, 4);
    MakeColumns(*store, format);
    const std::unique_ptr<FindResult> found(store->LookupRecords(format, 1, 2.0, FindOperator::Equal));
    EXPECT_EQ(found->Size(), 4u);
}

} // namespace

} // namespace Kestrona
