// Reading and writing cells: reports, scratch records, defaults, texts, and which column a field gets.
#include "fixtures/store_test.h"

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

class StoredCells : public RecordedStoreTest {
protected:
    // Compares what was told since the last call with this line, told as often as it should.
    void ExpectReport(const std::wstring& text, bool in_log, bool in_box) {
        const RecordingMessages::Box box{text, L"Assert", kMessageStyleError};
        EXPECT_EQ(std::exchange(logger.lines, {}), std::vector<std::wstring>(in_log ? 1 : 0, text));
        EXPECT_EQ(std::exchange(messages.boxes, {}), std::vector<RecordingMessages::Box>(in_box ? 1 : 0, box));
    }
};

TEST_F(StoredCells, AccessIsReportedWhereNoCellStands) {
    const std::int32_t format = AddTable(*store, L"Orders", {Number(L"Key"), Number(L"Quantity", 4.0), Text(L"T")}, 5);
    // Whether a read is reported, and whether a write is, which then is dropped.
    for (const auto& [record, reported_read, reported_write] : {std::tuple{0, false, false},
                                                                {4, false, false},
                                                                {5, true, false},
                                                                {-1, true, true},
                                                                {999900000, false, false},
                                                                {999900003, false, false},
                                                                {999900004, false, true},
                                                                {kLowest, true, true},
                                                                {kHighest, false, true}}) {
        SCOPED_TRACE(record);
        const std::wstring number = L" Invalid Record Number " + std::to_wstring(record) + L" for format Orders";
        EXPECT_EQ(store->GetDbValue(format, 1, record), 4.0);
        ExpectReport(L"Get" + number + L" field Quantity", reported_read, reported_read);
        store->SetDbValue(format, 1, record, 9.0);
        ExpectReport(L"Set" + number, reported_write, false);
        EXPECT_EQ(store->GetDbValue(format, 1, record), reported_write ? 4.0 : 9.0);
        store->SetDbString(format, 2, record, L"text");
        EXPECT_EQ(store->GetDbString(format, 2, record), reported_write ? L"" : L"text");
        store->SetDbValue(format, 1, record, 4.0);
        logger.lines.clear();
        messages.boxes.clear();
    }
}

TEST_F(StoredCells, StorageIsTheOneThatTypeAndClassesAskFor) {
    // What is kept of 2.7, and where.
    const std::tuple<std::uint32_t, std::vector<Class>, double, const char*> cases[] = {
        {0, {}, 2.7, "stored"},
        {TypeBit::kReference, {}, 2.7, "stored"},
        {TypeBit::kReference, {Classes::kFreeFormat}, 0.0, "stored text"},
        {TypeBit::kReference, {Classes::kFreeFormat, Classes::kEncrypted}, 0.0, "stored text"},
        {TypeBit::kReal, {Classes::kFreeFormat}, 2.7, "stored text"},
        {TypeBit::kInteger | TypeBit::kToggle | TypeBit::kFreeString, {}, 2.0, "stored"},
        {TypeBit::kToggle | TypeBit::kFreeString, {}, 1.0, "stored"},
        {TypeBit::kFreeString, {}, 0.0, ""},
        {TypeBit::kMatrix | TypeBit::kInteger, {}, 0.0, ""},
        {TypeBit::kMatrix, {Classes::kEvaluate}, 0.0, ""},
        {TypeBit::kReal, {Classes::kEvaluate}, 0.0, ""},
        {TypeBit::kReference, {Classes::kEvaluate, Classes::kFreeFormat}, 0.0, " text"},
    };
    for (const auto& [type, classes, kept, storage] : cases) {
        SCOPED_TRACE(type);
        const Field field{.name = L"Field", .type = type, .classes = classes};
        const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key"), field}, 1);
        store->SetDbValue(format, 1, 0, 2.7);
        EXPECT_EQ(store->GetDbValue(format, 1, 0), kept);
        EXPECT_EQ(std::string(store->HasStorage(format, 1) ? "stored" : "") +
                      (store->GetDbStringArray(format, 1) != nullptr ? " text" : ""),
                  storage);
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
    for (const auto& [classification, expected] :
         {std::pair{L"SUBSTITUTE(1.5->\"Half past\") SUBSTITUTE(3->\"Three\") STRING_DEF \"Three\"", 3.0},
          {L"SUBSTITUTE(1.5->\"Half past\") STRING_DEF \"Unknown\"", 8.0},
          {L"SUBSTITUTE(1.5->\"\") STRING_DEF \"\"", 8.0},
          {L"STRING_DEF", 8.0}}) {
        Field field = Number(L"Field", 8.0);
        field.classes = {Classes::kStringDefault, Classes::kSubstitute};
        field.classification = classification;
        const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key"), field}, 1);
        EXPECT_EQ(store->GetDbValue(format, 1, 0), expected) << classification;
        store->SetDbClassString(format, 1, L"SUBSTITUTE(4->\"New\") STRING_DEF \"New\""); // what was parsed is stale
        EXPECT_EQ(store->GetDbDefaultValue(format, 1), 4.0) << classification;
        store->RemoveDbClass(format, 1, Classes::kStringDefault);
        EXPECT_EQ(store->GetDbDefaultValue(format, 1), 8.0) << classification;
    }
}

TEST_F(StoredCells, TextsAreCutToTheirLimitInUtf16Units) {
    for (const auto& [limit, text, kept] : {std::tuple{-3, L"no limit", L"no limit"},
                                            {3, L"abcd", L"abc"},
                                            {3, L"a\U0001F600b", L"a\U0001F600"},
                                            {2, L"a\U0001F600b", L"a"},
                                            {1, L"\U0001F600", L""}}) {
        const std::int32_t format = AddTable(*store, L"Format", {Number(L"Key"), Text(L"Text", limit)}, 1);
        store->SetDbString(format, 1, 0, text);
        EXPECT_EQ(store->GetDbString(format, 1, 0), kept) << limit << ' ' << text;
    }
}

TEST_F(StoredCells, AColumnMadeOverStandingRecordsCoversThem) {
    const std::int32_t format = AddFormat(*store, L"Format", {Number(L"Key"), Number(L"Late", 2.0)});
    store->SetCurrentDbSize(format, 4);
    MakeColumns(*store, format);
    EXPECT_EQ(Take(store->LookupRecords(format, 1, 2.0, FindOperator::Equal)).size(), 4u);
}

// KSDLL_SetDefaultFieldValue.
class DefaultValues : public StoreTest {
protected:
    void Set(std::int32_t format, std::int32_t field, std::int32_t record, std::int32_t level = 1,
             std::int32_t skip = -1) {
        KSDLL_SetDefaultFieldValue(*store, format, field, record, -1, skip, level, -1, 0.0);
    }
};

TEST_F(DefaultValues, FollowTheClassesOfTheField) {
    InstallRecordingMessages().texts = {{0x4a67, L"somebody"}};
    Field now = Number(L"Now", 3.0);
    now.classes = {Classes::kTimeOfNow, Classes::kAutomaticKey};
    Field next = Number(L"Next", 4.0);
    next.classes = {Classes::kAutomaticKey};
    Field deep = Number(L"Deep", 6.0);
    deep.classes = {Classes::kDeepDefault};
    Field user = Text(L"User");
    user.classes.push_back(Classes::kUserNameDefault);
    Field text = Text(L"Text");
    text.classification = L"FREE FORMAT FF_STRING_DEF \"as usual\"";
    const std::int32_t format =
        AddTable(*store, L"F", {Number(L"Key", 1.0), now, next, Number(L"Plain", 5.0), deep, user, text}, 2);
    KSDLL_SetDoubleSv(kSvFixedNow, 40000.25);

    for (const auto& [field, level, skip, value] : {std::tuple{1, 9, 1, 40000.25},
                                                    {2, 9, 2, 78.0}, // behind the largest
                                                    {3, 1, -1, 5.0},
                                                    {3, 1, 3, 77.0},
                                                    {3, 2, -1, 77.0},
                                                    {4, 2, -1, 6.0},
                                                    {4, 2, 4, 77.0},
                                                    {4, 0, -1, 77.0}}) {
        store->SetDbValue(format, field, 1, 77.0);
        Set(format, field, 1, level, skip);
        EXPECT_EQ(store->GetDbValue(format, field, 1), value) << field << ' ' << level << ' ' << skip;
    }
    Set(format, 5, 1, 7, 5);
    Set(format, 6, 1, 7, 6);
    EXPECT_EQ(store->GetDbString(format, 5, 1) + L" " + store->GetDbString(format, 6, 1), L"somebody as usual");
}

TEST_F(DefaultValues, FillAMatrixAndSelectLists) {
    RecordingLogger& logger = InstallRecordingLogger();
    const auto matrix = [](std::vector<Class> classes, std::int32_t table, std::int32_t table_y) {
        Field field = Matrix(L"Matrix", std::move(classes), table, table_y, 2.0);
        field.source = 0;
        return field;
    };
    AddTable(*store, L"Items", {Number(L"Key", 1.0)});
    AddTable(*store, L"Groups", {Number(L"Key", 1.0), matrix({Classes::kList}, 0, 0)});
    const std::int32_t orders =
        AddTable(*store, L"Orders",
                 {Number(L"Key", 1.0), Reference(L"Group", 1, 0), matrix({Classes::kList, Classes::kSelectAll}, 0, 1),
                  matrix({Classes::kParallelList, Classes::kAssociate}, -1, -1), matrix({}, -1, 0),
                  matrix({Classes::kParallelList, Classes::kList}, -1, 2)});
    store->SetDbSourceY(orders, 2, 1);
    store->SetDbRelated(orders, 2, 1);
    store->SetDbData(orders, 3, DataSlot::kAssociateField, 2);
    store->SetDbData(orders, 5, DataSlot::kAssociateField, 2);
    Create(0, 3);
    Create(1, 2);
    Create(orders, 1);
    Fill(1, 1, 1, {3.0, 1.0});
    KSDLL_SetMatrixValue(KSDLL_GetDbMatrix(*store, orders, 4, 0), 1, 9.0);
    Set(orders, 4, 0);
    EXPECT_EQ(Cells(orders, 4, 0), (Doubles{2, 2, 2}));
    Set(orders, 2, 0); // nothing is selected
    EXPECT_EQ(Cells(orders, 2, 0), (Doubles{1, 2, 3}));
    EXPECT_EQ(Cells(orders, 3, 0).size(), 3u);
    EXPECT_EQ(Cells(orders, 5, 0), (Doubles{0, 0, 0})); // the text of each entry is held elsewhere
    store->SetDbValue(orders, 1, 0, 2.0);
    Set(orders, 2, 0);
    EXPECT_EQ(Cells(orders, 2, 0), (Doubles{3, 1}));
    EXPECT_EQ(Cells(orders, 3, 0).size(), 2u);
    store->SetDbValue(orders, 1, 0, 8.0);
    logger.lines.clear();
    Set(orders, 2, 0);
    EXPECT_EQ(logger.lines, (std::vector<std::wstring>{L"Select all Auto list entries",
                                                       L"ERROR :- Key Value of 8.000000 not found in Database"}));
    EXPECT_EQ(Cells(orders, 3, 0).size(), 2u);
}

} // namespace

} // namespace Kestrona
